#include "simulator/Instrument.h"

#include <gtest/gtest.h>

#include "tests/link/Hex.h"

namespace simulator {
namespace {

Message Read(std::uint8_t count, std::uint8_t type, const Bytes& body) {
  return {command::kRead, 0, count, type, 0, body};
}
Message Data(char mark) { return {command::kData, 0, 0, static_cast<std::uint8_t>(mark), 0, {}}; }

void Write(Instrument& instrument, std::uint8_t count, std::uint8_t type, const char* body) {
  ASSERT_GE(instrument.Execute({command::kWrite, 0, count, type, 0, FromHex(body)}).status, 0)
      << body;
}

// Output on, -10 dBm.
constexpr const char* kLevel =
    "4F 00 00 00 01 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 F6 FF FF "
    "FF";
// 2.2 GHz, 5 points by 100 MHz.
constexpr const char* kSweep =
    "00 00 00 8C 21 83 00 00 05 00 00 00 00 00 00 E1 F5 05 00 00 00 5E F8 9A 00 00";

TEST(Instrument, IdentityTextHasTheDatesAfterTheirNames) {
  Instrument instrument{Options{}};
  const Message answer = instrument.Execute(Read(100, 0x10, {15, 0}));
  // "Изготовлен 17.03.2019 Программа DSP от 25.09.2018 Прошивка ПЛИС от 04.06.2018"
  const std::string expected =
      "\xC8\xE7\xE3\xEE\xF2\xEE\xE2\xEB\xE5\xED 17.03.2019 "
      "\xCF\xF0\xEE\xE3\xF0\xE0\xEC\xEC\xE0 DSP \xEE\xF2 25.09.2018 "
      "\xCF\xF0\xEE\xF8\xE8\xE2\xEA\xE0 \xCF\xCB\xC8\xD1 \xEE\xF2 04.06.2018";
  ASSERT_EQ(answer.body.size(), 102U);
  EXPECT_EQ(std::string(answer.body.begin() + 2, answer.body.end()),
            expected + std::string(100 - expected.size(), '\0'));
}

Message FileRequest(std::string_view path, const char* range = "00 00 00 00 00 FA 00 00") {
  Bytes body = FromHex(std::string("0A 00") + range);
  body.insert(body.end(), path.begin(), path.end());
  body.resize(body.size() + 4 - path.size() % 4);
  return Read(2, 0x40, body);
}

TEST(Instrument, FilesAreReadByPath) {
  Instrument instrument(
      {.files = {{"\\FRAM\\NOTE.TXT", "0123456789"}}, .missing_files = {"\\FRAM\\TYPE.TXT"}});
  struct Case {
    const char* name;
    Message request;
    std::int16_t status;
    std::string content;
  };
  const Case cases[] = {
      {"serial number", FileRequest("\\FRAM\\SERIAL.TXT"), 0, "1101190042\r\n"},
      {"removed", FileRequest("\\FRAM\\TYPE.TXT"), -32509, ""},
      {"never there", FileRequest("\\FRAM\\OTHER.TXT"), -32509, ""},
      {"part of it", FileRequest("\\FRAM\\NOTE.TXT", "02 00 00 00 03 00 00 00"), 0, "234"},
      {"beyond its end", FileRequest("\\FRAM\\NOTE.TXT", "FF FF FF FF FF FF FF FF"), 0, ""},
      {"no zero after the path", Read(2, 0x40, FromHex("0A 00 00 00 00 00 00 00 00 00 5C")), -32765,
       ""},
      {"no path", Read(2, 0x40, FromHex("0A 00 00 00")), -32765, ""},
  };
  for (const Case& row : cases) {
    const Message answer = instrument.Execute(row.request);
    EXPECT_EQ(answer.status, row.status) << row.name;
    if (row.status == 0) {
      const std::string text(answer.body.begin() + 10, answer.body.end());
      EXPECT_EQ(text.substr(text.find('\0') + 1), row.content) << row.name;
    }
  }
}

TEST(Instrument, SerialNumberIsUnscrambledWithTheKeyAndCarriesItsChecksum) {
  Instrument instrument({.serial_number = "123456789"});
  for (std::uint32_t key = 1; key < 65536; key += (key < 300 ? 1 : 97)) {
    const Message answer = instrument.Execute(Read(
        1, 0x20, {'S', 0, static_cast<std::uint8_t>(key), static_cast<std::uint8_t>(key >> 8)}));
    ASSERT_EQ(answer.status, 0) << key;
    ASSERT_EQ(answer.body.size(), 2U + 9 * 2 + 2) << key;
    std::string text;
    for (std::size_t i = 2; i < 20; i += 2) {
      text += static_cast<char>(std::uint64_t{ReadWord(answer.body, i)} * key % 65537);
    }
    ASSERT_EQ(text, "123456789") << key;
    ASSERT_EQ(ReadWord(answer.body, 20), 0xBB3D) << "the check value of CRC-16";
  }
  EXPECT_EQ(instrument.Execute(Read(1, 0x20, {'S', 0, 0, 0})).status, status::kUnknownForm);
  EXPECT_EQ(instrument.Execute(Read(1, 0x20, {'S', 0})).status, status::kUnknownForm);
}

TEST(Instrument, StatesAreToldByTheReadsThatAskForThem) {
  Instrument instrument{Options{}};
  InstrumentState& state = instrument.settings().state();
  const Message frequency = Read(3, 0x40, Bytes(14));
  const Message level = Read(5, 0x62, FromHex(kLevel));
  EXPECT_EQ(instrument.Execute(frequency).status, 0);
  state.pll_locked = false;
  EXPECT_EQ(instrument.Execute(frequency).status, -32761);
  state.pll_locked = true;
  state.erg_good = false;
  EXPECT_EQ(instrument.Execute(frequency).status, -32740);
  EXPECT_EQ(instrument.Execute(level).status, 0);
  state.level_settled = false;
  const Message answer = instrument.Execute(level);
  EXPECT_EQ(answer.status, 6);
  EXPECT_EQ(answer.body.size(), 32U);
  EXPECT_FALSE(state.output_enabled) << "a read has set what its body holds";
  state.rf_button = true;
  EXPECT_EQ(ToHex(instrument.Execute(Read(1, 0x20, FromHex("22 00 00 00"))).body), "22 00 01 00");
}

TEST(Instrument, ReadingsFollowTheFormatAndTheKind) {
  const auto first = [](InstrumentKind kind, char mark) {
    Instrument instrument({.kind = kind});
    Write(instrument, 5, 0x62, kLevel);
    Write(instrument, 4, 0x60, kSweep);
    const Message answer = instrument.MeasureSweep(Data(mark));
    EXPECT_EQ(answer.type, mark == 'A' ? 'A' : '@');
    return static_cast<double>(ReadDoubleWord(answer.body, 0));
  };
  const double integer = first(InstrumentKind::kAnalyser, '@');
  EXPECT_NEAR(first(InstrumentKind::kAnalyser, 'A') / integer, 256.0, 0.01);
  EXPECT_EQ(first(InstrumentKind::kAnalyser, 'B'), integer);
  EXPECT_NEAR(first(InstrumentKind::kDetectors, '@') / integer, 16777216 / 5e6, 0.01);
}

TEST(Instrument, AGeneratorDeliversTheStatusAlone) {
  Instrument instrument({.kind = InstrumentKind::kGenerator});
  instrument.settings().state().pll_locked = false;
  EXPECT_EQ(ToHex(instrument.MeasureSweep(Data('A')).body), "07 80");
}

TEST(Instrument, PlanFollowsDwellAndTrigger) {
  Instrument instrument({.min_point_time = std::chrono::microseconds(1)});
  EXPECT_EQ(instrument.Plan().points, 1U);
  EXPECT_EQ(instrument.Plan().point_time.count(), 0) << "a single point is measured at once";
  Write(instrument, 4, 0x60, kSweep);
  Write(instrument, 2, 0x40, "05 00 00 00 00 00 40 42 0F 00");
  EXPECT_EQ(instrument.Plan().points, 5U);
  EXPECT_EQ(instrument.Plan().point_time, std::chrono::microseconds(1001));
  const SweepPlan::Start starts[] = {SweepPlan::Start::kAtOnce, SweepPlan::Start::kTrigger,
                                     SweepPlan::Start::kEachTrigger, SweepPlan::Start::kEachTrigger,
                                     SweepPlan::Start::kAtOnce};
  for (std::uint8_t code = 0; code < 5; ++code) {
    instrument.settings().state().trigger_input[0].code = code;
    EXPECT_EQ(instrument.Plan().start, starts[code]) << static_cast<unsigned>(code);
  }
}

TEST(Instrument, UnknownCommandsAreRefusedAndRecoveryIsNot) {
  Instrument instrument{Options{}};
  EXPECT_EQ(instrument.Execute({command::kNone, 0, 0, 0, 0, {}}).status, 0);
  EXPECT_EQ(instrument.Execute({command::kRecover, 0, 0, 0, 0, {}}).status, 0);
  const Message answer = instrument.Execute({77, 0, 0, 0, 5, {}});
  EXPECT_EQ(answer.status, -32767);
  EXPECT_EQ(answer.command, 77);
  EXPECT_EQ(answer.sequence, 5U);
}

}  // namespace
}  // namespace simulator
