#include "K4NHardWare/MeasurementWorker.h"

#include <array>
#include <chrono>
#include <new>
#include <optional>
#include <utility>

#include "K4NHardWare/D3THardWare.h"

namespace k4n {

namespace {

constexpr std::chrono::milliseconds kIdleWait{1000};
constexpr std::chrono::milliseconds kStopPoll{5};
constexpr std::uint32_t kButtonPeriod = 900;  // ms

}  // namespace

MeasurementWorker::MeasurementWorker(ErrorTrail& trail,
                                     const Synchronized<InstrumentSettings>& settings,
                                     MeasurementBlock& block)
    : trail_(trail), settings_(settings), block_(block), receive_buffer_(kLongestBlock) {}

MeasurementWorker::~MeasurementWorker() { Stop(); }

void MeasurementWorker::Start(D3THardWare& model) {
  model_ = &model;
  quit_ = false;
  measuring_ = false;
  trigger_pending_ = false;
  thread_ = std::thread([this] { Run(); });
}

void MeasurementWorker::Stop() {
  if (!IsRunning()) return;
  Pause();
  quit_ = true;
  run_.Release();  // wakes the idle thread, which then looks at the flag
  thread_.join();
  run_.TryAcquire();
}

void MeasurementWorker::Pause() {
  if (!IsRunning()) return;
  stop_request_.Release();
  stopped_.Acquire();
}

void MeasurementWorker::Resume() {
  if (!IsRunning()) return;
  measuring_ = true;
  run_.Release();
}

void MeasurementWorker::Run() {
  const std::array<os::Semaphore*, 2> wait_set = {&run_, &stop_request_};
  constexpr std::size_t kRunSignal = 0;
  while (!quit_) {
    const std::optional<std::size_t> signal = os::WaitAny(wait_set, kIdleWait);
    if (!signal || quit_) continue;
    const bool stop_requested = *signal != kRunSignal || Measure();
    measuring_ = false;
    if (stop_requested) stopped_.Release();
  }
}

/// Reads block after block. True when a stop request ended it, false at the end of a
/// software-triggered sweep.
bool MeasurementWorker::Measure() {
  button_polled_ = os::TickCount();
  for (;;) {
    if (stop_request_.AcquireFor(kStopPoll)) return true;
    bool stop_requested = false;
    ReceivedBlock block;
    const Status read = Attempt([&] {
      const StatusAnd<ReceivedBlock> answer = ReadBlock(stop_requested);
      block = answer.value;
      return answer.status;
    });
    Discard(Attempt([&] {
      FinishRead(read, block);
      return Status::kOk;
    }));  // an exception is in the trail
    const bool triggered = trigger_pending_.exchange(false);
    if (stop_requested || triggered) return stop_requested;
  }
}

/// Runs one step of the reading. An exception (no memory, or thrown by a VISA library) goes into
/// the trail as a failed read; neither the client's process nor the reading ends. A stop request
/// taken before it is still acknowledged.
template <typename Step>
Status MeasurementWorker::Attempt(Step&& step) noexcept {
  Status thrown = Status::kOk;
  try {
    return std::forward<Step>(step)();
  } catch (const std::bad_alloc&) {
    thrown = Status::kVisaAllocation;
  } catch (...) {
    thrown = Status::kVisaIo;
  }
  trail_.Append(thrown, Site::kWorkerRead);
  return thrown;
}

/// Waits for the block of a whole sweep, which may take many time-outs, until a stop is requested.
/// The stop request is tested after each read that timed out: a caller waits for one time-out at
/// most, never for a second. The 5 ms of this test are also the pause between reads.
StatusAnd<ReceivedBlock> MeasurementWorker::ReadBlock(bool& stop_requested) {
  StatusAnd<ReceivedBlock> answer = Poll(Site::kWorkerRead);
  while (answer.status == Status::kVisaTimeout) {
    stop_requested = stop_request_.AcquireFor(kStopPoll);
    if (stop_requested) break;
    answer = Poll(Site::kWorkerRepeatedRead);
  }
  return answer;
}

void MeasurementWorker::FinishRead(Status read, const ReceivedBlock& block) {
  if (read == Status::kOk) {
    KeepBlock(block);
  } else {
    Discard(model_->ClearAndRecover());  // if this fails, the next read fails, too
  }
  PollRfButton();
}

StatusAnd<ReceivedBlock> MeasurementWorker::Poll(Site site) {
  const StatusAnd<ReceivedBlock> answer =
      model_->PollDataBlock(receive_buffer_, measurement::ReadingFormat::kFractional);
  NoteState(answer.status);
  if (answer.status != Status::kVisaTimeout && !Succeeded(answer.status)) {
    trail_.Append(answer.status, site);
  }
  return answer;
}

/// Stores the block; an incomplete one is dropped.
void MeasurementWorker::KeepBlock(const ReceivedBlock& received) {
  const bool wanted =
      settings_.With([](const InstrumentSettings& live) { return live.averaging_enabled; });
  const std::optional<measurement::DataBlock> block = measurement::ParseBlock(received.body);
  if (!wanted || !block || !block->IsWhole()) return;
  block_.Store(block->points, received.format, settings_);
  if (!Succeeded(block->word)) trail_.Append(block->word, Site::kBlockStatus);
  NoteState(block->word);
}

Status MeasurementWorker::ReadSingleBlock() {
  const auto [read, received] =
      model_->ReadDataBlock(receive_buffer_, measurement::ReadingFormat::kInteger);
  if (IsNotice(read)) return Status::kVisaTimeout;
  const std::optional<measurement::DataBlock> block = measurement::ParseBlock(received.body);
  const bool is_whole = block && block->IsWhole();
  const Status result = read == Status::kOk && !is_whole ? Status::kVisaProtocolViolation : read;
  if (result == Status::kOk) {
    block_.Store(block->points, received.format, settings_);
  } else {
    trail_.Append(result, Site::kSingleRead);
  }
  return result;
}

void MeasurementWorker::NoteState(Status status) {
  switch (status) {
    case Status::kInstrumentLevelNotSettled:
      state_.level_settled = false;
      break;
    case Status::kInstrumentPllUnlocked:
      state_.pll_locked = false;
      break;
    case Status::kInstrumentErgFault:
      state_.erg_good = false;
      break;
    default:
      state_.level_settled = true;
      state_.pll_locked = true;
  }
}

void MeasurementWorker::PollRfButton() {
  if (os::TickCount() - button_polled_ <= kButtonPeriod) return;
  bool pressed = false;
  const Status status = model_->ReadRfButton(pressed);
  if (Succeeded(status)) {
    state_.rf_button = pressed;
  } else {
    trail_.Append(status, Site::kWorkerRfButton);
  }
  button_polled_ = os::TickCount();
}

}  // namespace k4n
