// Every parameter of the instrument that the driver keeps, and the names of their elements.
#pragma once

#include <array>
#include <cstddef>

#include "K4NHardWare/HardWareParametr.h"

namespace k4n {

/// Index into kParameterTable.
enum class Parameter : std::size_t {
  kPulseTrainFixed,
  kFrequencyNarrow,
  kFrequencyWide,
  kFrequencyFourElement,
  kAveraging,
  kDwell,
  kInstrumentKind,
  kPower0,
  kPower1,
  kPower2,
  kPower3,
  kTriggerOutput,
  kTriggerInput,
  kTriggerOutputTwoGroups,
  kTriggerInputTwoGroups,
  kFeatureMask,
  kSwitchSetting,
  kExternalReferenceShort,
  kExternalReference,
  kPowerSweep1,
  kPowerSweep2,
  kPowerSweep3,
  kPowerSweep4,
  kPowerSweep5,
  kScaledSetting,
  kFixedConfiguration,
  kIdentity,
  kRfButton,
  kPhaseDelay,
  kCompensationMode,
  kSyncGenerator,
  kCount,
};

inline constexpr std::size_t kParameterCount = static_cast<std::size_t>(Parameter::kCount);

/// A parameter and its layout: identifier, elements, bytes an element, fractional bytes, signed.
struct ParameterRow {
  Parameter parameter;
  ParameterLayout layout;
};

/// One identifier has several layouts where generations of the instrument differ.
inline constexpr auto kParameterTable = [] {
  using enum Parameter;
  return std::to_array<ParameterRow>({
      {kPulseTrainFixed, {31, 3, 4, 0, false}},
      {kFrequencyNarrow, {0, 3, 4, 0, false}},
      {kFrequencyWide, {0, 3, 6, 0, true}},
      {kFrequencyFourElement, {0, 4, 6, 0, true}},
      {kAveraging, {4, 1, 1, 0, false}},
      {kDwell, {5, 2, 4, 0, false}},
      {kInstrumentKind, {3, 1, 2, 0, false}},
      {kPower0, {12, 2, 2, 1, true}},
      {kPower1, {12, 2, 4, 2, true}},
      {kPower2, {79, 5, 4, 2, true}},
      {kPower3, {79, 5, 6, 2, true}},
      {kTriggerOutput, {8, 5, 1, 0, false}},
      {kTriggerInput, {7, 5, 1, 0, false}},
      {kTriggerOutputTwoGroups, {8, 10, 1, 0, false}},
      {kTriggerInputTwoGroups, {7, 10, 1, 0, false}},
      {kFeatureMask, {23, 1, 2, 0, false}},
      {kSwitchSetting, {9, 3, 2, 0, false}},
      {kExternalReferenceShort, {17, 1, 1, 0, false}},
      {kExternalReference, {17, 2, 4, 0, false}},
      {kPowerSweep1, {12, 4, 4, 2, true}},
      {kPowerSweep2, {79, 7, 4, 2, true}},
      {kPowerSweep3, {79, 7, 6, 2, true}},
      {kPowerSweep4, {79, 8, 4, 2, true}},
      {kPowerSweep5, {79, 8, 6, 2, true}},
      {kScaledSetting, {27, 3, 4, 0, false}},
      {kFixedConfiguration, {28, 4, 1, 0, false}},
      {kIdentity, {15, 100, 1, 0, false}},
      {kRfButton, {34, 1, 2, 0, false}},
      {kPhaseDelay, {92, 1, 4, 2, true}},
      {kCompensationMode, {11, 1, 2, 0, false}},
      {kSyncGenerator, {37, 3, 4, 0, false}},
  });
}();

static_assert(kParameterTable.size() == kParameterCount);
static_assert(
    [] {
      std::size_t index = 0;
      for (const ParameterRow& row : kParameterTable) {
        if (row.parameter != Parameter{index++}) return false;
      }
      return true;
    }(),
    "rows in the order of the enumeration");

// Element indices, by the parameters that have them.

struct FrequencyElement {
  enum : std::size_t { kStart, kPoints, kStep, kStop };  ///< Hz; kStop in the four-element form
};
struct DwellElement {
  enum : std::size_t { kSelector, kTime };  ///< the selector is always 0
};
/// kPower0, kPower1 and kPowerSweep1.
struct SimplePowerElement {
  enum : std::size_t { kLevelControl, kLevel, kPoints, kStep };
};
/// kPower2 and kPower3 (up to kLevel), kPowerSweep2 and kPowerSweep3 (up to kStep), the others in
/// full. dBm, dB.
struct PowerElement {
  enum : std::size_t {
    kLevelControl,
    kAttenMode,
    kFurther1,
    kFurther2,
    kLevel,
    kPoints,
    kStep,
    kStop
  };
};
/// Within one group of a trigger parameter.
struct TriggerElement {
  enum : std::size_t { kCode, kEdge, kValue, kFlag, kLast, kGroupSize };
};
struct SwitchElement {
  enum : std::size_t { kEnabled, kZero, kValue };
};
struct ReferenceElement {
  enum : std::size_t { kEnabled, kFrequency };  ///< the short form has only the first
};
struct ScaledElement {
  enum : std::size_t { kFrequency, kNumber, kValue };
};
struct SyncElement {
  enum : std::size_t { kWidth, kOffTime, kDelay };  ///< ns
};
/// Parameters of one element.
struct OnlyElement {
  enum : std::size_t { kValue };
};

}  // namespace k4n
