// What happens at connection, and the axes whose form is chosen there.
#include <algorithm>
#include <cmath>
#include <iterator>

#include "tests/link/LinkFixture.h"

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;

constexpr const char* kLimitsAnswer =
    "00 00 | 80 96 98 00 00 00 | 02 00 00 00 00 00 | 80 31 7F A7 04 00 | 00 C8 17 A8 04 00";

struct FormCase : Row {
  std::vector<std::uint16_t> probe_statuses;  // of the frequency probes, in their order
  const char* answer;                         // body of the last of them
  ResultCode result;
  std::vector<std::string> frequency_requests;
  double maximum;
  std::uint32_t frequency_class;
};

class FormTest : public LinkTest, public testing::WithParamInterface<FormCase> {};

TEST_P(FormTest, FindsTheForm) {
  visa_.Answer(0);
  visa_.Answer(0, "17 00 FB FF");
  visa_.Answer(0, "0F 00");
  const auto& statuses = GetParam().probe_statuses;
  for (std::size_t i = 0; i < statuses.size(); ++i) {
    visa_.Answer(statuses[i], i + 1 == statuses.size() ? GetParam().answer : "");
    if (statuses[i] >= 0x8000) visa_.Answer(0);  // the recovery
  }
  EXPECT_EQ(model_.Initialize(), GetParam().result);
  const auto order = visa_.RequestOrder();
  std::vector<std::string> probes;
  std::copy_if(order.begin(), order.end(), std::back_inserter(probes),
               [](const std::string& text) { return text.starts_with("3:0/"); });
  EXPECT_THAT(probes, ElementsAreArray(GetParam().frequency_requests));
  EXPECT_EQ(model_.minimum_frequency(), GetParam().result == Status::kOk ? 1e7 : 0.0);
  EXPECT_EQ(model_.maximum_frequency(), GetParam().maximum);
  EXPECT_EQ(model_.frequency_class(), GetParam().frequency_class);
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(
    Forms, FormTest,
    testing::ValuesIn(std::vector<FormCase>{
        {"FourElement", {0}, kLimitsAnswer, 0, {"3:0/60x4"}, 2e10, 2},
        {"NoticesOfTheProbeDoNotCount", {1}, kLimitsAnswer, 0, {"3:0/60x4"}, 2e10, 2},
        {"UnusableNoticeKeepsFourElement", {2}, kLimitsAnswer, 0, {"3:0/60x4"}, 2e10, 2},
        {"Wide", {0x8003, 0}, "00 00 | 80 96 98 00 00 00 | 02 00 00 00 00 00 | 80 91 D2 ED 00 00", 0, {"3:0/60x4", "3:0/60x3"}, 4e9, 1},
        {"Narrow", {0x8003, 0x8003, 0}, "00 00 | 80 96 98 00 | 02 00 00 00 | 80 91 D2 ED", 0, {"3:0/60x4", "3:0/60x3", "3:0/40x3"}, 4e9, 1},
        {"OtherRefusalOfFourElementEnds", {0x8002}, "", -32766, {"3:0/60x4"}, 0, 0},
        {"OtherRefusalOfWideEnds", {0x8003, 0x8005}, "", -32763, {"3:0/60x4", "3:0/60x3"}, 0, 0},
        {"NoFormAtAllEnds", {0x8003, 0x8003, 0x8003}, "", -32765, {"3:0/60x4", "3:0/60x3", "3:0/40x3"}, 0, 0},
    }),
    RowName());
// clang-format on

TEST_F(LinkTest, InstrumentWithOneTriggerGroup) {
  visa_.Rule(4, 8, 0x8003, 0, 1);
  InitializeModel();
  TriggerElements output{1, true, 3, 0, 0};
  EXPECT_EQ(model_.SetTriggerOutput(0, output), 0);
  TriggerElements input{4, false, 1, 0, 3};
  EXPECT_EQ(model_.SetTriggerInput(0, input), 0);
  EXPECT_EQ(model_.SetTriggerInput(1, input), 0);
  EXPECT_EQ(model_.SetTriggerOutput(1, output), 0);
  EXPECT_THAT(Requests(), ElementsAre(WriteRequest(5, 0x10, "08 00 | 01 01 03 00 00 00"),
                                      WriteRequest(5, 0x10, "07 00 | 04 00 01 00 03 00")));
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
    visa_.control().Reset();
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
// ------------------------------------------------------------------------------------------

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
    std::vector<std::uint8_t> body = {15, 0x7F};
    body.insert(body.end(), row.text.begin(), row.text.end());
    body.resize(102);
    visa_.RuleBody(4, 15, 0, scripted::ToHex(body));
    InitializeModel();
    EXPECT_EQ(model_.identity().manufactured.Ordinal(), row.manufactured.Ordinal());
    EXPECT_EQ(model_.identity().dsp_program.Ordinal(), row.dsp_program.Ordinal());
    EXPECT_EQ(model_.identity().fpga_firmware.Ordinal(), row.fpga_firmware.Ordinal());
  }
}

TEST_F(LinkTest, IdentityThatIsMissingOrMakesNoSenseCostsTheDatesAlone) {
  struct Case {
    std::uint16_t status;
    const char* body;
  };
  for (const Case& row :
       {Case{0, "10 00 | 31 2E 32 2E 32 30 30 33 00"}, Case{0x8001, ""}, Case{0x8002, ""}}) {
    SCOPED_TRACE(row.status);
    visa_.RuleBody(4, 15, 0, "0F 7F | 31 2E 32 2E 32 30 30 33 00");
    EXPECT_EQ(model_.Initialize(), 0);
    EXPECT_TRUE(model_.identity().manufactured.IsKnown());
    visa_.ClearRecord();
    visa_.RuleBody(4, 15, row.status, row.body, 0, 1);
    visa_.Answer(0);
    visa_.Answer(0);
    EXPECT_EQ(model_.Initialize(), 0);
    EXPECT_THAT(visa_.Requests()[2], testing::StartsWith("AA 55 04 00 00 80 66 00 64 10 0F 00"));
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
  struct Case {
    const char* text;
    IdentityDate date;
  };
  const Case rows[] = {
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
  for (const Case& row : rows) {
    EXPECT_EQ(ParseIdentityDate(row.text).Ordinal(), row.date.Ordinal()) << row.text;
  }
}

// --- Frequency
// -----------------------------------------------------------------------------------------

struct CwCase {
  double wanted;
  const char* element;
};

TEST_F(LinkTest, CwFrequencyIsClampedAndWholeHertz) {
  InitializeModel();
  for (const CwCase& row :
       {CwCase{1e9 + 0.9, "00 CA 9A 3B 00 00"}, CwCase{1.0, "80 96 98 00 00 00"},
        CwCase{-1e9, "80 96 98 00 00 00"}, CwCase{1e12, "00 C8 17 A8 04 00"},
        CwCase{std::nan(""), "80 96 98 00 00 00"}}) {
    visa_.ClearRecord();
    double frequency = row.wanted;
    visa_.Answer(0, "00 00 | 40 42 0F 00 00 00");
    EXPECT_EQ(model_.SetCwFrequency(frequency), 0);
    EXPECT_THAT(Requests(), ElementsAre(WriteRequest(1, 0x60, std::string("00 00") + row.element)));
    EXPECT_EQ(frequency, 1e6);
  }
}

TEST_F(LinkTest, FourElementSweeps) {
  struct Case {
    const char* name;
    double start, stop, step;
    std::string elements;  // start, points, step, stop
  };
  // clang-format off
  const Case rows[] = {
      {"exact", 1e9, 2e9, 1e8, "00 CA 9A 3B 00 00 | 0B 00 00 00 00 00 | 00 E1 F5 05 00 00 | 00 94 35 77 00 00"},
      {"a step that does not fit is spread over the points", 1e9, 2e9, 3e8, "00 CA 9A 3B 00 00 | 04 00 00 00 00 00 | 55 43 DE 13 00 00 | 00 94 35 77 00 00"},
      {"step zero is one point", 1e9, 2e9, 0, "00 CA 9A 3B 00 00 | 01 00 00 00 00 00 | 00 00 00 00 00 00 | 00 94 35 77 00 00"},
      {"downward", 2e9, 1e9, -1e8, "00 94 35 77 00 00 | 0B 00 00 00 00 00 | 00 1F 0A FA FF FF | 00 CA 9A 3B 00 00"},
      {"downward with an upward step: no points", 2e9, 1e9, 1e8, "00 94 35 77 00 00 | F8 FF FF FF FF FF | 00 00 00 00 00 00 | 00 CA 9A 3B 00 00"},
      {"limits clamp", -5, 1e12, 1e12, "80 96 98 00 00 00 | 02 00 00 00 00 00 | 80 31 7F A7 04 00 | 00 C8 17 A8 04 00"},
      {"fractions of hertz are cut", 1e9 + 0.7, 2e9, 1e8, "00 CA 9A 3B 00 00 | 0B 00 00 00 00 00 | 00 E1 F5 05 00 00 | 00 94 35 77 00 00"},
      {"a tiny step does not overflow the count", 1e9, 2e9, 1e-300, "00 CA 9A 3B 00 00 | FF FF FF 7F 00 00 | 00 00 00 00 00 00 | 00 94 35 77 00 00"},
  };
  // clang-format on
  InitializeModel();
  for (const Case& row : rows) {
    visa_.ClearRecord();
    StepSettings sweep{row.start, row.stop, row.step};
    visa_.Answer(0,
                 "00 00 | 64 00 00 00 00 00 | 03 00 00 00 00 00 | 0A 00 00 00 00 00 |"
                 "79 00 00 00 00 00");
    EXPECT_EQ(model_.SetFrequencySweep(sweep), 0);
    EXPECT_THAT(Requests(), ElementsAre(WriteRequest(4, 0x60, "00 00" + row.elements))) << row.name;
    EXPECT_THAT(Elements(sweep), ElementsAre(100, 121, 10)) << row.name;
  }
}

TEST_F(LinkTest, NegativeFrequenciesBecomeZeroWhateverTheLimits) {
  visa_.RuleBody(3, 0, 0, "00 00 | F6 FF FF FF FF FF | 02 00 00 00 00 00 | 14 00 00 00 00 00", 0x60,
                 1);
  ASSERT_EQ(model_.Initialize(), 0);
  StepSettings sweep{-5, -2, 1};
  EXPECT_EQ(model_.SetFrequencySweep(sweep), 0);
  EXPECT_THAT(Elements(sweep), ElementsAre(0, 0, 0));
}

TEST_F(LinkTest, WideAndNarrowSweepsComputeTheirStop) {
  struct Case {
    std::int32_t refused_probes;
    std::string probe;  // asks for the largest span
    std::string request;
    const char* answer;
    std::vector<double> sweep;
  };
  // clang-format off
  const Case rows[] = {
      {1, WriteRequest(3, 0x60, "00 00 | 00 00 00 00 00 00 | 02 00 00 00 00 00 | 00 E8 76 48 17 00"),
       WriteRequest(3, 0x60, "00 00 | 00 CA 9A 3B 00 00 | 0B 00 00 00 00 00 | 00 E1 F5 05 00 00"),
       "00 00 | 64 00 00 00 00 00 | 03 00 00 00 00 00 | F6 FF FF FF FF FF", {100, 80, -10}},
      {2, WriteRequest(3, 0x40, "00 00 | 00 00 00 00 | 02 00 00 00 | 40 6A 7A EE"),
       WriteRequest(3, 0x40, "00 00 | 00 CA 9A 3B | 0B 00 00 00 | 00 E1 F5 05"),
       "00 00 | 64 00 00 00 | 03 00 00 00 | 0A 00 00 00", {100, 120, 10}},
  };
  // clang-format on
  for (const Case& row : rows) {
    visa_.Rule(3, 0, 0x8003, 0x60, row.refused_probes);
    ASSERT_EQ(model_.Initialize(), 0);
    EXPECT_THAT(Requests(), testing::Contains(row.probe));
    visa_.ClearRecord();
    StepSettings sweep{1e9, 2e9, 1e8};
    visa_.Answer(0, row.answer);
    EXPECT_EQ(model_.SetFrequencySweep(sweep), 0);
    EXPECT_THAT(Requests(), ElementsAre(row.request));
    EXPECT_EQ(Elements(sweep), row.sweep);
  }
}

}  // namespace
