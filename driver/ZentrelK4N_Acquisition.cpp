// IZentrelK4NAcquisition, and the fetch of a trace that every channel forwards to.
#include <chrono>
#include <cstring>
#include <span>

#include "driver/SweepSettings.h"
#include "driver/ZentrelK4N.h"
#include "platform/os/Sync.h"

namespace {

const IID& kAcquisition = __uuidof(IZentrelK4NAcquisition);

// A client that polls the status in a loop must not keep a processor busy.
constexpr auto kPauseWhileInProgress = std::chrono::milliseconds(1);

/// The values as an array of doubles that starts at 0; null without memory.
SAFEARRAY* NewArray(std::span<const double> values) {
  SafeArrayOwner array(SafeArrayCreateVector(VT_R8, 0, static_cast<ULONG>(values.size())));
  const SafeArrayAccess<double> access(array.Get());
  if (FAILED(access.Result())) {
    return nullptr;
  }
  std::memcpy(access.Values().data(), values.data(), values.size_bytes());
  return array.Detach();
}

/// The axis of the present sweep; zeros when none is stepped.
StepSettings SweptAxis(const CK4NManager& manager) {
  switch (SweepModeOf(manager)) {
    case SweepMode::kPowerStep:
      return PowerStepOf(manager);
    case SweepMode::kFrequencyStep:
      return FrequencyStepOf(manager);
    default:
      return {};
  }
}

}  // namespace

STDMETHODIMP CZentrelK4N::get_Averaging(LONG* value) {
  return SessionFrame(kAcquisition, value, [&]() -> HRESULT {
    std::int32_t count{};
    if (manager_.GetAveraging(count) == status::kPropertyNotSupported) {
      return BuiltError(kAcquisition, status::kPropertyNotSupported, "Averaging");
    }
    *value = count;
    return S_OK;
  });
}

STDMETHODIMP CZentrelK4N::put_Averaging(LONG count) {
  return SessionFrame(kAcquisition, [&]() -> HRESULT {
    const Status result = manager_.SetAveraging(static_cast<std::int32_t>(count));
    return result == status::kPropertyNotSupported ? BuiltError(kAcquisition, result, "Averaging")
                                                   : result;
  });
}

STDMETHODIMP CZentrelK4N::get_Status(ZentrelK4NAcquisitionStatusEnum* value) {
  return Frame(value, [&]() -> HRESULT {
    HRESULT updated = S_OK;
    {
      const std::lock_guard lock(acquisition_.lock);
      if (acquisition_.status == ZentrelK4NAcquisitionStatusInProgress) {
        updated = UpdateAcquisition();
      }
      *value = acquisition_.status;
    }
    if (updated == status::kOperationInProgress) {
      os::Sleep(kPauseWhileInProgress);
    }
    if (updated == status::kMethodNotSupported) {
      return BuiltError(kAcquisition, status::kPropertyNotSupported, "Status");
    }
    return S_OK;
  });
}

STDMETHODIMP CZentrelK4N::get_Channels(IZentrelK4NChannels** value) {
  return Getter(Self(), kAcquisition, "IZentrelK4NChannels", value);
}

// Kept: succeeds without a session, too; the first look at the status then ends the measurement.
STDMETHODIMP CZentrelK4N::Initiate() {
  return Frame([&] {
    SetAcquisitionStatus(ZentrelK4NAcquisitionStatusInProgress);
    SendSoftwareTrigger();
    return S_OK;
  });
}

STDMETHODIMP CZentrelK4N::Abort() {
  return Frame([&] {
    SetAcquisitionStatus(ZentrelK4NAcquisitionStatusUnknown);
    return S_OK;
  });
}

HRESULT CZentrelK4N::FetchData(std::size_t channel, SAFEARRAY** data, double* initial_x,
                               double* x_increment) {
  return Frame([&]() -> HRESULT {
    if (data == nullptr || initial_x == nullptr || x_increment == nullptr) {
      return E_POINTER;
    }
    const std::lock_guard lock(acquisition_.lock);
    if (acquisition_.status == ZentrelK4NAcquisitionStatusInProgress) {
      const HRESULT updated = UpdateAcquisition();
      if (updated != S_OK) {
        return updated;
      }
    }
    const std::span<const double> row = acquisition_.trace.Row(static_cast<std::int32_t>(channel));
    if (row.empty()) {
      return BuiltError(__uuidof(IZentrelK4NChannel), status::kCannotRecover);
    }
    SAFEARRAY* const array = NewArray(row);
    if (array == nullptr) {
      return BuiltError(__uuidof(IZentrelK4NChannel), status::kOutOfMemory);
    }
    *data = array;
    *initial_x = acquisition_.initial_x;
    *x_increment = acquisition_.x_increment;
    return S_OK;
  });
}

HRESULT CZentrelK4N::UpdateAcquisition() {
  const StepSettings axis = SweptAxis(manager_);
  const Status fetched = manager_.FetchData(acquisition_.trace);
  switch (fetched) {
    case status::kMethodNotSupported:
      return fetched;
    case status::kVisaTimeout:
      acquisition_.status = ZentrelK4NAcquisitionStatusInProgress;
      return BuiltError(__uuidof(IZentrelK4NChannel), status::kOperationInProgress);
    case status::kOk:
      acquisition_.status = ZentrelK4NAcquisitionStatusComplete;
      acquisition_.initial_x = axis.start;
      acquisition_.x_increment = axis.step;
      return S_OK;
    default:
      acquisition_.status = ZentrelK4NAcquisitionStatusUnknown;
      return fetched;
  }
}

void CZentrelK4N::SetAcquisitionStatus(ZentrelK4NAcquisitionStatusEnum status) {
  const std::lock_guard lock(acquisition_.lock);
  acquisition_.status = status;
}
