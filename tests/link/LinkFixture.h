// What the tests of the link share: a model over the scripted VISA library.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <concepts>
#include <exception>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "K4NHardWare/CommandExchanger.h"
#include "K4NHardWare/D3THardWare.h"
#include "K4NHardWare/Event.h"
#include "tests/link/ScriptedVisa.h"
#include "tests/platform/ResultCode.h"
using namespace measurement;

using namespace k4n;

constexpr const char* kResource = "TCPIP0::hostA::5025::SOCKET";
constexpr Status kViolation{SignedBits(0xBFFF0037)};

/// For comparisons.
inline std::vector<double> Elements(const StepSettings& sweep) {
  return {sweep.start, sweep.stop, sweep.step};
}

/// A table's row, and its name as gtest wants it.
struct Row {
  const char* name;
};
template <std::derived_from<Row> Case>
void PrintTo(const Case& row, std::ostream* stream) {
  *stream << row.name;
}
struct RowName {
  template <typename Case>
  std::string operator()(const testing::TestParamInfo<Case>& info) const {
    return info.param.name;
  }
};

/// What a call throws, as text.
template <typename Call>
std::string Thrown(Call&& call) {
  try {
    std::forward<Call>(call)();
  } catch (const std::exception& error) {
    return error.what();
  }
  return "nothing";
}

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

  /// Connects to an instrument from 10 MHz to 20 GHz that knows every form, and forgets the record.
  void InitializeModel() {
    visa_.RuleBody(3, 0, 0,
                   "00 00 | 80 96 98 00 00 00 | 02 00 00 00 00 00 | 80 31 7F A7 04 00 |"
                   "00 C8 17 A8 04 00",
                   0x60, 1);
    ASSERT_EQ(model_.Initialize(), 0);
    visa_.ClearRecord();
  }

  /// Answers requests in turn; the refused ones are followed by a recovery.
  void Answer(const std::vector<std::uint16_t>& statuses, std::string_view body = {}) {
    for (const std::uint16_t code : statuses) {
      visa_.Answer(code, code >= 0x8000 ? "" : body);
      if (code >= 0x8000) visa_.Answer(0);
    }
  }

  /// The requests as "header without its number | body".
  [[nodiscard]] std::vector<std::string> Requests() const {
    std::vector<std::string> requests = visa_.Requests();
    for (std::string& request : requests) request.erase(35, 12);
    return requests;
  }

  scripted::Visa visa_;
  EventKeeper keeper_;
  CommandExchanger exchanger_{std::make_unique<uDevice::Interface>(kResource)};
  D3THardWare model_{exchanger_};
};

/// A request as LinkTest::Requests gives it. `body` as it lies on the wire, the byte that makes it
/// even included.
inline std::string Request(unsigned command, unsigned count, unsigned type, unsigned reserved,
                           std::string_view body) {
  const auto bytes = scripted::FromHex(body);
  const auto low = [](std::size_t value) { return static_cast<std::uint8_t>(value); };
  const std::vector<std::uint8_t> header = {
      0xAA,       0x55,      low(command),  0, 0, 0x80, low(bytes.size()), low(bytes.size() >> 8),
      low(count), low(type), low(reserved), 0};
  std::string text = scripted::ToHex(header);
  if (!bytes.empty()) text += " | " + scripted::ToHex(bytes);
  return text;
}
inline std::string WriteRequest(unsigned count, unsigned type, std::string_view body) {
  return Request(3, count, type, 0, body);
}
inline std::string ReadRequest(unsigned count, unsigned type, unsigned identifier,
                               std::string_view body) {
  return Request(4, count, type, identifier, body);
}
inline std::string RecoverRequest() { return Request(1, 0, 0, 0, ""); }
