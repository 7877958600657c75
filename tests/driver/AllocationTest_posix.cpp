// A client's memory runs out. The linker leads the program's calls of SysAllocStringLen, of
// CreateErrorInfo and of operator new through here.
#include <gtest/gtest.h>

#include <new>

#include "driver/PulseGenerator.h"
#include "driver/ZentrelK4N.h"
#include "server/ClassFactory.h"
#include "tests/driver/DriverModule.h"
#include "zk4n/members/MemberTable.h"

using namespace server;
using namespace driver;

namespace {
bool out_of_memory = false;
bool out_of_error_information = false;
}  // namespace

// NOLINTBEGIN(bugprone-reserved-identifier): the linker's names
extern "C" BSTR __real_SysAllocStringLen(const OLECHAR* text, UINT length);
extern "C" BSTR __wrap_SysAllocStringLen(const OLECHAR* text, UINT length);
BSTR __wrap_SysAllocStringLen(const OLECHAR* text, UINT length) {
  return out_of_memory ? nullptr : __real_SysAllocStringLen(text, length);
}
extern "C" HRESULT __real_CreateErrorInfo(ICreateErrorInfo** info);
extern "C" HRESULT __wrap_CreateErrorInfo(ICreateErrorInfo** info);
HRESULT __wrap_CreateErrorInfo(ICreateErrorInfo** info) {
  return out_of_error_information ? E_OUTOFMEMORY : __real_CreateErrorInfo(info);
}
extern "C" void* __real__Znwm(std::size_t size);
// A sanitizer's run time asks for it, too.
extern "C" __attribute__((visibility("default"))) void* __wrap__Znwm(std::size_t size);
void* __wrap__Znwm(std::size_t size) {
  if (out_of_memory) throw std::bad_alloc();
  return __real__Znwm(size);
}
// NOLINTEND(bugprone-reserved-identifier)

namespace driver_test {
namespace {

TEST(Allocation, WithoutMemoryForAChannelsNameTheClientKeepsItsText) {
  const auto root = ComPtr<ComObject<CZentrelK4N>>::Adopt(ComObject<CZentrelK4N>::Create());
  BSTR name = Text("before").Detach();
  const BSTR before = name;
  out_of_memory = true;
  const HRESULT result = root->get_Name(2, &name);
  out_of_memory = false;
  EXPECT_EQ(result, E_OUTOFMEMORY);
  EXPECT_EQ(name, before);
  out_of_error_information = true;
  EXPECT_EQ(root->get_Name(9, &name), Code(0x80047010)) << "the words are lost, not the result";
  out_of_error_information = false;
  EXPECT_FALSE(TakeErrorInfo().present);
  EXPECT_EQ(root->get_Name(2, &name), S_OK);
  EXPECT_EQ(TakeText(name), "ChannelB");
}

TEST(Allocation, AClassFactoryWithoutMemoryForTheObjectSaysSo) {
  ClassFactory<CZentrelK4N> factory;
  void* object = &object;
  out_of_memory = true;
  const HRESULT result = factory.CreateInstance(nullptr, __uuidof(IZentrelK4N), &object);
  out_of_memory = false;
  EXPECT_EQ(result, E_OUTOFMEMORY);
  EXPECT_EQ(object, nullptr);
}

// An object that has no interface at all.
class Nothing final : public IUnknown {
 public:
  STDMETHODIMP QueryInterface(REFIID /*iid*/, void** /*out*/) override { return E_NOINTERFACE; }
  STDMETHODIMP_(ULONG) AddRef() override { return 2; }
  STDMETHODIMP_(ULONG) Release() override { return 1; }
};

// No memory for the children, and an outer object that answers no query: every getter fails.
TEST(Allocation, AGetterNamesTheInterfaceThatItCannotHandOut) {
  Nothing outer;
  auto* const root = ComObject<CZentrelK4N>::Create(&outer);
  const auto owner = ComPtr<IUnknown>::Adopt(&root->Unknown());
  const auto pulses = ComPtr<ComObject<CZentrelK4NPulseGenerator>>::Adopt(
      ComObject<CZentrelK4NPulseGenerator>::Create());
  out_of_memory = true;
  root->FinalConstruct();
  pulses->FinalConstruct();
  out_of_memory = false;

  const auto expect_missing = [](HRESULT result, std::string_view name, const IID& declaring) {
    ExpectReported(result, kPropertyCode,
                   "ZentrelK4NLib: Does not support this class-compliant feature: property " +
                       std::string(name) + ".",
                   declaring);
  };
  IIviDriverOperation* operation = nullptr;
  expect_missing(root->get_DriverOperation(&operation), "IIviDriverOperation", IID_IIviDriver);
  IIviDriverIdentity* identity = nullptr;
  expect_missing(root->get_Identity(&identity), "IIviDriverIdentity", IID_IIviDriver);
  const std::pair<IID, IUnknown*> objects[] = {
      {__uuidof(IZentrelK4N), static_cast<IZentrelK4N*>(root)},
      {__uuidof(IZentrelK4NSweep), static_cast<IZentrelK4NSweep*>(root)},
      {__uuidof(IZentrelK4NAcquisition), static_cast<IZentrelK4NAcquisition*>(root)},
      {__uuidof(IZentrelK4NPulseGenerator), static_cast<IZentrelK4NPulseGenerator*>(pulses.Get())}};
  for (const auto& [iid, object] : objects) {
    for (const auto& member : members::FindInterface(iid)->members) {
      if (member.parameters.empty() || member.parameters[0].type != members::Type::kInterface)
        continue;
      members::Argument found;
      expect_missing(member.Call(object, {&found, 1}), member.parameters[0].type_name,
                     member.name == "SyncGenerator" ? __uuidof(IZentrelK4NSweep) : iid);
      EXPECT_TRUE(found.written) << "null";
    }
  }
  ComPtr<IZentrelK4NChannel> channel;
  ExpectReported(root->get_Item(Text("ChannelA").Get(), channel.Put()), Code(0x80047020),
                 "ZentrelK4NLib: Unknown channel name.", __uuidof(IZentrelK4NChannels));
}

}  // namespace
}  // namespace driver_test
