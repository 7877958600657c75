#include "simulator/Settings.h"

#include <gtest/gtest.h>

#include "tests/simulator/WireClient.h"

namespace simulator {
namespace {

// One write as bytes and the answer's.
struct Write {
  const char* name;
  std::uint8_t count;
  std::uint8_t type;
  const char* body;
  const char* answer;  // "0x8003" for a refusal
};

std::string Execute(Settings& settings, std::uint8_t count, std::uint8_t type, const char* body) {
  Message request;
  request.command = command::kWrite;
  request.count = count;
  request.type = type;
  request.body = FromHex(body);
  Bytes answer;
  const std::int16_t status = settings.Write(request, answer);
  if (status < 0) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%04X",
                  static_cast<unsigned>(static_cast<std::uint16_t>(status)));
    return text;
  }
  return Hex(answer);
}

void Check(const Options& options, std::initializer_list<Write> writes) {
  Settings settings(options);
  settings.BeginConnection();
  for (const Write& row : writes) {
    EXPECT_EQ(Execute(settings, row.count, row.type, row.body), row.answer) << row.name;
  }
}

// The values 0, 2, 1e11, 1e11 of six bytes: what a client asks to learn the limits.
constexpr const char* kProbe =
    "00 00 00 00 00 00 00 00 02 00 00 00 00 00 00 E8 76 48 17 00 00 E8 76 48 17 00";

TEST(Settings, FrequencyLimitsAreToldToAProbe) {
  Check(Options{}, {{"start 10 MHz, step 19.99 GHz, stop 20 GHz", 4, 0x60, kProbe,
                     "00 00 80 96 98 00 00 00 02 00 00 00 00 00 80 31 7F A7 04 00 00 C8 17 A8 04 "
                     "00"}});
}

TEST(Settings, OlderInstrumentsRefuseNewerFrequencyCommands) {
  Options wide;
  wide.frequency_form = FrequencyForm::kWide;
  Options narrow;
  narrow.frequency_form = FrequencyForm::kNarrow;
  const char* three = "00 00 00 00 00 00 00 00 02 00 00 00 00 00 00 E8 76 48 17 00";
  const char* small = "00 00 00 00 00 00 02 00 00 00 40 D2 7A EE";  // 4001000000
  Check(wide, {{"four elements", 4, 0x60, kProbe, "0x8003"},
               {"three wide", 3, 0x60, three,
                "00 00 80 96 98 00 00 00 02 00 00 00 00 00 80 31 7F A7 04 00"}});
  Check(narrow, {{"four elements", 4, 0x60, kProbe, "0x8003"},
                 {"three wide", 3, 0x60, three, "0x8003"},
                 {"narrow: 10 MHz, step 3.991 GHz", 3, 0x40, small,
                  "00 00 80 96 98 00 02 00 00 00 C0 D3 E1 ED"}});
}

TEST(Settings, AFrequencySweepIsCutToTheLimitsAndToOneBlock) {
  // 1 GHz by 1 kHz, 10001 points; 20 GHz downwards by 10 GHz, 3 points, the last below the limit.
  Check(Options{},
        {{"5461 points fit a block; the stop follows", 4, 0x60,
          "00 00 00 CA 9A 3B 00 00 11 27 00 00 00 00 E8 03 00 00 00 00 00 00 00 00 00 00",
          "00 00 00 CA 9A 3B 00 00 55 15 00 00 00 00 E8 03 00 00 00 00 20 1A EE 3B 00 00"},
         {"downwards to the lower limit", 4, 0x60,
          "00 00 00 C8 17 A8 04 00 03 00 00 00 00 00 00 1C F4 AB FD FF 00 00 00 00 00 00",
          "00 00 00 C8 17 A8 04 00 02 00 00 00 00 00 00 1C F4 AB FD FF 00 E4 0B 54 02 00"},
         {"fixed frequency below the limit", 1, 0x60, "00 00 01 00 00 00 00 00",
          "00 00 80 96 98 00 00 00"},
         {"elements missing", 4, 0x60, "00 00 01 00", "0x8003"},
         {"element size unknown", 4, 0x50, kProbe, "0x8003"}});
}

TEST(Settings, LevelsAreClampedAndRounded) {
  // Output on, attenuator mode 3, 0, 0, level: 6 bytes, 2 of them fraction.
  Check(Options{},
        {{"rounded to 0.01 dB: -12.346 to -12.35", 5, 0x62,
          "4F 00 00 00 01 00 00 00 00 00 03 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 6D A7 F3 "
          "FF FF FF",
          "4F 00 00 00 01 00 00 00 00 00 03 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 66 A6 F3 "
          "FF FF FF"},
         {"over the limit, unknown attenuator mode", 5, 0x62,
          "4F 00 00 00 00 00 00 00 00 00 09 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 40 "
          "00 00 00",
          "4F 00 00 00 00 00 00 00 00 00 03 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 14 "
          "00 00 00"}});
}

TEST(Settings, ALevelSweepEndsWithinTheLimits) {
  Settings settings{Options{}};
  // 15 dBm, 21 points by 1 dB, stop 35 dBm.
  EXPECT_EQ(Execute(settings, 8, 0x62,
                    "4F 00 00 00 01 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 "
                    "00 00 0F 00 00 00 00 00 15 00 00 00 00 00 01 00 00 00 00 00 23 00 00 00"),
            "4F 00 00 00 01 00 00 00 00 00 04 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 "
            "0F 00 00 00 00 00 06 00 00 00 00 00 01 00 00 00 00 00 14 00 00 00");
  EXPECT_EQ(settings.SweepPoints(), 6U);
  EXPECT_TRUE(settings.state().output_enabled);
}

// The power commands in the order in which a client tries them; '+' accepted, '3' form unknown,
// '2' parameter unknown.
std::string PowerCommands(int variant) {
  struct Form {
    std::uint8_t id;
    std::uint8_t count;
    std::uint8_t type;
  };
  const Form forms[] = {{79, 5, 0x62}, {79, 8, 0x62}, {79, 7, 0x62}, {79, 5, 0x42}, {79, 8, 0x42},
                        {79, 7, 0x42}, {12, 2, 0x21}, {12, 2, 0x21}, {12, 2, 0x42}, {12, 4, 0x42}};
  Options options;
  options.power_variant = variant;
  Settings settings(options);
  settings.BeginConnection();
  std::string answers;
  for (const Form& form : forms) {
    Message request;
    request.count = form.count;
    request.type = form.type;
    request.body.assign(2 + static_cast<std::size_t>(form.count) * (form.type >> 4), 0);
    request.body[0] = form.id;
    Bytes answer;
    const std::int16_t status = settings.Write(request, answer);
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
  EXPECT_EQ(
      Execute(settings, 0, 0x60,
              "02 00 00 00 00 00 00 00 02 00 00 00 00 00 00 CA 9A 3B 00 00 01 00 00 00 00 00"),
      "02 00 00 00 00 00 00 00 02 00 00 00 00 00 00 CA 9A 3B 00 00 80 96 98 00 00 00")
      << "1 GHz, and 1 Hz raised to the lower limit";
  EXPECT_EQ(
      Execute(settings, 0, 0x60, "02 00 02 00 00 00 00 00 01 00 00 00 00 00 00 94 35 77 00 00"),
      "02 00 02 00 00 00 00 00 01 00 00 00 00 00 00 94 35 77 00 00");
  EXPECT_EQ(settings.state().frequency.list, (std::vector<double>{1e9, 10e6, 2e9}));
  EXPECT_EQ(Execute(settings, 0, 0x60, "02 00 07 00 00 00 00 00 00 00 00 00 00 00"), "0x8003")
      << "a gap";
  EXPECT_EQ(Execute(settings, 0, 0x60, "02 00 00 00 00 00 00 00 09 00 00 00 00 00"), "0x8003")
      << "more values announced than there are";
  // Output on, mode 2, 0, 0; two levels: -60 and +30 dBm.
  EXPECT_EQ(Execute(settings, 4, 0x42,
                    "4C 00 00 00 01 00 00 00 02 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 02 00 "
                    "00 00 C4 FF 00 00 1E 00"),
            "4C 00 00 00 01 00 00 00 02 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 02 00 00 00 "
            "C4 FF 00 00 14 00");
  EXPECT_EQ(settings.SweepPoints(), 6U) << "three frequencies at each of two levels";
  EXPECT_EQ(settings.state().attenuator_mode, 2U);
}

TEST(Settings, PulseTrainsComeInChunks) {
  const char* train =
      "1F 00 02 00 00 00 02 00 00 00 01 00 00 00 00 00 00 00 02 00 00 00 01 00 00 00 19 00 00 00 "
      "64 "
      "00 00 00 00 00 00 00";
  Settings settings{Options{}};
  EXPECT_EQ(Execute(settings, 3, 0x40, train),
            "1F 00 02 00 00 00 02 00 00 00 01 00 00 00 00 00 00 00 02 00 00 00 0A 00 00 00 1E 00 "
            "00 00 64 00 00 00 00 00 00 00")
      << "1 ns raised to 10 ns, 25 ns rounded to 30 ns";
  const PulseTrain& pulses = settings.state().pulses;
  EXPECT_EQ(pulses.mode, 2U);
  EXPECT_EQ(pulses.source, 2U);
  EXPECT_TRUE(pulses.inverse);
  EXPECT_EQ(pulses.pulses, (std::vector<Pulse>{{10, 30}, {100, 0}}));
  EXPECT_EQ(
      Execute(settings, 2, 0x40,
              "1F 00 00 00 00 00 03 00 00 00 00 00 00 00 01 00 00 00 00 00 00 00 00 00 00 00"),
      "1F 00 00 00 00 00 03 00 00 00 00 00 00 00 01 00 00 00 00 00 00 00 00 00 00 00")
      << "off, without the polarity element";
  EXPECT_EQ(Execute(settings, 3, 0x40, "1F 00 02 00 00 00 02 00 00 00 05 00 00 00"),
            "1F 00 02 00 00 00 02 00 00 00 01 00 00 00")
      << "the head alone leaves the pulses";
  EXPECT_EQ(pulses.pulses.size(), 1U);
  Options without;
  without.pulse_modulator = false;
  Check(without, {{"no pulse modulator", 3, 0x40, train, "0x8002"}});
}

TEST(Settings, TriggerGroups) {
  Options one;
  one.trigger_groups = 1;
  const char* two_groups = "08 00 01 01 05 00 00 06 00 07 01 00";
  Check(Options{},
        {{"two groups", 10, 0x10, two_groups, two_groups},
         {"the first alone", 5, 0x10, "08 00 09 00 08 00 00", "08 00 01 00 08 00 00"},
         {"the second is kept; sync code on the input", 10, 0x10,
          "07 00 04 01 01 00 03 05 00 01 01 00", "07 00 04 01 01 00 03 05 00 01 01 00"}});
  Check(one, {{"two groups", 10, 0x10, two_groups, "0x8003"},
              {"one", 5, 0x10, "07 00 03 01 00 00 02", "07 00 03 01 00 00 02"}});
}

TEST(Settings, SmallSettingsAnswerWithWhatWasSet) {
  Options no_frequency;
  no_frequency.reference_frequency = false;
  Check(Options{}, {{"its kind", 1, 0x20, "03 00 12 00", "03 00 12 00"},
                    {"another kind", 1, 0x20, "03 00 02 00", "0x8003"},
                    {"averaging too high, odd body filled up", 1, 0x10, "04 00 0F 99", "04 00 0E"},
                    {"averaging too low", 1, 0x10, "04 00 00", "04 00 01"},
                    {"dwell in steps of 100 ns", 2, 0x40, "05 00 00 00 00 00 7B 00 00 00",
                     "05 00 00 00 00 00 64 00 00 00"},
                    {"longest dwell", 2, 0x40, "05 00 00 00 00 00 FF FF FF FF",
                     "05 00 00 00 00 00 A0 FF FF FF"},
                    {"feature mask", 1, 0x20, "17 00 FB FF", "17 00 FB FF"},
                    {"reference too low", 2, 0x40, "11 00 01 00 00 00 01 00 00 00",
                     "11 00 01 00 00 00 40 42 0F 00"},
                    {"reference switch alone", 1, 0x10, "11 00 00", "11 00 00"},
                    {"phase delay", 1, 0x42, "5C 00 00 80 FE FF", "5C 00 00 80 FE FF"},
                    {"compensation mode 4", 1, 0x20, "0B 00 04 00", "0B 00 04 00"},
                    {"no compensation mode 9", 1, 0x20, "0B 00 09 00", "0B 00 04 00"},
                    {"sync generator", 3, 0x40, "25 00 0E 00 00 00 64 00 00 00 00 00 00 00",
                     "25 00 0A 00 00 00 64 00 00 00 00 00 00 00"},
                    {"nameless", 4, 0x10, "1C 00 03 00 05 03", "1C 00 03 00 05 03"},
                    {"identity is read only", 100, 0x10, "0F 00", "0x8003"},
                    {"unknown parameter", 1, 0x10, "C8 00 00", "0x8002"},
                    {"no identifier", 1, 0x10, "04", "0x8003"}});
  Check(no_frequency,
        {{"reference without frequency", 2, 0x40, "11 00 01 00 00 00 01 00 00 00", "0x8003"}});
}

TEST(Settings, ChangesAreToldWithTheFirstEntries) {
  Settings settings(Options{});
  const InstrumentState before = settings.state();
  Execute(settings, 0, 0x60,
          "02 00 00 00 00 00 00 00 02 00 00 00 00 00 00 CA 9A 3B 00 00 00 94 35 77 00 00");
  Execute(settings, 2, 0x40,
          "1F 00 02 00 00 00 02 00 00 00 00 00 00 00 01 00 00 00 64 00 00 00 C8 00 00 00");
  const std::vector<StateLine> expected{
      {"frequency", "list of 2 Hz: 1000000000, 2000000000"},
      {"pulse train", "on, external, normal, 1 pulses of width + gap in ns: 100 + 200"}};
  EXPECT_EQ(DescribeChanges(before, settings.state()), expected);
}

}  // namespace
}  // namespace simulator
