// IZentrelK4NRF: continuous-wave frequency and level, output switch.
#include "driver/SweepSettings.h"
#include "driver/ZentrelK4N.h"

namespace {

const IID& kRf = __uuidof(IZentrelK4NRF);

// The client's value for the list, which the manager's own codes never reach. Kept: frequency and
// level compare the manager's code with it, and so a held list never makes them leave the list
// mode.
constexpr auto kListModeOfClients = static_cast<SweepMode>(5);

}  // namespace

void CZentrelK4N::LeaveListMode(bool list_held) {
  if (list_held && SweepModeOf(manager_) == kListModeOfClients) {
    put_Mode(ZentrelK4NSweepModeNone);
  }
}

STDMETHODIMP CZentrelK4N::Configure(double frequency, double power_level) {
  return SessionFrame(kRf, [&] {
    const HRESULT result = put_Frequency(frequency);
    return result != S_OK ? result : put_Level(power_level);
  });
}

STDMETHODIMP CZentrelK4N::put_Frequency(double frequency) {
  return SessionFrame(kRf, [&] {
    const Status result = manager_.SetFrequency(frequency);
    if (result == status::kOk) {
      LeaveListMode(manager_.HasFrequencyList());
    }
    return result;
  });
}

STDMETHODIMP CZentrelK4N::get_Frequency(double* value) {
  return SessionFrame(kRf, value, [&] {
    manager_.GetFrequency(*value);
    return S_OK;
  });
}

// Kept: unlike the frequency, a refused level is followed by the look at the list, too.
STDMETHODIMP CZentrelK4N::put_Level(double level) {
  return SessionFrame(kRf, [&] {
    const Status result = manager_.SetLevel(level);
    LeaveListMode(manager_.HasPowerList());
    return result;
  });
}

STDMETHODIMP CZentrelK4N::get_Level(double* value) {
  return SessionFrame(kRf, value, [&] {
    manager_.GetLevel(*value);
    return S_OK;
  });
}

STDMETHODIMP CZentrelK4N::put_OutputEnabled(VARIANT_BOOL enabled) {
  return SessionFrame(kRf, [&] { return manager_.SetOutputEnabled(enabled != VARIANT_FALSE); });
}

// Kept: true reads as 1, not as VARIANT_TRUE.
STDMETHODIMP CZentrelK4N::get_OutputEnabled(VARIANT_BOOL* value) {
  return SessionFrame(kRf, value, [&] {
    bool enabled = false;
    const Status result = manager_.GetOutputEnabled(enabled);
    if (result == status::kOk) {
      *value = enabled ? 1 : 0;
    }
    return result;
  });
}

STDMETHODIMP CZentrelK4N::IsSettled(VARIANT_BOOL* /*done*/) {
  return NotSupported("CZentrelK4N::IsSettled", kRf);
}

STDMETHODIMP CZentrelK4N::WaitUntilSettled(LONG /*max_time_milliseconds*/) {
  return NotSupported("CZentrelK4N::WaitUntilSettled", kRf);
}

// Pulse modulation is the only one. Kept: without a session this is 10057, which clients see as
// success.
STDMETHODIMP CZentrelK4N::DisableAllModulation() {
  return Frame([&] { return manager_.SetPulseModEnabled(false); });
}
