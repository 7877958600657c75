// What the tests of the manager share: a manager over the scripted VISA library, and blocks and
// detector tables of known content.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "K4NHardWare/K4NManager.h"
#include "platform/os/Sync.h"
#include "tests/link/LinkFixture.h"
#include "tests/platform/WaitUntil.h"

/// How gtest names a trail's records: "0x80047060@1002", "-6@691".
inline void PrintTo(const ErrorRecord& record, std::ostream* stream) {
  PrintTo(record.status, stream);
  *stream << '@' << static_cast<int>(record.site);
}

/// The output switch as the instrument reports it: on is 1 and nothing else.
enum class Output : unsigned { kOff, kOn, kNeither };

// Identifiers of parameters, as rules take them.
constexpr std::uint8_t kFrequencyId = 0;
constexpr std::uint8_t kFrequencyListId = 2;
constexpr std::uint8_t kKindId = 3;
constexpr std::uint8_t kDwellId = 5;
constexpr std::uint8_t kTriggerInputId = 7;
constexpr std::uint8_t kTriggerOutputId = 8;
constexpr std::uint8_t kPulseId = 31;
constexpr std::uint8_t kButtonId = 34;
constexpr std::uint8_t kPowerListId = 76;
constexpr std::uint8_t kPowerId = 79;
constexpr std::uint16_t kWrite = 3;
constexpr std::uint16_t kRead = 4;

/// A status word as the wire carries it, and what the driver makes of it.
constexpr std::uint16_t kRefusal = 0x8005;
constexpr Status kRefusalStatus{-32763};

/// A trail of refusals at these sites, which are told by their numbers in the field, too.
inline std::vector<ErrorRecord> Refusals(const std::vector<int>& sites) {
  std::vector<ErrorRecord> trail;
  trail.reserve(sites.size());
  for (const int site : sites) trail.push_back({kRefusalStatus, Site{site}});
  return trail;
}

/// The power parameter without sweep: output switch, attenuator mode, two further settings, level.
inline std::vector<double> PowerElements(Output output, double level = -20, unsigned atten = 3) {
  return {static_cast<double>(output), static_cast<double>(atten), 8, 9, level};
}
inline Bytes PowerBody(Output output, double level = -20) {
  return Body(kPowerId, 0x62, PowerElements(output, level));
}

/// A data block whose readings are all the same.
inline Bytes Block(int points, std::uint16_t status_word = 0, double reading = 256) {
  Bytes block = scripted::Encode(0x40, std::vector<double>(3 * std::size_t(points), reading));
  const Bytes word = scripted::Encode(0x20, {static_cast<double>(status_word)});
  block.insert(block.end(), word.begin(), word.end());
  return block;
}

inline Status SetFrequencyStep(CK4NManager& manager) {
  return manager.SetFrequencyStep({.start = 1e9, .stop = 2e9, .step = 5e8});
}

inline Status SetPowerStep(CK4NManager& manager) {
  return manager.SetPowerStep({.start = -10.0, .stop = -8.0, .step = 0.5});
}

inline Status SetSyncGenerator(CK4NManager& manager) {
  return manager.SetSyncGenerator({.width = 10.0, .period = 30.0, .delay = 5.0});
}

inline Status TriggerImmediately(CK4NManager& manager) {
  return manager.SetSweepTrigger({.source = TriggerSource::kImmediate});
}

class ManagerTest : public testing::Test {
 protected:
  ManagerTest() { visa_.RuleBody(kRead, kPowerId, PowerBody(Output::kOn)); }

  Status Initialize(const char* option = "", const char* resource = kResource) {
    ExpectLimits();
    return manager_.Initialize(resource, option);
  }
  /// The next session asks for them once.
  void ExpectLimits() { visa_.RuleBody(kWrite, kFrequencyId, kLimits, 0x60, 1); }
  /// Opens a session and forgets what that put on the wire, and what is in the trail.
  void Open(Output output = Output::kOn, const char* option = "") {
    DrainTrail();
    visa_.RuleBody(kRead, kPowerId, PowerBody(output));
    ASSERT_EQ(Initialize(option), 0);
    ASSERT_THAT(ErrorRecords(), testing::IsEmpty());
    visa_.ClearRecord();
  }
  /// A session whose sweep mode was refused, and none was programmed before.
  void OpenUnarmed() {
    visa_.Rule(kWrite, kFrequencyId, kRefusal);
    ASSERT_EQ(Initialize(), 0);
    ASSERT_FALSE(DrainTrail().empty());
    visa_.ClearRecord();
  }

  /// Has the worker read: list mode (no settings of its own), trigger immediate.
  void StartMeasuring() {
    ASSERT_EQ(manager_.SetSweepMode(SweepMode::kList), 0);
    ASSERT_EQ(TriggerImmediately(manager_), 0);
    ASSERT_TRUE(WaitUntilRequested("6", 1));
    visa_.ClearRecord();
  }
  void OpenAndMeasure() {
    Open();
    StartMeasuring();
  }

  [[nodiscard]] std::size_t Requested(std::string_view request) const {
    const auto order = visa_.RequestOrder();
    return static_cast<std::size_t>(std::ranges::count(order, request));
  }
  [[nodiscard]] bool WaitUntilRequested(std::string_view request, std::size_t times) const {
    return WaitUntil([&] { return Requested(request) >= times; });
  }
  bool State(StatusAnd<bool> (CK4NManager::*get)()) {
    const StatusAnd<bool> state = (manager_.*get)();
    EXPECT_EQ(state.status, 0);
    return state.value;
  }
  /// Whether the worker was measuring until now. The button is told without the instrument only
  /// then. Forgets the record.
  [[nodiscard]] bool IsMeasuring() {
    visa_.ClearRecord();
    State(&CK4NManager::GetRfButton);
    return Requested("4:34/20x1") == 0;
  }
  /// Whether a list sweep, which this programs, runs on a list or on the value that stands in for
  /// one, by the parameter of the lists. Forgets the record.
  [[nodiscard]] bool HasList(std::uint8_t id) {
    visa_.ClearRecord();
    manager_.SetSweepMode(SweepMode::kList);
    std::vector<double> sent;
    for (const Request& request : visa_.Requests()) {
      if (request.id == id) sent = request.Elements();
    }
    const double stand_in = id == kPowerListId ? -60 : 1e7;
    EXPECT_FALSE(sent.empty());
    return sent.size() < 2 || sent[sent.size() - 2] != 1 || sent.back() != stand_in;
  }
  /// Has the worker store a block that nobody has fetched yet.
  void StoreBlock(SweepMode mode) {
    ASSERT_EQ(manager_.SetSweepMode(mode), 0);
    const std::size_t records = ErrorRecords().size();
    visa_.CompleteData(Block(1, 7));  // its word goes into the trail after it was stored
    manager_.RequestSoftwareTrigger();
    ASSERT_TRUE(WaitUntil([&] { return ErrorRecords().size() > records; }));
  }
  /// Fetches the next block, which the worker may not have stored yet.
  [[nodiscard]] bool WaitForBlock() {
    return WaitUntil([this] { return manager_.FetchData(trace_) == Status::kOk; });
  }

  /// All records of the trail, oldest first, each by itself.
  [[nodiscard]] std::vector<ErrorRecord> ErrorRecords() const {
    std::vector<ErrorRecord> records;
    for (std::size_t i = 0; const auto run = manager_.error_trail().RunAt(i); ++i) {
      records.insert(records.end(), run->count, run->record);
    }
    return records;
  }
  /// Takes the oldest record from the trail; code 0 and no text when there is none.
  std::pair<std::int32_t, std::optional<std::string>> TakeError() {
    ErrorReport report = manager_.ErrorQuery();
    return {ToCode(report.status), std::move(report.message)};
  }

  /// Takes all records, which are those that ErrorRecords told.
  std::vector<ErrorRecord> DrainTrail() {
    std::vector<ErrorRecord> records = ErrorRecords();
    for (const ErrorRecord& record : records) EXPECT_EQ(TakeError().first, record.status);
    EXPECT_EQ(TakeError().first, 0);
    return records;
  }

  scripted::Visa visa_;
  CK4NManager manager_;
  TraceMatrix trace_;
};
