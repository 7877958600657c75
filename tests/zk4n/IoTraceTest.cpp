// What readers of an I/O trace are told: traces as the VISA library writes them, and damaged ones.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "simulator/Wire.h"
#include "tests/link/Hex.h"
#include "zk4n/iotrace/LineReader.h"
#include "zk4n/iotrace/Report.h"

namespace iotrace {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

/// Writes a trace as iotrace.txt has it. Each call begins when the one before has ended.
class Writer {
 public:
  Writer& Play(const std::string& line) {
    if (std::sscanf(line.c_str(), "session %d", &session_) == 1) return *this;
    if (line.starts_with("raw ")) {
      text_ += line.substr(4) + "\n";
      return *this;
    }
    const bool is_message = line.starts_with("send ") || line.starts_with("come ");
    return is_message ? Message(line) : Call(line);
  }
  [[nodiscard]] const std::string& text() const { return text_; }

 private:
  Writer& Call(const std::string& rest) {
    char beginning[96];
    std::snprintf(beginning, sizeof beginning, "2026-11-25T16:18:%02d.%06dZ 70 71 %d ",
                  time_ / 1000000, time_ % 1000000, session_);
    text_ += beginning + rest + "\n";
    int duration = 0;
    std::sscanf(rest.c_str(), "%*s %*s %d", &duration);
    time_ += duration;
    return *this;
  }
  Writer& Move(const std::string& call, std::span<const std::uint8_t> bytes) {
    const std::string size = std::to_string(bytes.size());
    std::string data = ToHex(bytes);
    std::erase(data, ' ');
    for (char& digit : data) digit = static_cast<char>(std::tolower(digit));
    return Call(call + " " + size + "/" + size + " 100 VI_SUCCESS data=" + data);
  }
  Writer& Message(const std::string& line) {
    unsigned number = 0, command = 0, status = 0x8000, count = 0, type = 0;
    int end = 0;
    if (std::sscanf(line.c_str(), "send %u command %u, %u of type %x%n", &number, &command, &count,
                    &type, &end) != 4) {
      EXPECT_EQ(std::sscanf(line.c_str(), "come %u command %u status %x, %u of type %x%n", &number,
                            &command, &status, &count, &type, &end),
                5)
          << line;
    }
    const auto bytes = simulator::EncodeAnswer(
        {static_cast<std::uint16_t>(command), static_cast<std::int16_t>(status),
         static_cast<std::uint8_t>(count), static_cast<std::uint8_t>(type), number,
         FromHex(std::string_view(line).substr(static_cast<std::size_t>(end)))});
    const std::string call = line[0] == 's' ? "viWrite" : "viRead";
    Move(call, std::span(bytes).first(simulator::kHeaderSize));
    return Move(call, std::span(bytes).subspan(simulator::kHeaderSize));
  }

  int session_ = 3;
  int time_ = 0;  // us
  std::string text_;
};

struct Case {
  std::string trace;
  std::string told;  // without the summary
};

/// By name, as iotrace.txt has them.
const std::map<std::string, Case>& Cases() {
  static const auto cases = [] {
    std::map<std::string, Case> read;
    std::ifstream file(ZK_TRACES, std::ios::binary);
    for (std::string line; std::getline(file, line);) {
      if (!line.starts_with("== ")) continue;
      Case& entry = read[line.substr(3)];
      Writer writer;
      while (std::getline(file, line) && line != "=>") writer.Play(line);
      while (std::getline(file, line) && !line.empty()) entry.told += line + "\n";
      entry.trace = writer.text();
    }
    return read;
  }();
  return cases;
}

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

TEST(IoTraceReportTest, TellsEachTrace) {
  EXPECT_EQ(Cases().size(), 43U);
  for (const auto& [name, entry] : Cases()) {
    EXPECT_THAT(Told(entry.trace), StartsWith(entry.told + "exchanges ")) << name;
  }
}

TEST(IoTraceReportTest, LinesWithoutAnEndAreToldByTheirPlaceAndPassedOver) {
  const std::string good = Cases().at("the trace ends").trace;  // two lines
  const std::string told =
      Told(std::string(2200000, 'a') + "\n\n" + good + good.substr(0, 40), false, 100000);
  EXPECT_THAT(told, StartsWith("t.log:1: longer than a line of an I/O trace\n"
                               "t.log:5: no counts of bytes\n"));
  EXPECT_THAT(told, HasSubstr("factor 8 -> the trace ends\n"));
  EXPECT_THAT(told, HasSubstr("damaged lines   2\n"));
}

TEST(IoTraceReportTest, SummaryCountsAndNamesTheSlowest) {
  EXPECT_THAT(Told(Cases().at("mixed").trace),
              HasSubstr("exchanges       4: 2 write, 2 data\n"
                        "failures        1: 1 time-out\n"
                        "passed over     0\n"
                        "left open       0\n"
                        "clears          1\n"
                        "damaged lines   0\n"
                        "slowest setting 400 us, write averaging #4, line 1, \n"
                        "slowest block   900 us, data, line 13, \n"));
}

TEST(IoTraceReportTest, JsonHoldsTheSame) {
  std::istringstream told(Told("x\n" + Cases().at("mixed").trace, true));
  std::vector<nlohmann::json> objects;
  for (std::string line; std::getline(told, line);) objects.push_back(nlohmann::json::parse(line));
  ASSERT_EQ(objects.size(), 7U);
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
  EXPECT_EQ(objects[6]["problems"]["time-out"], 1);
  EXPECT_EQ(objects[6]["commands"], nlohmann::json::parse(R"({"write": 2, "data": 2})"));
  EXPECT_EQ(objects[6]["slowest_block"]["seconds"], 0.0009);
}

}  // namespace
}  // namespace iotrace
