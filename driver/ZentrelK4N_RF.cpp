// IZentrelK4NRF: continuous-wave frequency and level, output switch.
#include "driver/ZentrelK4N.h"

using namespace driver;

namespace {

const IID& kRf = __uuidof(IZentrelK4NRF);

}  // namespace

STDMETHODIMP CZentrelK4N::Configure(double frequency, double power_level) {
  return SessionFrame(kRf, [&] {
    const HRESULT result = put_Frequency(frequency);
    return result != S_OK ? result : put_Level(power_level);
  });
}

// Kept: setting frequency or level does not end a list sweep.
STDMETHODIMP CZentrelK4N::put_Frequency(double frequency) {
  return SessionFrame(kRf, [&] { return manager_.SetFrequency(frequency); });
}

STDMETHODIMP CZentrelK4N::get_Frequency(double* value) {
  return SessionFrame(kRf, {value}, [&] {
    *value = manager_.GetFrequency();
    return S_OK;
  });
}

STDMETHODIMP CZentrelK4N::put_Level(double level) {
  return SessionFrame(kRf, [&] { return manager_.SetLevel(level); });
}

STDMETHODIMP CZentrelK4N::get_Level(double* value) {
  return SessionFrame(kRf, {value}, [&] {
    *value = manager_.GetLevel();
    return S_OK;
  });
}

STDMETHODIMP CZentrelK4N::put_OutputEnabled(VARIANT_BOOL enabled) {
  return SessionFrame(kRf, [&] { return manager_.SetOutputEnabled(enabled != VARIANT_FALSE); });
}

// Kept: true reads as 1, not as VARIANT_TRUE.
STDMETHODIMP CZentrelK4N::get_OutputEnabled(VARIANT_BOOL* value) {
  return SessionFrame(kRf, {value}, [&] {
    *value = BoolAsOne(manager_.GetOutputEnabled());
    return S_OK;
  });
}

STDMETHODIMP CZentrelK4N::IsSettled(VARIANT_BOOL* /*done*/) { return NotSupported(__func__, kRf); }

STDMETHODIMP CZentrelK4N::WaitUntilSettled(LONG /*max_time_milliseconds*/) {
  return NotSupported(__func__, kRf);
}

// Pulse modulation is the only modulation. Kept: without a session this is 10057, which clients see
// as success.
STDMETHODIMP CZentrelK4N::DisableAllModulation() {
  return Frame([&] { return manager_.SetPulseModEnabled(false); });
}
