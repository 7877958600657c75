// Every operation over an instrument that spoils one of its answers in every way there is. The
// cases are generated: each answer of each operation meets each fault.
#include <array>
#include <cstdio>
#include <thread>

#include "tests/hostile/Heap.h"
#include "tests/manager/Operations.h"

namespace {

using scripted::Function;
using scripted::Spoiling;
using std::size_t;
using Byte = std::uint8_t;

constexpr size_t kHeader = ProtocolMessage::kHeaderSize;
constexpr std::int32_t kReset = ToCode(Status::kVisaIo);

// --- Faults

struct Fault {
  std::string name;
  Spoiling spoiling;
  bool misleads = false;  ///< the next member meets what the fault left behind
};

size_t Announce(Byte* answer, size_t length, size_t size) {
  answer[6] = static_cast<Byte>(length);
  answer[7] = static_cast<Byte>(length >> 8);
  return size;
}
template <int delta>  // bytes that the body is longer
size_t Resize(Byte* answer, size_t size) {
  const size_t length = size - kHeader + std::max(delta, -static_cast<int>(size - kHeader));
  return Announce(answer, length, kHeader + length);
}
template <int delta>  // bytes that the header announces more than there are
size_t Misannounce(Byte* answer, size_t size) {
  const size_t length = size - kHeader + std::max(delta, -static_cast<int>(size - kHeader));
  return Announce(answer, std::min<size_t>(length, 0xFFFF), size);
}
template <int code, bool has_body>
size_t Answer(Byte* answer, size_t size) {
  answer[4] = static_cast<Byte>(code);
  answer[5] = static_cast<Byte>(code >> 8);
  return has_body ? size : Announce(answer, 0, kHeader);
}
template <size_t at, Byte mask>
size_t Flip(Byte* answer, size_t size) {
  if (at < size) answer[at] ^= mask;
  return size;
}
template <size_t count>
size_t AppendGarbage(Byte* answer, size_t size) {
  std::fill_n(answer + size, count, Byte{0xA5});
  return size + count;
}
size_t Twice(Byte* answer, size_t size) {
  std::copy_n(answer, size, answer + size);
  return 2 * size;
}
template <size_t kept>
size_t Cut(Byte*, size_t size) {
  return std::min(size, kept);
}
size_t CutInTheMiddle(Byte*, size_t size) { return kHeader + (size - kHeader) / 2; }

std::vector<Fault> Faults() {
  std::vector<Fault> faults = {
      {"wrong header word", {.change = Flip<1, 1>}},
      {"answer to another parameter", {.change = Flip<kHeader, 0x40>}},
      {"refusal", {.change = Answer<kRefusal, false>}},
      {"refusal with a body", {.change = Answer<kRefusal, true>}},
      {"notice", {.change = Answer<6, true>}},
      {"unknown positive status", {.change = Answer<7, true>}},
      {"no body", {.change = Resize<-65535>}},
      {"odd body", {.change = Resize<-1>}},
      {"short body", {.change = Resize<-4>}},
      {"long body", {.change = Resize<8>}},
      {"longest length", {.change = Misannounce<65535>}},
      {"too short a length", {.change = Misannounce<-3>}, true},
      {"too long a length",
       {.change = Misannounce<3>, .silences = 3, .then = scripted::kConnectionLost}},
      {"garbage behind", {.change = AppendGarbage<5>}, true},
      {"much garbage behind", {.change = AppendGarbage<40>}, true},
      {"answered twice", {.change = Twice}},
      {"one byte a second", {.piece = 1}},
      {"in pieces with pauses", {.piece = kHeader}},
      {"endless stream", {.silences = 0, .then = Spoiling::kEndless}},
      {"endless stream in the header", {.change = Cut<7>, .then = Spoiling::kEndless}},
  };
  const std::pair<const char*, decltype(Spoiling::change)> phases[] = {
      {" before the header", Cut<0>},
      {" in the header", Cut<7>},
      {" before the body", Cut<kHeader>},
      {" in the body", CutInTheMiddle}};
  for (const auto& phase : phases) {
    const auto cut = phase.second;
    const auto add = [&](const char* what, std::uint32_t silences, std::int32_t end) {
      faults.push_back(
          {std::string(what) + phase.first, {.change = cut, .silences = silences, .then = end}});
    };
    add("silence", 3, scripted::kConnectionLost);  // the system gives a silent peer up some time
    add("drop", 0, scripted::kConnectionLost);
    if (cut != Cut<7> && cut != Cut<kHeader>) add("reset", 0, kReset);
  }
  return faults;
}

// --- The matrix

/// What stands for the failure, which the trail has as it was.
bool IsDriversOwn(Status result) {
  return result == Status::kRefused || result == Status::kUnknownResource ||
         result == Status::kIdentificationFailed;
}

class HostileTest : public ManagerTest {
 protected:
  /// The requests of the operation where nothing goes wrong.
  std::vector<std::string> RunWell(const Operation& operation) {
    ExpectLimits();
    visa_.ClearRecord();
    EXPECT_EQ(operation.run(manager_), 0);
    EXPECT_TRUE(ErrorRecords().empty());
    return visa_.RequestOrder();
  }

  void ExpectMemberWorks() {
    dwell_ += 1.0;
    EXPECT_EQ(manager_.SetDwell(dwell_), 0);
    EXPECT_EQ(manager_.GetDwell(), dwell_) << "no answer is taken for that of another request";
  }

  /// Nothing more is held than after the first call: objects, without those of the script.
  void ExpectNothingGrows() {
    constexpr long kTrailsBuffers = 2;  // which come and go
    visa_.Reset();
    visa_.RuleBody(kRead, kPowerId, PowerBody(Output::kOn));
    const long now = LiveAllocations();
    if (held_ == 0) held_ = now;
    EXPECT_LE(now, held_ + kTrailsBuffers) << "memory grows";
  }

  void OpenIn(SweepMode mode) {
    Open();
    ASSERT_EQ(manager_.SetSweepMode(mode), 0);
  }

  static constexpr int kSpoiledPoints = 5;
  /// The next whole block arrives, settings are taken, and the session leaves nothing behind.
  void ExpectSessionGoesOn() {
    constexpr int kPoints = 7;
    EXPECT_TRUE(WaitUntil([&] {
      visa_.CompleteData(Block(kPoints));
      return manager_.FetchData(trace_) == Status::kOk && trace_.ColumnCount() == kPoints;
    })) << "the next read works";
    ExpectMemberWorks();
    manager_.Close();
    ExpectNothingGrows();
  }

  void RunCase(const Operation& operation, unsigned answer, const Fault& fault) {
    Spoiling spoiling = fault.spoiling;
    spoiling.after = answer;
    ExpectLimits();
    visa_.ClearRecord();
    visa_.SpoilAnswer(spoiling);
    const Status result = operation.run(manager_);
    EXPECT_EQ(visa_.CallAt(1000), nullptr) << "the member ends soon";
    const auto trail = DrainTrail();
    std::vector<int> sites = operation.trail;  // none: a failure is only returned
    sites.insert(sites.end(), operation.sites.begin(), operation.sites.end());
    const auto tells = [&](const ErrorRecord& record) {
      return record.status == result &&
             std::ranges::count(sites, static_cast<int>(record.site)) != 0;
    };
    if (!Succeeded(result) && !IsDriversOwn(result)) {
      EXPECT_TRUE(sites.empty() || std::ranges::any_of(trail, tells))
          << testing::PrintToString(result) << ' ' << testing::PrintToString(trail);
    }
    const bool fails = !Succeeded(manager_.SetDwell(dwell_));
    EXPECT_TRUE(!fails || fault.misleads || spoiling.then != Spoiling::kGoesOn ||
                !manager_.IsConnected())
        << "the next member fails";
    EXPECT_TRUE(visa_.LinkIsBack()) << "nothing was spoiled";
    DrainTrail();
    // What has been closed by the peer takes a new session.
    if (spoiling.then < 0 || !manager_.IsConnected()) OpenIn(operation.mode);
    ExpectMemberWorks();
  }

  double dwell_ = 0.0;
  long held_ = 0;
};

TEST_F(HostileTest, EveryOperationSurvivesEveryFaultOfEveryAnswer) {
  const std::vector<Fault> faults = Faults();
  std::vector<Operation> all = {{"Initialize",
                                 [](auto& m) { return m.Initialize(kResource, ""); },
                                 1,
                                 0,
                                 {1002, 162, 142, 168, 701, 602, 601, 631, 652}}};
  all.insert(all.end(), operations::kSettings.begin(), operations::kSettings.end());
  all.insert(all.end(), operations::kOthers.begin(), operations::kOthers.end());
  int cases = 0;
  for (const Operation& operation : all) {
    OpenIn(operation.mode);
    RunWell(operation);
    const auto requests = RunWell(operation);
    held_ = 0;  // after the first case, which makes what is made once
    for (unsigned answer = 0; answer < requests.size(); ++answer) {
      for (size_t i = 0; i < faults.size(); ++i) {
        const Fault& fault = faults[i];
        // An operation of many answers, and of many milliseconds: each fault at some of them.
        if (requests.size() > 8 && (answer + i) % 6 != 0) continue;
        SCOPED_TRACE(operation.name + (" " + requests[answer] + ": ") + fault.name);
        RunCase(operation, answer, fault);
        RunWell(operation);
        ++cases;
        if (held_ == 0) ExpectNothingGrows();
        if (HasFailure()) return;
      }
    }
    SCOPED_TRACE(operation.name);
    ExpectNothingGrows();
  }
  std::printf("%zu operations x %zu faults, %d answers spoiled, all survived\n", all.size(),
              faults.size(), cases);
}

/// The worker's reads meet the same faults; what is known to be wrong is never handed out.
TEST_F(HostileTest, MeasuringSurvivesEveryFaultOfABlock) {
  for (const Fault& fault : Faults()) {
    SCOPED_TRACE(fault.name);
    OpenAndMeasure();
    visa_.SpoilAnswer(fault.spoiling);
    visa_.CompleteData(Block(kSpoiledPoints));
    const bool lost = fault.spoiling.then < 0;
    if (lost) {
      EXPECT_TRUE(WaitUntil([&] { return ErrorRecords().size() >= 2; })) << "it reads on";
      EXPECT_EQ(manager_.SetDwell(1.0), fault.spoiling.then) << "callers are told";
      EXPECT_EQ(manager_.Close(), 0);
    }
    EXPECT_TRUE(visa_.LinkIsBack());
    DrainTrail();
    if (lost) OpenAndMeasure();
    // A block that never ends is a sweep that runs on, until a setting starts it again.
    if (fault.spoiling.change == Misannounce<65535> || fault.spoiling.then == Spoiling::kEndless) {
      ExpectMemberWorks();
    }
    ExpectSessionGoesOn();
    if (HasFailure()) return;
  }
}

/// So does a client's own read, before any sweep was programmed.
TEST_F(HostileTest, SingleReadSurvivesEveryFaultOfABlock) {
  for (const Fault& fault : Faults()) {
    SCOPED_TRACE(fault.name);
    OpenUnarmed();
    Spoiling spoiling = fault.spoiling;
    // Only the link's end ends the wait for a body of which nothing more comes.
    if (spoiling.change == Misannounce<65535>) {
      spoiling.silences = 3;
      spoiling.then = scripted::kConnectionLost;
    }
    visa_.SpoilAnswer(spoiling);
    visa_.CompleteData(Block(kSpoiledPoints), '@');
    const Status result = manager_.FetchData(trace_);
    EXPECT_EQ(visa_.CallAt(1000), nullptr) << "the fetch ends soon";
    const auto trail = DrainTrail();
    if (!Succeeded(result) && result != Status::kVisaTimeout) {  // that may stand for a notice
      EXPECT_EQ(std::ranges::count(trail, ErrorRecord{result, Site::kSingleRead}), 1)
          << testing::PrintToString(result) << ' ' << testing::PrintToString(trail);
    }
    EXPECT_TRUE(visa_.LinkIsBack()) << "nothing was spoiled";
    if (spoiling.then < 0 || !manager_.IsConnected()) OpenUnarmed();
    ExpectSessionGoesOn();
    if (HasFailure()) return;
  }
}

/// Only the client can tell that nothing more will come.
TEST_F(HostileTest, CloseEndsTheWaitForTheRestOfABody) {
  Open();
  visa_.ClearRecord();
  visa_.SpoilAnswer(
      {.change = CutInTheMiddle, .silences = Spoiling::kAlways, .then = scripted::kConnectionLost});
  std::jthread caller([this] { EXPECT_EQ(manager_.SetDwell(1.0), Status::kVisaTimeout); });
  constexpr std::size_t kManyTimeouts = 20;
  EXPECT_TRUE(WaitUntil([this] { return visa_.Calls(Function::kRead).size() > kManyTimeouts; }));
  EXPECT_EQ(manager_.Close(), 0);
  EXPECT_EQ(visa_.OpenSessions(), 0U);
}

}  // namespace
