// IZentrelK4NSystem: identity texts, state bits and settings outside the class-compliant groups.
#include <string>

#include "driver/EnumMap.h"
#include "driver/WideText.h"
#include "driver/ZentrelK4N.h"

using namespace driver;

namespace {

const IID& kSystem = __uuidof(IZentrelK4NSystem);

constexpr EnumMap<ZentrelK4NSystemAttenEnum, k4n::AttenMode, 4> kAttenModes{{
    {ZentrelK4NSystemAttenMinHarm, k4n::AttenMode::kMinHarmonics},
    {ZentrelK4NSystemAttenOptSWR, k4n::AttenMode::kOptimumSwr},
    {ZentrelK4NSystemAttenOptimum, k4n::AttenMode::kOptimum},
    {ZentrelK4NSystemAttenCare, k4n::AttenMode::kCare},
}};

// If the instrument has no file with the text, the client gets the file-not-found code and no text.
Status PutIdentityText(const StatusAnd<std::string>& text, BSTR* value) {
  if (text.status == Status::kInstrumentFileMissing) return Status::kFileNotFound;
  if (text.status == Status::kOk) {
    // Kept: the text ends at its first NUL, so a padded serial number loses its padding and the "*"
    // behind it.
    *value = NewBstr(os::ToWide(text.value.substr(0, text.value.find('\0'))));
  }
  return text.status;
}

}  // namespace

STDMETHODIMP CZentrelK4N::get_SerialNum(BSTR* value) {
  return SessionFrame(kSystem, {value},
                      [&] { return PutIdentityText(manager_.GetSerialNumber(), value); });
}

STDMETHODIMP CZentrelK4N::get_Type(BSTR* value) {
  return SessionFrame(kSystem, {value},
                      [&] { return PutIdentityText(manager_.GetInstrumentType(), value); });
}

// Kept: the state bits read 1 for true, not VARIANT_TRUE. If the instrument does not answer, the
// client's variable is unchanged.
Status CZentrelK4N::ReadStateBit(VARIANT_BOOL& value, StatusAnd<bool> (CK4NManager::*read)()) {
  const StatusAnd<bool> bit = (manager_.*read)();
  if (bit.status == Status::kOk) value = BoolAsOne(bit.value);
  return bit.status;
}

STDMETHODIMP CZentrelK4N::get_RFButton(VARIANT_BOOL* value) {
  return SessionFrame(kSystem, {value},
                      [&] { return ReadStateBit(*value, &CK4NManager::GetRfButton); });
}

// Kept: unlike the RF button's, a failure of these three is not reported.
STDMETHODIMP CZentrelK4N::get_PLLState(VARIANT_BOOL* value) {
  return SessionFrame(kSystem, {value}, [&] {
    Discard(ReadStateBit(*value, &CK4NManager::GetPllState));
    return S_OK;
  });
}

STDMETHODIMP CZentrelK4N::get_ERGState(VARIANT_BOOL* value) {
  return SessionFrame(kSystem, {value}, [&] {
    Discard(ReadStateBit(*value, &CK4NManager::GetErgState));
    return S_OK;
  });
}

STDMETHODIMP CZentrelK4N::get_LevelState(VARIANT_BOOL* value) {
  return SessionFrame(kSystem, {value}, [&] {
    Discard(ReadStateBit(*value, &CK4NManager::GetLevelState));
    return S_OK;
  });
}

STDMETHODIMP CZentrelK4N::put_Atten(ZentrelK4NSystemAttenEnum mode) {
  return SessionFrame(kSystem, [&] {
    const k4n::AttenMode present = manager_.GetAttenMode();
    if (present == k4n::AttenMode::kNone) return Status::kPropertyNotSupported;
    // Kept: a value that is none of the four sends the present mode again.
    return manager_.SetAttenMode(CodeOf(kAttenModes, mode).value_or(present));
  });
}

STDMETHODIMP CZentrelK4N::get_Atten(ZentrelK4NSystemAttenEnum* value) {
  return SessionFrame(kSystem, {value}, [&] {
    const k4n::AttenMode mode = manager_.GetAttenMode();
    if (mode == k4n::AttenMode::kNone) return Status::kPropertyNotSupported;
    PutValueOf(kAttenModes, mode, value);
    return Status::kOk;
  });
}

STDMETHODIMP CZentrelK4N::put_ExtRefGenEnabled(VARIANT_BOOL enabled) {
  return SessionFrame(kSystem, [&] {
    k4n::ReferenceSettings reference = manager_.GetExtRefGen();
    reference.external = enabled != VARIANT_FALSE;
    return manager_.SetExtRefGen(reference);
  });
}

STDMETHODIMP CZentrelK4N::get_ExtRefGenEnabled(VARIANT_BOOL* value) {
  return SessionFrame(kSystem, {value}, [&] {
    *value = BoolAsOne(manager_.GetExtRefGen().external);
    return S_OK;
  });
}

STDMETHODIMP CZentrelK4N::put_ExtRefGenFrequency(double frequency) {
  return SessionFrame(kSystem, [&] {
    k4n::ReferenceSettings reference = manager_.GetExtRefGen();
    reference.frequency = frequency;
    return manager_.SetExtRefGen(reference);
  });
}

STDMETHODIMP CZentrelK4N::get_ExtRefGenFrequency(double* value) {
  return SessionFrame(kSystem, {value}, [&] {
    *value = manager_.GetExtRefGen().frequency;
    return S_OK;
  });
}

STDMETHODIMP CZentrelK4N::put_SyncSourceDetection(ZentrelK4NSystemSyncSourceDetectorEnum edge) {
  return SessionFrame(kSystem, [&] {
    k4n::SweepTriggerSettings trigger = manager_.GetSweepTrigger();
    // Kept: every value but Rise means Fall.
    trigger.falling_edge = edge != ZentrelK4NSystemSyncSourceDetectorRise;
    return manager_.SetSweepTrigger(trigger);
  });
}

STDMETHODIMP CZentrelK4N::get_SyncSourceDetection(ZentrelK4NSystemSyncSourceDetectorEnum* value) {
  return SessionFrame(kSystem, {value}, [&] {
    *value = manager_.GetSweepTrigger().falling_edge ? ZentrelK4NSystemSyncSourceDetectorFall
                                                     : ZentrelK4NSystemSyncSourceDetectorRise;
    return S_OK;
  });
}

STDMETHODIMP CZentrelK4N::put_ExtRefPhaseDelay(LONG delay) {
  return SessionFrame(
      kSystem, [&] { return manager_.SetExtRefPhaseDelay(static_cast<std::int32_t>(delay)); });
}

STDMETHODIMP CZentrelK4N::get_ExtRefPhaseDelay(LONG* value) {
  return SessionFrame(kSystem, {value}, [&] {
    *value = manager_.GetExtRefPhaseDelay();
    return S_OK;
  });
}

STDMETHODIMP CZentrelK4N::put_ExtPwrCtrl(VARIANT_BOOL enabled) {
  return SessionFrame(kSystem, [&] { return manager_.SetExtPwrCtrl(enabled != VARIANT_FALSE); });
}

// Kept: true means that the last switching failed halfway; it reads as VARIANT_TRUE, unlike the
// properties around it.
STDMETHODIMP CZentrelK4N::get_ExtPwrCtrl(VARIANT_BOOL* value) {
  return SessionFrame(kSystem, {value}, [&] {
    *value = BoolAsTrue(manager_.GetExtPwrCtrl());
    return S_OK;
  });
}

STDMETHODIMP CZentrelK4N::get_CompensMode(ZentrelK4NSystemCompensModeEnum* value) {
  return SessionFrame(kSystem, {value}, [&] {
    *value = static_cast<ZentrelK4NSystemCompensModeEnum>(manager_.GetCompensMode());
    return S_OK;
  });
}

// Kept: any number is sent; the instrument checks it.
STDMETHODIMP CZentrelK4N::put_CompensMode(ZentrelK4NSystemCompensModeEnum mode) {
  return SessionFrame(kSystem,
                      [&] { return manager_.SetCompensMode(static_cast<std::uint32_t>(mode)); });
}
