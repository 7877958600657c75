// The synchronisation pulse generator.
#pragma once

#include "driver/Child.h"

/// Width, period and delay in seconds. Without a session a setter returns 10057, which clients see
/// as success, and a getter returns the value of the last session.
class CZentrelK4NSyncGenerator : public driver::Child<IZentrelK4NSyncGenerator> {
 public:
  CZentrelK4NSyncGenerator() : Child(__uuidof(ZentrelK4NSyncGenerator)) {}

  STDMETHODIMP put_Width(double width) override;
  STDMETHODIMP get_Width(double* value) override;
  STDMETHODIMP put_Period(double period) override;
  STDMETHODIMP get_Period(double* value) override;
  STDMETHODIMP put_Delay(double delay) override;
  STDMETHODIMP get_Delay(double* value) override;

 protected:
  ~CZentrelK4NSyncGenerator() = default;

 private:
  HRESULT Replace(double k4n::SyncGeneratorSettings::*element, double seconds);
  HRESULT Read(double k4n::SyncGeneratorSettings::*element, double* seconds);
};
