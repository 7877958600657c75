// Identity, aggregation, life times and error support of the objects.
#include <gtest/gtest.h>

#include <stdexcept>
#include <thread>

#include "driver/ZentrelK4N.h"
#include "tests/driver/MemberWalk.h"

using namespace driver;

namespace driver_test {
namespace {

ComPtr<IUnknown> Query(IUnknown& object, const IID& iid) {
  ComPtr<IUnknown> found;
  EXPECT_EQ(object.QueryInterface(iid, found.PutVoid()), S_OK);
  return found;
}

class ObjectOfClass : public testing::TestWithParam<std::size_t> {
 protected:
  const ClassRow& row_ = Classes()[GetParam()];
  const ComPtr<IUnknown> object_ = SharedModule().Create(row_.class_id);
};
INSTANTIATE_TEST_SUITE_P(All, ObjectOfClass, testing::Range<std::size_t>(0, Classes().size()));

TEST_P(ObjectOfClass, EveryInterfaceLeadsToEveryOtherAndToOneIdentity) {
  for (const auto& from : row_.interfaces) {
    const auto start = Query(*object_.Get(), from);
    for (const auto& to : row_.interfaces) EXPECT_TRUE(Query(*start.Get(), to));
    EXPECT_EQ(start.As<IUnknown>().Get(), object_.Get());
  }
  EXPECT_EQ(Query(*object_.Get(), row_.interfaces.front()).Get(), object_.Get())
      << "the first interface is the identity";
}

TEST_P(ObjectOfClass, UnknownInterfacesAreRefusedAndOneSupportsErrorInformation) {
  void* out = &out;
  EXPECT_EQ(object_->QueryInterface(__uuidof(IIviDriver), &out), E_NOINTERFACE);
  EXPECT_EQ(out, nullptr);
  EXPECT_EQ(object_->QueryInterface(__uuidof(IUnknown), nullptr), E_POINTER);
  const auto support = object_.As<ISupportErrorInfo>();
  ASSERT_TRUE(support);
  EXPECT_EQ(support->InterfaceSupportsErrorInfo(__uuidof(IUnknown)), S_FALSE);
  for (const auto& iid : row_.interfaces) {
    EXPECT_EQ(support->InterfaceSupportsErrorInfo(iid),
              IsEqualGUID(iid, row_.interfaces.front()) ? S_OK : S_FALSE);
  }
}

TEST_P(ObjectOfClass, AnAggregatedObjectTakesTheOuterIdentity) {
  Outer outer;
  auto inner = SharedModule().Create(row_.class_id, &outer);
  outer.inner = inner.Get();
  {
    auto first = Query(*inner.Get(), row_.interfaces.front());
    EXPECT_EQ(outer.references, 2u) << "references belong to the outer object";
    EXPECT_EQ(first.As<IUnknown>().Get(), &outer);
    EXPECT_NE(first.Get(), inner.Get());
    EXPECT_EQ(inner.As<IUnknown>().Get(), inner.Get()) << "the inner identity is its own";
  }
  EXPECT_EQ(outer.references, 1u);
}

class UsedWhileItEnds : public IUnknown {
 public:
  using Interfaces = InterfaceList<IUnknown>;
  void FinalConstruct() {}
  void FinalRelease() {
    ++ends;
    AddRef();
    Release();
  }
  static inline int ends = 0;
};

TEST(Objects, WhatIsUsedWhileItEndsEndsOnce) {
  EXPECT_EQ(ComObject<UsedWhileItEnds>::Create()->Release(), 0U);
  EXPECT_EQ(UsedWhileItEnds::ends, 1);
}

TEST(Objects, UnknownClassesAndInterfacesOfTheFactoryAreRefused) {
  const auto get = [](const CLSID& class_id, const IID& iid, void** out) {
    return SharedModule().GetClassObject(class_id, iid, out);
  };
  const CLSID root = __uuidof(ZentrelK4N);
  void* out = &out;
  EXPECT_EQ(get(__uuidof(IZentrelK4N), __uuidof(IClassFactory), &out), CLASS_E_CLASSNOTAVAILABLE);
  EXPECT_EQ(out, nullptr);
  EXPECT_EQ(get(root, __uuidof(IZentrelK4N), &out), E_NOINTERFACE);
  EXPECT_EQ(get(root, __uuidof(IUnknown), nullptr), E_POINTER);
  const auto factory = SharedModule().Factory(root);
  EXPECT_EQ(factory->AddRef(), 1U) << "one for ever";
  EXPECT_EQ(factory->Release(), 1U);
  EXPECT_EQ(factory->CreateInstance(nullptr, __uuidof(IUnknown), nullptr), E_POINTER);
  EXPECT_EQ(factory->CreateInstance(nullptr, __uuidof(IClassFactory), &out), E_NOINTERFACE);
  EXPECT_EQ(factory->QueryInterface(__uuidof(IUnknown), nullptr), E_POINTER);
  Outer outer;
  out = &out;
  EXPECT_EQ(factory->CreateInstance(&outer, __uuidof(IZentrelK4N), &out), CLASS_E_NOAGGREGATION)
      << "the inner identity first";
  EXPECT_EQ(out, nullptr);
}

TEST(Objects, ObjectsAndLocksKeepTheModule) {
  const DriverModule driver(Company::kVisaLibrary);
  EXPECT_EQ(driver.CanUnloadNow(), S_OK);
  const auto factory = driver.Factory(__uuidof(ZentrelK4N));
  factory->LockServer(TRUE);
  EXPECT_EQ(driver.CanUnloadNow(), S_FALSE);
  factory->LockServer(FALSE);
  EXPECT_EQ(driver.CanUnloadNow(), S_OK);

  auto root = driver.Create(__uuidof(ZentrelK4N)).As<IZentrelK4N>();
  for (const BOOL lock : {TRUE, FALSE}) {
    for (int i = 0; i < 20; ++i) {
      factory->LockServer(lock);
      EXPECT_EQ(driver.CanUnloadNow(), S_FALSE) << "locks do not outweigh objects";
    }
  }
  ComPtr<IZentrelK4NSyncGenerator> child;
  EXPECT_EQ(root->get_SyncGenerator(child.Put()), S_OK);
  const Bstr nobody = Text("TCPIP0::127.0.0.1::9::SOCKET");  // the discard port
  EXPECT_EQ(root->Initialize(nobody.Get(), VARIANT_TRUE, VARIANT_TRUE, nullptr), Code(0x80047060));
  TakeErrorInfo();
  root.Reset();
  EXPECT_EQ(driver.CanUnloadNow(), S_FALSE) << "a child alone keeps the module, too";
  child.Reset();
  EXPECT_EQ(driver.CanUnloadNow(), S_OK);
}

TEST(Objects, ARootMayGoWhileAChildIsInUse) {
  for (int round = 0; round < 50; ++round) {
    Surface surface;
    const auto child = surface.pulse_double;  // of a child
    std::thread user([&child] {
      double value = 0.0;
      while (child->put_Delay(1.0) == S_OK) child->get_Delay(&value);
    });
    surface = Surface();
    user.join();
    ExpectReported(child->put_Delay(1.0), kNotConnectedCode, kNotConnected,
                   __uuidof(IZentrelK4NPulseGeneratorDouble));
  }
}

// The operations below are the class's own: a client never sees them.
TEST(Objects, TheRootHandsOutTheInterfacesWithoutAProperty) {
  const auto identities = SharedModule().Create(__uuidof(ZentrelK4N));
  EXPECT_EQ(Query(*identities.Get(), __uuidof(IIviComponentIdentity)).Get(),
            Query(*identities.Get(), __uuidof(IIviDriverIdentity)).Get());
  const auto root = ComPtr<ComObject<CZentrelK4N>>::Adopt(ComObject<CZentrelK4N>::Create());
  ComPtr<IIviDriverOperation> operation;
  EXPECT_EQ(root->get_DriverOperation(operation.Put()), S_OK);
  EXPECT_TRUE(operation);
  ComPtr<IIviDriverIdentity> identity;
  EXPECT_EQ(root->get_Identity(identity.Put()), S_OK);
  EXPECT_TRUE(identity);
}

TEST(Objects, ACodeThatIsNoValueLeavesTheClientsVariableAlone) {
  const auto root = ComPtr<ComObject<CZentrelK4N>>::Adopt(ComObject<CZentrelK4N>::Create());
  EXPECT_EQ(root->manager().SetPulseModSource(k4n::PulseSource{7}), Status::kOk);
  ComPtr<IZentrelK4NPulseModulation> modulation;
  EXPECT_EQ(root->get_PulseModulation(modulation.Put()), S_OK);
  using Source = ZentrelK4NPulseModulationSourceEnum;
  static const Source untouched = ZentrelK4NPulseModulationSourceExternal;  // a write would trap
  EXPECT_EQ(modulation->get_Source(const_cast<Source*>(&untouched)), S_OK);
}

TEST(Objects, TheErrorTrailIsShownFromTheOldestRunToTheNewest) {
  Surface surface(ModuleWithVisa());
  const auto trail = surface.root.As<IErrorTrail>();
  std::uint64_t count = 0;
  EXPECT_EQ(trail->GetRun(0, &surface.integer, &surface.text, &count), S_FALSE);
  EXPECT_EQ(surface.text, nullptr);
  for (int i = 0; i < 2; ++i) {  // the discard port
    surface.root->Initialize(Text("TCPIP0::127.0.0.1::9::SOCKET").Get(), 0, 0, nullptr);
  }
  TakeErrorInfo();
  EXPECT_EQ(trail->GetRun(0, &surface.integer, &surface.text, &count), S_OK);
  EXPECT_EQ(surface.integer, Code(0xBFFF0011));
  EXPECT_EQ(TakeText(surface.text), "File: .\\K4NHardWare\\K4NManager Line: 991");
  EXPECT_EQ(count, 2U);
  EXPECT_EQ(trail->GetRun(1, &surface.integer, &surface.text, &count), S_FALSE);
  EXPECT_EQ(trail->GetRun(0, nullptr, &surface.text, &count), E_POINTER);
  EXPECT_EQ(trail->GetRun(0, &surface.integer, nullptr, &count), E_POINTER);
  EXPECT_EQ(trail->GetRun(0, &surface.integer, &surface.text, nullptr), E_POINTER);
}

TEST(Objects, NoExceptionLeavesAMember) {
  EXPECT_EQ(Frame([]() -> HRESULT { throw std::bad_alloc(); }), E_OUTOFMEMORY);
  EXPECT_EQ(Frame([]() -> HRESULT { throw std::logic_error("Debug: misuse"); }), E_FAIL);
}

TEST(Objects, ClassInformationNeedsARegisteredLibraryAndHasNoSourceInterface) {
  const auto info = SharedModule().Create(__uuidof(ZentrelK4N)).As<IProvideClassInfo2>();
  ComPtr<ITypeInfo> type;
  EXPECT_EQ(info->GetClassInfo(type.Put()), TYPE_E_LIBNOTREGISTERED);
  EXPECT_EQ(info->GetClassInfo(nullptr), E_POINTER);
  GUID guid = __uuidof(IZentrelK4N);
  EXPECT_EQ(info->GetGUID(GUIDKIND_DEFAULT_SOURCE_DISP_IID, &guid), E_FAIL);
  EXPECT_EQ(info->GetGUID(GUIDKIND_DEFAULT_SOURCE_DISP_IID, nullptr), E_INVALIDARG);
  EXPECT_EQ(info->GetGUID(2, &guid), E_INVALIDARG);
  EXPECT_TRUE(IsEqualGUID(guid, __uuidof(IZentrelK4N))) << "nothing is written";
}

}  // namespace
}  // namespace driver_test
