// Instruments by the numbers of their answers: none of them may be lost, and one that repeats the
// requests' numbers is told by them where an answer is missing.
#include "tests/link/LinkFixture.h"

namespace {

struct Instrument : Row {
  scripted::Numbering* numbering;
  std::uint32_t wrap;              ///< the number at which answers stop to match
  bool is_known_by_numbers;        ///< late answers are told from others
  std::int32_t after_first_abort;  ///< of the setting that aborts a sweep read
};

class NumberingTest : public BlockTest, public testing::WithParamInterface<Instrument> {
 protected:
  NumberingTest() {
    visa_.SetNumbering(GetParam().numbering);
    for (const double dwell : {1, 2, 3}) EXPECT_EQ(Set(dwell), dwell);
  }

  /// What the instrument answers to a setting, or a failure's status.
  double Set(double dwell) {
    const Status result = model_.SetDwell(dwell);
    return result == Status::kOk ? dwell : ToCode(result);
  }
  Status SetOther() {
    double delay = 7;
    return model_.SetPhaseDelay(delay);
  }
  /// A sweep is read as the worker reads it, and its block is the expected one.
  void ExpectBlock(std::uint8_t content) {
    visa_.CompleteData(Bytes(14, content));
    EXPECT_EQ(PollBlock(), 0);
    EXPECT_EQ(received_.first, 14U);
    EXPECT_EQ(buffer_[0], content);
  }
};

TEST_P(NumberingTest, SettingsGoOnPastTheWrap) {
  for (std::uint32_t i = 0; i < GetParam().wrap + 10; ++i) {
    ASSERT_EQ(Set(i), i);
    if (i % 1000 == 0) visa_.ClearRecord();
  }
  ExpectBlock(1);
}

TEST_P(NumberingTest, SettingAbortsASweepReadAndAllIsInStep) {
  EXPECT_EQ(PollBlock(), scripted::kTimeout);
  const std::int32_t first = GetParam().after_first_abort;
  EXPECT_EQ(Set(10), first == 0 ? 10 : first);
  for (std::uint8_t sweep = 1; sweep < 4; ++sweep) {
    EXPECT_EQ(Set(sweep), sweep);
    ExpectBlock(sweep);
    EXPECT_EQ(PollBlock(), scripted::kTimeout);
    EXPECT_EQ(Set(100 + sweep), 100 + sweep);
  }
}

/// Without numbers the late answer cannot be told from the next one to the same parameter; the one
/// after it must be right again.
TEST_P(NumberingTest, LateAnswerIsPassedOverOrTakenOnce) {
  visa_.SpoilAnswer({.is_late = true});
  EXPECT_EQ(Set(10), scripted::kTimeout);
  EXPECT_EQ(Set(20), GetParam().is_known_by_numbers ? 20 : 10);
  EXPECT_EQ(Set(30), 30);
  ExpectBlock(1);

  visa_.SpoilAnswer({.is_late = true});
  EXPECT_EQ(Set(40), scripted::kTimeout);
  EXPECT_EQ(SetOther(), GetParam().is_known_by_numbers ? Status::kOk : kViolation);
  EXPECT_EQ(Set(50), 50);
}

TEST_P(NumberingTest, LateAnswerMayBeOlderThanTheLastRequest) {
  visa_.SpoilAnswer({.is_late = true});
  EXPECT_EQ(Set(10), scripted::kTimeout);
  visa_.SetResult(scripted::Function::kWrite, 0xBFFF0015, 2);  // header and body
  EXPECT_EQ(Set(20), scripted::kTimeout) << "never sent";
  const std::int32_t known = GetParam().after_first_abort;
  EXPECT_EQ(Set(30), !GetParam().is_known_by_numbers ? 10 : known == 0 ? 30 : known);
  EXPECT_EQ(Set(40), 40);
  ExpectBlock(1);
}

/// The answer to a frequency step is as long as a block of two points.
TEST_P(NumberingTest, LateAnswerIsNoBlock) {
  InitializeModel();
  StepSettings sweep{1e9, 2e9, 5e8};
  visa_.SpoilAnswer({.is_late = true});
  EXPECT_EQ(model_.SetFrequencySweep(sweep), scripted::kTimeout);
  visa_.ClearRecord();
  visa_.CompleteData(Bytes(14, 7));
  const Status polled = PollBlock();
  EXPECT_EQ(visa_.Calls(scripted::Function::kClear).size(), 1U);
  if (GetParam().is_known_by_numbers) {
    EXPECT_EQ(polled, scripted::kTimeout);
    EXPECT_EQ(PollBlock(), 0);
    EXPECT_EQ(buffer_[0], 7);
  } else {
    EXPECT_EQ(polled, kViolation);
    EXPECT_EQ(model_.ClearAndRecover(), 0);
    EXPECT_EQ(visa_.Calls(scripted::Function::kClear).size(), 2U);
    ExpectBlock(8);
  }
  EXPECT_EQ(Set(50), 50);
}

/// Without numbers the copy is taken for the next answer, until another parameter tells.
TEST_P(NumberingTest, AnswerThatComesTwiceIsPassedOverOrToldByTheParameter) {
  const bool is_known = GetParam().is_known_by_numbers;
  visa_.SpoilAnswer({.change = [](std::uint8_t* answer, std::size_t size) {
    std::copy_n(answer, size, answer + size);
    return 2 * size;
  }});
  EXPECT_EQ(Set(10), 10);
  EXPECT_EQ(Set(20), is_known ? 20 : 10);
  EXPECT_EQ(Set(30), is_known ? 30 : 20);
  EXPECT_EQ(SetOther(), is_known ? Status::kOk : kViolation);
  EXPECT_EQ(SetOther(), 0);
  EXPECT_EQ(Set(40), 40);
  ExpectBlock(1);
}

/// An instrument that says the same thing again and again is not waited for without end.
TEST_P(NumberingTest, CopiesWithoutEndAreTakenForTheAnswer) {
  visa_.SpoilAnswer({.change = [](std::uint8_t* answer, std::size_t size) {
    for (std::size_t copy = 1; copy < 20; ++copy) std::copy_n(answer, size, answer + copy * size);
    return 20 * size;
  }});
  EXPECT_EQ(Set(10), 10);
  EXPECT_EQ(Set(20), 10);
  EXPECT_EQ(Set(30), GetParam().is_known_by_numbers ? 30 : 10);
}

/// No more answers are passed over than are missing.
TEST_P(NumberingTest, OldAnswersWithoutEndAreTakenForTheAnswer) {
  visa_.SetResult(scripted::Function::kWrite, 0xBFFF0015, 2);  // header and body
  EXPECT_EQ(Set(10), scripted::kTimeout) << "never sent";
  visa_.SpoilAnswer({.change = [](std::uint8_t* answer, std::size_t size) {
    std::copy_n(answer, size, answer + 2 * size);
    answer[12] = static_cast<std::uint8_t>(answer[12] - 5);  // its number
    answer[size - 4] = 99;
    std::copy_n(answer, size, answer + size);
    return 3 * size;
  }});
  EXPECT_EQ(Set(20), 99);
  EXPECT_EQ(Set(30), 30);
}

using Number = std::uint32_t;
const std::vector<Instrument> kInstruments = {
    {"RepeatsNumbers", [](Number request, Number) { return request; }, 300, true, 0},
    {"AlwaysZero", [](Number, Number) { return Number{0}; }, 300, false, 0},
    {"AlwaysOne", [](Number, Number) { return Number{1}; }, 300, false, 0},
    // Its answer has the aborted request's number, until it is known to count by itself.
    {"OwnCount", [](Number, Number count) { return count; }, 300, true, scripted::kTimeout},
    {"EightBits", [](Number request, Number) { return request & 0xFF; }, 256, true, 0},
    {"SixteenBits", [](Number request, Number) { return request & 0xFFFF; }, 65536, true, 0},
};
INSTANTIATE_TEST_SUITE_P(Instruments, NumberingTest, testing::ValuesIn(kInstruments), RowName());

}  // namespace
