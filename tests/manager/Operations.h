// The manager's operations that talk to the instrument, each once: what runs it, and what a failure
// of its requests leaves behind.
#pragma once

#include "tests/manager/ManagerFixture.h"
#include "tests/platform/Arrays.h"

struct Operation : Row {
  std::function<Status(CK4NManager&)> run;
  std::uint16_t command;        ///< of the request that matters
  std::uint8_t id;              ///< of its parameter
  std::vector<int> trail;       ///< what its refusal leaves in the trail: sites, by number
  bool discards = false;        ///< a block that nobody fetched
  std::vector<int> sites = {};  ///< that tell of its other requests, besides
  SweepMode mode = SweepMode::kContinuousWave;  ///< that it is run in
};

namespace operations {
using M = CK4NManager;

template <typename Taken, typename Given>
auto Set(Status (M::*set)(Taken), Given value) {
  return [set, value](M& m) { return (m.*set)(value); };
}
template <typename Value>
auto Get(StatusAnd<Value> (M::*get)()) {
  return [get](M& m) { return (m.*get)().status; };
}
inline auto SetMode(SweepMode mode) { return Set(&M::SetSweepMode, mode); }
inline Status SetFrequencyList(M& m) { return m.SetFrequencyList(Doubles({1e9, 2e9}).Get()); }
inline Status SetPowerList(M& m) { return m.SetPowerList(Doubles({-1, -2}).Get()); }
inline Status SetExternalTrigger(M& m) {
  return m.SetSweepTrigger({.source = TriggerSource::kExternal, .single_step = true});
}
inline Status SetSyncOutput(M& m) {
  return m.SetTriggerOutput({.mode = TriggerOutputMode::kSyncGenerator, .enabled = true});
}
inline Status SetPulse(M& m) {
  const Status on = m.SetPulseModEnabled(true);
  return on != Status::kOk ? on : m.SetPulseWidth(5.0);
}
inline Status SetPacket(M& m) {
  const Status on = m.SetPulseModEnabled(true);
  if (on != Status::kOk) return on;
  return m.ConfigurePacket(true, Doubles({1e-6}).Get(), Doubles({2e-6}).Get());
}

using enum SweepMode;

/// Those that pause the worker and resume it, if it measured before.
inline const std::vector<Operation> kSettings = {
    {"Frequency", Set(&M::SetFrequency, 1e9), kWrite, 0, {601, 611}},
    {"Level", Set(&M::SetLevel, -30.0), kWrite, 79, {602, 612}},
    {"OutputOff", Set(&M::SetOutputEnabled, false), kWrite, 79, {613}},
    {"OutputOn", Set(&M::SetOutputEnabled, true), kWrite, 79, {602, 613}},
    {"AttenMode", Set(&M::SetAttenMode, AttenMode::kCare), kWrite, 79, {602, 691}},
    {"SweepMode", SetMode(kPowerStep), kWrite, 79, {602}, true, {601, 631}},
    {"FrequencyStep", SetFrequencyStep, kWrite, 0, {601, 601, 621}, true},
    {"FrequencyStepInPowerStep", SetFrequencyStep, kWrite, 79, {602, 622}, true, {601}, kPowerStep},
    {"PowerStep", SetPowerStep, kWrite, 79, {602, 602, 623}, true},
    {"PowerStepInFrequencyStep", SetPowerStep, kWrite, 0, {601, 624}, true, {602}, kFrequencyStep},
    {"SweepTrigger", SetExternalTrigger, kWrite, 7, {631}, true},
    {"Dwell", Set(&M::SetDwell, 1e6), kWrite, 5, {632}},
    {"FrequencyList", SetFrequencyList, kWrite, 2, {601, 641}, true},
    {"PowerList", SetPowerList, kWrite, 76, {602, 642}, true},
    {"Pulse", SetPulse, kWrite, 31, {651}, true},
    {"Packet", SetPacket, kWrite, 31, {651}, true},
    {"PulseOff", Set(&M::SetPulseModEnabled, false), kWrite, 31, {652}, true},
    {"PolarityWhileOff", Set(&M::SetPulseModPolarity, true), kWrite, 31, {652}, true},
    {"TriggerOutput", SetSyncOutput, kWrite, 8, {661, 663}, false, {662}},
    {"SyncGenerator", SetSyncGenerator, kWrite, 37, {671}},
    {"SerialNumber", Get(&M::GetSerialNumber), kRead, 83, {}},
    {"InstrumentType", Get(&M::GetInstrumentType), kRead, 10, {}},
    {"Reference", Set(&M::SetExtRefGen, ReferenceSettings{true, 5e6}), kWrite, 17, {692}},
    {"PhaseDelay", Set(&M::SetExtRefPhaseDelay, -7), kWrite, 92, {693}},
    {"Compensation", Set(&M::SetCompensMode, 9), kWrite, 11, {694}},
    {"Averaging", Set(&M::SetAveraging, 9), kWrite, 4, {701}, true},
};

/// Those that the worker tells while it measures, or that it does not measure after.
inline const std::vector<Operation> kOthers = {
    {"RfButton", Get(&M::GetRfButton), kRead, 34, {681}},
    {"PllState", Get(&M::GetPllState), kRead, 0, {682}},
    {"ErgState", Get(&M::GetErgState), kRead, 0, {683}},
    {"LevelState", Get(&M::GetLevelState), kRead, 79, {684}},
    {"FrequencyStepMode", SetMode(kFrequencyStep), kWrite, 0, {601}, true, {602, 631}},
    {"ListMode", SetMode(kList), kWrite, 76, {602}, true, {601, 631}},
    {"ContinuousWave", SetMode(kContinuousWave), kWrite, 79, {602}, true, {601, 631}, kPowerStep},
    {"PowerControl", Set(&M::SetExtPwrCtrl, true), kWrite, 7, {631}, true, {661, 662, 663}},
};

}  // namespace operations
