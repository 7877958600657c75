// The optional protocol library. A test loads one of the variants by its path; the driver then gets
// that one by the name that it looks for, as systems give a module that is loaded already.
#include "tests/manager/ManagerFixture.h"

namespace {

class ProtocolLibraryTest : public ManagerTest {
 protected:
  void Load(const char* path) { ASSERT_TRUE(module_.Load(path)) << path; }
  [[nodiscard]] std::string Calls() const {
    return module_.FunctionOf<const char*()>("ProtocolCalls")();
  }
  /// The text that goes with the refusal of a setting.
  std::optional<std::string> TextOf(std::uint16_t refusal) {
    visa_.Rule(kWrite, kDwellId, refusal, 0, 1);
    manager_.SetDwell(1.0);
    return TakeError().second;
  }

  os::Module module_;
};

TEST_F(ProtocolLibraryTest, TellsTheInstrumentsCodes) {
  Load(ZK_PROTOCOL_FULL);
  Open();
  EXPECT_EQ(Calls(), "Open(0) Load(4711Protocol.xml) ");
  EXPECT_EQ(TextOf(kRefusal), "4711 tells -32763");
  EXPECT_EQ(TextOf(0x8006), "-32762") << "a code that it has no text for";
  visa_.SetResult(scripted::Function::kRead, 0xBFFF00A6, 1);
  EXPECT_EQ(TextOf(0), "text of BF FF 00 A6") << "VISA's codes are VISA's";
  EXPECT_EQ(manager_.Close(), 0);
  EXPECT_EQ(Calls(), "Open(0) Load(4711Protocol.xml) Close(4711) ");
}

TEST_F(ProtocolLibraryTest, IsUnloadedWithTheSession) {
  Load(ZK_PROTOCOL_FULL);
  Open();
  module_.Unload();  // the driver holds it alone
  EXPECT_EQ(TextOf(kRefusal), "4711 tells -32763");
  EXPECT_EQ(manager_.Close(), 0);
  Load(ZK_PROTOCOL_FULL);
  EXPECT_EQ(Calls(), "") << "a library that stayed would remember";
}

TEST_F(ProtocolLibraryTest, WithoutAllEntryPointsIsNotUsed) {
  Load(ZK_PROTOCOL_LACKS_CLOSE);
  Open();
  EXPECT_EQ(TextOf(kRefusal), "-32763");
  EXPECT_EQ(manager_.Close(), 0);
  EXPECT_EQ(Calls(), "");
}

TEST_F(ProtocolLibraryTest, RefusalEndsTheSession) {
  Load(ZK_PROTOCOL_REFUSES);
  EXPECT_EQ(Initialize(), 5) << "everything but 0";
  EXPECT_FALSE(manager_.IsConnected());
  EXPECT_EQ(visa_.OpenSessions(), 0U);
  EXPECT_EQ(Calls(), "Open(0) Load(4711Protocol.xml) Close(4711) ");
}

TEST_F(ProtocolLibraryTest, ItsResultReplacesThatOfThePulseModulator) {
  Load(ZK_PROTOCOL_FULL);
  visa_.Rule(kWrite, kPulseId, kRefusal);
  EXPECT_EQ(Initialize(), 0);
  EXPECT_THAT(ErrorRecords(), testing::ElementsAre(ErrorRecord{kRefusalStatus, Site{652}}));
}

}  // namespace
