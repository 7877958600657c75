#include "driver/SyncGenerator.h"

#include "K4NHardWare/Units.h"

STDMETHODIMP CZentrelK4NSyncGenerator::put_Width(double width) {
  return Replace(&k4n::SyncGeneratorSettings::width, width);
}

STDMETHODIMP CZentrelK4NSyncGenerator::get_Width(double* value) {
  return Read(&k4n::SyncGeneratorSettings::width, value);
}

STDMETHODIMP CZentrelK4NSyncGenerator::put_Period(double period) {
  return Replace(&k4n::SyncGeneratorSettings::period, period);
}

STDMETHODIMP CZentrelK4NSyncGenerator::get_Period(double* value) {
  return Read(&k4n::SyncGeneratorSettings::period, value);
}

STDMETHODIMP CZentrelK4NSyncGenerator::put_Delay(double delay) {
  return Replace(&k4n::SyncGeneratorSettings::delay, delay);
}

STDMETHODIMP CZentrelK4NSyncGenerator::get_Delay(double* value) {
  return Read(&k4n::SyncGeneratorSettings::delay, value);
}

HRESULT CZentrelK4NSyncGenerator::Replace(double k4n::SyncGeneratorSettings::*element,
                                          double seconds) {
  return ManagerFrame([&](CK4NManager& manager) {
    k4n::SyncGeneratorSettings settings = manager.GetSyncGenerator();
    settings.*element = seconds * k4n::kNanosecondsPerSecond;
    return manager.SetSyncGenerator(settings);
  });
}

HRESULT CZentrelK4NSyncGenerator::Read(double k4n::SyncGeneratorSettings::*element,
                                       double* seconds) {
  return ManagerFrame({seconds}, [&](const CK4NManager& manager) {
    *seconds = manager.GetSyncGenerator().*element / k4n::kNanosecondsPerSecond;
    return S_OK;
  });
}
