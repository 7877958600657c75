// IZentrelK4NSystem: identity texts, state bits and settings outside the class-compliant groups.
#include <string>

#include "driver/EnumMap.h"
#include "driver/SweepSettings.h"
#include "driver/WideText.h"
#include "driver/ZentrelK4N.h"

namespace {

const IID& kSystem = __uuidof(IZentrelK4NSystem);

constexpr EnumMap<ZentrelK4NSystemAttenEnum, std::uint32_t, 4> kAttenModes{{
    {ZentrelK4NSystemAttenMinHarm, 2},
    {ZentrelK4NSystemAttenOptSWR, 3},
    {ZentrelK4NSystemAttenOptimum, 4},
    {ZentrelK4NSystemAttenCare, 5},
}};
constexpr std::uint32_t kNoAttenModes = 0;

// The instrument lacks the file that the text stands in: the client gets the file-not-found code,
// without a text.
HRESULT IdentityText(Status result, const std::string& text, BSTR* value) {
  if (result == status::kInstrumentFileMissing) {
    return status::kFileNotFound;
  }
  if (result == status::kOk) {
    // Kept: the text ends at its first NUL, so that a padded serial number shows neither its
    // padding nor the mark behind it.
    *value = NewBstr(os::ToWide(text.substr(0, text.find('\0'))));
  }
  return result;
}

}  // namespace

STDMETHODIMP CZentrelK4N::get_SerialNum(BSTR* value) {
  return SessionFrame(kSystem, value, [&] {
    std::string text;
    const Status result = manager_.GetSerialNumber(text);
    return IdentityText(result, text, value);
  });
}

STDMETHODIMP CZentrelK4N::get_Type(BSTR* value) {
  return SessionFrame(kSystem, value, [&] {
    std::string text;
    const Status result = manager_.GetInstrumentType(text);
    return IdentityText(result, text, value);
  });
}

// Kept: the state bits read 1 for true, not VARIANT_TRUE. The variable of a client whose instrument
// does not answer stays as it was.
Status CZentrelK4N::ReadStateBit(VARIANT_BOOL& value, Status (CK4NManager::*read)(bool&)) {
  bool bit = false;
  const Status result = (manager_.*read)(bit);
  if (result == status::kOk) {
    value = bit ? 1 : 0;
  }
  return result;
}

STDMETHODIMP CZentrelK4N::get_RFButton(VARIANT_BOOL* value) {
  return SessionFrame(kSystem, value,
                      [&] { return ReadStateBit(*value, &CK4NManager::GetRfButton); });
}

// Kept: unlike the RF button's, a failure of these three is not reported.
STDMETHODIMP CZentrelK4N::get_PLLState(VARIANT_BOOL* value) {
  return SessionFrame(kSystem, value, [&] {
    ReadStateBit(*value, &CK4NManager::GetPllState);
    return S_OK;
  });
}

STDMETHODIMP CZentrelK4N::get_ERGState(VARIANT_BOOL* value) {
  return SessionFrame(kSystem, value, [&] {
    ReadStateBit(*value, &CK4NManager::GetErgState);
    return S_OK;
  });
}

STDMETHODIMP CZentrelK4N::get_LevelState(VARIANT_BOOL* value) {
  return SessionFrame(kSystem, value, [&] {
    ReadStateBit(*value, &CK4NManager::GetLevelState);
    return S_OK;
  });
}

STDMETHODIMP CZentrelK4N::put_Atten(ZentrelK4NSystemAttenEnum mode) {
  return SessionFrame(kSystem, [&] {
    std::uint32_t code = kNoAttenModes;
    manager_.GetAttenMode(code);
    if (code == kNoAttenModes) {
      return status::kPropertyNotSupported;
    }
    // Kept: a value that is none of the four sends the present mode again.
    return manager_.SetAttenMode(CodeOf(kAttenModes, mode).value_or(code));
  });
}

STDMETHODIMP CZentrelK4N::get_Atten(ZentrelK4NSystemAttenEnum* value) {
  return SessionFrame(kSystem, value, [&] {
    std::uint32_t code = kNoAttenModes;
    manager_.GetAttenMode(code);
    if (code == kNoAttenModes) {
      return status::kPropertyNotSupported;
    }
    PutValueOf(kAttenModes, code, value);
    return status::kOk;
  });
}

STDMETHODIMP CZentrelK4N::put_ExtRefGenEnabled(VARIANT_BOOL enabled) {
  return SessionFrame(kSystem, [&] {
    bool previous = false;
    double frequency{};
    manager_.GetExtRefGen(previous, frequency);
    return manager_.SetExtRefGen(enabled != VARIANT_FALSE, frequency);
  });
}

STDMETHODIMP CZentrelK4N::get_ExtRefGenEnabled(VARIANT_BOOL* value) {
  return SessionFrame(kSystem, value, [&] {
    bool enabled = false;
    double frequency{};
    manager_.GetExtRefGen(enabled, frequency);
    *value = enabled ? 1 : 0;
    return S_OK;
  });
}

STDMETHODIMP CZentrelK4N::put_ExtRefGenFrequency(double frequency) {
  return SessionFrame(kSystem, [&] {
    bool enabled = false;
    double previous{};
    manager_.GetExtRefGen(enabled, previous);
    return manager_.SetExtRefGen(enabled, frequency);
  });
}

STDMETHODIMP CZentrelK4N::get_ExtRefGenFrequency(double* value) {
  return SessionFrame(kSystem, value, [&] {
    bool enabled = false;
    manager_.GetExtRefGen(enabled, *value);
    return S_OK;
  });
}

STDMETHODIMP CZentrelK4N::put_SyncSourceDetection(ZentrelK4NSystemSyncSourceDetectorEnum edge) {
  return SessionFrame(kSystem, [&] {
    SweepTrigger trigger = SweepTriggerOf(manager_);
    // Kept: every value but Rise means Fall.
    trigger.settings.sync_detection = edge != ZentrelK4NSystemSyncSourceDetectorRise ? 1 : 0;
    return manager_.SetSweepTrigger(trigger.settings, trigger.single_step);
  });
}

STDMETHODIMP CZentrelK4N::get_SyncSourceDetection(ZentrelK4NSystemSyncSourceDetectorEnum* value) {
  return SessionFrame(kSystem, value, [&] {
    *value = SweepTriggerOf(manager_).settings.sync_detection != 0
                 ? ZentrelK4NSystemSyncSourceDetectorFall
                 : ZentrelK4NSystemSyncSourceDetectorRise;
    return S_OK;
  });
}

STDMETHODIMP CZentrelK4N::put_ExtRefPhaseDelay(LONG delay) {
  return SessionFrame(
      kSystem, [&] { return manager_.SetExtRefPhaseDelay(static_cast<std::int32_t>(delay)); });
}

STDMETHODIMP CZentrelK4N::get_ExtRefPhaseDelay(LONG* value) {
  return SessionFrame(kSystem, value, [&] {
    std::int32_t delay{};
    manager_.GetExtRefPhaseDelay(delay);
    *value = delay;
    return S_OK;
  });
}

STDMETHODIMP CZentrelK4N::put_ExtPwrCtrl(VARIANT_BOOL enabled) {
  return SessionFrame(kSystem, [&] { return manager_.SetExtPwrCtrl(enabled != VARIANT_FALSE); });
}

// Kept: true marks a switching that failed on its way, and reads as VARIANT_TRUE, unlike its
// neighbours.
STDMETHODIMP CZentrelK4N::get_ExtPwrCtrl(VARIANT_BOOL* value) {
  return SessionFrame(kSystem, value, [&] {
    bool enabled = false;
    manager_.GetExtPwrCtrl(enabled);
    *value = enabled ? VARIANT_TRUE : VARIANT_FALSE;
    return S_OK;
  });
}

STDMETHODIMP CZentrelK4N::get_CompensMode(ZentrelK4NSystemCompensModeEnum* value) {
  return SessionFrame(kSystem, value, [&] {
    std::uint32_t mode{};
    manager_.GetCompensMode(mode);
    *value = static_cast<ZentrelK4NSystemCompensModeEnum>(mode);
    return S_OK;
  });
}

// Kept: any number goes to the instrument, which is left to judge it.
STDMETHODIMP CZentrelK4N::put_CompensMode(ZentrelK4NSystemCompensModeEnum mode) {
  return SessionFrame(kSystem,
                      [&] { return manager_.SetCompensMode(static_cast<std::uint32_t>(mode)); });
}
