// The type library in the module as built, against the published surface in expected.txt.
#include <gtest/gtest.h>

#include <regex>
#include <string>
#include <string_view>

#include "platform/com/Com.h"
#include "platform/com/Raii.h"
#include "platform/os/Module.h"
#include "platform/os/Text.h"
#include "server/interface/ZentrelK4NLib.h"
#include "tests/typelib/Surface.h"
#include "tests/typelib/TypeLibraryText.h"

namespace {

/// The surface as the system's interfaces can show it: names of parameters are asked for by the
/// member's identifier, so that of a get and a put that share one only the first shows its own.
Lines AsReadByIdentifier(Lines lines) {
  static const std::regex member(R"(  slot \d+ (id \w+) .*)");
  static const std::regex named(R"((\[[\w,]+\] [\w*]+) \w+)");
  std::string previous;
  for (std::string& line : lines) {
    std::smatch match;
    const std::string id = std::regex_match(line, match, member) ? match[1].str() : "";
    if (!id.empty() && id == previous) line = std::regex_replace(line, named, "$1");
    previous = id;
  }
  return lines;
}

class TypeLibraryTest : public testing::Test {
 protected:
  void SetUp() override {
    const auto file = os::ToWide(ZK_DRIVER_MODULE, os::kUtf8CodePage);
    ASSERT_EQ(LoadTypeLibEx(file.c_str(), REGKIND_NONE, library_.Put()), S_OK);
  }

  ComPtr<ITypeLib> library_;
};

TEST_F(TypeLibraryTest, IsThePublishedSurface) {
  ExpectSameSurface(DescribeTypeLibrary(*library_, os::kCyrillicCodePage),
                    AsReadByIdentifier(ReadExpectedSurface()));
}

TEST(ResourceTest, DisplayTextAndToolboxIconAreThere) {
  const HMODULE module = LoadLibraryExA(ZK_DRIVER_MODULE, nullptr, LOAD_LIBRARY_AS_DATAFILE);
  const auto resource = [module](int number, const char* type) -> std::string_view {
    HRSRC found = FindResourceA(module, MAKEINTRESOURCEA(number), type);
    if (found == nullptr) return {};
    return {static_cast<const char*>(LockResource(LoadResource(module, found))),
            SizeofResource(module, found)};
  };
  char text[64] = {};
  EXPECT_EQ(LoadStringA(module, 100, text, sizeof text), 13);
  EXPECT_STREQ(text, "ZentrelK4NLib");
  // A group tells its images' sizes in 14 bytes each, behind a head of 6; 14 ends with the number.
  const std::string_view group = resource(202, RT_GROUP_ICON);
  EXPECT_EQ(group.size(), 6 + 2 * 14U);
  for (std::size_t at = 6, pixels = 16; at < group.size(); at += 14, pixels *= 2) {
    EXPECT_EQ(static_cast<std::size_t>(group[at]), pixels);
    EXPECT_GT(resource(group[at + 12], RT_ICON).size(), pixels * pixels);
  }
  FreeLibrary(module);
}

/// Members called by what the library says of them, as clients without our header do.
class TypeLibraryCallTest : public TypeLibraryTest {
 protected:
  void SetUp() override {
    TypeLibraryTest::SetUp();
    ASSERT_TRUE(module_.Load(ZK_DRIVER_MODULE));
    const auto get_class_object =
        module_.FunctionOf<HRESULT(REFCLSID, REFIID, void**)>("DllGetClassObject");
    ComPtr<IClassFactory> factory;
    ASSERT_EQ(get_class_object(__uuidof(ZentrelK4N), __uuidof(IClassFactory), factory.PutVoid()),
              S_OK);
    ASSERT_EQ(factory->CreateInstance(nullptr, __uuidof(IZentrelK4N), root_.PutVoid()), S_OK);
  }

  /// A get of an interface, by its identifier.
  VARIANT Get(const IID& interface_id, void* object, MEMBERID id) {
    VARIANT value{};
    ComPtr<ITypeInfo> type;
    EXPECT_EQ(library_->GetTypeInfoOfGuid(interface_id, type.Put()), S_OK);
    DISPPARAMS none{};
    EXPECT_EQ(type->Invoke(object, id, DISPATCH_PROPERTYGET, &none, &value, nullptr, nullptr),
              S_OK);
    return value;
  }

  os::Module module_;
  ComPtr<IZentrelK4N> root_;
};

TEST_F(TypeLibraryCallTest, ReachesTheObjectsMembers) {
  const VARIANT initialized = Get(__uuidof(IZentrelK4N), root_.Get(), 0x6001000A);
  EXPECT_EQ(initialized.vt, VT_BOOL);
  EXPECT_EQ(initialized.boolVal, VARIANT_FALSE);

  VARIANT acquisition = Get(__uuidof(IZentrelK4N), root_.Get(), 0x60010006);
  ASSERT_EQ(acquisition.vt, VT_UNKNOWN);
  const VARIANT status = Get(__uuidof(IZentrelK4NAcquisition), acquisition.punkVal, 0x60010002);
  EXPECT_EQ(status.vt, VT_I4);
  EXPECT_EQ(status.lVal, ZentrelK4NAcquisitionStatusUnknown);
  VariantClear(&acquisition);
}

}  // namespace
