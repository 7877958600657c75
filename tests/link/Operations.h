// The operations of the model that are one transaction, each with its exact request and what it
// makes of the answer. Damaged answers reach every row, too: fuzz/answers.cpp.
#pragma once

#include <array>
#include <functional>
#include <ranges>
#include <span>
#include <tuple>
#include <type_traits>
#include <vector>

#include "K4NHardWare/D3THardWare.h"
#include "tests/link/Request.h"

struct Operation {
  const char* name;
  /// Runs it; the values afterwards go to the vector.
  std::function<Status(D3THardWare&, std::vector<double>&)> run;
  std::vector<scripted::Request> requests;
  std::vector<std::vector<double>> answers;  ///< the elements, status 0; none: the request's own
  std::vector<double> values;
};

namespace operations {

using namespace k4n;
using scripted::Read;
using scripted::Write;
using D = D3THardWare;
using Values = std::vector<double>;

// --- The values of an argument

template <typename Value>
void Append(Values& values, const Value& value) {
  values.push_back(static_cast<double>(value));
}
template <std::ranges::range Range>
void Append(Values& values, const Range& range) {
  values.insert(values.end(), range.begin(), range.end());
}
inline void Append(Values& values, const TriggerElements& e) {
  Append(values, std::array{e.code, unsigned{e.edge}, unsigned{e.value}, e.flag, e.last});
}
inline void Append(Values& values, const LevelSettings& s) {
  const auto mode = static_cast<unsigned>(s.atten_mode);
  Append(values, std::array{s.level_control, mode, s.further_1, s.further_2});
}
inline void Append(Values& values, const StepSettings& sweep) {
  Append(values, std::array{sweep.start, sweep.stop, sweep.step});
}

/// Appends an argument that an operation may change.
template <typename Parameter, typename Argument>
void Keep(Values& values, const Argument& argument) {
  using Bare = std::remove_reference_t<Parameter>;
  constexpr bool kIsReference = std::is_reference_v<Parameter> && !std::is_const_v<Bare>;
  if constexpr (kIsReference || std::is_same_v<Bare, std::span<double>>) Append(values, argument);
}

/// Calls an operation of these arguments; those that it may change are the values afterwards.
template <typename... Parameters, typename... Given>
auto Calling(Status (D::*operation)(Parameters...), Given... given) {
  return [=](D& model, Values& values) mutable {
    const Status result = (model.*operation)(given...);
    values.clear();
    (Keep<Parameters>(values, given), ...);
    return result;
  };
}

// clang-format off
inline const std::vector<Operation> kOperations = {
    {"DwellIsNanosecondsWithSelectorZero", Calling(&D::SetDwell, 5e8),
     {Write(5, 0x40, 2, "00 00 00 00 | 00 65 CD 1D"_hex)}, {{0, 1000}}, {1000}},
    {"DwellThousandsScalesBothWays", Calling(&D::SetDwellThousands, 2.5),
     {Write(5, 0x40, 2, "00 00 00 00 | C4 09 00 00"_hex)}, {{0, 3000}}, {3}},
    {"AveragingClampsAbove14AndSendsMaskFirst", Calling(&D::SetAveraging, 20, AveragingFeatures{}),
     {Write(23, 0x20, 1, "FF FF"_hex), Write(4, 0x10, 1, "0E 00"_hex)}, {{0xFFFF}, {12}}, {12}},
    {"AveragingClampsBelow1AndClearsEachMaskBit",
     Calling(&D::SetAveraging, 0, AveragingFeatures{true, false, false, false}),
     {Write(23, 0x20, 1, "C3 FF"_hex), Write(4, 0x10, 1, "01 00"_hex)}, {}, {1}},
    {"TriggerInputKeepsTheOtherGroup",
     Calling(&D::SetTriggerInput, 1U, TriggerElements{3, true, 255, 1, 2}),
     {Read(7, 0x10, 10), Write(7, 0x10, 10, "01 02 03 04 05 | 03 01 FF 01 02"_hex)},
     {{1, 2, 3, 4, 5, 6, 7, 8, 9, 10}, {1, 2, 3, 4, 5, 2, 0, 128, 4, 5}}, {2, 0, 128, 4, 5}},
    {"TriggerOutputFirstGroup",
     Calling(&D::SetTriggerOutput, 0U, TriggerElements{5, true, 3, 0, 0}),
     {Read(8, 0x10, 10), Write(8, 0x10, 10, "05 01 03 00 00 | 06 07 08 09 0A"_hex)},
     {{1, 2, 3, 4, 5, 6, 7, 8, 9, 10}, {4, 2, 2, 0, 0, 6, 7, 8, 9, 10}}, {4, 1, 2, 0, 0}},
    {"SyncGeneratorCarriesOffTime", Calling(&D::SetSyncGenerator, 1000.0, 2000.0, 3000.0),
     {Write(37, 0x40, 3, "E8 03 00 00 | D0 07 00 00 | B8 0B 00 00"_hex)},
     {{1001, 2001, 3001}}, {1001, 2001, 3001}},
    {"ExternalReference", Calling(&D::SetExternalReference, true, 1e7),
     {Write(17, 0x40, 2, "01 00 00 00 | 80 96 98 00"_hex)}, {{0, 5e6}}, {0, 5e6}},
    {"PhaseDelayIsSignedFixedPoint", Calling(&D::SetPhaseDelay, -1.5),
     {Write(92, 0x42, 1, "00 80 FE FF"_hex)}, {{0.25}}, {0.25}},
    {"CompensationModeIsNotChecked", Calling(&D::SetCompensationMode, 9U),
     {Write(11, 0x20, 1, "09 00"_hex)}, {{4}}, {4}},
    {"KindIsTheInstrumentsOwn", Calling(&D::QueryInstrumentKind, 18U),
     {Write(3, 0x20, 1, "12 00"_hex)}, {{2}}, {2}},
    {"RfButtonCarriesIdentifierInHeader", Calling(&D::ReadRfButton, false),
     {Read(34, 0x20, 1)}, {{256}}, {1}},
    {"OutputStateOfWideForm", Calling(&D::ReadOutputState, LevelSettings{}, 0.0),
     {Read(79, 0x62, 5)}, {{1, 2, 3, 4, -10.5}}, {1, 2, 3, 4, -10.5}},
    {"FixedPulseTrain", Calling(&D::WritePulseTrainFixed, std::array{1U, 2U, 0xFFFFFFFF}),
     {Write(31, 0x40, 3, "01 00 00 00 | 02 00 00 00 | FF FF FF FF"_hex)}, {{4, 5, 6}}, {4, 5, 6}},
    {"SwitchSettingHasZeroInTheMiddle", Calling(&D::WriteSwitchSetting, true, 0x1234U),
     {Write(9, 0x20, 3, "01 00 | 00 00 | 34 12"_hex)}, {{0, 0, 0x1235}}, {0, 0x1235}},
    {"ScaledSettingIsHertzAndSixteenBits", Calling(&D::WriteScaledSetting, 10.0, 7U, -1.5),
     {Write(27, 0x40, 3, "80 96 98 00 | 07 00 00 00 | 80 FE 00 00"_hex)},
     {{1e6, 8, 0xFF00}}, {1, 8, -1}},
    {"FixedConfiguration", Calling(&D::WriteFixedConfiguration, true),
     {Write(28, 0x10, 4, "03 00 05 03"_hex)}, {}, {}},
    {"FixedConfigurationWithoutFlag", Calling(&D::WriteFixedConfiguration, false),
     {Write(28, 0x10, 4, "02 00 05 03"_hex)}, {}, {}},
    {"FrequencyTableHasOneFractionalByte", Calling(&D::TransferFrequencyTable, Values{1.5, -0.25}),
     {Write(26, 0x21, 2, "80 01 | C0 FF"_hex)}, {{2, 1}}, {2, 1}},
    {"FrequencyListOfTwo",
     Calling(&D::TransferList, ListAxis::kFrequency, Values{1e9, 2e10}, LevelSettings{}),
     {Write(2, 0x60, 0, "00 00 00 00 00 00 | 02 00 00 00 00 00 | 00 CA 9A 3B 00 00 |"
                        "00 C8 17 A8 04 00"_hex)},
     {{0, 2, 1e9 + 1, 2e10 + 1}}, {1e9 + 1, 2e10 + 1}},
    {"PowerListCarriesLevelSettings",
     Calling(&D::TransferList, ListAxis::kPower, Values{-60.5},
             LevelSettings{1, AttenMode::kOptimumSwr, 7}),
     {Write(76, 0x42, 4, "00 00 01 00 | 00 00 03 00 | 00 00 00 00 | 00 00 00 00 | 00 00 00 00 |"
                         "00 00 01 00 | 00 80 C3 FF"_hex)}, {{1, 3, 0, 0, 0, 1, -60}}, {-60}},
    {"PulseTrainBeforeConnectionHasNoPolarity",
     Calling(&D::TransferPulseTrain, 2U, PulseSource{}, Values{100}, Values{200}, true),
     {Write(31, 0x40, 2, "02 00 00 00 | 03 00 00 00 | 00 00 00 00 | 01 00 00 00 | 64 00 00 00 |"
                         "C8 00 00 00"_hex)}, {{2, 2, 0, 1, 101, 201}}, {1, 101, 201}},
};
// clang-format on

}  // namespace operations
