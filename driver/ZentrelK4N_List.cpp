// IZentrelK4NList: one list of frequencies and one of levels. Names are taken and ignored: a new
// list replaces the one before. Single step, dwell, ConfigureDwell and Reset are the frequency
// step's.
#include "driver/ArrayArgument.h"
#include "driver/ZentrelK4N.h"

using namespace driver;

namespace {

const IID& kList = __uuidof(IZentrelK4NList);

}  // namespace

STDMETHODIMP CZentrelK4N::get_SelectedName(BSTR* /*value*/) {
  return NotSupported(__func__, kList);
}

STDMETHODIMP CZentrelK4N::put_SelectedName(BSTR /*name*/) { return NotSupported(__func__, kList); }

// Works without a session. The instrument keeps its list until it is programmed again.
STDMETHODIMP CZentrelK4N::ClearAll() {
  return Frame([&] {
    manager_.ClearPowerList();
    manager_.ClearFrequencyList();
    return S_OK;
  });
}

STDMETHODIMP CZentrelK4N::CreateFrequency(BSTR /*name*/, SAFEARRAY** frequency) {
  return SessionFrame(kList, [&] {
    manager_.ClearPowerList();
    return manager_.SetFrequencyList(ArrayAt(frequency));
  });
}

STDMETHODIMP CZentrelK4N::CreatePower(BSTR /*name*/, SAFEARRAY** power) {
  return SessionFrame(kList, [&] {
    manager_.ClearFrequencyList();
    return manager_.SetPowerList(ArrayAt(power));
  });
}

// Kept: a refusal of the frequencies shows in ErrorQuery only.
STDMETHODIMP CZentrelK4N::CreateFrequencyPower(BSTR /*name*/, SAFEARRAY** frequency,
                                               SAFEARRAY** power) {
  return SessionFrame(kList, [&] {
    Discard(manager_.SetFrequencyList(ArrayAt(frequency)));
    return manager_.SetPowerList(ArrayAt(power));
  });
}
