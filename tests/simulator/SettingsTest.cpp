#include "simulator/Settings.h"

#include <gtest/gtest.h>

#include "tests/link/Hex.h"

namespace simulator {
namespace {

using Values = std::vector<double>;

/// One write by its elements, and those of the answer.
struct WriteCase {
  const char* name;
  std::uint8_t id;
  std::uint8_t type;
  Values sent;
  Values answer = {};  // none: as sent
  std::int16_t status = 0;
  std::size_t count = SIZE_MAX;  // in the header, if it is not that of the elements
};

Bytes Body(const WriteCase& row, const Values& values) {
  Bytes body = {row.id, 0};
  for (const double value : values) {
    AppendElements(body, *ElementFormat::FromType(row.type, value < 0), std::vector{value});
  }
  return body;
}

void Check(Settings& settings, std::initializer_list<WriteCase> writes) {
  settings.BeginConnection();
  for (const WriteCase& row : writes) {
    const std::size_t count = row.count == SIZE_MAX ? row.sent.size() : row.count;
    const Bytes body = Body(row, row.sent);
    Bytes answer;
    EXPECT_EQ(
        settings.Write({command::kWrite, 0, static_cast<std::uint8_t>(count), row.type, 0, body},
                       answer),
        row.status)
        << row.name;
    if (row.status != 0) continue;
    EXPECT_EQ(ToHex(answer), ToHex(row.answer.empty() ? body : Body(row, row.answer))) << row.name;
  }
}
void Check(const Options& options, std::initializer_list<WriteCase> writes) {
  Settings settings(options);
  Check(settings, writes);
}

/// What a client asks for to learn the limits.
const Values kProbe{0, 2, 1e11, 1e11};

TEST(Settings, FrequencyFormsTellTheirLimitsAndOlderInstrumentsRefuseNewerOnes) {
  const Values three{0, 2, 1e11};
  const Values three_answer{10e6, 2, 19.99e9};
  Check(Options{}, {{"four elements", 0, 0x60, kProbe, {10e6, 2, 19.99e9, 20e9}}});
  Check(Options{.frequency_form = FrequencyForm::kWide},
        {{"four elements", 0, 0x60, kProbe, {}, status::kUnknownForm},
         {"three wide", 0, 0x60, three, three_answer}});
  Check(Options{.frequency_form = FrequencyForm::kNarrow},
        {{"four elements", 0, 0x60, kProbe, {}, status::kUnknownForm},
         {"three wide", 0, 0x60, three, {}, status::kUnknownForm},
         {"narrow", 0, 0x40, {0, 2, 4001e6}, {10e6, 2, 3991e6}}});
}

TEST(Settings, AFrequencySweepIsCutToTheLimitsAndToOneBlock) {
  const Values cut{1e9, 5461, 1e3, 1005460000};
  Settings settings{Options{}};
  Check(settings,
        {{"one block, the stop follows", 0, 0x60, {1e9, 10001, 1e3, 0}, cut},
         {"downwards to the lower limit", 0, 0x60, {20e9, 3, -10e9, 0}, {20e9, 2, -10e9, 10e9}},
         {"fixed frequency below the limit", 0, 0x60, {1}, {10e6}},
         {"elements missing", 0, 0x60, {1}, {}, status::kUnknownForm, 4},
         {"element size unknown", 0, 0x50, kProbe, {}, status::kUnknownForm}});
  EXPECT_EQ(settings.state().frequency.step, 0.0) << "of the fixed one";
}

TEST(Settings, LevelsAreClampedAndRounded) {
  // Output on, attenuator mode, 0, 0, level.
  Check(
      Options{},
      {{"rounded to 0.01 dB", 79, 0x62, {1, 3, 0, 0, -12.346}, {1, 3, 0, 0, -12.35}},
       {"over the limit, unknown attenuator mode", 79, 0x62, {0, 6, 0, 0, 64}, {0, 3, 0, 0, 20}}});
}

TEST(Settings, ALevelSweepEndsWithinTheLimits) {
  Settings settings{Options{}};
  Check(settings,
        {{"over the limit", 79, 0x62, {1, 0, 0, 0, 15, 21, 1, 35}, {1, 4, 0, 0, 15, 6, 1, 20}}});
  EXPECT_EQ(settings.SweepPoints(), 6U);
  EXPECT_TRUE(settings.state().output_enabled);
}

// The power commands in the order in which a client tries them; '+' accepted, '3' form unknown,
// '2' parameter unknown.
std::string PowerCommands(int variant) {
  constexpr std::array<std::uint8_t, 3> forms[] = {
      {79, 5, 0x62}, {79, 8, 0x62}, {79, 7, 0x62}, {79, 5, 0x42}, {79, 8, 0x42},
      {79, 7, 0x42}, {12, 2, 0x21}, {12, 2, 0x21}, {12, 2, 0x42}, {12, 4, 0x42}};
  Settings settings({.power_variant = variant});
  settings.BeginConnection();
  std::string answers;
  for (const auto& [id, count, type] : forms) {
    Bytes body(2U + count * (type >> 4));
    body[0] = id;
    Bytes answer;
    const std::int16_t status = settings.Write({command::kWrite, 0, count, type, 0, body}, answer);
    answers += status == 0 ? '+' : status == status::kUnknownForm ? '3' : '2';
  }
  return answers;
}

TEST(Settings, EachPowerVariantKnowsItsCommands) {
  EXPECT_EQ(PowerCommands(5), "+++3332222");
  EXPECT_EQ(PowerCommands(4), "333+++2222");
  EXPECT_EQ(PowerCommands(3), "+3+3332222");
  EXPECT_EQ(PowerCommands(2), "333+3+2222");
  EXPECT_EQ(PowerCommands(1), "222222++++");
  EXPECT_EQ(PowerCommands(0), "2222223+33") << "its first write in a connection fails";
}

TEST(Settings, ListsComeInChunks) {
  Settings settings{Options{}};
  // Offset, number, values; for levels behind the output's settings.
  Check(settings,
        {{"1 Hz raised to the lower limit", 2, 0x60, {0, 2, 1e9, 1}, {0, 2, 1e9, 10e6}, 0, 0},
         {"second chunk", 2, 0x60, {2, 1, 2e9}, {}, 0, 0},
         {"a gap", 2, 0x60, {7, 0}, {}, status::kUnknownForm, 0},
         {"elements of another size", 2, 0x40, {0, 1, 1e9}, {}, status::kUnknownForm, 0},
         {"an element before the chunk", 2, 0x60, {0, 0, 1, 1e9}, {}, status::kUnknownForm, 1},
         {"more values announced than there are", 2, 0x60, {0, 9}, {}, status::kUnknownForm, 0},
         {"levels", 76, 0x42, {1, 2, 0, 0, 0, 2, -60, 30}, {1, 2, 0, 0, 0, 2, -60, 20}, 0, 4}});
  EXPECT_EQ(settings.state().frequency.list, (Values{1e9, 10e6, 2e9}));
  EXPECT_EQ(settings.SweepPoints(), 6U) << "three frequencies at each of two levels";
  EXPECT_EQ(settings.state().attenuator_mode, 2U);
  Check(settings, {{"none: the list ends there", 2, 0x60, {1, 0}, {}, 0, 0},
                   {"a table of frequencies", 26, 0x21, {1, -2}, {}, 0, 0},
                   {"in whole numbers", 26, 0x20, {1, 2}, {}, status::kUnknownForm, 0}});
  EXPECT_EQ(settings.state().frequency.list, Values{1e9});
}

TEST(Settings, PulseTrainsComeInChunks) {
  Settings settings{Options{}};
  const PulseTrain& pulses = settings.state().pulses;
  const Values asked{2, 2, 1, 0, 2, 1, 25, 100, 0};  // 1 ns and 25 ns are raised to tens
  Check(settings, {{"two", 31, 0x40, asked, {2, 2, 1, 0, 2, 10, 30, 100, 0}, 0, 3}});
  EXPECT_EQ(pulses.mode, 2U);
  EXPECT_EQ(pulses.source, 2U);
  EXPECT_TRUE(pulses.inverse);
  EXPECT_EQ(pulses.pulses, (std::vector<Pulse>{{10, 30}, {100, 0}}));
  Check(settings, {{"off, without the polarity element", 31, 0x40, {0, 3, 0, 1, 0, 0}, {}, 0, 2},
                   {"the head alone leaves the pulses", 31, 0x40, {2, 2, 5}, {2, 2, 1}},
                   {"not inverse", 31, 0x40, {2, 2, 0}}});
  EXPECT_EQ(pulses.pulses.size(), 1U);
}

TEST(Settings, TriggerGroups) {
  const Values two_groups{1, 1, 5, 0, 0, 6, 0, 7, 1, 0};
  Check(Options{},
        {{"two groups", 8, 0x10, two_groups},
         {"the first alone", 8, 0x10, {9, 0, 8, 0, 0}, {1, 0, 8, 0, 0}},
         {"the second is kept; sync code on the input", 7, 0x10, {4, 1, 1, 0, 3, 5, 0, 1, 1, 0}}});
  Check(Options{.trigger_groups = 1},
        {{"two groups", 8, 0x10, two_groups, {}, status::kUnknownForm},
         {"one", 7, 0x10, {3, 1, 0, 0, 2}}});
}

TEST(Settings, SmallSettingsAnswerWithWhatWasSet) {
  Check(Options{}, {{"its kind", 3, 0x20, {18}},
                    {"another kind", 3, 0x20, {2}, {}, status::kUnknownForm},
                    {"averaging too high, odd body filled up", 4, 0x10, {15, 0x99}, {14}, 0, 1},
                    {"averaging too low", 4, 0x10, {0}, {1}},
                    {"dwell in steps of 100 ns", 5, 0x40, {0, 123}, {0, 100}},
                    {"longest dwell", 5, 0x40, {0, 4294967295}, {0, 4294967200}},
                    {"feature mask", 23, 0x20, {0xFFFB}},
                    {"reference too low", 17, 0x40, {1, 1}, {1, 1e6}},
                    {"reference switch alone", 17, 0x10, {0}},
                    {"phase delay", 92, 0x42, {-1.5}},
                    {"compensation mode 4", 11, 0x20, {4}},
                    {"no compensation mode 9", 11, 0x20, {9}, {4}},
                    {"sync generator", 37, 0x40, {14, 100, 0}, {10, 100, 0}},
                    {"nameless", 28, 0x10, {3, 0, 5, 3}},
                    {"nameless, too", 27, 0x40, {1, 2, 3}},
                    {"identity is read only", 15, 0x10, {}, {}, status::kUnknownForm, 100},
                    {"unknown parameter", 200, 0x10, {0}, {}, status::kUnknownParameter}});
  Check(Options{.reference_frequency = false},
        {{"reference without frequency", 17, 0x40, {1, 1}, {}, status::kUnknownForm}});
  Bytes answer;
  EXPECT_EQ(Settings(Options{}).Write({command::kWrite, 0, 1, 0x10, 0, {4}}, answer),
            status::kUnknownForm)
      << "no identifier";
}

TEST(InstrumentState, ChangesAreToldWithTheFirstEntries) {
  const InstrumentState before;
  InstrumentState after;
  after.output_enabled = after.reference_enabled = after.rf_button = true;
  after.pll_locked = after.erg_good = after.level_settled = false;
  after.frequency = {AxisMode::kList, 0, 0, 1, Values(9, 2e9)};
  after.level = {AxisMode::kSweep, -10, 0.5, 21, {}};
  after.attenuator_mode = 3;
  after.level_settings = {1.5, 2};
  after.dwell = 1000;
  after.averaging = 4;
  after.feature_mask = 0x0AB;
  after.trigger_input = {{{1, 0, 0, 0, 2}, {5, 1, 0, 0, 3}}};
  after.trigger_output = {{{4, 1, 8, 1, 0}, {}}};
  after.pulses = {2, 2, true, std::vector<Pulse>(8, {100, 200})};
  after.sync_width = 1;
  after.sync_off_time = 2;
  after.sync_delay = 3;
  after.reference_frequency = 2.5e8;
  after.phase_delay = -1.5;
  after.compensation_mode = 4;
  after.sweeps = 7;
  std::string lists[] = {"list of 9 Hz: ",
                         "on, external, inverse, 8 pulses of width + gap in ns: "};
  for (int i = 0; i < 8; ++i) {
    lists[0] += i == 0 ? "2000000000" : ", 2000000000";
    lists[1] += i == 0 ? "100 + 200" : ", 100 + 200";
  }
  const std::vector<StateLine> expected{
      {"output", "on"},
      {"frequency", lists[0] + " ..."},
      {"level", "sweep from -10 dBm by 0.5, 21 points"},
      {"attenuator mode", "3"},
      {"level settings", "1.5, 2"},
      {"dwell", "1000 ns"},
      {"averaging", "4"},
      {"feature mask", "0x00AB"},
      {"trigger input", "code 1, edge 0, width 0, flags 0 2; code 5, edge 1, width 0, flags 0 3"},
      {"trigger output", "code 4, edge 1, width 8, flags 1 0; code 0, edge 0, width 0, flags 0 0"},
      {"pulse train", lists[1]},
      {"sync generator", "width 1 ns, off time 2 ns, delay 3 ns"},
      {"reference", "on, 250000000 Hz"},
      {"phase delay", "-1.5"},
      {"compensation mode", "4"},
      {"RF button", "pressed"},
      {"PLL", "unlocked"},
      {"ERG", "fault"},
      {"level state", "not settled"},
      {"sweeps", "7"}};
  EXPECT_EQ(DescribeChanges(before, after), expected);
  after.pulses.pulses.clear();
  after.level = {AxisMode::kFixed, -3, 0, 1, {}};
  EXPECT_EQ(DescribeState(after).at(2).value, "-3 dBm");
  EXPECT_EQ(DescribeState(after).at(10).value,
            "on, external, inverse, 0 pulses of width + gap in ns");
  EXPECT_EQ(DescribeState(before).at(19).value, "0");
}

}  // namespace
}  // namespace simulator
