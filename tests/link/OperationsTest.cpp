// Every operation of the model: its exact request, what it makes of the answer, a refusal, a lost
// link.
#include "tests/link/Operations.h"

#include "tests/link/LinkFixture.h"

namespace {

using operations::Values;
using testing::ElementsAre;

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

INSTANTIATE_TEST_SUITE_P(Settings, OperationTest, testing::ValuesIn(operations::kOperations),
                         RowName());

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
