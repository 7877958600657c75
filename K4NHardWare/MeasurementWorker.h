// The background thread of a session: reads measurement blocks while the instrument sweeps.
#pragma once

#include <atomic>
#include <cstdint>
#include <thread>
#include <vector>

#include "K4NHardWare/ErrorTrail.h"
#include "K4NHardWare/InstrumentSettings.h"
#include "K4NHardWare/MeasurementBlock.h"
#include "K4NHardWare/Synchronized.h"
#include "platform/os/Sync.h"
#include "status/Status.h"

class D3THardWare;
namespace k4n {

struct ReceivedBlock;

/// The instrument's last known state, updated by the worker while it measures.
struct StateFlags {
  std::atomic<bool> rf_button = false;
  std::atomic<bool> pll_locked = false;
  std::atomic<bool> level_settled = false;
  std::atomic<bool> erg_good = true;  ///< cleared by a fault only
};

/// Start, Stop, Pause and Resume are called by one thread at a time (the manager's operation lock
/// sees to it); the rest from any thread. A caller may use the instrument only between Pause and
/// Resume. An exception in the worker's thread counts as a failed read.
class MeasurementWorker {
 public:
  MeasurementWorker(ErrorTrail& trail, const Synchronized<InstrumentSettings>& settings,
                    MeasurementBlock& block);
  /// Ends the thread if it runs.
  ~MeasurementWorker();
  MeasurementWorker(const MeasurementWorker&) = delete;
  MeasurementWorker& operator=(const MeasurementWorker&) = delete;

  /// Starts the thread, paused. The model must live until Stop.
  void Start(D3THardWare& model);
  /// Ends the thread and waits for it; nothing to do when it does not run.
  void Stop();
  [[nodiscard]] bool IsRunning() const { return thread_.joinable(); }

  /// Waits until the worker has released the instrument: one stop request, one acknowledgement,
  /// even if it is paused already. A read in progress ends first, within one VISA time-out; its
  /// sweep is given up. Does nothing if the thread does not run.
  void Pause();
  /// Lets the paused worker read blocks until the next Pause or, with a software trigger pending,
  /// until the sweep has ended.
  void Resume();

  /// True from Resume until the worker has stopped reading.
  [[nodiscard]] bool IsMeasuring() const { return measuring_; }

  /// Makes the next run one sweep long.
  void RequestSoftwareTrigger() { trigger_pending_ = true; }
  [[nodiscard]] bool IsTriggerPending() const { return trigger_pending_; }

  [[nodiscard]] StateFlags& state() { return state_; }

  /// Reads one block in the caller's thread and waits for it; the worker must be paused.
  /// VI_ERROR_TMO if the instrument answers with a notice instead of a block; other failures also
  /// go into the trail.
  Status ReadSingleBlock();

 private:
  void Run();
  bool Measure();
  template <typename Step>
  Status Attempt(Step&& step) noexcept;
  StatusAnd<ReceivedBlock> ReadBlock(bool& stop_requested);
  void FinishRead(Status read, const ReceivedBlock& block);
  StatusAnd<ReceivedBlock> Poll(Site site);
  void KeepBlock(const ReceivedBlock& received);
  void NoteState(Status status);
  void PollRfButton();

  ErrorTrail& trail_;
  const Synchronized<InstrumentSettings>& settings_;
  MeasurementBlock& block_;
  D3THardWare* model_ = nullptr;

  /// Each release of `stop_request_` is answered by exactly one release of `stopped_`. The end of a
  /// software-triggered sweep is signalled by `measuring_` only, so that no acknowledgement is left
  /// over for a later pause.
  os::Semaphore run_;
  os::Semaphore stop_request_;
  os::Semaphore stopped_;
  std::atomic<bool> quit_ = false;
  std::atomic<bool> measuring_ = false;
  std::atomic<bool> trigger_pending_ = false;
  StateFlags state_;

  std::vector<std::uint8_t> receive_buffer_;
  std::uint32_t button_polled_ = 0;  ///< tick count

  std::thread thread_;  ///< last: it uses everything above
};

}  // namespace k4n
