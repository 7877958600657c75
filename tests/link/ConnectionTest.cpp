// What happens at connection, and the axes whose form is chosen there.
#include <cmath>
#include <iterator>

#include "tests/link/LinkFixture.h"

namespace {

using testing::ElementsAre;

struct FormCase : Row {
  std::vector<std::uint16_t> probe_statuses;  // of the frequency probes, in their order
  Bytes answer;                               // to the last of them
  ResultCode result;
  double maximum;
  std::uint32_t frequency_class;
};

class FormTest : public LinkTest, public testing::WithParamInterface<FormCase> {};

TEST_P(FormTest, FindsTheForm) {
  const FormCase& row = GetParam();
  Answer({0, 0, 0});
  Answer(row.probe_statuses, row.answer);
  EXPECT_EQ(model_.Initialize(), row.result);
  std::vector<std::string> forms = {"3:0/60x4", "3:0/60x3", "3:0/40x3"};
  forms.resize(row.probe_statuses.size());
  std::vector<std::string> probes = visa_.RequestOrder();
  std::erase_if(probes, [](const std::string& name) { return !name.starts_with("3:0/"); });
  EXPECT_EQ(probes, forms);
  EXPECT_EQ(model_.minimum_frequency(), row.result == Status::kOk ? 1e7 : 0.0);
  EXPECT_EQ(model_.maximum_frequency(), row.maximum);
  EXPECT_EQ(model_.frequency_class(), row.frequency_class);
}

const std::vector<FormCase> kFormCases = {
    {"FourElement", {0}, kLimits, 0, 20e9, 2},
    {"NoticesOfTheProbeDoNotCount", {1}, kLimits, 0, 20e9, 2},
    {"UnusableNoticeKeepsFourElement", {2}, kLimits, 0, 20e9, 2},
    {"Wide", {0x8003, 0}, Body(0, 0x60, {1e7, 2, 3.99e9}), 0, 4e9, 1},
    {"Narrow", {0x8003, 0x8003, 0}, Body(0, 0x40, {1e7, 2, 3.99e9}), 0, 4e9, 1},
    {"OtherRefusalOfFourElementEnds", {0x8002}, {}, -32766, 0, 0},
    {"OtherRefusalOfWideEnds", {0x8003, 0x8005}, {}, -32763, 0, 0},
    {"NoFormAtAllEnds", {0x8003, 0x8003, 0x8003}, {}, -32765, 0, 0},
};
INSTANTIATE_TEST_SUITE_P(Forms, FormTest, testing::ValuesIn(kFormCases), RowName());

TEST_F(LinkTest, InstrumentWithOneTriggerGroup) {
  visa_.Rule(4, 8, 0x8003, 0, 1);
  InitializeModel();
  TriggerElements output{1, true, 3, 0, 0};
  EXPECT_EQ(model_.SetTriggerOutput(0, output), 0);
  TriggerElements input{4, false, 1, 0, 3};
  EXPECT_EQ(model_.SetTriggerInput(0, input), 0);
  EXPECT_EQ(model_.SetTriggerInput(1, input), 0);
  EXPECT_EQ(model_.SetTriggerOutput(1, output), 0);
  EXPECT_THAT(visa_.Requests(),
              ElementsAre(Write(8, 0x10, {1, 1, 3, 0, 0}), Write(7, 0x10, {4, 0, 1, 0, 3})));
}

TEST_F(LinkTest, RefusalsAtConnection) {
  struct Case {
    const char* name;
    std::uint16_t command;
    std::uint8_t identifier;
    std::uint16_t code;
    ResultCode result;
  };
  const Case rows[] = {
      {"failing trigger", 3, 8, 0x8005, -32763},
      {"no features", 3, 23, 0x8002, 0},
      {"failing identity", 4, 15, 0x8005, -32763},
  };
  for (const Case& row : rows) {
    SCOPED_TRACE(row.name);
    visa_.Reset();
    visa_.Rule(row.command, row.identifier, row.code);
    EXPECT_EQ(model_.Initialize(), row.result);
    // The connection counts nevertheless: trains carry their polarity.
    visa_.ClearRecord();
    PulseSource source{};
    std::array<double, 1> zero = {0};
    EXPECT_EQ(model_.TransferPulseTrain(0, source, zero, zero, true), 0);
    EXPECT_EQ(visa_.RequestOrder().front(), "3:31/40x3");
  }
}

// --- Identity

TEST_F(LinkTest, IdentityDatesFollowTheirKeysOrLead) {
  struct Case {
    std::string text;
    IdentityDate manufactured, dsp_program, fpga_firmware;
  };
  // "Изготовлен 05.11.2010, Программа DSP от Mar 21 2009, Прошивка ПЛИС от 1.2.2003" in
  // Windows-1251; and a date with something behind the end of the text.
  const Case rows[] = {{"\xC8\xE7\xE3\xEE\xF2\xEE\xE2\xEB\xE5\xED 05.11.2010, "
                        "\xCF\xF0\xEE\xE3\xF0\xE0\xEC\xEC\xE0 DSP \xEE\xF2 Mar 21 2009, "
                        "\xCF\xF0\xEE\xF8\xE8\xE2\xEA\xE0 \xCF\xCB\xC8\xD1 \xEE\xF2 1.2.2003",
                        {2010, 11, 5},
                        {2009, 3, 21},
                        {2003, 2, 1}},
                       {std::string("7.8.2011\0009", 10), {2011, 8, 7}, {}, {}}};
  for (const Case& row : rows) {
    // The high byte of an answer's identifier may be anything.
    Bytes body = {15, 0x7F};
    body.insert(body.end(), row.text.begin(), row.text.end());
    body.resize(102);
    visa_.RuleBody(4, 15, body);
    InitializeModel();
    EXPECT_EQ(model_.identity().manufactured.Ordinal(), row.manufactured.Ordinal());
    EXPECT_EQ(model_.identity().dsp_program.Ordinal(), row.dsp_program.Ordinal());
    EXPECT_EQ(model_.identity().fpga_firmware.Ordinal(), row.fpga_firmware.Ordinal());
  }
}

TEST_F(LinkTest, IdentityThatIsMissingOrMakesNoSenseCostsTheDatesAlone) {
  const std::pair<std::uint16_t, Bytes> rows[] = {
      {0, "10 00 | 31 2E 32 2E 32 30 30 33 00"_hex}, {0x8001, {}}, {0x8002, {}}};
  for (const auto& [status, body] : rows) {
    SCOPED_TRACE(status);
    visa_.RuleBody(4, 15, "0F 7F | 31 2E 32 2E 32 30 30 33 00"_hex);
    EXPECT_EQ(model_.Initialize(), 0);
    EXPECT_TRUE(model_.identity().manufactured.IsKnown());
    visa_.ClearRecord();
    Answer({0, 0});
    visa_.Answer(status, body);
    EXPECT_EQ(model_.Initialize(), 0);
    EXPECT_EQ(visa_.RequestOrder()[2], "4:15/10x100");
    EXPECT_EQ(visa_.Requests()[2].header_id, 15U);
    EXPECT_THAT(visa_.RequestOrder(), testing::Contains("3:0/60x4"));
    EXPECT_FALSE(model_.identity().manufactured.IsKnown());
  }
  // Of the two recoveries behind a missing one the second counts.
  constexpr std::uint16_t kCodes[] = {0, 0, 0x8001, 0x8007, 0x8005};
  for (const std::uint16_t code : kCodes) visa_.Answer(code);
  visa_.ClearRecord();
  EXPECT_EQ(model_.Initialize(), -32763);
  EXPECT_EQ(visa_.RequestOrder().size(), std::size(kCodes));
}

TEST(IdentityDateTest, Texts) {
  const std::pair<const char*, IdentityDate> rows[] = {
      {"28.11.2005", {2005, 11, 28}},
      {"28.12.2005", {}},  // kept: never December
      {"Dec 28 2005", {}},
      {"Jan 28 2005", {2005, 1, 28}},
      {"Nov  1 2005 tail", {2005, 11, 1}},
      {"nov  1 2005", {}},
      {"Nov 1 2005", {}},  // ten characters
      {"Nov xx 2005", {}},
      {"31.1.1901 ", {2001 - 100, 1, 31}},
      {"31.1.1900", {}},
      {"32.1.2005", {}},
      {"0.1.2005", {}},
      {"1.0.2005", {}},
      {"1.1", {}},
      {"1.1.", {}},
      {"1. 1.2005", {}},
      {"65537.1.2005", {2005, 1, 1}},  // numbers wrap at 16 bits
      {"1.257.2005", {}},
      {" 1.1.2005", {}},
      {"", {}},
  };
  for (const auto& [text, date] : rows) {
    EXPECT_EQ(ParseIdentityDate(text).Ordinal(), date.Ordinal()) << text;
  }
}

// --- Frequency

TEST_F(LinkTest, CwFrequencyIsClampedAndWholeHertz) {
  InitializeModel();
  const std::pair<double, double> rows[] = {
      {1e9 + 0.9, 1e9}, {1.0, 1e7}, {-1e9, 1e7}, {1e12, 20e9}, {std::nan(""), 1e7}};
  for (const auto& [wanted, sent] : rows) {
    visa_.ClearRecord();
    double frequency = wanted;
    visa_.Answer(0, Body(0, 0x60, {1e6}));
    EXPECT_EQ(model_.SetCwFrequency(frequency), 0);
    EXPECT_THAT(visa_.Requests(), ElementsAre(Write(0, 0x60, {sent})));
    EXPECT_EQ(frequency, 1e6);
  }
}

TEST_F(LinkTest, FourElementSweeps) {
  struct Case {
    const char* name;
    StepSettings sweep;
    std::vector<double> sent;  // start, points, step, stop
  };
  const Case rows[] = {
      {"exact", {1e9, 2e9, 1e8}, {1e9, 11, 1e8, 2e9}},
      {"a step that does not fit is spread", {1e9, 2e9, 3e8}, {1e9, 4, 333'333'333, 2e9}},
      {"step zero is one point", {1e9, 2e9, 0}, {1e9, 1, 0, 2e9}},
      {"downward", {2e9, 1e9, -1e8}, {2e9, 11, -1e8, 1e9}},
      {"downward with an upward step: no points", {2e9, 1e9, 1e8}, {2e9, -8, 0, 1e9}},
      {"limits clamp", {-5, 1e12, 1e12}, {1e7, 2, 19.99e9, 20e9}},
      {"fractions of hertz are cut", {1e9 + 0.7, 2e9, 1e8}, {1e9, 11, 1e8, 2e9}},
      {"a tiny step does not overflow", {1e9, 2e9, 1e-300}, {1e9, 0x7FFFFFFF, 0, 2e9}},
  };
  InitializeModel();
  for (Case row : rows) {
    visa_.ClearRecord();
    visa_.Answer(0, Body(0, 0x60, {100, 3, 10, 121}));
    EXPECT_EQ(model_.SetFrequencySweep(row.sweep), 0);
    EXPECT_THAT(visa_.Requests(), ElementsAre(Write(0, 0x60, row.sent))) << row.name;
    EXPECT_THAT(Elements(row.sweep), ElementsAre(100, 121, 10)) << row.name;
  }
}

TEST_F(LinkTest, NegativeFrequenciesBecomeZeroWhateverTheLimits) {
  visa_.RuleBody(3, 0, Body(0, 0x60, {-10, 2, 20}), 0x60, 1);
  ASSERT_EQ(model_.Initialize(), 0);
  StepSettings sweep{-5, -2, 1};
  EXPECT_EQ(model_.SetFrequencySweep(sweep), 0);
  EXPECT_THAT(Elements(sweep), ElementsAre(0, 0, 0));
}

TEST_F(LinkTest, WideAndNarrowSweepsComputeTheirStop) {
  struct Case {
    std::int32_t refused_probes;
    unsigned type;
    double largest_span;  // which the probe asks for
    double step_answered;
    double stop;
  };
  for (const Case& row : {Case{1, 0x60, 1e11, -10, 80}, Case{2, 0x40, 4.001e9, 10, 120}}) {
    visa_.Rule(3, 0, 0x8003, 0x60, row.refused_probes);
    ASSERT_EQ(model_.Initialize(), 0);
    EXPECT_THAT(visa_.Requests(), testing::Contains(Write(0, row.type, {0, 2, row.largest_span})));
    visa_.ClearRecord();
    StepSettings sweep{1e9, 2e9, 1e8};
    visa_.Answer(0, Body(0, row.type, {100, 3, row.step_answered}));
    EXPECT_EQ(model_.SetFrequencySweep(sweep), 0);
    EXPECT_THAT(visa_.Requests(), ElementsAre(Write(0, row.type, {1e9, 11, 1e8})));
    EXPECT_THAT(Elements(sweep), ElementsAre(100, row.stop, row.step_answered));
  }
}

}  // namespace
