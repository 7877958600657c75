#include <optional>

#include "tests/platform/TemporaryFolder.h"
#include "tests/visa/VisaModule.h"
#include "tests/zk4n/Program.h"

namespace {

class VisaLock : public VisaTest {
 protected:
  ViUInt32 State(ViSession session) { return Number(session, VI_ATTR_RSRC_LOCK_STATE); }
  std::string Owner(ViSession session) { return Text(session, VI_ATTR_ZENTREL_LOCK_OWNER); }
  ViStatus Exclusive(ViSession session, ViUInt32 timeout = 0) {
    return visa.viLock(session, VI_EXCLUSIVE_LOCK, timeout, nullptr, nullptr);
  }
  ViStatus Shared(ViSession session, const char* key) {
    return visa.viLock(session, VI_SHARED_LOCK, 0, key, given_key.data());
  }

  Peer peer;
  std::array<char, 256> given_key{};
};

TEST_F(VisaLock, SecondExclusiveOpenWaitsInVainThenGetsIt) {
  ViSession first = 0;
  ViSession second = 0;
  ViSession other_manager = 0;
  ASSERT_EQ(visa.viOpenDefaultRM(&other_manager), VI_SUCCESS);
  ASSERT_EQ(Open(peer.Name(), VI_SHARED_LOCK, first), VI_SUCCESS);
  // The same instrument by another name.
  const auto alias = "TCPIP7::localhost::" + peer.Port() + "::SOCKET";
  EXPECT_STATUS(visa.viOpen(other_manager, alias.c_str(), VI_EXCLUSIVE_LOCK, 20, &second),
                VI_ERROR_RSRC_LOCKED);
  EXPECT_STATUS(visa.viClose(first), VI_SUCCESS);
  EXPECT_STATUS(visa.viOpen(other_manager, alias.c_str(), VI_EXCLUSIVE_LOCK, 2000, &second),
                VI_SUCCESS);
  EXPECT_STATUS(visa.viClose(other_manager), VI_SUCCESS);
  EXPECT_STATUS(Write(second, "x"), VI_ERROR_INV_OBJECT) << "sessions go with their manager";
}

TEST_F(VisaLock, NestsAndOtherSessionsOpenButDoNotTalk) {
  const ViSession owner = OpenSession(peer.Name());
  const ViSession other = OpenSession(peer.Name());
  EXPECT_STATUS(Exclusive(owner), VI_SUCCESS);
  EXPECT_EQ(State(other), VI_EXCLUSIVE_LOCK);
  std::string text;
  EXPECT_STATUS(Write(other, "x"), VI_ERROR_RSRC_LOCKED);
  EXPECT_STATUS(Read(other, 1, text), VI_ERROR_RSRC_LOCKED);
  EXPECT_STATUS(visa.viClear(other), VI_ERROR_RSRC_LOCKED);
  EXPECT_STATUS(visa.viUnlock(other), VI_ERROR_SESN_NLOCKED);
  EXPECT_STATUS(Write(owner, "x"), VI_SUCCESS);
  EXPECT_STATUS(Exclusive(owner), VI_SUCCESS_NESTED_EXCLUSIVE);
  EXPECT_STATUS(visa.viUnlock(owner), VI_SUCCESS_NESTED_EXCLUSIVE);
  EXPECT_STATUS(Exclusive(other, 5), VI_ERROR_RSRC_LOCKED);
  EXPECT_STATUS(visa.viUnlock(owner), VI_SUCCESS);
  EXPECT_STATUS(visa.viUnlock(owner), VI_ERROR_SESN_NLOCKED);
  EXPECT_STATUS(Exclusive(other), VI_SUCCESS);
  EXPECT_STATUS(visa.viClose(other), VI_SUCCESS);
  EXPECT_EQ(State(owner), 0U) << "the lock goes with its session";
  EXPECT_STATUS(Write(owner, "x"), VI_SUCCESS);
}

TEST_F(VisaLock, IsSharedWithTheKey) {
  const ViSession first = OpenSession(peer.Name());
  const ViSession second = OpenSession(peer.Name());
  const ViSession third = OpenSession(peer.Name());
  EXPECT_STATUS(Shared(first, nullptr), VI_SUCCESS);
  const std::string key = given_key.data();
  EXPECT_FALSE(key.empty());
  EXPECT_STATUS(Shared(first, nullptr), VI_SUCCESS_NESTED_SHARED);
  EXPECT_STATUS(Shared(second, key.c_str()), VI_SUCCESS);
  EXPECT_EQ(given_key.data(), key);
  EXPECT_STATUS(Shared(third, "another"), VI_ERROR_RSRC_LOCKED);
  EXPECT_EQ(State(third), VI_SHARED_LOCK);
  EXPECT_STATUS(Write(second, "x"), VI_SUCCESS);
  EXPECT_STATUS(Write(third, "x"), VI_ERROR_RSRC_LOCKED);
  EXPECT_STATUS(Exclusive(first), VI_SUCCESS);
  EXPECT_STATUS(Shared(second, key.c_str()), VI_ERROR_RSRC_LOCKED);
  EXPECT_STATUS(Write(second, "x"), VI_ERROR_RSRC_LOCKED);
  EXPECT_STATUS(visa.viUnlock(first), VI_SUCCESS_NESTED_SHARED);
  EXPECT_STATUS(Write(second, "x"), VI_SUCCESS);
  EXPECT_STATUS(visa.viUnlock(first), VI_SUCCESS_NESTED_SHARED);
  EXPECT_STATUS(visa.viUnlock(first), VI_SUCCESS);
  EXPECT_STATUS(visa.viUnlock(first), VI_ERROR_SESN_NLOCKED);
  EXPECT_STATUS(visa.viLock(third, 3, 0, nullptr, nullptr), VI_ERROR_INV_LOCK_TYPE);
  EXPECT_STATUS(Shared(third, std::string(256, 'k').c_str()), VI_ERROR_INV_ACCESS_KEY);
}

TEST_F(VisaLock, HoldsAcrossProcessesAndGoesWithItsOwner) {
  const TemporaryFolder folder;
  std::optional<Program> holder(std::in_place, ZK_LOCK_HOLDER, std::vector{peer.Name()},
                                folder.path());
  auto instrument = peer.Accept();  // it has the lock by now
  const ViSession watcher = OpenSession(peer.Name());
  EXPECT_EQ(State(watcher), VI_EXCLUSIVE_LOCK);
  EXPECT_STATUS(Write(watcher, "x"), VI_ERROR_RSRC_LOCKED);
  const std::string owner = Owner(watcher);
  EXPECT_TRUE(owner.starts_with("process " + holder->Output() + " (visa_lock_hold")) << owner;
  ViSession session = 0;
  EXPECT_STATUS(Open(peer.Name(), VI_EXCLUSIVE_LOCK, session, 20), VI_ERROR_RSRC_LOCKED);
  holder.reset();
  EXPECT_STATUS(Open(peer.Name(), VI_EXCLUSIVE_LOCK, session, 5000), VI_SUCCESS);
  EXPECT_NE(Owner(watcher), owner);
  visa.viClose(session);
  EXPECT_EQ(Owner(watcher), "");
}

}  // namespace
