#include "driver/SyncGenerator.h"

#include "K4NHardWare/Units.h"

STDMETHODIMP CZentrelK4NSyncGenerator::put_Width(double width) {
  return Replace(&SyncGeneratorSettings::width, width);
}

STDMETHODIMP CZentrelK4NSyncGenerator::get_Width(double* value) {
  return Read(&SyncGeneratorSettings::width, value);
}

STDMETHODIMP CZentrelK4NSyncGenerator::put_Period(double period) {
  return Replace(&SyncGeneratorSettings::period, period);
}

STDMETHODIMP CZentrelK4NSyncGenerator::get_Period(double* value) {
  return Read(&SyncGeneratorSettings::period, value);
}

STDMETHODIMP CZentrelK4NSyncGenerator::put_Delay(double delay) {
  return Replace(&SyncGeneratorSettings::delay, delay);
}

STDMETHODIMP CZentrelK4NSyncGenerator::get_Delay(double* value) {
  return Read(&SyncGeneratorSettings::delay, value);
}

HRESULT CZentrelK4NSyncGenerator::Replace(double SyncGeneratorSettings::*element, double seconds) {
  return ManagerFrame([&](CK4NManager& manager) {
    SyncGeneratorSettings settings = manager.GetSyncGenerator();
    settings.*element = seconds * kNanosecondsPerSecond;
    return manager.SetSyncGenerator(settings);
  });
}

HRESULT CZentrelK4NSyncGenerator::Read(double SyncGeneratorSettings::*element, double* seconds) {
  return ManagerFrame({seconds}, [&](const CK4NManager& manager) {
    *seconds = manager.GetSyncGenerator().*element / kNanosecondsPerSecond;
    return S_OK;
  });
}
