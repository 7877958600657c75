// zk4n shell as its user meets it: lines in, results out.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <optional>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "simulator/Simulator.h"
#include "simulator/Wire.h"
#include "tests/platform/TemporaryFolder.h"
#include "tests/platform/WaitUntil.h"
#include "tests/zk4n/Program.h"

namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

Lines LinesOf(std::istream& stream) {
  Lines lines;
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

Lines LinesOfFile(const char* file) {
  std::ifstream stream(file, std::ios::binary);
  return LinesOf(stream);
}

std::string Joined(const Lines& lines) {
  std::string text;
  for (const std::string& line : lines) text += line + "\n";
  return text;
}

std::string Replaced(std::string text, const std::string& what, const std::string& by) {
  for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += by.size()) {
    text.replace(at, what.size(), by);
  }
  return text;
}

class ConsoleTest : public testing::Test {
 protected:
  ConsoleTest() {
    simulator::Options options;
    options.faults.push_back(simulator::Fault::Refuse(kDwell, -32763, 1));
    instrument_.emplace(options);
    instrument_->PressRfButton(true);
    instrument_->Start();
  }
  [[nodiscard]] std::string WithPlaces(const std::string& line) const {
    return Replaced(Replaced(line, "@RESOURCE@", instrument_->ResourceName()), "@DETECTOR@",
                    ZK_DETECTOR_FILE);
  }
  [[nodiscard]] std::string WithoutPlaces(const std::string& line) const {
    return Replaced(Replaced(line, instrument_->ResourceName(), "@RESOURCE@"), ZK_DETECTOR_FILE,
                    "@DETECTOR@");
  }

  /// The whole output for the whole input.
  [[nodiscard]] std::string Run(std::vector<std::string> arguments, const std::string& input) {
    arguments.insert(arguments.begin(), "shell");
    Program program(ZK_CLIENT, arguments, folder_);
    program.Write(input);
    program.CloseInput();
    EXPECT_EQ(program.Wait(), 0) << program.Errors();
    return program.Output();
  }

  static constexpr std::uint16_t kDwell = 5;
  static constexpr std::uint16_t kSyncGenerator = 37;
  const TemporaryFolder temporary_;
  const fs::path& folder_ = temporary_.path();
  std::optional<simulator::Simulator> instrument_;
};

/// The next line of the program's output, which it writes before it reads on.
std::string NextLine(const Program& program, std::size_t& read) {
  std::string output;
  std::size_t end = 0;
  const auto is_there = [&] {
    output = program.Output(read);
    return (end = output.find('\n')) != std::string::npos;
  };
  if (!WaitUntil(is_there)) return "no result; standard error: " + program.Errors();
  read += end + 1;
  return output.substr(0, end);
}

TEST_F(ConsoleTest, TheScriptGivesTheSameTranscriptOnEverySystem) {
  const Lines expected = LinesOfFile(ZK_TRANSCRIPT);
  Program program(ZK_CLIENT, {"shell", "--json"}, folder_);
  Lines transcript;
  Lines writes;  // each command that wrote, and what
  std::size_t read = 0;
  bool is_awaited = false;
  for (const std::string& line : LinesOfFile(ZK_SCRIPT)) {
    const bool is_command = !line.empty() && !line.starts_with('#');
    const std::string wanted =
        transcript.size() < expected.size() ? expected[transcript.size()] : "no more lines";
    std::string result;
    for (int i = 0; i < 3000; ++i) {
      program.Write(WithPlaces(line) + "\n");
      if (!is_command) break;
      result = WithoutPlaces(NextLine(program, read));
      if (!is_awaited || result == wanted) break;
    }
    is_awaited = line == "# until";
    if (!is_command) continue;
    EXPECT_EQ(result, wanted);
    transcript.push_back(result);
    writes.push_back(line);
    for (const auto& request : instrument_->Requests()) {
      if (request.command == simulator::command::kWrite) writes.push_back("  " + request.text);
    }
    if (writes.back() == line) writes.pop_back();
    instrument_->ClearRequests();
  }
  program.CloseInput();
  EXPECT_EQ(program.Wait(), 0);
  EXPECT_EQ(transcript.size(), expected.size());
  EXPECT_EQ(fs::file_size(folder_ / "stdout.txt"), read) << "more output than commands, or CR LF";
  EXPECT_EQ(Joined(writes), Joined(LinesOfFile(ZK_WRITES)));
  std::ofstream("console_test_transcript.jsonl", std::ios::binary) << Joined(transcript);
  std::ofstream("console_test_writes.txt", std::ios::binary) << Joined(writes);
}

TEST_F(ConsoleTest, GoesOnAfterLinesThatAreNoCommands) {
  const std::string megabyte(1 << 20, 'x');
  const Lines junk = {
      megabyte,
      "RF.Frequency = " + megabyte,
      "Sweep.List.CreateFrequency(" + std::string(1 << 20, '['),
      "Initialize(\"" + megabyte,
      "RF." + megabyte + ".Level",
      std::string(1 << 20, '('),
      std::string("RF\0Level", 8),
      std::string("\0", 1),
      "\xFF\xFE\xC3(",
      "RF.Level = \"\xE2\x82\"",
      "\x1A",  // ends a text file on one of the systems
      "\xEF\xBB\xBFRF.Level",
      "= 1",
      ")",
      "RF.Level =",
      "RF.Configure(1,)",
      "RF.Configure(1",
      "Sweep.List.CreatePower(\"a\", [1]@)",
      "Sweep.List.CreatePower(\"a\", [1]@0x7FFFFFFF)",
      "\"\\",
      "System.ExtRefPhaseDelay = 0x100000000",
      "System.ExtRefPhaseDelay = 0x",
      "query {2ABE1589-9E6D-4FA1-BA34-F36A173CD04",
      "sleep 1e30",
  };
  std::istringstream output(Run({"--json"}, Joined(junk) + "  Initialized\t\r\nInitialized"));
  const Lines results = LinesOf(output);
  ASSERT_EQ(results.size(), junk.size() + 2);
  for (std::size_t i = 0; i < results.size(); ++i) {
    const auto result = nlohmann::json::parse(results[i], nullptr, false);
    ASSERT_FALSE(result.is_discarded()) << i << ": " << results[i].substr(0, 200);
    EXPECT_EQ(result.contains("fault"), i < junk.size()) << i << ": " << results[i].substr(0, 200);
    if (!result.contains("fault")) continue;
    EXPECT_THAT(result["fault"].get<std::string>(), testing::SizeIs(testing::Le(150))) << i;
  }
}

TEST_F(ConsoleTest, ShowsPeopleWhatTheFileHas) {
  instrument_->InjectFault({.kind = simulator::FaultKind::kHeaderWord,
                            .parameter = kSyncGenerator,
                            .times = 1,
                            .word = 0x1234});
  std::string input;
  std::string shown;
  for (const std::string& line : LinesOfFile(ZK_REPORTS "/console.txt")) {
    const bool is_typed = line.starts_with("> ");
    (is_typed ? input : shown) += (is_typed ? WithPlaces(line.substr(2)) : line) + "\n";
  }
  EXPECT_EQ(Replaced(Run({}, input), "\r\n", "\n"), shown);
}

TEST_F(ConsoleTest, RunsAScriptFile) {
  const fs::path script = folder_ / "\u0441\u043A\u0440\u0438\u043F\u0442.zk";
  std::ofstream(script) << "# nothing\nInitialized\n";
  const std::u8string name = script.u8string();
  EXPECT_EQ(Run({"--json", std::string(name.begin(), name.end())}, "RF\n"),
            "{\"command\":\"Initialized\",\"hresult\":\"0x00000000\",\"value\":0,\"out\":{},"
            "\"error\":null}\n");
}

}  // namespace
