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
#include <vector>

#include "K4NHardWare/K4NManager.h"
#include "platform/os/Sync.h"
#include "tests/link/LinkFixture.h"
#include "tests/platform/WaitUntil.h"

using namespace k4n;

/// How gtest names a trail's records: "0x80047060@1002", "-6@691".
inline void PrintTo(const ErrorRecord& record, std::ostream* stream) {
  PrintTo(record.status, stream);
  *stream << '@' << static_cast<int>(record.site);
}

inline std::string Repeat(std::string_view hex, int count) {
  std::string text;
  for (int i = 0; i < count; ++i) text += hex;
  return text;
}

constexpr std::string_view kMinus20 = "00 00 EC FF FF FF";
/// The power parameter without sweep: output switch, attenuator mode, two further settings, and the
/// level as its six bytes.
inline std::string PowerBody(unsigned output, std::string_view level, unsigned atten_mode = 3) {
  return "4F 00 | 00 00 0" + std::to_string(output) + " 00 00 00 | 00 00 0" +
         std::to_string(atten_mode) + " 00 00 00 | 00 00 08 00 00 00 | 00 00 09 00 00 00 |" +
         std::string(level);
}

// Answers of the standard instrument: 10 MHz to 20 GHz, power commands of variant 5; the output at
// -20 dBm.
constexpr const char* kLimits =
    "00 00 | 80 96 98 00 00 00 | 02 00 00 00 00 00 | 80 31 7F A7 04 00 | 00 C8 17 A8 04 00";
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

/// A data block whose readings are all the same.
inline std::vector<std::uint8_t> Block(int points, std::uint16_t status_word = 0,
                                       std::int32_t reading = 256) {
  std::vector<std::uint8_t> bytes;
  const auto put = [&bytes](std::uint32_t value, int size) {
    for (int i = 0; i < size; ++i) bytes.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
  };
  for (int i = 0; i < points; ++i) {
    for (int channel = 0; channel < 3; ++channel) put(static_cast<std::uint32_t>(reading), 4);
  }
  put(status_word, 2);
  return bytes;
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
  ManagerTest() { visa_.RuleBody(kRead, kPowerId, 0, PowerBody(1, kMinus20)); }

  Status Initialize(const char* option = "", const char* resource = kResource) {
    visa_.RuleBody(kWrite, kFrequencyId, 0, kLimits, 0x60, 1);
    return manager_.Initialize(resource, option);
  }
  /// Opens a session and forgets what that put on the wire, and what is in the trail.
  void Open(Output output = Output::kOn, const char* option = "") {
    while (TakeError().first != 0) continue;
    visa_.RuleBody(kRead, kPowerId, 0, PowerBody(static_cast<unsigned>(output), kMinus20));
    ASSERT_EQ(Initialize(option), 0);
    ASSERT_EQ(ErrorRecords().size(), 0U);
    visa_.ClearRecord();
  }

  /// Has the worker read: list mode (no settings of its own), trigger immediate.
  void StartMeasuring() {
    ASSERT_EQ(manager_.SetSweepMode(SweepMode::kList), 0);
    ASSERT_EQ(TriggerImmediately(manager_), 0);
    ASSERT_TRUE(WaitUntilRequested("6", 1));
    visa_.ClearRecord();
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
    const std::string_view one_value =
        id == kPowerListId ? "00 00 01 00 00 00 C4 FF" : "01 00 00 00 00 00 80 96 98 00 00 00";
    std::string sent;
    for (const std::string& request : visa_.Requests()) {
      if (request.find("| " + scripted::ToHex({&id, 1})) != std::string::npos) sent = request;
    }
    EXPECT_FALSE(sent.empty());
    return !sent.ends_with(one_value);
  }
  /// Has the worker store a block that nobody has fetched yet.
  void StoreBlock(SweepMode mode) {
    ASSERT_EQ(manager_.SetSweepMode(mode), 0);
    const std::size_t records = ErrorRecords().size();
    visa_.CompleteData('A', Block(1, 7));  // its word goes into the trail after it was stored
    manager_.RequestSoftwareTrigger();
    ASSERT_TRUE(WaitUntil([&] { return ErrorRecords().size() > records; }));
  }
  /// Fetches the next block, which the worker may not have stored yet.
  [[nodiscard]] bool WaitForBlock() {
    return WaitUntil([this] { return manager_.FetchData(trace_) == Status::kOk; });
  }

  /// The requests as "header without its number | body".
  [[nodiscard]] std::vector<std::string> Requests() const {
    std::vector<std::string> requests = visa_.Requests();
    for (std::string& request : requests) request.erase(35, 12);
    return requests;
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

  scripted::Visa visa_;
  CK4NManager manager_;
  TraceMatrix trace_;
};

// --- Requests, as ManagerTest::Requests gives them
inline std::string PowerRequest(unsigned output, std::string_view level, unsigned atten_mode = 3) {
  return WriteRequest(5, 0x62, PowerBody(output, level, atten_mode));
}
inline std::string TriggerInputRead() {
  return ReadRequest(10, 0x10, 7, "07 00" + Repeat(" 00", 10));
}
