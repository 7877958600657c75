// IZentrelK4NAcquisition, and the fetch of a trace that every channel forwards to.
#include <chrono>
#include <cstring>
#include <optional>
#include <span>

#include "driver/ZentrelK4N.h"
#include "platform/os/Sync.h"

using namespace driver;

namespace {

const IID& kAcquisition = __uuidof(IZentrelK4NAcquisition);

// A client that polls the status in a loop must not keep a processor busy.
constexpr auto kPauseWhileInProgress = std::chrono::milliseconds(1);

/// The values as an array of doubles that starts at 0; null without memory.
SAFEARRAY* NewArray(std::span<const double> values) {
  SafeArrayOwner array(SafeArrayCreateVector(VT_R8, 0, static_cast<ULONG>(values.size())));
  const SafeArrayAccess<double> access(array.Get());
  if (FAILED(access.Result())) return nullptr;
  std::memcpy(access.Values().data(), values.data(), values.size_bytes());
  return array.Detach();
}

/// The axis of the present sweep; zeros when none is stepped.
k4n::StepSettings SweptAxis(const CK4NManager& manager) {
  switch (manager.GetSweepMode()) {
    case k4n::SweepMode::kPowerStep:
      return manager.GetPowerStep();
    case k4n::SweepMode::kFrequencyStep:
      return manager.GetFrequencyStep();
    default:
      return {};
  }
}

}  // namespace

STDMETHODIMP CZentrelK4N::get_Averaging(LONG* value) {
  return SessionFrame(kAcquisition, {value}, [&]() -> HRESULT {
    const std::optional<std::int32_t> count = manager_.GetAveraging();
    if (!count) return BuiltError(kAcquisition, Status::kPropertyNotSupported, "Averaging");
    *value = *count;
    return S_OK;
  });
}

STDMETHODIMP CZentrelK4N::put_Averaging(LONG count) {
  return SessionFrame(kAcquisition, [&]() -> HRESULT {
    const Status result = manager_.SetAveraging(static_cast<std::int32_t>(count));
    return result == Status::kPropertyNotSupported ? BuiltError(kAcquisition, result, "Averaging")
                                                   : ToCode(result);
  });
}

STDMETHODIMP CZentrelK4N::get_Status(ZentrelK4NAcquisitionStatusEnum* value) {
  return Frame({value}, [&]() -> HRESULT {
    Status updated = Status::kOk;
    {
      const std::lock_guard lock(acquisition_.lock);
      if (acquisition_.status == ZentrelK4NAcquisitionStatusInProgress) {
        updated = UpdateAcquisition();
      }
      *value = acquisition_.status;
    }
    if (updated == Status::kOperationInProgress) os::Sleep(kPauseWhileInProgress);
    if (updated == Status::kMethodNotSupported) {
      return BuiltError(kAcquisition, Status::kPropertyNotSupported, "Status");
    }
    return S_OK;
  });
}

STDMETHODIMP CZentrelK4N::get_Channels(IZentrelK4NChannels** value) {
  return Getter(Self(), kAcquisition, value);
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
  return Frame({data, initial_x, x_increment}, [&]() -> HRESULT {
    const std::lock_guard lock(acquisition_.lock);
    if (acquisition_.status == ZentrelK4NAcquisitionStatusInProgress) {
      if (const Status updated = UpdateAcquisition(); updated != Status::kOk) {
        return ToCode(updated);
      }
    }
    const std::span<const double> row = acquisition_.trace.Row(static_cast<std::int32_t>(channel));
    if (row.empty()) return BuiltError(__uuidof(IZentrelK4NChannel), Status::kCannotRecover);
    SAFEARRAY* const array = NewArray(row);
    if (array == nullptr) return BuiltError(__uuidof(IZentrelK4NChannel), Status::kOutOfMemory);
    *data = array;
    *initial_x = acquisition_.initial_x;
    *x_increment = acquisition_.x_increment;
    return S_OK;
  });
}

Status CZentrelK4N::UpdateAcquisition() {
  const k4n::StepSettings axis = SweptAxis(manager_);
  const Status fetched = manager_.FetchData(acquisition_.trace);
  switch (fetched) {
    case Status::kMethodNotSupported:
      return fetched;
    case Status::kVisaTimeout:
      acquisition_.status = ZentrelK4NAcquisitionStatusInProgress;
      BuiltError(__uuidof(IZentrelK4NChannel), Status::kOperationInProgress);
      return Status::kOperationInProgress;
    case Status::kOk:
      acquisition_.status = ZentrelK4NAcquisitionStatusComplete;
      acquisition_.initial_x = axis.start;
      acquisition_.x_increment = axis.step;
      return Status::kOk;
    default:
      acquisition_.status = ZentrelK4NAcquisitionStatusUnknown;
      return fetched;
  }
}

void CZentrelK4N::SetAcquisitionStatus(ZentrelK4NAcquisitionStatusEnum status) {
  const std::lock_guard lock(acquisition_.lock);
  acquisition_.status = status;
}
