#include "driver/ZentrelK4N.h"

#include <chrono>
#include <optional>
#include <string>

#include "driver/Channel.h"
#include "driver/PowerStep.h"
#include "driver/PulseGenerator.h"
#include "driver/PulseModulation.h"
#include "driver/SyncGenerator.h"
#include "driver/TriggerOutput.h"
#include "driver/WideText.h"
#include "platform/os/Sync.h"

using namespace driver;

namespace {

constexpr os::WideView kDefaultDetectorFile = OLESTR("calibr20.det");
constexpr std::string_view kVisaLibraryName = "ZeVisa64.dll";
constexpr auto kPauseAfterClose = std::chrono::milliseconds(20);
constexpr LCID kLibraryLocale = 0x409;

}  // namespace

CZentrelK4N::CZentrelK4N()
    : CallFrame(__uuidof(ZentrelK4N)), link_(std::make_shared<OwnerLink>(*this)) {}

void CZentrelK4N::FinalConstruct() {
  for (std::size_t index = 0; index < channels_.size(); ++index) {
    CreateChild<CZentrelK4NChannel>(link_, channels_[index], index);
  }
  CreateChild<CZentrelK4NPowerStep>(link_, power_step_);
  CreateChild<CZentrelK4NPulseGenerator>(link_, pulse_generator_);
  CreateChild<CZentrelK4NPulseModulation>(link_, pulse_modulation_);
  CreateChild<CZentrelK4NTriggerOutput>(link_, trigger_output_);
  CreateChild<CZentrelK4NSyncGenerator>(link_, sync_generator_);
}

// Kept: both name the IVI base interface, which the object itself does not answer.
HRESULT CZentrelK4N::get_DriverOperation(IIviDriverOperation** value) {
  return Getter(Self(), IID_IIviDriver, value);
}

HRESULT CZentrelK4N::get_Identity(IIviDriverIdentity** value) {
  return Getter(Self(), IID_IIviDriver, value);
}

// The library is registered under one locale only: asked for in another, it would not be found.
STDMETHODIMP CZentrelK4N::GetClassInfo(ITypeInfo** info) {
  return Frame({info}, [&]() -> HRESULT {
    *info = nullptr;
    ComPtr<ITypeLib> library;
    const HRESULT result = LoadRegTypeLib(LIBID_ZentrelK4NLib, 1, 0, kLibraryLocale, library.Put());
    return FAILED(result) ? result : library->GetTypeInfoOfGuid(__uuidof(ZentrelK4N), info);
  });
}

// The class raises no events, so that there is no source interface to name.
STDMETHODIMP CZentrelK4N::GetGUID(DWORD kind, GUID* guid) {
  return kind == GUIDKIND_DEFAULT_SOURCE_DISP_IID && guid != nullptr ? E_FAIL : E_INVALIDARG;
}

// Kept: the groups on this object report errors, too, but only the root interface says so.
STDMETHODIMP CZentrelK4N::InterfaceSupportsErrorInfo(REFIID iid) {
  return IsEqualGUID(iid, __uuidof(IZentrelK4N)) ? S_OK : S_FALSE;
}

STDMETHODIMP CZentrelK4N::GetRun(ULONG number, LONG* status, BSTR* location, std::uint64_t* count) {
  return Frame({status, location, count}, [&]() -> HRESULT {
    const std::optional<k4n::ErrorTrail::Run> run = manager_.error_trail().RunAt(number);
    if (!run) return S_FALSE;
    *location = NewBstr(os::ToWide(run->record.Location()));
    *status = ToCode(run->record.status);
    *count = run->count;
    return S_OK;
  });
}

STDMETHODIMP CZentrelK4N::get_Utility(IIviDriverUtility** value) {
  return Getter(Self(), __uuidof(IZentrelK4N), value);
}

STDMETHODIMP CZentrelK4N::get_RF(IZentrelK4NRF** value) {
  return Getter(Self(), __uuidof(IZentrelK4N), value);
}

STDMETHODIMP CZentrelK4N::get_PulseGenerator(IZentrelK4NPulseGenerator** value) {
  return Getter(pulse_generator_.Get(), __uuidof(IZentrelK4N), value);
}

STDMETHODIMP CZentrelK4N::get_Sweep(IZentrelK4NSweep** value) {
  return Getter(Self(), __uuidof(IZentrelK4N), value);
}

STDMETHODIMP CZentrelK4N::get_PulseModulation(IZentrelK4NPulseModulation** value) {
  return Getter(pulse_modulation_.Get(), __uuidof(IZentrelK4N), value);
}

STDMETHODIMP CZentrelK4N::SendSoftwareTrigger() {
  return SessionFrame(__uuidof(IZentrelK4N), [&] {
    if (manager_.GetSweepTrigger().source == k4n::TriggerSource::kSoftware) {
      // Kept: the mode is sent again first; if it is refused, the trigger comes all the same.
      Discard(manager_.SetSweepMode(manager_.GetSweepMode()));
      manager_.RequestSoftwareTrigger();
    }
    return S_OK;
  });
}

STDMETHODIMP CZentrelK4N::get_Acquisition(IZentrelK4NAcquisition** value) {
  return Getter(Self(), __uuidof(IZentrelK4N), value);
}

STDMETHODIMP CZentrelK4N::get_System(IZentrelK4NSystem** value) {
  return Getter(Self(), __uuidof(IZentrelK4N), value);
}

// Kept: a failure names the sweep interface, not the root's.
STDMETHODIMP CZentrelK4N::get_SyncGenerator(IZentrelK4NSyncGenerator** value) {
  return Getter(sync_generator_.Get(), __uuidof(IZentrelK4NSweep), value);
}

// Kept: every failure at opening but a missing VISA library reaches the client as an unknown
// resource.
STDMETHODIMP CZentrelK4N::Initialize(BSTR resource_name, VARIANT_BOOL id_query, VARIANT_BOOL reset,
                                     BSTR option_string) {
  return Frame([&]() -> HRESULT {
    const std::string resource = os::ToNarrow(ViewOf(resource_name));
    const Status opened = manager_.Initialize(resource, os::ToNarrow(ViewOf(option_string)));
    if (opened == Status::kVisaLibraryNotFound) {
      return BuiltError(IID_IIviDriver, Status::kFileNotFound, kVisaLibraryName);
    }
    if (opened != Status::kOk) {
      return BuiltError(IID_IIviDriver, Status::kUnknownResource, resource);
    }
    for (std::size_t channel = 0; channel < measurement::kTraceChannels; ++channel) {
      LoadDetectorDataFromFile(channel, kDefaultDetectorFile);
    }
    if (id_query != VARIANT_FALSE) return ToCode(Status::kIdQueryNotSupported);
    return reset != VARIANT_FALSE ? ToCode(Status::kResetNotSupported) : S_OK;
  });
}

// Kept: true reads as 1, not as VARIANT_TRUE.
STDMETHODIMP CZentrelK4N::get_Initialized(VARIANT_BOOL* value) {
  return Frame({value}, [&] {
    *value = BoolAsOne(manager_.IsConnected());
    return S_OK;
  });
}

STDMETHODIMP CZentrelK4N::Close() {
  return SessionFrame(IID_IIviDriver, [&] {
    Discard(manager_.Close());  // fails if another thread has closed it already
    os::Sleep(kPauseAfterClose);
    return S_OK;
  });
}
