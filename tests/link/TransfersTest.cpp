// Lists and pulse trains: how they are cut into messages, and what comes back.
#include <numeric>

#include "tests/link/LinkFixture.h"

namespace {

struct ListCase : Row {
  ListAxis axis;
  std::size_t count;
  std::vector<std::size_t> chunks;
};

class ListTest : public LinkTest, public testing::WithParamInterface<ListCase> {};

/// An unsigned element of a recorded body.
std::uint64_t Element(const scripted::CallView& body, std::size_t index, std::size_t size) {
  std::uint64_t value = 0;
  for (std::size_t i = size; i-- > 0;) value = value << 8 | body.bytes[2 + index * size + i];
  return value;
}

TEST_P(ListTest, IsCutIntoChunks) {
  const bool power = GetParam().axis == ListAxis::kPower;
  const std::size_t size = power ? 4 : 6;
  const std::size_t fixed = power ? 4 : 0;
  const double unit = power ? 65536.0 : 1.0;
  std::vector<double> values(GetParam().count);
  std::iota(values.begin(), values.end(), 1.0);
  const std::vector<double> wanted = values;
  EXPECT_EQ(model_.TransferList(GetParam().axis, values, {}), 0);
  EXPECT_EQ(values, wanted);

  const auto writes = visa_.Calls(scripted::Function::kWrite);
  ASSERT_EQ(writes.size(), 2 * GetParam().chunks.size());
  std::size_t offset = 0;
  for (std::size_t i = 0; i < GetParam().chunks.size(); ++i) {
    const std::size_t count = GetParam().chunks[i];
    const scripted::CallView& body = writes[2 * i + 1];
    EXPECT_EQ(body.size, 2 + size * (fixed + 2 + count));
    EXPECT_EQ(writes[2 * i].bytes[8], fixed);
    EXPECT_EQ(static_cast<double>(Element(body, fixed, size)), static_cast<double>(offset) * unit);
    EXPECT_EQ(static_cast<double>(Element(body, fixed + 1, size)),
              static_cast<double>(count) * unit);
    EXPECT_EQ(static_cast<double>(Element(body, fixed + 2, size)), wanted[offset] * unit);
    EXPECT_EQ(static_cast<double>(Element(body, fixed + 1 + count, size)),
              wanted[offset + count - 1] * unit);
    offset += count;
  }
}

const std::vector<ListCase> kListCases = {
    {"NothingSendsNothing", ListAxis::kFrequency, 0, {}},
    {"FullFrequencyMessage", ListAxis::kFrequency, 165, {165}},
    {"OneFrequencyMore", ListAxis::kFrequency, 166, {165, 1}},
    {"ThreeFrequencyMessages", ListAxis::kFrequency, 400, {165, 165, 70}},
    {"FullPowerMessage", ListAxis::kPower, 245, {245}},
    {"OnePowerMore", ListAxis::kPower, 246, {245, 1}},
};
INSTANTIATE_TEST_SUITE_P(Lists, ListTest, testing::ValuesIn(kListCases), RowName());

TEST_F(LinkTest, RefusedChunkEndsTheListAndKeepsWhatWasCorrected) {
  std::vector<double> values(400, 10.0);
  std::vector<std::uint8_t> answer(2 + 6 * 167);
  answer[0] = 2;
  answer[2 + 6 * 2] = 77;  // the first value
  visa_.Answer(0, scripted::ToHex(answer));
  visa_.Answer(0x8005);
  EXPECT_EQ(model_.TransferList(ListAxis::kFrequency, values, {}), -32763);
  EXPECT_EQ(values[0], 77.0);
  EXPECT_EQ(values[165], 10.0);
  EXPECT_THAT(visa_.RequestOrder(), testing::ElementsAre("3:2/60x0", "3:2/60x0", "1"));
}

TEST_F(LinkTest, PulseTrainByteForByte) {
  InitializeModel();
  PulseSource source = PulseSource::kExternal;
  std::array<double, 2> widths = {2000, 2000};
  std::array<double, 2> gaps = {3000, 5000};
  visa_.Answer(0,
               "1F 00 | 02 00 00 00 | 03 00 00 00 | 01 00 00 00 | 00 00 00 00 | 02 00 00 00 |"
               "01 00 00 00 | 02 00 00 00 | 03 00 00 00 | 04 00 00 00");
  EXPECT_EQ(model_.TransferPulseTrain(2, source, widths, gaps, true), 0);
  EXPECT_EQ(source, PulseSource::kInternal);
  EXPECT_THAT(widths, testing::ElementsAre(1, 3));
  EXPECT_THAT(gaps, testing::ElementsAre(2, 4));
  EXPECT_EQ(model_.TransferPulseTrain(0, source, widths, gaps, false), 0);
  EXPECT_THAT(
      Requests(),
      testing::ElementsAre(
          WriteRequest(3, 0x40,
                       "1F 00 | 02 00 00 00 | 02 00 00 00 | 01 00 00 00 | 00 00 00 00 |"
                       "02 00 00 00 | D0 07 00 00 | B8 0B 00 00 | D0 07 00 00 | 88 13 00 00"),
          WriteRequest(3, 0x40,
                       "1F 00 | 00 00 00 00 | 03 00 00 00 | 00 00 00 00 | 00 00 00 00 |"
                       "02 00 00 00 | 01 00 00 00 | 02 00 00 00 | 03 00 00 00 | 04 00 00 00")));
}

TEST_F(LinkTest, LongPulseTrainIsCutAt123) {
  InitializeModel();
  PulseSource source{};
  std::vector<double> widths(124, 10.0);
  std::vector<double> gaps(124, 20.0);
  widths[123] = 77;
  EXPECT_EQ(model_.TransferPulseTrain(2, source, widths, gaps, false), 0);
  EXPECT_EQ(source, PulseSource::kInternal);
  const auto requests = Requests();
  ASSERT_EQ(requests.size(), 2U);
  EXPECT_EQ(requests[0].size(), 35 + 3 * (2 + 4 * (5 + 246)) + 2);
  EXPECT_EQ(requests[1],
            WriteRequest(3, 0x40,
                         "1F 00 | 02 00 00 00 | 03 00 00 00 | 00 00 00 00 | 7B 00 00 00 |"
                         "01 00 00 00 | 4D 00 00 00 | 14 00 00 00"));
}

TEST_F(LinkTest, FrequencyTableHoldsWhatOneMessageHolds) {
  std::vector<double> values(3499, 1.0);
  EXPECT_EQ(model_.TransferFrequencyTable(values), 0);
  EXPECT_EQ(Requests().size(), 1U);
  values.push_back(1.0);
  EXPECT_EQ(model_.TransferFrequencyTable(values), -1);
  EXPECT_EQ(Requests().size(), 1U);
}

}  // namespace
