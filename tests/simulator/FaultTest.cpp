#include <gtest/gtest.h>

#include <sstream>
#include <stdexcept>
#include <string>

#include "simulator/FaultList.h"
#include "simulator/FaultText.h"
#include "tests/simulator/WireClient.h"

namespace simulator {
namespace {

// A data block of one point, and its status word.
Message Block() {
  Message answer;
  answer.command = command::kData;
  answer.type = 'A';
  answer.body = FromHex("01 00 00 00 02 00 00 00 03 00 00 00 00 00");
  return answer;
}

TEST(FaultList, StrikesWhatMatchesAsOftenAsItSays) {
  struct Case {
    const char* name;
    Fault fault;
    const char* struck;  // of six requests: write 79, write 0, data, write 79, data, write 79
  };
  const auto fault = [](std::optional<std::uint16_t> command,
                        std::optional<std::uint16_t> parameter, std::uint32_t after,
                        std::uint32_t times) {
    Fault result;
    result.command = command;
    result.parameter = parameter;
    result.after = after;
    result.times = times;
    return result;
  };
  const Case cases[] = {
      {"everything", fault({}, {}, 0, 0), "xxxxxx"},
      {"one parameter", fault({}, 79, 0, 0), "x--x-x"},
      {"one parameter once", fault({}, 79, 0, 1), "x-----"},
      {"one parameter, the second time on", fault({}, 79, 1, 0), "---x-x"},
      {"data, the second of them", fault(6, {}, 1, 1), "----x-"},
      {"after four messages", fault({}, {}, 4, 1), "----x-"},
      {"parameter of another command", fault(4, 79, 0, 0), "------"},
  };
  for (const Case& row : cases) {
    FaultList faults;
    faults.Add(row.fault);
    std::string struck;
    const auto request = [&](std::uint16_t command, std::optional<std::uint16_t> parameter) {
      struck += faults.Take(command, parameter) ? 'x' : '-';
    };
    request(3, 79);
    request(3, 0);
    request(6, {});
    request(3, 79);
    request(6, {});
    request(3, 79);
    EXPECT_EQ(struck, row.struck) << row.name;
  }
}

TEST(FaultList, AnotherFaultStrikesWhenTheFirstIsSpent) {
  FaultList faults;
  faults.Add(Fault::Refuse(79, -5, 1));
  faults.Add(Fault::Refuse(79, -6, 1));
  EXPECT_EQ(faults.Take(3, 79)->status, -5);
  EXPECT_EQ(faults.Take(3, 79)->status, -6);
  EXPECT_FALSE(faults.Take(3, 79));
}

TEST(ShapeAnswer, EachKindChangesTheBytesInItsWay) {
  struct Case {
    const char* name;
    FaultKind kind;
    std::int16_t status;
    std::uint16_t word;
    std::int32_t bytes;
    const char* expected;
  };
  const Case cases[] = {
      {"untouched", FaultKind::kDelay, 0, 0, 0,
       "AA 55 06 00 00 00 0E 00 00 41 00 00 00 00 00 00 01 00 00 00 02 00 00 00 03 00 00 00 00 00"},
      {"other header word", FaultKind::kHeaderWord, 0, 0x1234, 0,
       "34 12 06 00 00 00 0E 00 00 41 00 00 00 00 00 00 01 00 00 00 02 00 00 00 03 00 00 00 00 00"},
      {"block status 0x8007", FaultKind::kBlockStatus, status::kPllUnlocked, 0, 0,
       "AA 55 06 00 00 00 0E 00 00 41 00 00 00 00 00 00 01 00 00 00 02 00 00 00 03 00 00 00 07 80"},
      {"cut", FaultKind::kBodyLength, 0, 0, -9,
       "AA 55 06 00 00 00 05 00 00 41 00 00 00 00 00 00 01 00 00 00 02"},
      {"prolonged", FaultKind::kBodyLength, 0, 0, 1,
       "AA 55 06 00 00 00 0F 00 00 41 00 00 00 00 00 00 01 00 00 00 02 00 00 00 03 00 00 00 00 00 "
       "00"},
      {"cut by more than there is", FaultKind::kBodyLength, 0, 0, -100,
       "AA 55 06 00 00 00 00 00 00 41 00 00 00 00 00 00"},
      {"announces too much", FaultKind::kAnnouncedLength, 0, 0, 1000000,
       "AA 55 06 00 00 00 FF FF 00 41 00 00 00 00 00 00 01 00 00 00 02 00 00 00 03 00 00 00 00 00"},
  };
  for (const Case& row : cases) {
    Fault fault;
    fault.kind = row.kind;
    fault.status = row.status;
    fault.word = row.word;
    fault.bytes = row.bytes;
    EXPECT_EQ(Hex(ShapeAnswer(Block(), fault).bytes), row.expected) << row.name;
  }
}

// Kind, command, parameter, after, times, status, word, bytes, pause.
std::string Show(const Fault& fault) {
  const auto optional = [](std::optional<std::uint16_t> value) {
    return value ? std::to_string(*value) : std::string("-");
  };
  std::ostringstream text;
  text << static_cast<int>(fault.kind) << ' ' << optional(fault.command) << ' '
       << optional(fault.parameter) << ' ' << fault.after << ' ' << fault.times << ' '
       << fault.status << ' ' << fault.word << ' ' << fault.bytes << ' ' << fault.pause.count();
  return text.str();
}

TEST(FaultText, SaysWhatStrikesWhat) {
  const std::pair<const char*, const char*> cases[] = {
      {"drop", "1 - - 0 0 0 0 0 0"},
      {"drop:after=10,times=1", "1 - - 10 1 0 0 0 0"},
      {"refuse:parameter=79,status=0x8003", "0 - 79 0 0 -32765 0 0 0"},
      {"refuse:status=-1", "0 - - 0 0 -1 0 0 0"},
      {"header:word=0x1234", "2 - - 0 0 0 4660 0 0"},
      {"pieces:command=6,bytes=5,pause=20", "3 6 - 0 0 0 0 5 20"},
      {"silence:command=6", "4 6 - 0 0 0 0 0 0"},
      {"delay:pause=250", "5 - - 0 0 0 0 0 250"},
      {"block-status:status=0x801C", "6 - - 0 0 -32740 0 0 0"},
      {"body:bytes=-3", "7 - - 0 0 0 0 -3 0"},
      {"length:bytes=40000", "8 - - 0 0 0 0 40000 0"},
  };
  for (const auto& [text, expected] : cases) {
    EXPECT_EQ(Show(ParseFault(text)), expected) << text;
  }
}

TEST(FaultText, RefusesWhatIsNoFaultInOneLine) {
  const std::pair<const char*, const char*> cases[] = {
      {"", "fault: unknown kind: "},
      {"explode", "fault: unknown kind: explode"},
      {"drop:afterwards=1", "fault: unknown name: afterwards"},
      {"drop:after", "fault: not a number: "},
      {"drop:after=-1", "fault: out of range: after=-1"},
      {"drop:,", "fault: unknown name: "},
      {"refuse:parameter=79", "fault: status= is missing: refuse:parameter=79"},
      {"refuse:status=0x18003", "fault: out of range: status=0x18003"},
      {"delay:pause=1s", "fault: not a number: 1s"},
  };
  for (const auto& [text, expected] : cases) {
    try {
      ParseFault(text);
      ADD_FAILURE() << text << " was taken";
    } catch (const std::invalid_argument& error) {
      EXPECT_STREQ(error.what(), expected) << text;
    }
  }
}

}  // namespace
}  // namespace simulator
