// The instrument model: one operation per instrument setting, each a transaction of one numbered
// parameter.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "K4NHardWare/EventProcessor.h"
#include "K4NHardWare/HardWareParametr.h"
#include "K4NHardWare/IdentityDate.h"
#include "K4NHardWare/InstrumentSettings.h"
#include "K4NHardWare/ParameterTable.h"
#include "K4NHardWare/ProtocolMessage.h"
#include "measurement/DataBlock.h"
#include "status/Status.h"

class CommandExchanger;

namespace k4n {

/// The five elements of a trigger parameter, input and output alike.
struct TriggerElements {
  std::uint32_t code = 0;
  bool edge = false;       ///< input: falling edge detected; output: inverse polarity
  std::uint8_t value = 0;  ///< input: a flag; output: pulse width, microseconds
  std::uint32_t flag = 0;
  std::uint32_t last = 0;
};

/// Flags of the feature mask that is written before the averaging factor; the defaults give 0xFFFF.
struct AveragingFeatures {
  bool clear_bit_2 = false;
  bool bit_3 = true;
  bool bit_4 = true;
  bool bit_5 = true;
};

/// True if the instrument accepts the probed form, with or without a notice.
constexpr bool IsAccepted(Status result) { return ToCode(result) >= 0 && ToCode(result) <= 10000; }

enum class ListAxis { kFrequency, kPower };

/// A data answer, in the caller's buffer.
struct ReceivedBlock {
  std::span<const std::uint8_t> body;  ///< points and status word, see ParseBlock
  measurement::ReadingFormat format{};
};

}  // namespace k4n

/// One per session. It holds no lock: the manager calls one operation at a time. Every setting
/// operation returns 0 or a negative status (after a negative answer the recovery command has been
/// sent); on success the variables that it was given hold what the instrument set, which may be
/// clamped or rounded.
class D3THardWare final : public uIEvent::EventProcessor {
 public:
  /// Registers itself as the exchanger's manager. The exchanger must outlive the model.
  explicit D3THardWare(CommandExchanger& exchanger);
  ~D3THardWare() = default;
  D3THardWare(const D3THardWare&) = delete;
  D3THardWare& operator=(const D3THardWare&) = delete;

  /// Reads the frequency limits and the identity, and finds out which command forms the instrument
  /// knows. -32765 and -32766: it does not know the requests.
  Status Initialize();
  /// Sends the recovery command (command 1) and returns the status of its answer.
  Status Recover();
  /// The same after a failed data read: a device clear first drops the rest of its answer.
  Status ClearAndRecover();
  /// Writes a candidate kind and returns the instrument's own in its place.
  Status QueryInstrumentKind(std::uint32_t& kind);
  /// Reads the present output state: level (dBm) and the settings that go with it.
  Status ReadOutputState(k4n::LevelSettings& settings, double& level);

  /// Hz; clamped to the instrument's limits before it is written.
  Status SetCwFrequency(double& frequency);
  /// Hz.
  Status SetFrequencySweep(k4n::StepSettings& sweep);
  /// dBm. The first call in a session finds out which power commands the instrument knows; if its
  /// answers leave that open, the next call tries again.
  Status SetOutputLevel(k4n::LevelSettings& settings, double& level);
  /// dBm, dB. -1 when the instrument's power commands have no sweep.
  Status SetPowerSweep(k4n::LevelSettings& settings, k4n::StepSettings& sweep);
  /// Values in place: Hz, or dBm with the level settings' first two elements. 0 for no values.
  Status TransferList(k4n::ListAxis axis, std::span<double> values,
                      const k4n::LevelSettings& settings);
  /// Nanoseconds, as the parameter carries them.
  Status SetDwell(double& nanoseconds);
  /// As SetDwell with the value in thousands of the parameter's unit.
  Status SetDwellThousands(double& thousands);
  /// Factor 1 to 14 (clamped); the feature mask is written first.
  Status SetAveraging(std::int32_t& factor, const k4n::AveragingFeatures& features = {});
  /// Group 1 is the second trigger line. If the instrument has none, nothing is sent and the result
  /// is 0.
  Status SetTriggerInput(unsigned group, k4n::TriggerElements& elements);
  Status SetTriggerOutput(unsigned group, k4n::TriggerElements& elements);
  /// Mode 2 starts the train, 0 stops it; nanoseconds. Both arrays have the same length.
  Status TransferPulseTrain(std::uint32_t mode, k4n::PulseSource& source, std::span<double> widths,
                            std::span<double> gaps, bool inverse);
  /// Nanoseconds; the second element carries the time from the end of a pulse to the next one.
  Status SetSyncGenerator(double& width, double& off_time, double& delay);
  /// Hz. An instrument that knows only the short form gets the switch without the frequency.
  Status SetExternalReference(bool& enabled, double& frequency);
  Status SetPhaseDelay(double& value);
  Status SetCompensationMode(std::uint32_t& mode);

  Status ReadRfButton(bool& pressed);
  Status ReadPllState(bool& locked);
  Status ReadErgState(bool& good);
  Status ReadLevelState(bool& settled);
  /// Reads a text file of the instrument, for example "\FRAM\SERIAL.TXT", without blanks and tabs,
  /// up to the first line end.
  Status ReadInstrumentFile(std::string_view path, std::string& text);
  /// Asks for the serial number, whose answer is scrambled with a random key; -1 when its checksum
  /// is wrong.
  Status QuerySerialNumber(std::string& serial_number);

  /// Reads one data block into the buffer and waits for it. The instrument may answer in the other
  /// format. 0xBFFF0037: the answer has no known format mark and is not a block. A negative status
  /// word of the block raises a "Data processing error" event and is returned as the status.
  [[nodiscard]] StatusAnd<k4n::ReceivedBlock> ReadDataBlock(std::span<std::uint8_t> buffer,
                                                            measurement::ReadingFormat wanted);
  /// The same without waiting for the end: VI_ERROR_TMO while the block is not complete; call
  /// again, with the same buffer.
  [[nodiscard]] StatusAnd<k4n::ReceivedBlock> PollDataBlock(std::span<std::uint8_t> buffer,
                                                            measurement::ReadingFormat wanted);

  /// The VISA library's text for one of its statuses.
  [[nodiscard]] std::string DescribeStatus(Status code);

  [[nodiscard]] const k4n::IdentityRecord& identity() const { return identity_; }
  [[nodiscard]] double minimum_frequency() const { return minimum_frequency_; }
  [[nodiscard]] double maximum_frequency() const { return maximum_frequency_; }
  /// 1 for instruments up to 4 GHz, else 2; 0 before Initialize.
  [[nodiscard]] std::uint32_t frequency_class() const { return frequency_class_; }
  /// Which generation of the power commands the instrument speaks, 0 to 5.
  [[nodiscard]] std::uint32_t power_variant() const { return power_variant_; }

  // --- Parameters that no setting of the driver uses yet
  Status WritePulseTrainFixed(std::array<std::uint32_t, 3>& elements);
  Status WriteSwitchSetting(bool& enabled, std::uint32_t& value);
  /// The frequency is in MHz; the value has 1/256 steps and 16 bits.
  Status WriteScaledSetting(double& megahertz, std::uint32_t& number, double& value);
  Status WriteFixedConfiguration(bool flag);
  /// Values in place, 1/256 steps and 16 bits; at most 3499 of them, else -1.
  Status TransferFrequencyTable(std::span<double> values);

  // The transactions, for parameters that have no operation of their own.
  /// Command 3. Returns 0 for every answer that is not negative; the parameter's status keeps the
  /// code.
  Status WriteParameter(HardWareParametr& parameter);
  /// Command 4. Returns the answer's code.
  Status ReadParameter(HardWareParametr& parameter);

 private:
  struct ElementValue {
    std::size_t element;
    double* value;
  };

  HardWareParametr& At(k4n::Parameter parameter) {
    return parameters_[static_cast<std::size_t>(parameter)];
  }
  /// Sends the message and receives the answer into it. Returns the answer's code, or the failure
  /// of the link.
  Status Exchange();
  Status Transact(HardWareParametr& parameter);
  /// Fills the elements from the values, writes, and on success copies the instrument's elements
  /// back.
  Status WriteElements(HardWareParametr& parameter, std::initializer_list<ElementValue> values);
  StatusAnd<k4n::ReceivedBlock> FinishDataRead(const ProtocolMessage& message);

  Status WriteFeatureMask(std::uint16_t mask);
  Status ReadIdentity();
  Status ProbeFrequencyRange();
  Status ProbeFrequencyForm(k4n::Parameter form, double span);
  [[nodiscard]] double ClampFrequency(double frequency) const;

  Status ProbePowerVariant(const k4n::LevelSettings& settings, double level);
  Status ProbeWideSweep(const k4n::LevelSettings& settings, double level);
  Status ProbeNarrowSweep(const k4n::LevelSettings& settings, double level);
  Status WritePowerProbe(k4n::Parameter form, const k4n::LevelSettings& settings, double level);
  [[nodiscard]] bool IsUsable(k4n::Parameter form);
  [[nodiscard]] k4n::Parameter LevelParameter() const;
  Status WriteTriggerGroup(k4n::Parameter one_group, k4n::Parameter two_groups, unsigned group,
                           k4n::TriggerElements& elements);
  /// Reads a parameter for its result code only: `bad_code` sets `good` to false, and the result is
  /// 0.
  Status ReadStateCode(k4n::Parameter parameter, Status bad_code, bool& good);

  CommandExchanger& exchanger_;
  ProtocolMessage message_;                   ///< reused, so that no transaction allocates a body
  std::vector<HardWareParametr> parameters_;  ///< in the order of kParameterTable

  std::uint32_t frequency_class_ = 0;
  k4n::IdentityRecord identity_;
  static constexpr std::uint32_t kVariantUnprobed = 3;
  std::uint32_t power_variant_ = kVariantUnprobed;
  bool power_variant_settled_ = false;  ///< no further probe
  bool two_trigger_groups_ = true;
  bool pulse_polarity_ = false;  ///< the pulse train carries a polarity element
  double minimum_frequency_ = 0.0;
  double maximum_frequency_ = 0.0;
  bool wide_frequency_ = false;
  bool four_element_frequency_ = false;
};
