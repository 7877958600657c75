// A client's memory runs out. The linker leads the program's calls of SysAllocStringLen and of
// operator new through here.
#include <gtest/gtest.h>

#include <new>

#include "driver/PulseGenerator.h"
#include "driver/ZentrelK4N.h"
#include "tests/driver/DriverModule.h"

namespace {
bool out_of_memory = false;
}

// NOLINTBEGIN(bugprone-reserved-identifier): the linker's names
extern "C" BSTR __real_SysAllocStringLen(const OLECHAR* text, UINT length);
extern "C" BSTR __wrap_SysAllocStringLen(const OLECHAR* text, UINT length);
BSTR __wrap_SysAllocStringLen(const OLECHAR* text, UINT length) {
  return out_of_memory ? nullptr : __real_SysAllocStringLen(text, length);
}
extern "C" void* __real__Znwm(std::size_t size);
extern "C" void* __wrap__Znwm(std::size_t size);
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
  EXPECT_EQ(root->get_Name(2, &name), S_OK);
  EXPECT_EQ(TakeText(name), "ChannelB");
}

// An object that has no interface at all.
class Nothing final : public IUnknown {
 public:
  STDMETHODIMP QueryInterface(REFIID /*iid*/, void** /*out*/) override { return E_NOINTERFACE; }
  STDMETHODIMP_(ULONG) AddRef() override { return 2; }
  STDMETHODIMP_(ULONG) Release() override { return 1; }
};

template <typename Class, typename Interface>
void ExpectFailure(Class& object, HRESULT (Class::*get)(Interface**), std::string_view name,
                   const IID& declaring) {
  Interface* found = reinterpret_cast<Interface*>(&object);
  ExpectReported((object.*get)(&found), kPropertyCode,
                 "ZentrelK4NLib: Does not support this class-compliant feature: property " +
                     std::string(name) + ".",
                 declaring);
  EXPECT_EQ(found, nullptr);
}

// An outer object that answers no query, and no memory for the children: every getter fails.
TEST(Allocation, AGetterNamesTheInterfaceThatItCannotHandOut) {
  const IID& of_root = __uuidof(IZentrelK4N);
  const IID& of_sweep = __uuidof(IZentrelK4NSweep);
  const IID& of_pulses = __uuidof(IZentrelK4NPulseGenerator);
  Nothing outer;
  auto* const object = ComObject<CZentrelK4N>::Create(&outer);
  const auto owner = ComPtr<IUnknown>::Adopt(&object->Unknown());
  const auto pulses = ComPtr<ComObject<CZentrelK4NPulseGenerator>>::Adopt(
      ComObject<CZentrelK4NPulseGenerator>::Create());
  out_of_memory = true;
  object->FinalConstruct();
  pulses->FinalConstruct();
  out_of_memory = false;

  using Root = CZentrelK4N;
  Root& root = *object;
  ExpectFailure(root, &Root::get_DriverOperation, "IIviDriverOperation", IID_IIviDriver);
  ExpectFailure(root, &Root::get_Identity, "IIviDriverIdentity", IID_IIviDriver);
  ExpectFailure(root, &Root::get_Utility, "IIviDriverUtility", of_root);
  ExpectFailure(root, &Root::get_RF, "IZentrelK4NRF", of_root);
  ExpectFailure(root, &Root::get_PulseGenerator, "IZentrelK4NPulseGenerator", of_root);
  ExpectFailure(root, &Root::get_Sweep, "IZentrelK4NSweep", of_root);
  ExpectFailure(root, &Root::get_PulseModulation, "IZentrelK4NPulseModulation", of_root);
  ExpectFailure(root, &Root::get_Acquisition, "IZentrelK4NAcquisition", of_root);
  ExpectFailure(root, &Root::get_System, "IZentrelK4NSystem", of_root);
  ExpectFailure(root, &Root::get_SyncGenerator, "IZentrelK4NSyncGenerator", of_sweep);
  ExpectFailure(root, &Root::get_FrequencyStep, "IZentrelK4NFrequencyStep", of_sweep);
  ExpectFailure(root, &Root::get_PowerStep, "IZentrelK4NPowerStep", of_sweep);
  ExpectFailure(root, &Root::get_List, "IZentrelK4NList", of_sweep);
  ExpectFailure(root, &Root::get_TriggerOutput, "IZentrelK4NTriggerOutput", of_sweep);
  ExpectFailure(root, &Root::get_Channels, "IZentrelK4NChannels", __uuidof(IZentrelK4NAcquisition));
  using Pulses = CZentrelK4NPulseGenerator;
  ExpectFailure<Pulses>(*pulses, &Pulses::get_Double, "IZentrelK4NPulseGeneratorDouble", of_pulses);
  ExpectFailure<Pulses>(*pulses, &Pulses::get_Output, "IZentrelK4NPulseGeneratorOutput", of_pulses);
  ExpectFailure<Pulses>(*pulses, &Pulses::get_Packet, "IZentrelK4NPulsePacketGenerator", of_pulses);

  ComPtr<IZentrelK4NChannel> channel;
  ExpectReported(root.get_Item(Text("ChannelA").Get(), channel.Put()), Code(0x80047020),
                 "ZentrelK4NLib: Unknown channel name.", __uuidof(IZentrelK4NChannels));
}

}  // namespace
}  // namespace driver_test
