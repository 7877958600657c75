// Lists and pulse trains: how they are cut into messages, and what comes back.
#include <numeric>

#include "tests/link/LinkFixture.h"

namespace {

using testing::ElementsAre;

struct ListCase : Row {
  ListAxis axis;
  std::size_t count;
  std::vector<std::size_t> chunks;
};

class ListTest : public LinkTest, public testing::WithParamInterface<ListCase> {};

TEST_P(ListTest, IsCutIntoChunks) {
  const bool is_power = GetParam().axis == ListAxis::kPower;
  std::vector<double> values(GetParam().count);
  std::iota(values.begin(), values.end(), 1.0);
  auto value = values.cbegin();
  std::vector<Request> requests;
  for (const std::size_t count : GetParam().chunks) {
    std::vector<double> elements(is_power ? 4 : 0);
    const auto fixed = static_cast<unsigned>(elements.size());
    elements.insert(elements.end(), {double(value - values.cbegin()), double(count)});
    elements.insert(elements.end(), value, value + static_cast<std::ptrdiff_t>(count));
    value += static_cast<std::ptrdiff_t>(count);
    const unsigned type = is_power ? 0x42 : 0x60;
    requests.push_back(Write(is_power ? 76 : 2, type, fixed, scripted::Encode(type, elements)));
  }
  std::vector<double> sent = values;
  EXPECT_EQ(model_.TransferList(GetParam().axis, sent, {}), 0);
  EXPECT_EQ(sent, values);
  EXPECT_EQ(visa_.Requests(), requests);
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
  std::vector<double> answer(167);
  answer[2] = 77;  // the first value
  visa_.Answer(0, Body(2, 0x60, answer));
  visa_.Answer(0x8005);
  EXPECT_EQ(model_.TransferList(ListAxis::kFrequency, values, {}), -32763);
  EXPECT_EQ(values[0], 77.0);
  EXPECT_EQ(values[165], 10.0);
  EXPECT_THAT(visa_.RequestOrder(), ElementsAre("3:2/60x0", "3:2/60x0", "1"));
}

/// Mode, source, polarity, offset, count, and the pulses behind them, which the header leaves out.
Request Train(const std::vector<double>& elements) {
  return Write(31, 0x40, 3, scripted::Encode(0x40, elements));
}

TEST_F(LinkTest, PulseTrainAndWhatComesBack) {
  InitializeModel();
  PulseSource source = PulseSource::kExternal;
  std::array<double, 2> widths = {2000, 2000};
  std::array<double, 2> gaps = {3000, 5000};
  visa_.Answer(0, Body(31, 0x40, {2, 3, 1, 0, 2, 1, 2, 3, 4}));
  EXPECT_EQ(model_.TransferPulseTrain(2, source, widths, gaps, true), 0);
  EXPECT_EQ(source, PulseSource::kInternal);
  EXPECT_THAT(widths, ElementsAre(1, 3));
  EXPECT_THAT(gaps, ElementsAre(2, 4));
  EXPECT_EQ(model_.TransferPulseTrain(0, source, widths, gaps, false), 0);
  EXPECT_THAT(visa_.Requests(), ElementsAre(Train({2, 2, 1, 0, 2, 2000, 3000, 2000, 5000}),
                                            Train({0, 3, 0, 0, 2, 1, 2, 3, 4})));
}

TEST_F(LinkTest, LongPulseTrainIsCutAt123) {
  InitializeModel();
  PulseSource source{};
  std::vector<double> widths(124, 10.0);
  std::vector<double> gaps(124, 20.0);
  widths[123] = 77;
  std::vector<double> first = {2, 3, 0, 0, 123};
  for (int i = 0; i < 123; ++i) first.insert(first.end(), {10, 20});
  EXPECT_EQ(model_.TransferPulseTrain(2, source, widths, gaps, false), 0);
  EXPECT_EQ(source, PulseSource::kInternal);
  EXPECT_THAT(visa_.Requests(), ElementsAre(Train(first), Train({2, 3, 0, 123, 1, 77, 20})));
}

TEST_F(LinkTest, FrequencyTableHoldsWhatOneMessageHolds) {
  std::vector<double> values(3499, 1.0);
  EXPECT_EQ(model_.TransferFrequencyTable(values), 0);
  EXPECT_EQ(visa_.Requests().size(), 1U);
  values.push_back(1.0);
  EXPECT_EQ(model_.TransferFrequencyTable(values), -1);
  EXPECT_EQ(visa_.Requests().size(), 1U);
}

}  // namespace
