// What the tests of the link share: a model over the scripted VISA library.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <concepts>
#include <exception>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "K4NHardWare/CommandExchanger.h"
#include "K4NHardWare/D3THardWare.h"
#include "K4NHardWare/Event.h"
#include "tests/link/ScriptedVisa.h"
#include "tests/platform/ResultCode.h"

using namespace k4n;
using namespace measurement;
using scripted::Body;
using scripted::kRecovery;
using scripted::Read;
using scripted::Request;
using scripted::Write;

constexpr const char* kResource = "TCPIP0::hostA::5025::SOCKET";
/// The answer to the question for the limits of the frequency: 10 MHz to 20 GHz.
inline const Bytes kLimits = Body(0, 0x60, {1e7, 2, 19.99e9, 20e9});
constexpr Status kViolation{SignedBits(0xBFFF0037)};

/// For comparisons.
inline std::vector<double> Elements(const StepSettings& sweep) {
  return {sweep.start, sweep.stop, sweep.step};
}

/// A table's row, and its name as gtest wants it.
struct Row {
  const char* name;
};
template <typename Case>
requires std::same_as<decltype(Case::name), const char*>
void PrintTo(const Case& row, std::ostream* stream) { *stream << row.name; }
using RowName = testing::PrintToStringParamName;

/// The top of the chain: keeps what it is given.
class EventKeeper final : public uIEvent::IEventProcessor {
 public:
  void ProcessEvent(uIEvent::Event* event) override { events.emplace_back(event); }
  uIEvent::IEventProcessor* SetManager(uIEvent::IEventProcessor* manager) override {
    return manager;
  }
  uIEvent::EventProcessor* GetProcessor() override { return nullptr; }

  std::vector<std::unique_ptr<uIEvent::Event>> events;
};

class LinkTest : public testing::Test {
 protected:
  LinkTest() {
    model_.SetManager(&keeper_);
    exchanger_.SetManager(&model_);
    visa_.ClearRecord();
  }

  /// Connects to an instrument that knows every form, and forgets the record.
  void InitializeModel() {
    visa_.RuleBody(3, 0, kLimits, 0x60, 1);
    ASSERT_EQ(model_.Initialize(), 0);
    visa_.ClearRecord();
  }

  /// Answers requests in turn; the refused ones are followed by a recovery.
  void Answer(const std::vector<std::uint16_t>& statuses, const Bytes& body = {}) {
    for (const std::uint16_t code : statuses) {
      visa_.Answer(code, code >= 0x8000 ? Bytes() : body);
      if (code >= 0x8000) visa_.Answer(0);
    }
  }

  scripted::Visa visa_;
  EventKeeper keeper_;
  CommandExchanger exchanger_{std::make_unique<uDevice::Interface>(kResource)};
  D3THardWare model_{exchanger_};
};

class BlockTest : public LinkTest {
 protected:
  /// The body's length and its format mark, of an answer that brought one.
  using Received = std::pair<std::size_t, char>;

  Status Take(const StatusAnd<ReceivedBlock>& answer) {
    received_ = {answer.value.body.size(), static_cast<char>(answer.value.format)};
    return answer.status;
  }
  Status ReadBlock(ReadingFormat wanted = ReadingFormat::kFractional) {
    return Take(model_.ReadDataBlock(buffer_, wanted));
  }
  Status PollBlock(ReadingFormat wanted = ReadingFormat::kFractional) {
    return Take(model_.PollDataBlock(buffer_, wanted));
  }

  std::array<std::uint8_t, 65536> buffer_{};
  Received received_;
};
