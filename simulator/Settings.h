// The instrument's parameters: which it knows, what it does with the values it is given, and its
// answers.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "simulator/InstrumentState.h"
#include "simulator/Options.h"
#include "simulator/Wire.h"

namespace simulator {

/// A data block of more points than these would not fit the 16-bit length of a message.
inline constexpr std::uint32_t kMaxPoints = 5461;

/// Every value is clamped to what the instrument can do and rounded to its steps; the answer to a
/// write carries the values that were set, in the form of the request.
class Settings {
 public:
  explicit Settings(const Options& options);

  /// A client has come.
  void BeginConnection() { power_woken_ = false; }

  /// The body is a parameter's wire image: two bytes of identifier, then the elements. Answers a
  /// status and, unless it is negative, the answer's body.
  std::int16_t Write(const Message& request, Bytes& answer);
  /// The elements of the request are not looked at.
  std::int16_t Read(const Message& request, Bytes& answer) const;

  [[nodiscard]] const InstrumentState& state() const { return state_; }
  /// For what happens at the instrument itself.
  [[nodiscard]] InstrumentState& state() { return state_; }

  /// Source points of one sweep: every level with all frequencies, the frequency fastest, not more
  /// than kMaxPoints.
  [[nodiscard]] std::uint32_t SweepPoints() const;

 private:
  using Values = std::vector<double>;

  /// One form of a parameter. The type code of the header tells the size of the elements.
  struct Form {
    std::uint16_t id;
    std::uint8_t count;
    std::uint8_t type;
    bool is_signed;
    bool (*known)(const Options&);
    void (Settings::*set)(const Form&, std::span<const double>);  ///< null: read only
    Values (Settings::*get)(const Form&) const;
  };
  static const std::span<const Form> kForms;

  struct FormSearch {
    const Form* form = nullptr;
    std::int16_t status = 0;
  };
  [[nodiscard]] FormSearch FindForm(std::uint16_t id, std::uint8_t count, std::uint8_t type) const;

  // The axes (Settings_Axes.cpp).
  [[nodiscard]] double ClampFrequency(double frequency) const;
  [[nodiscard]] double ClampLevel(double level) const;
  void SetFrequency(const Form& form, std::span<const double> values);
  [[nodiscard]] Values GetFrequency(const Form& form) const;
  void SetLevel(const Form& form, std::span<const double> values);
  [[nodiscard]] Values GetLevel(const Form& form) const;
  void SetShortLevel(const Form& form, std::span<const double> values);
  [[nodiscard]] Values GetShortLevel(const Form& form) const;
  void SetLevelAxis(double level, double points, double step, bool sweep);
  void SetAttenuatorMode(double mode);

  // Transfers of a variable number of elements, chunk by chunk (Settings_Blocks.cpp).
  [[nodiscard]] static bool IsBlock(const Message& request, std::uint16_t id);
  std::int16_t WriteBlock(const Message& request, std::uint16_t id, Bytes& answer);
  std::int16_t WriteList(const Message& request, std::uint16_t id, Bytes& answer);
  std::int16_t WritePulses(const Message& request, Bytes& answer);
  void SetPulseHead(const Form& form, std::span<const double> values);
  [[nodiscard]] Values GetPulseHead(const Form& form) const;
  void SetPulseHead(std::span<const double> values);
  std::int16_t WriteFrequencyTable(const Message& request, std::uint16_t id, Bytes& answer);

  // --- The others
  void SetKind(const Form& form, std::span<const double> values);
  [[nodiscard]] Values GetKind(const Form& form) const;
  void SetAveraging(const Form& form, std::span<const double> values);
  [[nodiscard]] Values GetAveraging(const Form& form) const;
  void SetDwell(const Form& form, std::span<const double> values);
  [[nodiscard]] Values GetDwell(const Form& form) const;
  void SetMask(const Form& form, std::span<const double> values);
  [[nodiscard]] Values GetMask(const Form& form) const;
  void SetTrigger(const Form& form, std::span<const double> values);
  [[nodiscard]] Values GetTrigger(const Form& form) const;
  void SetReference(const Form& form, std::span<const double> values);
  [[nodiscard]] Values GetReference(const Form& form) const;
  void SetPhaseDelay(const Form& form, std::span<const double> values);
  [[nodiscard]] Values GetPhaseDelay(const Form& form) const;
  void SetCompensation(const Form& form, std::span<const double> values);
  [[nodiscard]] Values GetCompensation(const Form& form) const;
  void SetSync(const Form& form, std::span<const double> values);
  [[nodiscard]] Values GetSync(const Form& form) const;
  [[nodiscard]] Values GetRfButton(const Form& form) const;
  [[nodiscard]] Values GetIdentity(const Form& form) const;
  void SetUnnamed(const Form& form, std::span<const double> values);
  [[nodiscard]] Values GetUnnamed(const Form& form) const;

  const Options options_;
  InstrumentState state_;
  bool power_woken_ = false;  ///< the power commands of generation 0 have been addressed
};

/// To the nearest multiple of `step`; unchanged for a step of 0.
double RoundTo(double value, double step);

}  // namespace simulator
