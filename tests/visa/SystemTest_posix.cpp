// What the system sees of the library: the sockets' options, the lock's name, no more descriptors.
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include <optional>

#include "tests/visa/SettingsFixture.h"

namespace {

/// An option of this process's own end of the connection to a port.
int Option(const std::string& port, int level, int option) {
  for (int fd = 0; fd < 1024; ++fd) {
    sockaddr_in peer{};
    socklen_t size = sizeof peer;
    if (getpeername(fd, reinterpret_cast<sockaddr*>(&peer), &size) != 0) continue;
    if (peer.sin_family != AF_INET || std::to_string(ntohs(peer.sin_port)) != port) continue;
    int value = 0;
    size = sizeof value;
    EXPECT_EQ(getsockopt(fd, level, option, &value, &size), 0);
    return value;
  }
  ADD_FAILURE() << "no connection to " << port;
  return -1;
}

TEST_F(VisaSession, AttributesReachTheSocket) {
  const auto expect = [this](bool no_delay, bool keep_alive) {
    EXPECT_EQ(Option(peer.Port(), IPPROTO_TCP, TCP_NODELAY) != 0, no_delay);
    EXPECT_EQ(Option(peer.Port(), SOL_SOCKET, SO_KEEPALIVE) != 0, keep_alive);
  };
  expect(true, false);
  for (const ViAttrState on : {0, 1}) {
    EXPECT_STATUS(visa.viSetAttribute(session, VI_ATTR_TCPIP_NODELAY, on), VI_SUCCESS);
    EXPECT_STATUS(visa.viSetAttribute(session, VI_ATTR_TCPIP_KEEPALIVE, on), VI_SUCCESS);
    expect(on != 0, on != 0);
  }
}

TEST_F(VisaSettings, KeepAliveHasTimesOfItsOwn) {
  OpenWith("[*]\nkeep-alive = on");
  EXPECT_EQ(Option(peer.Port(), IPPROTO_TCP, TCP_KEEPIDLE), 30) << "seconds";
  EXPECT_EQ(Option(peer.Port(), IPPROTO_TCP, TCP_KEEPINTVL), 5);
  EXPECT_EQ(Option(peer.Port(), IPPROTO_TCP, TCP_KEEPCNT), 3);
}

/// Every version of the library must find it.
TEST_F(VisaSession, LockIsANameOfTheSystemWhoeverHasIt) {
  std::string name("\0zevisa-lock/127.0.0.1:", 23);
  name += peer.Port();
  const asio::local::datagram_protocol::endpoint lock(name);
  std::optional<asio::local::datagram_protocol::socket> stranger(std::in_place, io, lock);
  stranger->connect(lock);  // who is connected cannot be called
  EXPECT_EQ(Number(session, VI_ATTR_RSRC_LOCK_STATE), VI_EXCLUSIVE_LOCK);
  EXPECT_STATUS(Write(session, "x"), VI_ERROR_RSRC_LOCKED);
  stranger.reset();
  EXPECT_STATUS(Write(session, "x"), VI_SUCCESS);
}

TEST_F(VisaSession, FileThatTakesNothingIsAnError) {
  Send("x");
  ViUInt32 count = 9;
  EXPECT_STATUS(visa.viReadToFile(session, "/dev/full", 1, &count), VI_ERROR_FILE_IO);
  EXPECT_EQ(count, 0U);
}

TEST_F(VisaTest, OpenWithoutDescriptorsSaysSo) {
#ifdef __SANITIZE_ADDRESS__
  GTEST_SKIP() << "without a descriptor of its own the sanitizer takes any object for a wrong one";
#endif
  Peer peer;
  rlimit before{};
  ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
  const rlimit few{64, before.rlim_max};
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &few), 0);
  std::vector<int> taken;
  for (int fd = dup(0); fd >= 0; fd = dup(0)) taken.push_back(fd);
  ViStatus status = VI_ERROR_ALLOC;
  std::size_t needed = 0;
  for (; status == VI_ERROR_ALLOC && !taken.empty(); ++needed) {
    ViSession session = 9;
    status = Open(peer.Name(), 0, session);
    EXPECT_EQ(session != 0, status == VI_SUCCESS);
    close(taken.back());
    taken.pop_back();
  }
  for (const int fd : taken) close(fd);
  EXPECT_EQ(setrlimit(RLIMIT_NOFILE, &before), 0);
  EXPECT_STATUS(status, VI_SUCCESS);
  EXPECT_EQ(needed, 4U) << "none, one, two; three are enough";
}

}  // namespace
