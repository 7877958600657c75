// The two lists of a list sweep.
#include "K4NHardWare/K4NManagerOperation.h"
#include "K4NHardWare/RealArray.h"

using namespace k4n;

/// Kept: an array that cannot be locked leaves the worker paused until the next operation.
template <typename Apply>
Status CK4NManager::ReplaceList(SAFEARRAY* array, Synchronized<SweepList>& list, Apply&& apply) {
  return Guarded([&]() -> Outcome {
    block_.Discard();
    if (array == nullptr) {
      list.Set(nullptr);
      return Status::kOk;
    }
    const RealArray elements(array);
    if (!elements.HasRightType()) return Status{E_INVALIDARG};
    if (FAILED(elements.locked())) return {Status{elements.locked()}, true};
    list.Set(nullptr);
    std::vector<double> values = elements.Read();
    if (values.empty()) return Status::kOk;
    list.Set(std::make_shared<std::vector<double>>(std::move(values)));
    const Status result = std::forward<Apply>(apply)();
    elements.Write(*list.Copy());
    return result;
  });
}

Status CK4NManager::SetFrequencyList(SAFEARRAY* frequencies) {
  return ReplaceList(frequencies, frequency_list_, [this] {
    return Record(Site::kFrequencyList, ApplyFrequencyAxis(SweepMode::kList));
  });
}

Status CK4NManager::SetPowerList(SAFEARRAY* levels) {
  return ReplaceList(levels, power_list_,
                     [this] { return Record(Site::kPowerList, ApplyPowerAxis(SweepMode::kList)); });
}

void CK4NManager::ClearFrequencyList() {
  const std::lock_guard lock(operation_mutex_);  // wait until the list has been sent
  frequency_list_.Set(nullptr);
}

void CK4NManager::ClearPowerList() {
  const std::lock_guard lock(operation_mutex_);
  power_list_.Set(nullptr);
}
