#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>
#include <string>

#include "simulator/FaultList.h"
#include "simulator/FaultText.h"
#include "tests/link/Hex.h"

namespace simulator {
namespace {

// A data block of one point, and its status word.
Message Block() {
  return {command::kData, 0, 0, 'A', 0, FromHex("01 00 00 00 02 00 00 00 03 00 00 00 00 00")};
}

TEST(FaultList, StrikesWhatMatchesAsOftenAsItSays) {
  // Of six requests: write 79, write 0, data, write 79, data, write 79.
  const std::pair<const char*, const char*> cases[] = {
      {"silence", "xxxxxx"},
      {"silence:parameter=79", "x--x-x"},
      {"silence:parameter=79,times=1", "x-----"},
      {"silence:parameter=79,after=1", "---x-x"},
      {"silence:command=6,after=1,times=1", "----x-"},
      {"silence:after=4,times=1", "----x-"},
      {"silence:command=4,parameter=79", "------"},
  };
  for (const auto& [text, expected] : cases) {
    FaultList faults;
    faults.Add(ParseFault(text));
    std::string struck;
    for (const int parameter : {79, 0, -1, 79, -1, 79}) {
      const auto fault =
          parameter < 0 ? faults.Take(command::kData, {}) : faults.Take(command::kWrite, parameter);
      struck += fault ? 'x' : '-';
    }
    EXPECT_EQ(struck, expected) << text;
    EXPECT_EQ(faults.struck(), std::ranges::count(struck, 'x'));
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
  const std::pair<const char*, const char*> cases[] = {
      {"delay:pause=0",
       "AA 55 06 00 00 00 0E 00 00 41 00 00 00 00 00 00 01 00 00 00 02 00 00 00 03 00 00 00 00 00"},
      {"header:word=0x1234",
       "34 12 06 00 00 00 0E 00 00 41 00 00 00 00 00 00 01 00 00 00 02 00 00 00 03 00 00 00 00 00"},
      {"block-status:status=0x8007",
       "AA 55 06 00 00 00 0E 00 00 41 00 00 00 00 00 00 01 00 00 00 02 00 00 00 03 00 00 00 07 80"},
      {"body:bytes=-9", "AA 55 06 00 00 00 05 00 00 41 00 00 00 00 00 00 01 00 00 00 02"},
      {"body:bytes=1",
       "AA 55 06 00 00 00 0F 00 00 41 00 00 00 00 00 00 01 00 00 00 02 00 00 00 03 00 00 00 00 00 "
       "00"},
      {"body:bytes=-100", "AA 55 06 00 00 00 00 00 00 41 00 00 00 00 00 00"},
      {"length:bytes=65535",
       "AA 55 06 00 00 00 FF FF 00 41 00 00 00 00 00 00 01 00 00 00 02 00 00 00 03 00 00 00 00 00"},
  };
  for (const auto& [text, expected] : cases) {
    EXPECT_EQ(ToHex(ShapeAnswer(Block(), ParseFault(text)).bytes), expected) << text;
  }
}

TEST(FaultText, SaysWhatStrikesWhat) {
  using enum FaultKind;
  using namespace std::chrono_literals;
  const std::pair<const char*, Fault> cases[] = {
      {"drop:after=10,times=1", {.kind = kDrop, .after = 10, .times = 1}},
      {"refuse:parameter=79,status=0x8003", {.kind = kRefuse, .parameter = 79, .status = -32765}},
      {"refuse:status=-1", {.kind = kRefuse, .status = -1}},
      {"pieces:command=6,bytes=5,pause=20",
       {.kind = kPieces, .command = 6, .bytes = 5, .pause = 20ms}},
      {"delay:pause=250", {.kind = kDelay, .pause = 250ms}},
      {"delay:pause=3600000,command=65535", {.kind = kDelay, .command = 65535, .pause = 1h}},
  };
  for (const auto& [text, expected] : cases) EXPECT_EQ(ParseFault(text), expected) << text;
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
      {"header:word=65536", "fault: out of range: word=65536"},
      {"delay:pause=3600001", "fault: out of range: pause=3600001"},
      {"pieces:pause=1", "fault: bytes= is missing: pieces:pause=1"},
  };
  for (const auto& [text, expected] : cases) {
    const auto parse = [&text = text] { ParseFault(text); };
    EXPECT_THAT(parse, testing::ThrowsMessage<std::invalid_argument>(expected)) << text;
  }
}

}  // namespace
}  // namespace simulator
