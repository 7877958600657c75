// Every operation of the model: its exact request, what it makes of the answer, a refusal, a lost
// link.
#include <functional>

#include "tests/link/LinkFixture.h"

namespace {

using testing::ElementsAreArray;
using Values = std::vector<double>;

struct Operation : Row {
  /// Runs it; the values afterwards go to the vector.
  std::function<Status(D3THardWare&, Values&)> run;
  std::vector<std::string> requests;
  std::vector<std::string> answers;  // bodies, status 0; none: the request's own
  Values values;
};

constexpr const char* kZeros12 = " 00 00 00 00 00 00 00 00 00 00 00 00";

/// Calls an operation of these arguments, which are the values afterwards.
template <typename... Args, typename... Given>
auto Calling(Status (D3THardWare::*operation)(Args&...), Given... given) {
  return [operation, arguments = std::tuple<Args...>(given...)](D3THardWare& model,
                                                                Values& values) mutable {
    return std::apply(
        [&](Args&... argument) {
          const Status result = (model.*operation)(argument...);
          values = {static_cast<double>(argument)...};
          return result;
        },
        arguments);
  };
}
auto Averaging(std::int32_t factor, AveragingFeatures features) {
  return [=](D3THardWare& model, Values& values) mutable {
    const Status result = model.SetAveraging(factor, features);
    values = {static_cast<double>(factor)};
    return result;
  };
}
auto Trigger(Status (D3THardWare::*operation)(unsigned, TriggerElements&), unsigned group,
             TriggerElements elements) {
  return [=](D3THardWare& model, Values& values) mutable {
    const Status result = (model.*operation)(group, elements);
    values = {double(elements.code), double(elements.edge), double(elements.value),
              double(elements.flag), double(elements.last)};
    return result;
  };
}
auto List(ListAxis axis, const Values& list, LevelSettings settings = {}) {
  return [=](D3THardWare& model, Values& values) {
    values = list;
    return model.TransferList(axis, values, settings);
  };
}

// clang-format off
std::vector<Operation> SettingOperations() {
  return {
      {"DwellIsNanosecondsWithSelectorZero", Calling(&D3THardWare::SetDwell, 5e8),
       {WriteRequest(2, 0x40, "05 00 | 00 00 00 00 | 00 65 CD 1D")},
       {"05 00 | 00 00 00 00 | E8 03 00 00"}, {1000.0}},
      {"DwellThousandsScalesBothWays", Calling(&D3THardWare::SetDwellThousands, 2.5),
       {WriteRequest(2, 0x40, "05 00 | 00 00 00 00 | C4 09 00 00")},
       {"05 00 | 00 00 00 00 | B8 0B 00 00"}, {3.0}},
      {"AveragingClampsAbove14AndSendsMaskFirst", Averaging(20, {}),
       {WriteRequest(1, 0x20, "17 00 FF FF"), WriteRequest(1, 0x10, "04 00 0E 00")},
       {"17 00 FF FF", "04 00 0C"},
       {12.0}},
      {"AveragingClampsBelow1AndClearsEachMaskBit", Averaging(0, {.clear_bit_2 = true, .bit_3 = false, .bit_4 = false, .bit_5 = false}),
       {WriteRequest(1, 0x20, "17 00 C3 FF"), WriteRequest(1, 0x10, "04 00 01 00")}, {}, {1.0}},
      {"TriggerInputKeepsTheOtherGroup", Trigger(&D3THardWare::SetTriggerInput, 1, {3, true, 255, 1, 2}),
       {ReadRequest(10, 0x10, 7, "07 00 | 00 00 00 00 00 | 00 00 00 00 00"),
        WriteRequest(10, 0x10, "07 00 | 01 02 03 04 05 | 03 01 FF 01 02")},
       {"07 00 | 01 02 03 04 05 | 06 07 08 09 0A", "07 00 | 01 02 03 04 05 | 02 00 80 04 05"},
       {2, 0, 128, 4, 5}},
      {"TriggerOutputFirstGroup", Trigger(&D3THardWare::SetTriggerOutput, 0, {5, true, 3, 0, 0}),
       {ReadRequest(10, 0x10, 8, "08 00 | 00 00 00 00 00 | 00 00 00 00 00"),
        WriteRequest(10, 0x10, "08 00 | 05 01 03 00 00 | 06 07 08 09 0A")},
       {"08 00 | 01 02 03 04 05 | 06 07 08 09 0A", "08 00 | 04 02 02 00 00 | 06 07 08 09 0A"},
       {4, 1, 2, 0, 0}},
      {"SyncGeneratorCarriesOffTime", Calling(&D3THardWare::SetSyncGenerator, 1000, 2000, 3000),
       {WriteRequest(3, 0x40, "25 00 | E8 03 00 00 | D0 07 00 00 | B8 0B 00 00")},
       {"25 00 | E9 03 00 00 | D1 07 00 00 | B9 0B 00 00"}, {1001, 2001, 3001}},
      {"ExternalReference", Calling(&D3THardWare::SetExternalReference, true, 1e7),
       {WriteRequest(2, 0x40, "11 00 | 01 00 00 00 | 80 96 98 00")},
       {"11 00 | 00 00 00 00 | 40 4B 4C 00"}, {0, 5e6}},
      {"PhaseDelayIsSignedFixedPoint", Calling(&D3THardWare::SetPhaseDelay, -1.5),
       {WriteRequest(1, 0x42, "5C 00 | 00 80 FE FF")},
       {"5C 00 | 00 40 00 00"}, {0.25}},
      {"CompensationModeIsNotChecked", Calling(&D3THardWare::SetCompensationMode, 9U),
       {WriteRequest(1, 0x20, "0B 00 09 00")}, {"0B 00 04 00"}, {4}},
      {"KindIsTheInstrumentsOwn", Calling(&D3THardWare::QueryInstrumentKind, 18U),
       {WriteRequest(1, 0x20, "03 00 12 00")}, {"03 00 02 00"}, {2}},
      {"RfButtonCarriesIdentifierInHeader", Calling(&D3THardWare::ReadRfButton, false),
       {ReadRequest(1, 0x20, 34, "22 00 00 00")}, {"22 00 00 01"}, {1}},
      {"OutputStateOfWideForm",
       [](D3THardWare& model, Values& values) {
         LevelSettings settings;
         double level = 0;
         const Status result = model.ReadOutputState(settings, level);
         values = {double(settings.level_control), double(settings.atten_mode),
                   double(settings.further_1), double(settings.further_2), level};
         return result;
       },
       {ReadRequest(5, 0x62, 79,
                    std::string("4F 00") + kZeros12 + kZeros12 + " 00 00 00 00 00 00")},
       {"4F 00 | 00 00 01 00 00 00 | 00 00 02 00 00 00 | 00 00 03 00 00 00 | 00 00 04 00 00 00 |"
        "00 80 F5 FF FF FF"},
       {1, 2, 3, 4, -10.5}},
      {"FixedPulseTrain",
       [](D3THardWare& model, Values& values) {
         std::array<std::uint32_t, 3> elements = {1, 2, 0xFFFFFFFF};
         const Status result = model.WritePulseTrainFixed(elements);
         values.assign(elements.begin(), elements.end());
         return result;
       },
       {WriteRequest(3, 0x40, "1F 00 | 01 00 00 00 | 02 00 00 00 | FF FF FF FF")},
       {"1F 00 | 04 00 00 00 | 05 00 00 00 | 06 00 00 00"}, {4, 5, 6}},
      {"SwitchSettingHasZeroInTheMiddle", Calling(&D3THardWare::WriteSwitchSetting, true, 0x1234U),
       {WriteRequest(3, 0x20, "09 00 | 01 00 | 00 00 | 34 12")},
       {"09 00 | 00 00 | 00 00 | 35 12"}, {0, 0x1235}},
      {"ScaledSettingIsHertzAndSixteenBits", Calling(&D3THardWare::WriteScaledSetting, 10, 7U, -1.5),
       {WriteRequest(3, 0x40, "1B 00 | 80 96 98 00 | 07 00 00 00 | 80 FE 00 00")},
       {"1B 00 | 40 42 0F 00 | 08 00 00 00 | 00 FF 00 00"}, {1, 8, -1}},
      {"FixedConfiguration",
       [](D3THardWare& model, Values&) { return model.WriteFixedConfiguration(true); },
       {WriteRequest(4, 0x10, "1C 00 | 03 00 05 03")}, {}, {}},
      {"FixedConfigurationWithoutFlag",
       [](D3THardWare& model, Values&) { return model.WriteFixedConfiguration(false); },
       {WriteRequest(4, 0x10, "1C 00 | 02 00 05 03")}, {}, {}},
      {"FrequencyTableHasOneFractionalByte",
       [](D3THardWare& model, Values& values) {
         values = {1.5, -0.25};
         return model.TransferFrequencyTable(values);
       },
       {WriteRequest(2, 0x21, "1A 00 | 80 01 | C0 FF")},
       {"1A 00 | 00 02 | 00 01"}, {2, 1}},
      {"FrequencyListOfTwo", List(ListAxis::kFrequency, {1e9, 2e10}),
       {WriteRequest(0, 0x60,
                     "02 00 | 00 00 00 00 00 00 | 02 00 00 00 00 00 | 00 CA 9A 3B 00 00 |"
                     "00 C8 17 A8 04 00")},
       {"02 00 | 00 00 00 00 00 00 | 02 00 00 00 00 00 | 01 CA 9A 3B 00 00 | 01 C8 17 A8 04 00"}, {1e9 + 1, 2e10 + 1}},
      {"PowerListCarriesLevelSettings", List(ListAxis::kPower, {-60.5}, {.level_control = 1, .atten_mode = AttenMode::kOptimumSwr, .further_1 = 7}),
       {WriteRequest(4, 0x42,
                     "4C 00 | 00 00 01 00 | 00 00 03 00 | 00 00 00 00 | 00 00 00 00 | 00 00 00 00 |"
                     "00 00 01 00 | 00 80 C3 FF")},
       {"4C 00 | 00 00 01 00 | 00 00 03 00 | 00 00 00 00 | 00 00 00 00 | 00 00 00 00 |"
        "00 00 01 00 | 00 00 C4 FF"},
       {-60}},
      {"PulseTrainBeforeConnectionHasNoPolarity",
       [](D3THardWare& model, Values& values) {
         PulseSource source{};
         std::array<double, 1> width = {100};
         std::array<double, 1> gap = {200};
         const Status result = model.TransferPulseTrain(2, source, width, gap, true);
         values = {double(source), width[0], gap[0]};
         return result;
       },
       {WriteRequest(2, 0x40,
                     "1F 00 | 02 00 00 00 | 03 00 00 00 | 00 00 00 00 | 01 00 00 00 | 64 00 00 00 |"
                     "C8 00 00 00")},
       {"1F 00 | 02 00 00 00 | 02 00 00 00 | 00 00 00 00 | 01 00 00 00 | 65 00 00 00 | C9 00 00 "
        "00"},
       {1, 101, 201}},
  };
}
// clang-format on

class OperationTest : public LinkTest, public testing::WithParamInterface<Operation> {};

TEST_P(OperationTest, SendsExactlyThisAndTakesTheAnswer) {
  for (const std::string& answer : GetParam().answers) visa_.Answer(0, answer);
  Values values;
  EXPECT_EQ(GetParam().run(model_, values), 0);
  EXPECT_THAT(Requests(), ElementsAreArray(GetParam().requests));
  EXPECT_EQ(values, GetParam().values);
}

TEST_P(OperationTest, ReturnsRefusalAfterRecovering) {
  visa_.Answer(0x8000);
  Values values;
  EXPECT_EQ(GetParam().run(model_, values), -32768);
  EXPECT_THAT(Requests(), testing::ElementsAre(GetParam().requests.front(), RecoverRequest()));
}

TEST_P(OperationTest, ReturnsLostLinkWithoutRecovering) {
  visa_.SetResult(scripted::Function::kRead, 0xBFFF00A6);
  Values values;
  EXPECT_EQ(GetParam().run(model_, values), scripted::kConnectionLost);
  EXPECT_EQ(Requests().size(), 1U);
}

INSTANTIATE_TEST_SUITE_P(Settings, OperationTest, testing::ValuesIn(SettingOperations()),
                         RowName());

TEST_F(LinkTest, NoticeOfAWriteIsZeroAndStaysInTheParameter) {
  HardWareParametr parameter({.identifier = 4, .element_count = 1, .element_size = 1});
  EXPECT_EQ(parameter.status(), 0x8000);
  visa_.Answer(0x7FFF, "04 00 07");
  EXPECT_EQ(model_.WriteParameter(parameter), 0);
  EXPECT_EQ(parameter.status(), 0x7FFF);
  EXPECT_EQ(parameter.GetValue(0), 7.0);
  visa_.Answer(3, "04 00 08");
  EXPECT_EQ(model_.ReadParameter(parameter), 3);
  EXPECT_EQ(parameter.status(), 0x7FFF);
  EXPECT_EQ(parameter.GetValue(0), 8.0);
}

TEST_F(LinkTest, ShortPayloadLeavesMissingElements) {
  double width = 10;
  double off_time = 20;
  double delay = 30;
  visa_.Answer(0, "25 00 | 0B 00 00 00 | 15 00");
  EXPECT_EQ(model_.SetSyncGenerator(width, off_time, delay), 0);
  EXPECT_THAT((Values{width, off_time, delay}), testing::ElementsAre(11, 20, 30));
  visa_.Answer(0, "25");
  EXPECT_EQ(model_.SetSyncGenerator(width, off_time, delay), 0);
  EXPECT_EQ(width, 11.0);
}

TEST_F(LinkTest, ReferenceFallsBackToShortFormOnlyOn8003) {
  bool enabled = true;
  double frequency = 1e7;
  visa_.Answer(0x8003);
  visa_.Answer(0);  // of the recovery
  visa_.Answer(0, "11 00 00");
  EXPECT_EQ(model_.SetExternalReference(enabled, frequency), 0);
  EXPECT_FALSE(enabled);
  EXPECT_EQ(frequency, 1e7);
  EXPECT_THAT(Requests(),
              testing::ElementsAre(WriteRequest(2, 0x40, "11 00 | 01 00 00 00 | 80 96 98 00"),
                                   RecoverRequest(), WriteRequest(1, 0x10, "11 00 01 00")));
}

TEST_F(LinkTest, StatesFollowTheCode) {
  struct Case {
    Status (D3THardWare::*read)(bool&);
    const char* request;
    ResultCode result;
    std::uint16_t code;
    bool state;
  };
  const Case rows[] = {
      {&D3THardWare::ReadPllState, "4:0/40x3", 0, 0, true},
      {&D3THardWare::ReadPllState, "4:0/40x3", 0, 0x8007, false},
      {&D3THardWare::ReadPllState, "4:0/40x3", -32740, 0x801C, true},
      {&D3THardWare::ReadErgState, "4:0/40x3", 0, 0, true},
      {&D3THardWare::ReadErgState, "4:0/40x3", 0, 0x801C, false},
      {&D3THardWare::ReadErgState, "4:0/40x3", -32766, 0x8002, true},
      {&D3THardWare::ReadLevelState, "4:79/62x5", 0, 0, true},
      {&D3THardWare::ReadLevelState, "4:79/62x5", 5, 5, true},
      {&D3THardWare::ReadLevelState, "4:79/62x5", 0, 6, false},
  };
  for (const Case& row : rows) {
    SCOPED_TRACE(testing::Message() << row.request << ' ' << row.code);
    visa_.ClearRecord();
    bool state = !row.state;
    visa_.Answer(row.code);
    EXPECT_EQ((model_.*row.read)(state), row.result);
    EXPECT_EQ(state, row.state);
    EXPECT_EQ(visa_.RequestOrder().front(), row.request);
  }
}

// --- Files and serial number
// ---------------------------------------------------------------------------

TEST_F(LinkTest, FileRequestIsPaddedToWordsAndTextStripped) {
  std::string text = "old";
  // 17 path bytes with the zero: text from offset 27.
  visa_.Answer(
      0,
      "0A 00 | 00 00 00 00 | 0C 00 00 00 | 5C 46 52 41 4D 5C 53 45 52 49 41 4C 2E 54 58 54 00 |"
      "20 41 09 31 20 32 0D 0A 5A");
  EXPECT_EQ(model_.ReadInstrumentFile("\\FRAM\\SERIAL.TXT", text), 0);
  EXPECT_EQ(text, "A12");
  EXPECT_THAT(
      Requests(),
      testing::ElementsAre(Request(
          4, 2, 0x40, 0,
          "0A 00 | 00 00 00 00 | 00 FA 00 00 | 5C 46 52 41 4D 5C 53 45 52 49 41 4C 2E 54 58 54 |"
          "00 00 00 00")));
}

TEST_F(LinkTest, FileEndsAtZeroOrEndOfPayload) {
  const std::pair<const char*, const char*> rows[] = {
      {"0A 00 | 00 00 00 00 | 0C 00 00 00 | 5C 61 62 00 | 41 00 42", "A"},
      {"0A 00 | 00 00 00 00 | 0C 00 00 00 | 5C 61 62 00 | 41 42", "AB"},
      {"0A 00 00", ""}};
  for (const auto& [answer, expected] : rows) {
    std::string text = "old";
    visa_.Answer(0, answer);
    EXPECT_EQ(model_.ReadInstrumentFile("\\ab", text), 0);
    EXPECT_EQ(text, expected);
  }
  EXPECT_EQ(Requests().front(),
            Request(4, 2, 0x40, 0, "0A 00 | 00 00 00 00 | 00 FA 00 00 | 5C 61 62 00"));
}

/// Makes the answer to a serial number query of the query sent back: words that its key turns back
/// into the characters.
template <std::uint16_t checksum>
std::size_t ScrambleSerial(std::uint8_t* answer, std::size_t, std::size_t) {
  const std::uint64_t key = answer[18] + 256ULL * answer[19];
  std::size_t size = 18;
  const auto put = [&](std::uint32_t word) {
    answer[size++] = static_cast<std::uint8_t>(word);
    answer[size++] = static_cast<std::uint8_t>(word >> 8);
  };
  for (const char c : std::string_view("123456789")) {
    std::uint32_t word = 0;  // some word whose product has the character in its low byte
    while ((word * key % 65537 & 0xFF) != static_cast<std::uint8_t>(c)) ++word;
    put(word);
  }
  put(checksum);
  answer[6] = static_cast<std::uint8_t>(size - 16);
  return size;
}

TEST_F(LinkTest, SerialNumberQueryCarriesKeyOfAtLeastTwo) {
  std::string serial;
  visa_.Answer(0x8002);
  EXPECT_EQ(model_.QuerySerialNumber(serial), -32766);
  const std::string request = Requests().at(0);
  EXPECT_EQ(request.substr(0, 43), "AA 55 04 00 00 80 04 00 01 20 00 00 | 53 00");
  const auto key = scripted::FromHex(request.substr(44));
  EXPECT_GE(key.at(0) + 256 * key.at(1), 2);
  EXPECT_EQ(Requests().size(), 1U);
}

TEST_F(LinkTest, SerialNumberIsUnscrambledAndChecked) {
  std::string serial = "old";
  visa_.control().SpoilAnswer({.change = ScrambleSerial<0xBB3C>});
  EXPECT_EQ(model_.QuerySerialNumber(serial), -1);
  EXPECT_EQ(serial, "old");
  // The published check value of this CRC-16 ("ARC").
  visa_.control().SpoilAnswer({.change = ScrambleSerial<0xBB3D>});
  EXPECT_EQ(model_.QuerySerialNumber(serial), 0);
  EXPECT_EQ(serial, "123456789");
  visa_.Answer(0, "53 00 00");
  EXPECT_EQ(model_.QuerySerialNumber(serial), -1);
}

}  // namespace
