// A network of the test's own, which it can take away.
#include <net/if.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>

#include "tests/visa/SettingsFixture.h"

namespace {

constexpr int kNoNetwork = 77;

bool SwitchLink(bool on) {
  const int fd = socket(AF_INET, SOCK_DGRAM, 0);
  ifreq link{};
  std::string("lo").copy(link.ifr_name, IFNAMSIZ - 1);
  bool done = ioctl(fd, SIOCGIFFLAGS, &link) == 0;
  link.ifr_flags = static_cast<short>(on ? link.ifr_flags | IFF_UP : link.ifr_flags & ~IFF_UP);
  done = done && ioctl(fd, SIOCSIFFLAGS, &link) == 0;
  close(fd);
  return done;
}

/// Whether the process has a network of its own from now on, with a link that is up.
bool EnterNetwork() {
  return (unshare(CLONE_NEWNET) == 0 || unshare(CLONE_NEWUSER | CLONE_NEWNET) == 0) &&
         SwitchLink(true);
}

class VisaNetwork : public VisaSettings {
 protected:
  /// In a process of its own, which ends itself when the wait does not.
  int ReadWhileTheLinkGoes() {
    if (!EnterNetwork()) return kNoNetwork;
    alarm(60);
    Peer there;
    WriteFile(file_,
              "[*]\nkeep-alive = on\nkeep-alive-idle = 1\nkeep-alive-interval = 1\n"
              "keep-alive-probes = 2\n");
    ViSession session = 0;
    EXPECT_STATUS(Open(there.Name(), VI_LOAD_CONFIG, session), VI_SUCCESS);
    EXPECT_STATUS(visa.viSetAttribute(session, VI_ATTR_TMO_VALUE, VI_TMO_INFINITE), VI_SUCCESS);
    auto instrument = there.Accept();
    asio::write(instrument, asio::buffer("half", 4));
    std::string text;
    EXPECT_STATUS(Read(session, 4, text), VI_SUCCESS_MAX_CNT);
    EXPECT_TRUE(SwitchLink(false));
    const auto before = std::chrono::steady_clock::now();
    EXPECT_STATUS(Read(session, 4, text), VI_ERROR_CONN_LOST);
    const auto passed = std::chrono::steady_clock::now() - before;
    EXPECT_GE(passed, std::chrono::seconds(2));
    EXPECT_LT(passed, std::chrono::seconds(20));
    return HasFailure() ? 1 : 0;
  }
};

TEST_F(VisaNetwork, APeerThatVanishesWithinABodyIsLostAfterTheConfiguredTime) {
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) _exit(ReadWhileTheLinkGoes());
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  if (WIFEXITED(status) && WEXITSTATUS(status) == kNoNetwork) {
    GTEST_SKIP() << "this machine lets a test have no network namespace";
  }
  EXPECT_TRUE(WIFEXITED(status)) << "ended by signal " << WTERMSIG(status);
  EXPECT_EQ(WEXITSTATUS(status), 0);
}

}  // namespace
