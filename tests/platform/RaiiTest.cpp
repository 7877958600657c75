#include "platform/com/Raii.h"

#include <gtest/gtest.h>

#include "tests/platform/Counted.h"

namespace {

TEST(ComPtr, EveryOwnerHasOneReference) {
  Counted object;
  {
    ComPtr<IErrorInfo> first(&object);
    ComPtr<IErrorInfo> second = first;
    EXPECT_EQ(object.references, 3U);
    ComPtr<IErrorInfo> third = std::move(first);
    EXPECT_EQ(object.references, 3U);
    EXPECT_FALSE(first);  // NOLINT(bugprone-use-after-move): that it is empty is what is tested
    second = third;
    EXPECT_EQ(object.references, 3U);
    // What is held goes before a new reference comes.
    static_cast<void>(second.Put());
    EXPECT_EQ(object.references, 2U);
    third.Reset();
    third.Reset();
  }
  EXPECT_EQ(object.references, 1U);
}

TEST(ComPtr, AdoptAndDetachKeepTheCount) {
  Counted object;
  object.AddRef();
  auto owner = ComPtr<IErrorInfo>::Adopt(&object);
  EXPECT_EQ(object.references, 2U);
  EXPECT_EQ(owner.Detach(), &object);
  EXPECT_EQ(object.references, 2U);
}

TEST(ComPtr, AsGivesTheInterfaceOrNull) {
  Counted object;
  const ComPtr<IErrorInfo> owner(&object);
  EXPECT_EQ(owner.As<IUnknown>().Get(), static_cast<IUnknown*>(&object));
  EXPECT_FALSE(owner.As<IClassFactory>());
  EXPECT_FALSE(ComPtr<IErrorInfo>().As<IUnknown>());
  EXPECT_EQ(object.references, 2U);
}

TEST(Bstr, CopiesTextWithZerosInside) {
  const OLECHAR characters[] = {'a', 0, 'b'};
  const Bstr text(os::WideView(characters, 3));
  EXPECT_EQ(text.View(), os::WideView(characters, 3));
  EXPECT_EQ(Bstr().View(), os::WideView());
  EXPECT_NE(Bstr(os::WideView()).Get(), nullptr);
}

TEST(SafeArrayAccess, LocksForItsLifeTime) {
  const SafeArrayOwner array(SafeArrayCreateVector(VT_R8, 5, 3));
  {
    const SafeArrayAccess<double> access(array.Get());
    EXPECT_EQ(access.Result(), S_OK);
    ASSERT_EQ(access.Values().size(), 3U);
    access.Values()[2] = 1.5;
    EXPECT_EQ(array.Get()->cLocks, 1U);
  }
  EXPECT_EQ(array.Get()->cLocks, 0U);
  EXPECT_EQ(static_cast<double*>(array.Get()->pvData)[2], 1.5);
}

TEST(SafeArrayAccess, RefusesWhatIsNoVectorOfItsElements) {
  SAFEARRAYBOUND bounds[] = {{2, 0}, {2, 0}};
  const SafeArrayOwner matrix(SafeArrayCreate(VT_R8, 2, bounds));
  const SafeArrayOwner integers(SafeArrayCreateVector(VT_I4, 0, 2));
  const SafeArrayOwner floats(SafeArrayCreateVector(VT_R4, 0, 2));
  EXPECT_EQ(SafeArrayAccess<double>(matrix.Get()).Result(), DISP_E_BADINDEX);
  EXPECT_EQ(SafeArrayAccess<double>(integers.Get()).Result(), DISP_E_TYPEMISMATCH);
  EXPECT_EQ(SafeArrayAccess<double>(floats.Get()).Result(), DISP_E_TYPEMISMATCH);
  EXPECT_EQ(SafeArrayAccess<double>(nullptr).Result(), E_INVALIDARG);
  EXPECT_TRUE(SafeArrayAccess<double>(matrix.Get()).Values().empty());
  EXPECT_EQ(matrix.Get()->cLocks, 0U);
}

}  // namespace
