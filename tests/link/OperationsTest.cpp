// Every operation of the model: its exact request, what it makes of the answer, a refusal, a lost
// link.
#include <functional>

#include "tests/link/LinkFixture.h"

namespace {

using testing::ElementsAre;
using Values = std::vector<double>;

struct Operation : Row {
  /// Runs it; the values afterwards go to the vector.
  std::function<Status(D3THardWare&, Values&)> run;
  std::vector<Request> requests;
  std::vector<Values> answers;  // the elements, status 0; none: the request's own
  Values values;
};

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

Status ReadOutputState(D3THardWare& model, Values& values) {
  LevelSettings settings;
  double level = 0;
  const Status result = model.ReadOutputState(settings, level);
  values = {double(settings.level_control), double(settings.atten_mode), double(settings.further_1),
            double(settings.further_2), level};
  return result;
}
Status WritePulseTrainFixed(D3THardWare& model, Values& values) {
  std::array<std::uint32_t, 3> elements = {1, 2, 0xFFFFFFFF};
  const Status result = model.WritePulseTrainFixed(elements);
  values.assign(elements.begin(), elements.end());
  return result;
}
template <bool flag>
Status WriteFixedConfiguration(D3THardWare& model, Values&) {
  return model.WriteFixedConfiguration(flag);
}
Status TransferFrequencyTable(D3THardWare& model, Values& values) {
  values = {1.5, -0.25};
  return model.TransferFrequencyTable(values);
}
Status TransferPulseTrain(D3THardWare& model, Values& values) {
  PulseSource source{};
  std::array<double, 1> width = {100};
  std::array<double, 1> gap = {200};
  const Status result = model.TransferPulseTrain(2, source, width, gap, true);
  values = {double(source), width[0], gap[0]};
  return result;
}

// clang-format off
using D = D3THardWare;
const std::vector<Operation> kOperations = {
    {"DwellIsNanosecondsWithSelectorZero", Calling(&D::SetDwell, 5e8),
     {Write(5, 0x40, 2, "00 00 00 00 | 00 65 CD 1D"_hex)}, {{0, 1000}}, {1000}},
    {"DwellThousandsScalesBothWays", Calling(&D::SetDwellThousands, 2.5),
     {Write(5, 0x40, 2, "00 00 00 00 | C4 09 00 00"_hex)}, {{0, 3000}}, {3}},
    {"AveragingClampsAbove14AndSendsMaskFirst", Averaging(20, {}),
     {Write(23, 0x20, 1, "FF FF"_hex), Write(4, 0x10, 1, "0E 00"_hex)}, {{0xFFFF}, {12}}, {12}},
    {"AveragingClampsBelow1AndClearsEachMaskBit", Averaging(0, {true, false, false, false}),
     {Write(23, 0x20, 1, "C3 FF"_hex), Write(4, 0x10, 1, "01 00"_hex)}, {}, {1}},
    {"TriggerInputKeepsTheOtherGroup", Trigger(&D::SetTriggerInput, 1, {3, true, 255, 1, 2}),
     {Read(7, 0x10, 10), Write(7, 0x10, 10, "01 02 03 04 05 | 03 01 FF 01 02"_hex)},
     {{1, 2, 3, 4, 5, 6, 7, 8, 9, 10}, {1, 2, 3, 4, 5, 2, 0, 128, 4, 5}}, {2, 0, 128, 4, 5}},
    {"TriggerOutputFirstGroup", Trigger(&D::SetTriggerOutput, 0, {5, true, 3, 0, 0}),
     {Read(8, 0x10, 10), Write(8, 0x10, 10, "05 01 03 00 00 | 06 07 08 09 0A"_hex)},
     {{1, 2, 3, 4, 5, 6, 7, 8, 9, 10}, {4, 2, 2, 0, 0, 6, 7, 8, 9, 10}}, {4, 1, 2, 0, 0}},
    {"SyncGeneratorCarriesOffTime", Calling(&D::SetSyncGenerator, 1000, 2000, 3000),
     {Write(37, 0x40, 3, "E8 03 00 00 | D0 07 00 00 | B8 0B 00 00"_hex)},
     {{1001, 2001, 3001}}, {1001, 2001, 3001}},
    {"ExternalReference", Calling(&D::SetExternalReference, true, 1e7),
     {Write(17, 0x40, 2, "01 00 00 00 | 80 96 98 00"_hex)}, {{0, 5e6}}, {0, 5e6}},
    {"PhaseDelayIsSignedFixedPoint", Calling(&D::SetPhaseDelay, -1.5),
     {Write(92, 0x42, 1, "00 80 FE FF"_hex)}, {{0.25}}, {0.25}},
    {"CompensationModeIsNotChecked", Calling(&D::SetCompensationMode, 9U),
     {Write(11, 0x20, 1, "09 00"_hex)}, {{4}}, {4}},
    {"KindIsTheInstrumentsOwn", Calling(&D::QueryInstrumentKind, 18U),
     {Write(3, 0x20, 1, "12 00"_hex)}, {{2}}, {2}},
    {"RfButtonCarriesIdentifierInHeader", Calling(&D::ReadRfButton, false),
     {Read(34, 0x20, 1)}, {{256}}, {1}},
    {"OutputStateOfWideForm", ReadOutputState, {Read(79, 0x62, 5)}, {{1, 2, 3, 4, -10.5}},
     {1, 2, 3, 4, -10.5}},
    {"FixedPulseTrain", WritePulseTrainFixed,
     {Write(31, 0x40, 3, "01 00 00 00 | 02 00 00 00 | FF FF FF FF"_hex)}, {{4, 5, 6}}, {4, 5, 6}},
    {"SwitchSettingHasZeroInTheMiddle", Calling(&D::WriteSwitchSetting, true, 0x1234U),
     {Write(9, 0x20, 3, "01 00 | 00 00 | 34 12"_hex)}, {{0, 0, 0x1235}}, {0, 0x1235}},
    {"ScaledSettingIsHertzAndSixteenBits", Calling(&D::WriteScaledSetting, 10, 7U, -1.5),
     {Write(27, 0x40, 3, "80 96 98 00 | 07 00 00 00 | 80 FE 00 00"_hex)},
     {{1e6, 8, 0xFF00}}, {1, 8, -1}},
    {"FixedConfiguration", WriteFixedConfiguration<true>,
     {Write(28, 0x10, 4, "03 00 05 03"_hex)}, {}, {}},
    {"FixedConfigurationWithoutFlag", WriteFixedConfiguration<false>,
     {Write(28, 0x10, 4, "02 00 05 03"_hex)}, {}, {}},
    {"FrequencyTableHasOneFractionalByte", TransferFrequencyTable,
     {Write(26, 0x21, 2, "80 01 | C0 FF"_hex)}, {{2, 1}}, {2, 1}},
    {"FrequencyListOfTwo", List(ListAxis::kFrequency, {1e9, 2e10}),
     {Write(2, 0x60, 0, "00 00 00 00 00 00 | 02 00 00 00 00 00 | 00 CA 9A 3B 00 00 |"
                        "00 C8 17 A8 04 00"_hex)},
     {{0, 2, 1e9 + 1, 2e10 + 1}}, {1e9 + 1, 2e10 + 1}},
    {"PowerListCarriesLevelSettings",
     List(ListAxis::kPower, {-60.5}, {1, AttenMode::kOptimumSwr, 7}),
     {Write(76, 0x42, 4, "00 00 01 00 | 00 00 03 00 | 00 00 00 00 | 00 00 00 00 | 00 00 00 00 |"
                         "00 00 01 00 | 00 80 C3 FF"_hex)}, {{1, 3, 0, 0, 0, 1, -60}}, {-60}},
    {"PulseTrainBeforeConnectionHasNoPolarity", TransferPulseTrain,
     {Write(31, 0x40, 2, "02 00 00 00 | 03 00 00 00 | 00 00 00 00 | 01 00 00 00 | 64 00 00 00 |"
                         "C8 00 00 00"_hex)}, {{2, 2, 0, 1, 101, 201}}, {1, 101, 201}},
};
// clang-format on

class OperationTest : public LinkTest, public testing::WithParamInterface<Operation> {
 protected:
  Status Run() { return GetParam().run(model_, values_); }

  Values values_;
};

TEST_P(OperationTest, SendsExactlyThisAndTakesTheAnswer) {
  for (std::size_t i = 0; i < GetParam().answers.size(); ++i) {
    const Request& request = GetParam().requests[i];
    visa_.Answer(0, Body(request.id, request.type, GetParam().answers[i]));
  }
  EXPECT_EQ(Run(), 0);
  EXPECT_EQ(visa_.Requests(), GetParam().requests);
  EXPECT_EQ(values_, GetParam().values);
}

TEST_P(OperationTest, ReturnsRefusalAfterRecoveringButLostLinkWithout) {
  visa_.Answer(0x8000);
  EXPECT_EQ(Run(), -32768);
  EXPECT_THAT(visa_.Requests(), ElementsAre(GetParam().requests.front(), kRecovery));
  visa_.ClearRecord();
  visa_.SetResult(scripted::Function::kRead, 0xBFFF00A6);
  EXPECT_EQ(Run(), scripted::kConnectionLost);
  EXPECT_EQ(visa_.Requests().size(), 1U);
}

INSTANTIATE_TEST_SUITE_P(Settings, OperationTest, testing::ValuesIn(kOperations), RowName());

TEST_F(LinkTest, NoticeOfAWriteIsZeroAndStaysInTheParameter) {
  HardWareParametr parameter({.identifier = 4, .element_count = 1, .element_size = 1});
  EXPECT_EQ(parameter.status(), 0x8000);
  visa_.Answer(0x7FFF, Body(4, 0x10, {7}));
  EXPECT_EQ(model_.WriteParameter(parameter), 0);
  EXPECT_EQ(parameter.status(), 0x7FFF);
  EXPECT_EQ(parameter.GetValue(0), 7.0);
  visa_.Answer(3, Body(4, 0x10, {8}));
  EXPECT_EQ(model_.ReadParameter(parameter), 3);
  EXPECT_EQ(parameter.status(), 0x7FFF);
  EXPECT_EQ(parameter.GetValue(0), 8.0);
}

TEST_F(LinkTest, ShortPayloadLeavesMissingElements) {
  double width = 10;
  double off_time = 20;
  double delay = 30;
  visa_.Answer(0, "25 00 | 0B 00 00 00 | 15 00"_hex);
  EXPECT_EQ(model_.SetSyncGenerator(width, off_time, delay), 0);
  EXPECT_THAT((Values{width, off_time, delay}), ElementsAre(11, 20, 30));
  visa_.Answer(0, "25"_hex);
  EXPECT_EQ(model_.SetSyncGenerator(width, off_time, delay), 0);
  EXPECT_EQ(width, 11.0);
}

TEST_F(LinkTest, ReferenceFallsBackToShortFormOnlyOn8003) {
  bool enabled = true;
  double frequency = 1e7;
  Answer({0x8003});
  visa_.Answer(0, "11 00 00"_hex);
  EXPECT_EQ(model_.SetExternalReference(enabled, frequency), 0);
  EXPECT_FALSE(enabled);
  EXPECT_EQ(frequency, 1e7);
  EXPECT_THAT(visa_.Requests(),
              ElementsAre(Write(17, 0x40, {1, 1e7}), kRecovery, Write(17, 0x10, {1})));
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

TEST_F(LinkTest, FileIsAskedForInWordsAndStripped) {
  struct Case {
    std::string path;
    std::size_t zeros;
    const char* answer;  // its text follows a path of the same length with its zero
    const char* text;
  };
  const Case rows[] = {
      {"\\FRAM\\SERIAL.TXT", 4,
       "0A 00 | 00 00 00 00 | 0C 00 00 00 | 5C 46 52 41 4D 5C 53 45 52 49 41 4C 2E 54 58 54 00 |"
       "20 41 09 31 20 32 0D 0A 5A",
       "A12"},
      {"\\ab", 1, "0A 00 | 00 00 00 00 | 0C 00 00 00 | 5C 61 62 00 | 41 00 42", "A"},
      {"\\ab", 1, "0A 00 | 00 00 00 00 | 0C 00 00 00 | 5C 61 62 00 | 41 42", "AB"},
      {"\\ab", 1, "0A 00 00", ""}};
  for (const Case& row : rows) {
    visa_.ClearRecord();
    std::string text = "old";
    visa_.Answer(0, FromHex(row.answer));
    EXPECT_EQ(model_.ReadInstrumentFile(row.path, text), 0);
    EXPECT_EQ(text, row.text);
    Bytes asked = "00 00 00 00 | 00 FA 00 00"_hex;
    asked.insert(asked.end(), row.path.begin(), row.path.end());
    asked.resize(asked.size() + row.zeros);
    EXPECT_THAT(visa_.Requests(), ElementsAre(Request{4, 10, 0x40, 2, asked}));
  }
}

/// Makes the answer to a serial number query of the query sent back: words that its key turns back
/// into the characters.
template <std::uint16_t checksum>
std::size_t ScrambleSerial(std::uint8_t* answer, std::size_t) {
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
  const auto requests = visa_.Requests();
  ASSERT_EQ(requests.size(), 1U);
  EXPECT_EQ(requests[0], (Request{4, 83, 0x20, 1, requests[0].body}));
  EXPECT_THAT(requests[0].Elements(), ElementsAre(testing::Ge(2)));
}

TEST_F(LinkTest, SerialNumberIsUnscrambledAndChecked) {
  std::string serial = "old";
  visa_.SpoilAnswer({.change = ScrambleSerial<0xBB3C>});
  EXPECT_EQ(model_.QuerySerialNumber(serial), -1);
  EXPECT_EQ(serial, "old");
  // The published check value of this CRC-16 ("ARC").
  visa_.SpoilAnswer({.change = ScrambleSerial<0xBB3D>});
  EXPECT_EQ(model_.QuerySerialNumber(serial), 0);
  EXPECT_EQ(serial, "123456789");
  visa_.Answer(0, "53 00 00"_hex);
  EXPECT_EQ(model_.QuerySerialNumber(serial), -1);
}

}  // namespace
