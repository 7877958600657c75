// The instrument manager: the single owner of everything that belongs to one open instrument
// session.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>

#include "K4NHardWare/ErrorTrail.h"
#include "K4NHardWare/IEventProcessor.h"
#include "K4NHardWare/InstrumentSettings.h"
#include "K4NHardWare/MeasurementBlock.h"
#include "K4NHardWare/MeasurementWorker.h"
#include "K4NHardWare/ProtocolLibrary.h"
#include "K4NHardWare/Synchronized.h"
#include "measurement/DetectorTable.h"
#include "measurement/TraceMatrix.h"
#include "platform/com/Com.h"
#include "status/Status.h"

class CommandExchanger;
class D3THardWare;
namespace k4n {

enum class ListAxis;

/// One record of the error trail in a client's terms.
struct ErrorReport {
  Status status = Status::kOk;
  std::optional<std::string> message;
};

}  // namespace k4n

/// One per root object. Operations may be called from any thread; those that talk to the instrument
/// run one at a time, each pausing the measurement worker first and resuming it at the end. All of
/// them return 10057 without a session (unless said otherwise), 0 to 6 on success and any other
/// status on failure; a failure of the instrument also goes into the error trail. Getters of cached
/// settings never wait for the instrument. They return the values as the instrument accepted them;
/// without a session those of the last one, or the defaults.
class CK4NManager final : public uIEvent::IEventProcessor {
 public:
  CK4NManager();
  ~CK4NManager();
  CK4NManager(const CK4NManager&) = delete;
  CK4NManager& operator=(const CK4NManager&) = delete;

  // --- Session
  /// Opens a session, closing one that is open. Narrow texts in the thread's ANSI code page; only
  /// the option "GENERATOR" has an effect: no detector channels.
  Status Initialize(const std::string& resource_name, const std::string& option_string);
  /// Switches the RF output off and ends the session; 10057 when there was none.
  Status Close();
  /// True while the model, the VISA session and the exchanger are all present. Never waits.
  [[nodiscard]] bool IsConnected() const;
  /// Takes the oldest record from the error trail: its status, and its text (VISA library, protocol
  /// library or decimal number). 0 and no text when the trail is empty. Needs no session.
  [[nodiscard]] k4n::ErrorReport ErrorQuery();
  /// What the error trail holds; nothing is removed.
  [[nodiscard]] const k4n::ErrorTrail& error_trail() const { return trail_; }
  /// True if the instrument reports a date for its DSP program. Kept: the reference date for the
  /// comparison lies in December, which is not accepted as a date, so every date counts as newer.
  [[nodiscard]] bool IsFirmwareNewer() const { return firmware_newer_; }

  // --- RF output
  Status SetFrequency(double frequency);  ///< Hz
  [[nodiscard]] double GetFrequency() const;
  Status SetLevel(double level);  ///< dBm
  [[nodiscard]] double GetLevel() const;
  Status SetOutputEnabled(bool enabled);
  /// Also discards a block that has not been fetched (kept: a client polling the output loses it).
  [[nodiscard]] bool GetOutputEnabled();

  // --- Sweep
  Status SetSweepMode(k4n::SweepMode mode);
  [[nodiscard]] k4n::SweepMode GetSweepMode() const;
  Status SetFrequencyStep(const k4n::StepSettings& step);  ///< Hz
  [[nodiscard]] k4n::StepSettings GetFrequencyStep() const;
  Status SetPowerStep(const k4n::StepSettings& step);  ///< dBm, dB
  [[nodiscard]] k4n::StepSettings GetPowerStep() const;
  Status SetSweepTrigger(const k4n::SweepTriggerSettings& trigger);
  [[nodiscard]] k4n::SweepTriggerSettings GetSweepTrigger() const;
  /// Kept: the instrument's parameter has 32 bits, and the higher bits of a longer time are lost:
  /// 10 s read back as 1.410065408 s.
  Status SetDwell(double nanoseconds);
  [[nodiscard]] double GetDwell() const;  ///< nanoseconds
  /// Marks a software trigger as pending and resumes the worker, which then reads one sweep.
  void RequestSoftwareTrigger();

  // --- Lists
  /// Replaces the list by the array's values and writes the instrument's corrections back into the
  /// array. A null array clears the list. SAFEARRAY failures are returned as they are.
  Status SetFrequencyList(SAFEARRAY* frequencies);  ///< Hz
  Status SetPowerList(SAFEARRAY* levels);           ///< dBm
  void ClearFrequencyList();
  void ClearPowerList();

  // --- Pulse generator and pulse modulation: nanoseconds
  // The settings are stored without a session too, and sent while the modulator is on.
  Status SetPulseWidth(double width);
  Status SetPulsePeriod(double period);
  Status SetDoublePulseEnabled(bool enabled);
  Status SetDoublePulseDelay(double delay);
  Status SetPacketEnabled(bool enabled);
  /// Widths and delays in seconds; written back as the instrument set them.
  Status ConfigurePacket(bool enabled, SAFEARRAY* widths, SAFEARRAY* delays);
  Status SetPulseModEnabled(bool enabled);
  Status SetPulseModSource(k4n::PulseSource source);
  Status SetPulseModPolarity(bool inverse);
  [[nodiscard]] k4n::PulseSettings GetPulseSettings() const;

  // --- Trigger output, sync generator
  Status SetTriggerOutput(const k4n::TriggerOutputSettings& settings);
  [[nodiscard]] k4n::TriggerOutputSettings GetTriggerOutput() const;
  Status SetSyncGenerator(const k4n::SyncGeneratorSettings& settings);
  [[nodiscard]] k4n::SyncGeneratorSettings GetSyncGenerator() const;

  // --- System
  [[nodiscard]] StatusAnd<std::string> GetSerialNumber();
  [[nodiscard]] StatusAnd<std::string> GetInstrumentType();
  [[nodiscard]] StatusAnd<bool> GetRfButton();    ///< pressed
  [[nodiscard]] StatusAnd<bool> GetPllState();    ///< locked
  [[nodiscard]] StatusAnd<bool> GetErgState();    ///< good
  [[nodiscard]] StatusAnd<bool> GetLevelState();  ///< settled
  Status SetAttenMode(k4n::AttenMode mode);
  [[nodiscard]] k4n::AttenMode GetAttenMode() const;
  Status SetExtRefGen(const k4n::ReferenceSettings& reference);
  [[nodiscard]] k4n::ReferenceSettings GetExtRefGen() const;
  Status SetExtRefPhaseDelay(std::int32_t delay);
  [[nodiscard]] std::int32_t GetExtRefPhaseDelay() const;
  Status SetExtPwrCtrl(bool enabled);
  [[nodiscard]] bool GetExtPwrCtrl() const;
  Status SetCompensMode(std::uint32_t mode);
  [[nodiscard]] std::uint32_t GetCompensMode() const;

  // --- Measurement
  /// 0x80047012 for a generator without detectors.
  Status SetAveraging(std::int32_t count);
  /// Nothing for a generator without detectors.
  [[nodiscard]] std::optional<std::int32_t> GetAveraging() const;
  /// Loads a detector file into the table of one channel, 0 to 2. A failed load keeps the table
  /// that the channel had.
  Status LoadDetectorData(std::size_t channel, const std::filesystem::path& file);
  /// Converts the newest block, each block once; VI_ERROR_TMO when there is none.
  Status FetchData(TraceMatrix& trace);
  // Channel index 3 or more: ignored, 0, whatever the value. They work without a session.
  /// Hz; magnitude over 1e11: 0x80047010.
  Status SetChannelOffset(std::size_t channel, double offset);
  Status SetChannelMultiplier(std::size_t channel, double multiplier);
  Status SetChannelDivider(std::size_t channel, double divider);  ///< below 1.0: 0x80047010
  [[nodiscard]] measurement::ChannelTransform GetChannel(std::size_t channel) const;

  // --- IEventProcessor: the top of the chain; the last event is kept, nothing else happens
  void ProcessEvent(uIEvent::Event* event) override;
  uIEvent::IEventProcessor* SetManager(uIEvent::IEventProcessor* manager) override;
  uIEvent::EventProcessor* GetProcessor() override;

 private:
  /// One operation on the instrument: holds the operation lock and keeps the worker paused.
  class Operation;
  /// The result of an operation, and whether the worker stays paused after it.
  struct Outcome {
    // NOLINTNEXTLINE(google-explicit-constructor)
    Outcome(Status result, bool paused = false) : status(result), leaves_worker_paused(paused) {}
    Status status;
    bool leaves_worker_paused;
  };
  enum class Output { kSwitchOff, kLeave };

  /// Runs the body, which returns an Outcome or a Status, as one operation; 10057 without a
  /// session.
  template <typename Body>
  Status Guarded(Body&& body);
  /// Adds the result of an exchange to the trail if it is a failure, and returns it.
  Status Record(k4n::Site site, Status result);
  /// One of the cached settings.
  template <typename T>
  [[nodiscard]] T Cached(T k4n::InstrumentSettings::*setting) const;

  void AbandonExchange();

  // --- Called within an operation
  Status OpenSession(const std::string& resource_name);
  Status StartSession(bool generator_only);
  Status EndSession(Output output);
  Status ResetAndIdentify();
  void LoadDefaults();
  Status Identify();
  [[nodiscard]] bool MayMeasure() const;

  Status ApplyFrequencyAxis(std::optional<k4n::SweepMode> request);
  Status ApplyPowerAxis(std::optional<k4n::SweepMode> request);
  Status ProgramFrequencyAxis(k4n::SweepMode mode);
  Status ProgramPowerAxis(k4n::SweepMode mode, bool trial);
  Status ProgramList(k4n::ListAxis axis, k4n::Synchronized<k4n::SweepList>& list, double stand_in,
                     const k4n::LevelSettings& level);
  Status SwitchOutputOff();
  Outcome ProgramSweepMode(k4n::SweepMode mode);
  Outcome ProgramSweepTrigger(k4n::SweepTriggerSettings trigger);
  template <typename Apply>
  Status ReplaceList(SAFEARRAY* array, k4n::Synchronized<k4n::SweepList>& list, Apply&& apply);

  template <typename Change>
  Status ChangePulse(Change&& change);
  Status ProgramPulseModulation();
  Status ProgramSinglePulse(k4n::PulseSettings& pulse);
  Status ProgramDoublePulse(k4n::PulseSettings& pulse);
  Status ProgramPacket(k4n::PulseSettings& pulse);
  Status SwitchPulseModulationOff();

  Status ProgramTriggerOutput(k4n::TriggerOutputSettings settings);
  Status RouteSyncGenerator(bool routed);
  Status ProgramAveraging(std::int32_t count);
  /// 0x80047010 for a value that is not valid.
  Status SetChannel(std::size_t channel, double measurement::ChannelTransform::*element,
                    double value, bool is_valid);
  /// Whether a fault is reported each time or only once.
  enum class Told { kAlways, kOnce };
  template <typename Read>
  StatusAnd<bool> ReadState(std::atomic<bool>& state, k4n::Site site, Read&& read,
                            Told told = Told::kAlways);

  /// Lock order: operation lock, data lock (in the measurement block), session lock; the locks
  /// inside `trail_` and the Synchronized values are leaves.
  mutable std::recursive_mutex operation_mutex_;
  /// Held while the session's objects are created or destroyed, and by ErrorQuery, which must not
  /// wait for an operation on the instrument.
  std::mutex session_mutex_;
  std::atomic<bool> connected_ = false;  ///< for everybody else
  std::unique_ptr<CommandExchanger> exchanger_;
  std::unique_ptr<D3THardWare> model_;  ///< null: no session
  k4n::ProtocolLibrary protocol_;

  k4n::ErrorTrail trail_;
  k4n::Synchronized<k4n::InstrumentSettings> settings_;
  k4n::Synchronized<k4n::PulseSettings> pulse_;
  k4n::Synchronized<k4n::SweepList> frequency_list_;
  k4n::Synchronized<k4n::SweepList> power_list_;
  k4n::Synchronized<
      std::array<std::shared_ptr<const measurement::DetectorTable>, measurement::kTraceChannels>>
      detector_tables_;
  std::atomic<measurement::InstrumentKind> instrument_kind_ =
      measurement::InstrumentKind::kAnalyser;
  std::atomic<bool> firmware_newer_ = false;
  /// The mode last programmed as a whole; guarded by the operation lock.
  k4n::SweepMode measurement_mode_ = k4n::SweepMode::kContinuousWave;
  std::atomic<bool> sweep_armed_ = false;  ///< kept: never reset, not even by a new session

  k4n::MeasurementBlock block_;
  k4n::MeasurementWorker worker_{trail_, settings_, block_};

  std::unique_ptr<uIEvent::Event> last_event_;
  uIEvent::IEventProcessor* manager_ = nullptr;
};
