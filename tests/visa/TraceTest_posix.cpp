// Traces where only some systems let a test make trouble: several processes, a full disk.
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <limits>
#include <set>

#include "tests/visa/TraceFixture.h"

namespace {

class VisaTraceProcesses : public VisaTrace {
 protected:
  static constexpr int kProcesses = 4;
  /// Each makes so many calls, all at the same time; the observer looks at the files meanwhile.
  template <typename Observer>
  void CountInProcesses(int calls, const Observer& observe) {
    std::vector<pid_t> children;
    for (int i = 0; i < kProcesses; ++i) {
      children.push_back(fork());
      if (children.back() != 0) continue;
      Count(i * calls, (i + 1) * calls);
      _exit(HasFailure() ? 1 : 0);
    }
    while (!children.empty()) {
      observe();
      int status = 1;
      if (waitpid(children.back(), &status, WNOHANG) == 0) continue;
      EXPECT_EQ(status, 0);
      children.pop_back();
    }
  }
};

TEST_F(VisaTraceProcesses, WriteWholeLinesIntoOneFile) {
  constexpr int kCalls = 200;
  CountInProcesses(kCalls, [] { usleep(1000); });
  ASSERT_EQ(CountDifferent(), std::size_t{kProcesses} * kCalls);
  // Each process has a number and a first thread of its own, also after a fork.
  const std::regex first_thread(R"(\S+ (\d+) \1 .*)");
  std::set<std::string> processes;
  std::smatch found;
  for (const std::string& line : Lines(trace_file_)) {
    EXPECT_TRUE(std::regex_match(line, found, first_thread)) << line;
    processes.insert(found[1]);
  }
  EXPECT_EQ(processes.size(), std::size_t{kProcesses} + 1);
}

TEST_F(VisaTrace, IsForAllWhomTheUsersMaskLets) {
  const mode_t mask = umask(0);
  umask(mask);
  const auto permissions = std::filesystem::status(trace_file_).permissions();
  EXPECT_EQ(static_cast<mode_t>(permissions), 0666 & ~mask);
}

// Each that comes to a full file may find that another has put it aside: one that renamed the new
// file in its place would throw the full one away.
TEST_F(VisaTraceProcesses, PutOneFullFileAsideTogether) {
  EXPECT_STATUS(visa.viClose(OpenWith("[*]\ntrace-size = 64")), VI_SUCCESS);
  std::uintmax_t smallest = std::numeric_limits<std::uintmax_t>::max();
  CountInProcesses(800, [&] {
    std::error_code none;
    const auto size = std::filesystem::file_size(Before(), none);
    if (!none) smallest = std::min(smallest, size);
  });
  EXPECT_GE(smallest, 64 * 1024U);
  EXPECT_GT(CountDifferent(), 400U) << "a full file at least";
}

TEST_F(VisaTrace, AFullDiskLosesLinesAndNothingElse) {
  // To the library a full disk is what the limit of a file's size is.
  const auto ignored = signal(SIGXFSZ, SIG_IGN);
  rlimit usual{};
  ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &usual), 0);
  rlimit full = usual;
  full.rlim_cur = std::filesystem::file_size(trace_file_) + 40;
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &full), 0);
  Count(0, 3);
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &usual), 0);
  signal(SIGXFSZ, ignored);
  Count(3, 5);
  using namespace testing;
  std::ifstream stream(trace_file_);
  std::vector<std::string> lines;
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  EXPECT_THAT(lines, ElementsAre(_, _, SizeIs(40),
                                 AllOf(HasSubstr(" - note - "),
                                       EndsWith(" - text=\"3 lines could not be written\"")),
                                 EndsWith(" value=3"), EndsWith(" value=4")))
      << "the third is what the disk took of the first of three";
}

TEST_F(VisaTrace, WhatIsNoFileHoldsUpNoCall) {
  const std::string fifo = folder_.path() / "fifo";
  ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
  const int reader = open(fifo.c_str(), O_RDONLY | O_NONBLOCK);
  const auto descriptors = [] {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
  };
  const auto before = descriptors();
  for (const std::string& path : {fifo, std::string("/dev/full"), std::string("/proc/version")}) {
    const EnvironmentVariable variable("ZEVISA_TRACE", path);
    ViSession other = 0;
    EXPECT_STATUS(visa.viOpenDefaultRM(&other), VI_SUCCESS) << path;
    Count(0, 3);
    EXPECT_STATUS(visa.viClose(other), VI_SUCCESS);
  }
  EXPECT_EQ(descriptors(), before);
  char byte = 0;
  EXPECT_EQ(read(reader, &byte, 1), 0) << "nothing is written into what has a reader";
  close(reader);
}

}  // namespace
