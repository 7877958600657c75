// The driver as a client gets it: the module's binary, its class factories and the whole surface
// behind the root.
#pragma once

#include <string>
#include <string_view>

#include "platform/com/Com.h"
#include "platform/com/Raii.h"
#include "platform/os/Module.h"
#include "server/interface/IviInherent.h"
#include "server/interface/ZentrelK4NLib.h"
#include "tests/platform/TemporaryFolder.h"

namespace driver_test {

/// What stands beside the driver in its folder.
enum class Company { kNone, kVisaLibrary };

/// A copy of the module in a folder of its own, loaded; with or without our VISA library beside it.
/// No code page has all letters of the folder's name.
class DriverModule {
 public:
  explicit DriverModule(Company company = Company::kNone);

  ComPtr<IClassFactory> Factory(const CLSID& class_id) const;
  ComPtr<IUnknown> Create(const CLSID& class_id, IUnknown* outer = nullptr) const;
  HRESULT GetClassObject(const CLSID& class_id, const IID& iid, void** out) const;
  HRESULT CanUnloadNow() const;

 private:
  TemporaryFolder folder_;
  os::Module module_;
};

/// The driver that most tests share: without a VISA library. Loaded once, until the program ends.
DriverModule& SharedModule();
/// Another one, with the VISA library, for sessions.
DriverModule& ModuleWithVisa();

/// An outer object that hands every interface but its own identity on to the inner one.
class Outer final : public IUnknown {
 public:
  STDMETHODIMP QueryInterface(REFIID iid, void** out) override {
    if (!IsEqualGUID(iid, __uuidof(IUnknown))) return inner->QueryInterface(iid, out);
    *out = this;
    AddRef();
    return S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return ++references; }
  STDMETHODIMP_(ULONG) Release() override { return --references; }

  IUnknown* inner = nullptr;
  ULONG references = 1;
};

/// Every interface of one root object, fetched the way a client does. The variables receive what
/// members write.
struct Surface {
  explicit Surface(DriverModule& driver = SharedModule());
  /// Of this object, or of a proxy of it.
  explicit Surface(ComPtr<IZentrelK4N> object);

  ComPtr<IZentrelK4N> root;
  ComPtr<IIviDriverUtility> utility;
  ComPtr<IZentrelK4NRF> rf;
  ComPtr<IZentrelK4NSweep> sweep;
  ComPtr<IZentrelK4NFrequencyStep> frequency_step;
  ComPtr<IZentrelK4NPowerStep> power_step;
  ComPtr<IZentrelK4NList> list;
  ComPtr<IZentrelK4NTriggerOutput> trigger_output;
  ComPtr<IZentrelK4NAcquisition> acquisition;
  ComPtr<IZentrelK4NChannels> channels;
  ComPtr<IZentrelK4NChannel> channel;  ///< ChannelA
  ComPtr<IZentrelK4NSystem> system;
  ComPtr<IZentrelK4NPulseGenerator> pulse_generator;
  ComPtr<IZentrelK4NPulseGeneratorDouble> pulse_double;
  ComPtr<IZentrelK4NPulseGeneratorOutput> pulse_output;
  ComPtr<IZentrelK4NPulsePacketGenerator> packet;
  ComPtr<IZentrelK4NPulseModulation> pulse_modulation;
  ComPtr<IZentrelK4NSyncGenerator> sync_generator;

  VARIANT_BOOL flag = 0;
  double number = 0.0;
  double number_2 = 0.0;
  LONG integer = 0;
  BSTR text = nullptr;
  SAFEARRAY* array = nullptr;
};

/// The calling thread's error information, taken away from it. Texts are UTF-8.
struct ErrorInfo {
  bool present = false;
  std::string description;
  IID iid{};
};
ErrorInfo TakeErrorInfo();

/// UTF-8 as a BSTR that frees itself.
Bstr Text(std::string_view utf8);
/// A BSTR as UTF-8; frees it.
std::string TakeText(BSTR text);

/// Fails the current test unless the call gave this result and left this error information: the
/// text, or none for an empty one.
void ExpectReported(HRESULT actual, HRESULT expected, std::string_view description, const IID& iid);

inline constexpr std::string_view kNotConnected =
    "A connection to the instrument has not been established.";
constexpr HRESULT Code(std::uint32_t bits) { return static_cast<HRESULT>(bits); }
inline constexpr HRESULT kNotConnectedCode = Code(0x8004701D);
inline constexpr HRESULT kMethodCode = Code(0x80047011);
inline constexpr HRESULT kPropertyCode = Code(0x80047012);
inline constexpr HRESULT kNoSessionCode = 10057;

}  // namespace driver_test
