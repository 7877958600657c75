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
#include "measurement/Status.h"
#include "measurement/TraceMatrix.h"
#include "platform/com/Com.h"

class CommandExchanger;
class D3THardWare;
enum class ListAxis;

/// One per root object. Operations may be called from any thread; those that talk to the instrument
/// run one at a time, each pausing the measurement worker first and resuming it at the end. All of
/// them return 10057 without a session (unless said otherwise), 0 to 6 on success and any other
/// status on failure; a failure of the instrument also goes into the error trail. Arguments passed
/// by reference come back as the instrument set them. Getters of cached settings never wait for the
/// instrument.
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
  /// library or decimal number). Code 0 and no text when the trail is empty. Returns 0, also
  /// without a session.
  Status ErrorQuery(std::int32_t& code, std::optional<std::string>& message);
  /// What the error trail holds; nothing is removed.
  [[nodiscard]] const ErrorTrail& error_trail() const { return trail_; }
  /// Whether the instrument's DSP program is dated at all. Kept: the reference date that it is
  /// compared with lies in December, which is not read as a date, so that every date is later.
  [[nodiscard]] bool IsFirmwareNewer() const { return firmware_newer_; }

  // --- RF output
  Status SetFrequency(double frequency);  ///< Hz
  Status GetFrequency(double& frequency) const;
  Status SetLevel(double level);  ///< dBm
  Status GetLevel(double& level) const;
  Status SetOutputEnabled(bool enabled);
  /// Also discards a block that has not been fetched (kept: a client polling the output loses it).
  Status GetOutputEnabled(bool& enabled);

  // --- Sweep
  Status SetSweepMode(SweepMode mode);
  /// Always 0; the stored code as it stands.
  Status GetSweepMode(SweepMode& mode) const;
  Status SetFrequencyStep(double& start, double& stop, double& step);  ///< Hz
  Status GetFrequencyStep(double& start, double& stop, double& step) const;
  Status SetPowerStep(double& start, double& stop, double& step);  ///< dBm, dBm, dB
  Status GetPowerStep(double& start, double& stop, double& step) const;
  Status SetSweepTrigger(SweepTriggerSettings& trigger, bool single_step);
  Status GetSweepTrigger(SweepTriggerSettings& trigger, bool& single_step) const;
  /// Kept: the instrument's parameter has 32 bits, and what a longer time has beyond them is lost:
  /// 10 s read back as 1.410065408 s.
  Status SetDwell(double nanoseconds);
  /// Always 0.
  Status GetDwell(double& nanoseconds) const;
  /// Marks a software trigger as pending and resumes the worker, which then reads one sweep.
  void RequestSoftwareTrigger();

  // --- Lists
  /// Replaces the list by the array's values and writes the instrument's corrections back into the
  /// array. A null array clears the list. SAFEARRAY failures are returned as they are.
  Status SetFrequencyList(SAFEARRAY* frequencies);  ///< Hz
  Status SetPowerList(SAFEARRAY* levels);           ///< dBm
  Status ClearFrequencyList();                      ///< always 0
  Status ClearPowerList();                          ///< always 0

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
  Status SetPulseModSource(std::uint32_t source);
  Status SetPulseModPolarity(bool inverse);
  [[nodiscard]] PulseSettings GetPulseSettings() const;

  // --- Trigger output, sync generator
  // Without a session the getters give what the last one left, or the defaults.
  Status SetTriggerOutput(TriggerOutputSettings& settings);
  [[nodiscard]] TriggerOutputSettings GetTriggerOutput() const;
  Status SetSyncGenerator(SyncGeneratorSettings& settings);
  [[nodiscard]] SyncGeneratorSettings GetSyncGenerator() const;

  // --- System
  Status GetSerialNumber(std::string& serial_number);
  Status GetInstrumentType(std::string& type);
  Status GetRfButton(bool& pressed);
  Status GetPllState(bool& locked);
  Status GetErgState(bool& good);
  Status GetLevelState(bool& settled);
  Status SetAttenMode(std::uint32_t mode);
  Status GetAttenMode(std::uint32_t& mode) const;
  Status SetExtRefGen(bool enabled, double frequency);  ///< Hz
  Status GetExtRefGen(bool& enabled, double& frequency) const;
  Status SetExtRefPhaseDelay(std::int32_t delay);
  Status GetExtRefPhaseDelay(std::int32_t& delay) const;
  Status SetExtPwrCtrl(bool enabled);
  Status GetExtPwrCtrl(bool& enabled) const;
  Status SetCompensMode(std::uint32_t mode);
  Status GetCompensMode(std::uint32_t& mode) const;

  // --- Measurement
  /// 0x80047012 for a generator without detectors.
  Status SetAveraging(std::int32_t count);
  Status GetAveraging(std::int32_t& count) const;
  /// Loads a detector file into the table of one channel, 0 to 2. A failed load keeps the table
  /// that the channel had.
  Status LoadDetectorData(std::size_t channel, const std::filesystem::path& file);
  /// Converts the newest block, each block once; VI_ERROR_TMO when there is none.
  Status FetchData(TraceMatrix& trace);
  // Channel index 3 or more: ignored, 0, whatever the value. They work without a session.
  Status SetChannelOffset(std::size_t channel,
                          double offset);  ///< Hz; magnitude over 1e11: 0x80047010
  Status GetChannelOffset(std::size_t channel, double& offset) const;
  Status SetChannelMultiplier(std::size_t channel, double multiplier);
  Status GetChannelMultiplier(std::size_t channel, double& multiplier) const;
  Status SetChannelDivider(std::size_t channel, double divider);  ///< below 1.0: 0x80047010
  Status GetChannelDivider(std::size_t channel, double& divider) const;

  // --- IEventProcessor: the top of the chain, events are only remembered
  void ProcessEvent(uIEvent::Event* event) override;
  uIEvent::IEventProcessor* SetManager(uIEvent::IEventProcessor* manager) override;
  uIEvent::EventProcessor* GetProcessor() override;

 private:
  /// One operation on the instrument: holds the operation lock and keeps the worker paused.
  class Operation;
  enum class Output { kSwitchOff, kLeave };

  /// Runs the body as one operation; 10057 without a session.
  template <typename Body>
  Status Guarded(Body&& body);
  /// Puts the result of an exchange into the trail when it is a failure; returns it.
  Status Record(Site site, Status result);
  /// Reads cached settings; 10057 without a session.
  template <typename Read>
  Status Cached(Read&& read) const;

  void AbandonExchange();
  // The rest is called within an operation.
  Status OpenSession(const std::string& resource_name);
  Status StartSession(bool generator_only);
  Status EndSession(Output output);
  Status ResetAndIdentify();
  void LoadDefaults();
  Status Identify();
  [[nodiscard]] bool MayMeasure() const;

  Status ApplyFrequencyAxis(std::optional<SweepMode> request);
  Status ApplyPowerAxis(std::optional<SweepMode> request);
  Status ProgramFrequencyAxis(SweepMode mode);
  Status ProgramPowerAxis(SweepMode mode, bool trial);
  Status ProgramList(ListAxis axis, Synchronized<SweepList>& list, double stand_in,
                     const LevelSettings& level);
  Status SwitchOutputOff();
  Status ProgramSweepMode(SweepMode mode);
  Status ProgramSweepTrigger(SweepTriggerSettings& trigger, bool single_step);
  template <typename Apply>
  Status ReplaceList(SAFEARRAY* array, Synchronized<SweepList>& list, Apply&& apply);

  template <typename Change>
  Status ChangePulse(Change&& change);
  Status ProgramPulseModulation();
  Status ProgramSinglePulse(PulseSettings& pulse);
  Status ProgramDoublePulse(PulseSettings& pulse);
  Status ProgramPacket(PulseSettings& pulse);
  Status SwitchPulseModulationOff();

  Status ProgramTriggerOutput(TriggerOutputSettings& settings);
  Status RouteSyncGenerator(bool routed);
  Status ProgramAveraging(std::int32_t count);
  /// 0x80047010 for a value that is not valid.
  Status SetChannel(std::size_t channel, double ChannelTransform::*element, double value,
                    bool is_valid);
  Status GetChannel(std::size_t channel, double ChannelTransform::*element, double& value) const;
  /// Whether a state counts as good again once it has been told.
  enum class Told { kAlways, kOnce };
  template <typename Read>
  Status ReadState(std::atomic<bool>& state, Site site, bool& value, Read&& read,
                   Told told = Told::kAlways);
  Status ReadSingleBlock();

  // Lock order: operation lock, data lock (in the measurement block), session lock; the locks
  // inside `trail_` and the Synchronized values are leaves.
  mutable std::recursive_mutex operation_mutex_;
  // Held where the session's objects come and go, and by ErrorQuery, which needs them while an
  // operation may be waiting for the instrument.
  std::mutex session_mutex_;
  std::atomic<bool> connected_ = false;  // what everybody else asks
  std::unique_ptr<CommandExchanger> exchanger_;
  std::unique_ptr<D3THardWare> model_;  // null: no session
  ProtocolLibrary protocol_;

  ErrorTrail trail_;
  Synchronized<InstrumentSettings> settings_;
  Synchronized<PulseSettings> pulse_;
  Synchronized<SweepList> frequency_list_;
  Synchronized<SweepList> power_list_;
  Synchronized<std::array<std::shared_ptr<const DetectorTable>, kChannelCount>> detector_tables_;
  std::atomic<InstrumentKind> instrument_kind_ = InstrumentKind::kAnalyser;
  std::atomic<bool> firmware_newer_ = false;
  // The mode last programmed as a whole; guarded by the operation lock.
  SweepMode measurement_mode_ = SweepMode::kContinuousWave;
  std::atomic<bool> sweep_armed_ = false;  // kept: set once and for all
  bool leave_worker_paused_ = false;       // by the operation that runs

  MeasurementBlock block_;
  MeasurementWorker worker_{trail_, settings_, block_};

  std::unique_ptr<uIEvent::Event> last_event_;
  uIEvent::IEventProcessor* manager_ = nullptr;
};
