// What the sweep members read of the manager before they change one thing and send it back.
#pragma once

#include "K4NHardWare/K4NManager.h"
#include "driver/Units.h"

/// The trigger of the sweep as it stands, for all kinds of sweep.
struct SweepTrigger {
  SweepTriggerSettings settings;
  bool single_step = false;
};

inline SweepTrigger SweepTriggerOf(const CK4NManager& manager) {
  SweepTrigger trigger;
  manager.GetSweepTrigger(trigger.settings, trigger.single_step);
  return trigger;
}

inline SweepMode SweepModeOf(const CK4NManager& manager) {
  SweepMode mode{};
  manager.GetSweepMode(mode);
  return mode;
}

/// Hertz.
inline StepSettings FrequencyStepOf(const CK4NManager& manager) {
  StepSettings axis;
  manager.GetFrequencyStep(axis.start, axis.stop, axis.step);
  return axis;
}

/// dBm and dB.
inline StepSettings PowerStepOf(const CK4NManager& manager) {
  StepSettings axis;
  manager.GetPowerStep(axis.start, axis.stop, axis.step);
  return axis;
}

/// Seconds a point, one for all kinds of sweep.
inline double DwellOf(const CK4NManager& manager) {
  double nanoseconds{};
  manager.GetDwell(nanoseconds);
  return nanoseconds / kNanosecondsPerSecond;
}
