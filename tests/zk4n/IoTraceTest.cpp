// What readers of an I/O trace are told: traces as the VISA library writes them, and damaged ones.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "simulator/Wire.h"
#include "zk4n/iotrace/LineReader.h"
#include "zk4n/iotrace/Report.h"

namespace iotrace {
namespace {

using testing::HasSubstr;
using Body = std::vector<std::uint8_t>;

/// Writes a trace; each call takes 100 us, and begins when the last one has ended.
class Writer {
 public:
  explicit Writer(int session = 3) : session_(session) {}

  Writer& Line(const std::string& rest, std::chrono::microseconds duration = kCall) {
    char beginning[96];
    const auto us = static_cast<int>(time_.count());
    std::snprintf(beginning, sizeof beginning, "2026-11-25T16:18:%02d.%06dZ 70 71 %d ",
                  us / 1000000, us % 1000000, session_);
    text_ += beginning + rest + "\n";
    time_ += duration;
    return *this;
  }
  Writer& Move(const std::string& call, const Body& bytes, std::size_t asked,
               const std::string& status = "VI_SUCCESS", int ms = 0, std::size_t bound = 4096) {
    std::string data;
    for (std::size_t i = 0; i < std::min(bytes.size(), bound); ++i) {
      char digits[4];
      std::snprintf(digits, sizeof digits, "%02x", bytes[i]);
      data += digits;
    }
    const auto duration = ms == 0 ? kCall : std::chrono::milliseconds(ms);
    return Line(call + " " + std::to_string(bytes.size()) + "/" + std::to_string(asked) + " " +
                    std::to_string(duration.count()) + " " + status + " data=" + data +
                    (bytes.size() > bound ? "..." : ""),
                duration);
  }
  /// A request as the driver sends it: header and body in calls of their own.
  Writer& Send(std::uint32_t number, std::uint16_t command, std::uint8_t count, std::uint8_t type,
               const Body& body) {
    const Body bytes = Bytes({command, -0x8000, count, type, number, body});
    Move("viWrite", {bytes.begin(), bytes.begin() + 16}, 16);
    return Move("viWrite", body, body.size());
  }
  /// An answer, in two calls likewise.
  Writer& Come(std::uint32_t number, std::uint16_t command, std::int16_t status, std::uint8_t count,
               std::uint8_t type, const Body& body, std::size_t bound = 4096) {
    const Body bytes = Bytes({command, status, count, type, number, body});
    Move("viRead", {bytes.begin(), bytes.begin() + 16}, 16);
    return Move("viRead", body, body.size(), "VI_SUCCESS", 0, bound);
  }
  Writer& TimeOut(std::size_t asked = 16) {
    return Move("viRead", {}, asked, "VI_ERROR_TMO", 1000);
  }
  Writer& Clear() { return Line("viClear - 100 VI_SUCCESS"); }
  Writer& Session(int session) {
    session_ = session;
    return *this;
  }
  Writer& Open() {
    session_ = 1;
    Line("viOpen - 100 VI_SUCCESS resource=\"TCPIP0::h::8888::SOCKET\" mode=4 opened=3");
    return Session(3);
  }

  /// The averaging factor: what most of the tests send.
  Writer& SendFactor(std::uint32_t number) { return Send(number, 3, 1, 0x10, {4, 0, 8, 0}); }
  Writer& ComeFactor(std::uint32_t number) { return Come(number, 3, 0, 1, 0x10, {4, 0, 8}); }
  Writer& SendData(std::uint32_t number) { return Send(number, 6, 0, 'A', {}); }

  [[nodiscard]] const std::string& text() const { return text_; }

  static Body Bytes(const simulator::Message& message) { return simulator::EncodeAnswer(message); }

 private:
  static constexpr std::chrono::microseconds kCall{100};
  int session_;
  std::chrono::microseconds time_{0};
  std::string text_;
};

/// What the report says, without dates and times of day.
std::string Told(const std::string& trace, bool json = false, std::size_t piece = 100) {
  std::string told;
  const Output output = [&](const std::string& text) { told += text; };
  TextReport text("t.log", output);
  JsonReport objects("t.log", output);
  Report& report = json ? static_cast<Report&>(objects) : text;
  TraceReader reader(report);
  LineReader lines(reader);
  for (std::size_t at = 0; at < trace.size(); at += piece) {
    lines.Feed(std::string_view(trace).substr(at, piece));
  }
  lines.EndFile();
  reader.End();
  report.End();
  // 26 characters of time, and a space in the text.
  for (std::size_t at = 0; (at = told.find("2026-11-25 16:18:", at)) != std::string::npos;) {
    told.erase(at, json || told[at + 26] == '\n' ? 26 : 27);
  }
  return told;
}

/// Without the summary.
std::string Exchanges(const Writer& trace) {
  const std::string told = Told(trace.text());
  return told.substr(0, told.find("exchanges "));
}

struct Row {
  const char* name;
  Writer trace;
  const char* told;
};

void PrintTo(const Row& row, std::ostream* stream) { *stream << row.name; }

class IoTraceTest : public testing::TestWithParam<Row> {};

TEST_P(IoTraceTest, Tells) { EXPECT_EQ(Exchanges(GetParam().trace), GetParam().told); }

const Body kLimits{0, 0,    0x80, 0x96, 0x98, 0, 0, 0, 2,    0,    0,    0, 0,
                   0, 0x80, 0x31, 0x7F, 0xA7, 4, 0, 0, 0xC8, 0x17, 0xA8, 4, 0};
const Body kAsked{0, 0, 0,    0,    0,    0,    0, 0, 2,    0,    0,    0,    0,
                  0, 0, 0xE8, 0x76, 0x48, 0x17, 0, 0, 0xE8, 0x76, 0x48, 0x17, 0};
const Body kBlock{0, 1, 0, 0, 0, 2, 0, 0, 0, 3, 0, 0, 6, 0};

/// The first 16 bytes of an answer to SendFactor; three follow.
Body FactorHeader(std::uint32_t number) {
  Body bytes = Writer::Bytes({3, 0, 1, 0x10, number, {4, 0, 8}});
  bytes.resize(16);
  return bytes;
}

INSTANTIATE_TEST_SUITE_P(
    Traces, IoTraceTest,
    testing::Values(
        Row{"opened, and recovered", Writer().Open().Send(1, 1, 0, 0, {}).Come(1, 1, 0, 0, 0, {}),
            "70:1 viOpen resource=TCPIP0::h::8888::SOCKET mode=4 opened=3 -> VI_SUCCESS, 100 us\n"
            "70:3 1 recover -> good, 300 us\n"},
        Row{"left as asked", Writer().SendFactor(7).ComeFactor(7),
            "70:3 7 write averaging #4: factor 8 -> good, 400 us\n"},
        Row{"left otherwise", Writer().Send(7, 3, 4, 0x60, kAsked).Come(7, 3, 0, 4, 0x60, kLimits),
            "70:3 7 write frequency #0: start 0 Hz, points 2, step 100 GHz, stop 100 GHz -> good: "
            "start 10 MHz, step 19.99 GHz, stop 20 GHz, 400 us\n"},
        Row{"read", Writer().Send(8, 4, 2, 0x40, {5, 0, 9, 9, 9, 9, 9, 9, 9, 9})
                        .Come(8, 4, 0, 2, 0x40, {5, 0, 0, 0, 0, 0, 0xDC, 5, 0, 0}),
            "70:3 8 read dwell #5 -> good: selector 0, dwell 1.5 us, 400 us\n"},
        Row{"signed and with a fraction",
            Writer().Send(9, 3, 2, 0x21, {12, 0, 0, 1, 0x80, 0xF6})
                .Come(9, 3, 6, 2, 0x21, {12, 0, 0, 1, 0, 0xF6}),
            "70:3 9 write level #12: output 1, level -9.5 dBm -> 6 level not settled: level -10 "
            "dBm, 400 us\n"},
        Row{"a chunk of pulses",
            Writer().Send(2, 3, 2, 0x40, {31, 0, 2, 0, 0, 0, 3, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0,
                                          100, 0, 0, 0, 200, 0, 0, 0})
                .Come(2, 3, -0x7FFE, 2, 0x40, {}),
            "70:3 2 write pulse train #31: mode 2, source 3, offset 0, count 1, width 100 ns, gap "
            "200 ns -> 0x8002 request not supported, 300 us\n"
            "    ! refused: 0x8002, request not supported\n"},
        Row{"an unknown form", Writer().Send(3, 3, 2, 0x21, {99, 0, 0, 1, 0, 0xFF})
                                   .Come(3, 3, 0, 2, 0x21, {99, 0, 0, 1, 0, 0xFF}),
            "70:3 3 write parameter #99: 1, -1 -> good, 400 us\n"},
        Row{"a file", Writer().Send(4, 4, 2, 0x40, {10, 0, 0, 0, 0, 0, 0, 250, 0, 0, 'T', 0})
                          .Come(4, 4, 0, 2, 0x40, {10, 0, 0, 0, 0, 0, 0, 250, 0, 0, 'T', 0, 'K', '\r', '\n'}),
            "70:3 4 read file #10: T -> good: K, 400 us\n"},
        Row{"a serial number", Writer().Send(5, 4, 1, 0x20, {'S', 0, 2, 0})
                                   .Come(5, 4, 0, 1, 0x20, {'S', 0, 0x1B, 0x80, 25, 0, 1, 1}),
            "70:3 5 read serial number #83 -> good: 52, 400 us\n"},
        Row{"an identity in Cyrillic", Writer().Send(5, 4, 1, 0x10, {15, 0, 0, 0})
                                           .Come(5, 4, 0, 1, 0x10, {15, 0, 0xC8, 0}),
            "70:3 5 read identity #15 -> good: \xD0\x98, 400 us\n"},
        Row{"a block that the sweep delays", Writer().SendData(5).TimeOut().TimeOut().Come(5, 6, 0, 0, 'A', kBlock),
            "70:3 5 data -> good: 1 points, mark A, 6 level not settled, 2 s\n"},
        Row{"a block that is given up", Writer().SendData(5).TimeOut().Clear().SendFactor(6).ComeFactor(6),
            "70:3 5 data -> given up after 1 s, before a clear\n"
            "70:3 viClear -> VI_SUCCESS, 100 us\n"
            "70:3 6 write averaging #4: factor 8 -> good, 400 us\n"},
        Row{"in one piece with what follows", Writer().SendFactor(5).Move("viRead", [] {
              Body two = Writer::Bytes({3, 0, 1, 0x10, 5, {4, 0, 8}});
              two.insert(two.end(), {0x34, 0x12});
              return two;
            }(), 100),
            "70:3 5 write averaging #4: factor 8 -> good, 300 us\n"
            "70:3 viRead -> VI_SUCCESS, 100 us\n"
            "    ! header word: 0x1234 instead of 0x55AA\n"},
        Row{"joined in the middle of an answer", Writer().Move("viRead", {1, 2, 3}, 3).ComeFactor(4).SendFactor(5).ComeFactor(5),
            "70:3 5 write averaging #4: factor 8 -> good, 400 us\n"},
        Row{"two sessions at a time",
            Writer().Session(3).SendFactor(5).Session(4).SendFactor(1).Session(3).ComeFactor(5)
                .Session(4).ComeFactor(1),
            "70:3 5 write averaging #4: factor 8 -> good, 600 us\n"
            "70:4 1 write averaging #4: factor 8 -> good, 600 us\n"},
        Row{"cut by the bound", Writer().SendData(5).Come(5, 6, 0, 0, 'A', kBlock, 4),
            "70:3 5 data -> good: 1 points, mark A, 400 us\n"},
        Row{"cut elements", Writer().SendFactor(5).Come(5, 3, 0, 1, 0x10, {4, 0, 8}, 2),
            "70:3 5 write averaging #4: factor 8 -> good (2 of 3 bytes in the trace), 400 us\n"},
        Row{"cut in the middle", Writer().SendFactor(5).Move("viRead", FactorHeader(5), 16).Move("viRead", {4, 0}, 3, "VI_SUCCESS", 0, 1).Move("viRead", {8}, 1),
            "70:3 5 write averaging #4: factor 8 -> good (1 of 3 bytes in the trace), 500 us\n"},
        Row{"the trace ends", Writer().SendFactor(5),
            "70:3 5 write averaging #4: factor 8 -> the trace ends\n"},
        Row{"a time-out", Writer().SendFactor(5).TimeOut().Clear(),
            "70:3 5 write averaging #4: factor 8 -> no answer\n"
            "    ! time-out: no answer in 1 s\n"
            "70:3 viClear -> VI_SUCCESS, 100 us\n"},
        Row{"silence in a body", Writer().SendFactor(5).Move("viRead", FactorHeader(5), 16).TimeOut(3).Clear(),
            "70:3 5 write averaging #4: factor 8 -> no answer\n"
            "    ! time-out: no answer in 1 s, 16 of 19 bytes came\n"
            "70:3 viClear -> VI_SUCCESS, 100 us\n"},
        Row{"a body in two halves", Writer().SendFactor(5).Move("viRead", FactorHeader(5), 16).TimeOut(3).Move("viRead", {4, 0, 8}, 3),
            "70:3 5 write averaging #4: factor 8 -> good, 1 s\n"
            "    ! time-out: the answer came after 1 time-outs\n"},
        Row{"a lost connection", Writer().SendFactor(5).Move("viRead", {0xAA, 0x55}, 16, "VI_ERROR_CONN_LOST").Move("viRead", {}, 16, "VI_ERROR_CONN_LOST"),
            "70:3 5 write averaging #4: factor 8 -> no answer\n"
            "    ! connection: viRead: VI_ERROR_CONN_LOST, 2 of 16 bytes came\n"
            "70:3 viRead -> VI_ERROR_CONN_LOST, 100 us\n"
            "    ! connection: viRead: VI_ERROR_CONN_LOST\n"},
        Row{"a lost connection on writing", Writer().SendFactor(5).ComeFactor(5).Move("viWrite", {}, 16, "0xBFFF00A6").Move("viWrite", {}, 4, "0xBFFF00A6").Move("viRead", {}, 16, "0xBFFF00A6"),
            "70:3 5 write averaging #4: factor 8 -> good, 400 us\n"
            "70:3 unknown request -> no answer\n"
            "    ! connection: viWrite: 0xBFFF00A6\n"
            "    ! connection: viRead: 0xBFFF00A6\n"},
        Row{"a wrong header word", Writer().SendFactor(5).Move("viRead", {0x34, 0x12, 3, 0}, 16).Move("viRead", {1, 2}, 2).Clear(),
            "70:3 5 write averaging #4: factor 8 -> no answer\n"
            "    ! header word: 0x1234 instead of 0x55AA\n"
            "70:3 viClear -> VI_SUCCESS, 100 us\n"},
        Row{"a wrong length", Writer().SendFactor(5).Come(5, 3, 0, 1, 0x10, {4, 0, 8, 0, 0}),
            "70:3 5 write averaging #4: factor 8 -> good, 400 us\n"
            "    ! length: a body of 5 bytes instead of 4\n"},
        Row{"a block of a wrong length", Writer().SendData(5).Come(5, 6, 0, 0, 0x41, {1, 2, 3}),
            "70:3 5 data -> good: 3 bytes, 400 us\n"
            "    ! length: a block of 3 bytes is not 12 n + 2\n"},
        Row{"a body that nobody reads", Writer().SendData(5).Move("viRead", FactorHeader(5), 16).Clear(),
            "70:3 5 data -> no answer\n"
            "    ! length: a body of 3 bytes was announced, and not read\n"
            "70:3 viClear -> VI_SUCCESS, 100 us\n"},
        Row{"a block that is given up half", Writer().SendData(5).Move("viRead", FactorHeader(5), 16).Move("viRead", {4}, 3, "VI_ERROR_TMO", 1000).Clear(),
            "70:3 5 data -> given up after 1 s, before a clear\n"
            "    ! time-out: the block stopped, 17 of 19 bytes came\n"
            "70:3 viClear -> VI_SUCCESS, 100 us\n"},
        Row{"a wrong mark, a bad status", Writer().SendData(5).Come(5, 6, 0, 0, 0x42, {7, 0x80}),
            "70:3 5 data -> good: 0 points, mark ?, 0x8007 PLL unlocked, 400 us\n"
            "    ! mismatch: format mark 0x0042, neither @ nor A\n"
            "    ! refused: block status 0x8007, PLL unlocked\n"},
        Row{"of another command and parameter", Writer().SendFactor(5).Come(5, 4, 0, 1, 0x10, {5, 0, 8}),
            "70:3 5 write averaging #4: factor 8 -> good, 400 us\n"
            "    ! mismatch: the answer to command 4\n"
            "    ! mismatch: the answer to parameter 5\n"},
        Row{"requests out of order", Writer().SendFactor(5).ComeFactor(5).SendFactor(9).ComeFactor(9),
            "70:3 5 write averaging #4: factor 8 -> good, 400 us\n"
            "70:3 9 write averaging #4: factor 8 -> good, 400 us\n"
            "    ! number: request 9 follows request 5\n"},
        Row{"numbers that were never repeated", Writer().SendFactor(5).ComeFactor(1).SendFactor(6).ComeFactor(2),
            "70:3 5 write averaging #4: factor 8 -> good, 400 us\n"
            "70:3 6 write averaging #4: factor 8 -> good, 400 us\n"},
        Row{"an answer with another number", Writer().SendFactor(5).ComeFactor(5).SendFactor(6).ComeFactor(6).SendFactor(7).ComeFactor(90),
            "70:3 5 write averaging #4: factor 8 -> good, 400 us\n"
            "70:3 6 write averaging #4: factor 8 -> good, 400 us\n"
            "70:3 7 write averaging #4: factor 8 -> good, 400 us\n"
            "    ! number: the answer has number 90\n"},
        Row{"an answer that comes twice", Writer().SendFactor(5).ComeFactor(5).SendFactor(6).ComeFactor(6).SendFactor(7).ComeFactor(6).ComeFactor(7),
            "70:3 5 write averaging #4: factor 8 -> good, 400 us\n"
            "70:3 6 write averaging #4: factor 8 -> good, 400 us\n"
            "70:3 7 write averaging #4: factor 8 -> good, 600 us\n"
            "    ! passed over: the answer to request 6 comes late, or twice\n"},
        Row{"a copy that was taken for the answer", Writer().SendFactor(5).ComeFactor(5).SendFactor(6).ComeFactor(6).SendFactor(7).ComeFactor(6).SendFactor(8),
            "70:3 5 write averaging #4: factor 8 -> good, 400 us\n"
            "70:3 6 write averaging #4: factor 8 -> good, 400 us\n"
            "70:3 7 write averaging #4: factor 8 -> good, 400 us\n"
            "    ! number: taken for the answer, though its number is 6\n"
            "70:3 8 write averaging #4: factor 8 -> the trace ends\n"},
        Row{"an answer without a request", Writer().Open().ComeFactor(1),
            "70:1 viOpen resource=TCPIP0::h::8888::SOCKET mode=4 opened=3 -> VI_SUCCESS, 100 us\n"
            "70:3 viRead -> VI_SUCCESS, 100 us\n"
            "    ! unpaired: an answer without a request, number 1\n"},
        Row{"a request that nobody waits for", Writer().SendFactor(5).SendFactor(6).Line("viClose - 100 VI_SUCCESS"),
            "70:3 5 write averaging #4: factor 8 -> no answer\n"
            "    ! unpaired: no answer before the next request\n"
            "70:3 6 write averaging #4: factor 8 -> no answer\n"
            "    ! unpaired: no answer before the session was closed\n"
            "70:3 viClose -> VI_SUCCESS, 100 us\n"},
        Row{"half a request, and what is none", Writer().Move("viWrite", FactorHeader(5), 16).Clear().Move("viWrite", {0x2A, 0x49, 0x44}, 3),
            "70:3 unknown request -> no answer\n"
            "    ! unpaired: half a request\n"
            "70:3 viClear -> VI_SUCCESS, 100 us\n"
            "70:3 viWrite -> VI_SUCCESS, 100 us\n"
            "    ! header word: 3 bytes that are no request\n"},
        Row{"other calls", Writer().Line("viSetAttribute - 100 VI_SUCCESS attribute=VI_ATTR_TMO_VALUE").Line("viLock - 100 VI_ERROR_RSRC_LOCKED").Line("note - 0 - text=\"key \\\"x\\\" is unknown\\x21\""),
            "70:3 viLock -> VI_ERROR_RSRC_LOCKED, 100 us\n"
            "    ! call: viLock: VI_ERROR_RSRC_LOCKED\n"
            "70:3 note text=key \"x\" is unknown!\n"},
        Row{"a bound that cuts headers", Writer().SendFactor(5).Move("viRead", FactorHeader(5), 16, "VI_SUCCESS", 0, 8).ComeFactor(5),
            "t.log:3: the trace's bound cut a header; this session cannot be followed\n"
            "70:3 5 write averaging #4: factor 8 -> the trace ends\n"}));

TEST(IoTraceReportTest, DamagedLinesAreToldByTheirPlaceAndPassedOver) {
  const std::string good = Writer().SendFactor(5).text();
  const std::string beginning = good.substr(0, 28);
  const std::pair<std::string, const char*> rows[] = {
      {"Dear Sirs", "not a line of an I/O trace"},
      {"2026-13-25T16:18:00.000000Z 1 1 1 viRead - 0 VI_SUCCESS", "not a line of an I/O trace"},
      {beginning + "x 1 1 viRead - 0 VI_SUCCESS", "no process number"},
      {beginning + "1 -1 1 viRead - 0 VI_SUCCESS", "no thread number"},
      {beginning + "1 1 x viRead - 0 VI_SUCCESS", "no session"},
      {beginning + "1 1 1 vi:Read - 0 VI_SUCCESS", "no call"},
      {beginning + "1 1 1 viRead 3/ 0 VI_SUCCESS", "no counts of bytes"},
      {beginning + "1 1 1 viRead 1048577/9 0 VI_SUCCESS", "more bytes than a message holds"},
      {beginning + "1 1 1 viRead 1/1 1s VI_SUCCESS", "no duration"},
      {beginning + "1 1 1 viRead 1/1 1", "no status"},
      {beginning + "1 1 1 viRead 1/1 1 VI_SUCCESS data=0g", "data that is not hexadecimal"},
      {beginning + "1 1 1 viRead 1/1 1 VI_SUCCESS data=0102", "data of 2 bytes, 1 were moved"},
      {beginning + "1 1 1 viRead 2/2 1 VI_SUCCESS data=0102...", "data of 2 bytes, 2 were moved"},
      {beginning + "1 1 1 viOpen - 1 VI_SUCCESS resource=\"a", "a text without an end"},
      {beginning + "1 1 1 viOpen - 1 VI_SUCCESS resource=\"a\"b", "no space behind a text"},
      {std::string(2200000, 'a'), "longer than a line of an I/O trace"},
  };
  std::string trace;
  std::string expected;
  for (const auto& [line, why] : rows) {
    trace += line + "\n";
    expected +=
        "t.log:" + std::to_string(std::count(trace.begin(), trace.end(), '\n')) + ": " + why + "\n";
  }
  const std::string told = Told(trace + "\n" + good + good.substr(0, 40), false, 100000);
  EXPECT_THAT(told, testing::StartsWith(expected + "t.log:20: no counts of bytes\n"));
  EXPECT_THAT(told, HasSubstr("damaged lines   17\n"));
  EXPECT_THAT(told, HasSubstr("factor 8 -> the trace ends\n"));
}

Writer Mixed() {
  return Writer().SendFactor(5).ComeFactor(5).SendFactor(6).TimeOut().Clear().SendData(7).Come(
      7, 6, 0, 0, 'A', kBlock);
}

TEST(IoTraceReportTest, SummaryCountsAndNamesTheSlowest) {
  EXPECT_THAT(Told(Mixed().text()),
              HasSubstr("exchanges       3: 2 write, 1 data\n"
                        "failures        1: 1 time-out\n"
                        "passed over     0\n"
                        "left open       0\n"
                        "clears          1\n"
                        "damaged lines   0\n"
                        "slowest setting 400 us, write averaging #4, line 1, \n"
                        "slowest block   400 us, data, line 9, \n"));
}

TEST(IoTraceReportTest, JsonHoldsTheSame) {
  std::istringstream told(Told("x\n" + Mixed().text(), true));
  std::vector<nlohmann::json> objects;
  for (std::string line; std::getline(told, line);) objects.push_back(nlohmann::json::parse(line));
  ASSERT_EQ(objects.size(), 6U);
  EXPECT_EQ(objects[0], nlohmann::json::parse(R"({"type": "damaged", "file": "t.log", "line": 1,
      "why": "not a line of an I/O trace"})"));
  EXPECT_EQ(objects[1], nlohmann::json::parse(R"({"type": "exchange", "line": 2, "time": "",
      "process": 70, "session": 3, "number": 5, "command": "write", "parameter": 4,
      "name": "averaging", "request": [{"name": "factor", "value": 8}], "request_cut": false,
      "status": 0, "status_name": "good", "answer": [{"name": "factor", "value": 8}],
      "answer_bytes": 3, "answer_cut": false, "seconds": 0.0004, "problems": []})"));
  EXPECT_EQ(objects[2]["problems"],
            nlohmann::json::parse(R"([{"kind": "time-out", "text": "no answer in 1 s"}])"));
  EXPECT_EQ(objects[3]["call"], "viClear");
  EXPECT_EQ(objects[4]["points"], 1);
  EXPECT_EQ(objects[4]["block_status"], 6);
  EXPECT_EQ(objects[5]["problems"]["time-out"], 1);
  EXPECT_EQ(objects[5]["commands"], nlohmann::json::parse(R"({"write": 2, "data": 1})"));
  EXPECT_EQ(objects[5]["slowest_block"]["seconds"], 0.0004);
}

}  // namespace
}  // namespace iotrace
