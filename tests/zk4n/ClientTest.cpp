// zk4n as its user meets it: a process, its arguments, what it prints, its exit status, its files.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "simulator/Simulator.h"
#include "tests/platform/Content.h"
#include "tests/platform/WaitUntil.h"
#include "tests/zk4n/ProgramFixture.h"

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

class ClientTest : public ProgramTest {};

TEST_F(ClientTest, BadArgumentsGiveOneLineAndWriteNothing) { ExpectFailures("bad arguments", 2); }

TEST_F(ClientTest, HelpIsThatOfTheFile) {
  std::string help;
  for (const char* const command :
       {"", "measure", "shell", "simulate", "register", "check", "detector", "detector check",
        "detector value", "detector sign", "detector convert", "detector plot", "trace"}) {
    const Result result = Run(Words(std::string(command) + " --help"));
    EXPECT_EQ(result.status, 0);
    help += result.output;
  }
  EXPECT_THAT(Run({"--version"}).output, testing::StartsWith("zk4n 1."));
  std::erase(help, '\r');
  EXPECT_EQ(help, ContentOf(ZK_REPORTS "/help.txt"));
  std::ofstream("client_test_help.txt", std::ios::binary) << help;
}

TEST_F(ClientTest, FailuresOfDriverAndInstrumentTellResultNameAndDescription) {
  ExpectFailures("failures", 1, " --json --csv @/t.csv --svg @/t.svg");
}

TEST_F(ClientTest, FindsTheVisaLibraryBesideTheDriverAlone) {
  // Away from the folder where the library lies.
  const fs::path program = folder_ / "program" / fs::path(ZK_CLIENT).filename();
  fs::copy_file(ZK_CLIENT, program);
  for (const fs::path module : {ZK_DRIVER, ZK_COM_MODULE}) {
    if (module.empty()) continue;
    fs::copy_file(module, folder_ / "program" / module.filename());
  }
  const Result result = Run(Words("measure --resource nobody"), program);
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.errors,
            "zk4n: Initialize: 0x8004705B (file not found): ZentrelK4NLib: File not found "
            "ZeVisa64.dll\n");
  const std::string driver = (folder_ / "program" / fs::path(ZK_DRIVER).filename()).string();
  const auto check = [&] { return Run({"check", "--module", driver}, program).output; };
  EXPECT_THAT(check(), HasSubstr("none, and none needed with --module"));
  EXPECT_THAT(check(), HasSubstr("FAILED     VISA library  neither zevisa64 nor zevisa is found"));
  const fs::path folder = program.parent_path();
  fs::copy_file(ZK_VISA_LIBRARY, folder / fs::path(ZK_VISA_LIBRARY).filename());
  EXPECT_THAT(check(), HasSubstr("ok         VISA library  " + folder.string()));
}

/// A sweep of the simulated instrument: the one of no arguments, if they tell no other.
struct Measurement {
  std::string arguments = "";
  std::size_t points = 401;
  double start = 1e9;
  double step = 5e6;
  simulator::DeviceUnderTest device = {};
  double fixed = 0.0;  // level of a frequency sweep; frequency of a level sweep
  bool of_levels = false;
};

/// The trace is the response of the device, point by point.
void ExpectResponse(const Measurement& row, const std::string& text) {
  const auto document = nlohmann::json::parse(text, nullptr, false);
  ASSERT_FALSE(document.is_discarded()) << "no JSON: " << text.substr(0, 200);
  const auto x = document["axis"]["values"].get<std::vector<double>>();
  ASSERT_EQ(x.size(), row.points);
  const auto value = [&](const char* channel, std::size_t i) {
    return document["channels"][channel]["values"][i].get<double>();
  };
  for (std::size_t i = 0; i < row.points; ++i) {
    ASSERT_NEAR(x[i], row.start + row.step * static_cast<double>(i), row.step * 1e-6);
    const double frequency = row.of_levels ? row.fixed : x[i];
    const double level = row.of_levels ? x[i] : row.fixed;
    ASSERT_NEAR(value("A", i), level + row.device.Through(frequency), 0.05) << x[i];
    ASSERT_NEAR(value("B", i), level + row.device.Reflected(frequency), 0.05) << x[i];
    ASSERT_NEAR(value("R", i), level, 0.05) << x[i];
  }
}

TEST_F(ClientTest, MeasuresTheResponseOfTheDevice) {
  using simulator::DeviceKind;
  std::vector<Measurement> cases = {
      {},
      {.arguments = "--device flat --loss 6dB", .device = {.kind = DeviceKind::kFlat, .loss = 6.0}},
      {.arguments = "--device open", .device = {.kind = DeviceKind::kOpen}},
      {.arguments = "--centre 1.5G --width 100MHz --order 5 --level -10dBm",
       .device = {.centre = 1.5e9, .width = 1e8, .order = 5},
       .fixed = -10.0},
      // More points than one block holds.
      {"--start 1e9 --stop 2G --step 100kHz", 10001, 1e9, 1e5},
      {"--kind detectors --averaging 14"},
      {"--frequency-form wide"},
      {"--frequency-form narrow --max-frequency 4GHz"},
      {"--trigger-groups 1 --no-pulse-modulator --no-serial-query --no-reference-frequency "
       "--attenuator-mode 0 --power-variant 1"},
      {"--power-variant 0"},
      {"--response-delay 2ms --fault pieces:bytes=700,pause=3"},
      {"--max-frequency 2GHz", 201},
      // What opening the session records is no failure of the sweep.
      {"--fault refuse:parameter=7,status=0x8005,times=1"},
  };
  const std::string levels =
      "--mode power --start -20 --stop 10 --step 0.5dB --frequency 2.4GHz --power-variant ";
  for (const char variant : {'1', '2', '3', '4', '5'}) {
    cases.push_back({levels + variant, 61, -20.0, 0.5, {}, 2.4e9, true});
  }
  for (const Measurement& row : cases) {
    SCOPED_TRACE(row.arguments);
    const Result result = Run(Words("measure --simulate --json " + row.arguments));
    EXPECT_EQ(result.status, 0) << result.errors;
    if (result.status == 0) ExpectResponse(row, result.output);
  }
}

TEST_F(ClientTest, PrintsTheTableAndWritesTheFiles) {
  const Result result =
      Run({"measure", "--simulate", "--serial", "77", "--dwell", "1us", "--detector",
           std::string("A=") + ZK_DETECTOR_FILE, "--csv", "@/t.csv", "--svg", "@/t.svg"});
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.output, HasSubstr("Instrument K4N-20, serial 77*, TCPIP0::127.0.0.1::"));
  EXPECT_THAT(result.output,
              HasSubstr("Points 401, 1 GHz to 3 GHz, level 0 dBm, dwell 1 us, averaging 3\n"));
  EXPECT_THAT(result.output, HasSubstr("\n  A-R        -49.99"));
  EXPECT_THAT(result.output, HasSubstr("    -1.500 ")) << "the loss of the device";
  EXPECT_EQ(result.errors.find_first_not_of("Measuring 01257%\n"), std::string::npos)
      << "away from a terminal progress is plain lines: " << result.errors;
  EXPECT_THAT(result.errors, testing::EndsWith("Measuring 100 %\n"));
  EXPECT_THAT(Files(), testing::UnorderedElementsAre("t.csv", "t.svg"));
}

TEST_F(ClientTest, MeasuresOnASimulatorInAnotherProcess) {
  const fs::path other = folder_ / "program";
  Program simulator(ZK_CLIENT, {"simulate", "--port", "0", "--serial", "4711"}, other);
  ASSERT_TRUE(WaitUntil([&] { return simulator.Output().ends_with("\n"); }));
  std::string resource = simulator.Output();
  resource.pop_back();
  const std::string file = ZK_DETECTOR_FILE;
  for (int session = 1; session <= 2; ++session) {
    const Result result = Run({"measure", "--json", "--resource", resource, "--detector",
                               "A=" + file, "--detector", "B=" + file, "--detector", "R=" + file});
    EXPECT_EQ(result.status, 0) << result.errors;
    ExpectResponse({}, result.output);
    EXPECT_THAT(result.output, HasSubstr("\"4711*\""));
  }
  simulator.Interrupt();
  EXPECT_EQ(simulator.Wait(), 0);
}

TEST_F(ClientTest, WhatIsNoTraceFails) {
  std::ofstream(folder_ / "letter") << "Dear Sirs\n";
  const Result result = Run({"trace", (folder_ / "letter").string()});
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.output, HasSubstr("letter:1: not a line of an I/O trace\n"));
  EXPECT_THAT(result.errors, testing::EndsWith("letter is no I/O trace\n"));
}

TEST_F(ClientTest, TraceFollowsAFileThatIsReplacedAndEndsWithItsSummary) {
  const fs::path file = folder_ / "t.log";
  const fs::path old = folder_ / "t.log.1";
  const auto append = [](const fs::path& to, const std::string& text) {
    std::ofstream(to, std::ios::app | std::ios::binary) << text;
  };
  const std::string beginning = "2026-11-25T16:18:50.000000Z 7 7 3 ";
  append(file, beginning + "viClear - 10 VI_SUCCESS\n" + beginning + "viRe");
  Program program(ZK_CLIENT, {"trace", file.string(), "--follow"}, folder_ / "output");
  const auto tells = [&](const char* what) {
    return WaitUntil([&] { return program.Output().find(what) != std::string::npos; });
  };
  ASSERT_TRUE(tells("viClear")) << program.Errors();
  append(file, "ad 0/16 20 VI_ERROR_CONN_LOST data=\n");
  ASSERT_TRUE(tells("7:3 viRead -> VI_ERROR_CONN_LOST, 20 us\n"));
  fs::rename(file, old);  // as the writer does, also while it is read
  append(old, beginning + "viLock - 30 VI_ERROR_TMO\n");
  append(file, beginning + "viUnlock - 40 VI_ERROR_IO\n");
  ASSERT_TRUE(tells("viUnlock"));
  program.Interrupt();
  EXPECT_EQ(program.Wait(), 0);
  const std::string told = program.Output();
  EXPECT_THAT(told.substr(told.find("viLock")), HasSubstr("t.log: a new file from here on\n"));
  EXPECT_THAT(told, HasSubstr("failures        3: 1 connection, 2 call\n"));
  EXPECT_THAT(told, HasSubstr("damaged lines   0\n"));
}

TEST_F(ClientTest, CtrlCClosesTheSession) {
  simulator::Simulator instrument;
  instrument.Start();
  // Forty seconds of a sweep.
  Program program(ZK_CLIENT,
                  Resolved({"measure", "--resource", instrument.ResourceName(), "--dwell", "100ms",
                            "--csv", "@/t.csv"}),
                  folder_ / "output");
  ASSERT_TRUE(WaitUntil([&] {
    const auto requests = instrument.Requests();
    return !requests.empty() && requests.back().command == 6;
  })) << program.Errors();
  EXPECT_TRUE(instrument.State().output_enabled);
  program.Interrupt();
  EXPECT_EQ(program.Wait(), 130);
  EXPECT_THAT(program.Errors(), testing::EndsWith("zk4n: interrupted\n"));
  EXPECT_THAT(Files(), testing::IsEmpty());
  EXPECT_TRUE(WaitUntil([&] { return instrument.ConnectionCount() == 0; }));
  EXPECT_FALSE(instrument.State().output_enabled) << "the output was left on";
}

}  // namespace
