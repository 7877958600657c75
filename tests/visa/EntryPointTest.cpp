#include <fstream>
#include <set>

#include "tests/platform/Content.h"
#include "tests/visa/VisaModule.h"

namespace {

std::vector<std::string> ExportedNames() {
  std::ifstream list(ZK_VISA_EXPORTS);
  std::vector<std::string> names;
  for (std::string line; std::getline(list, line);) {
    if (line.starts_with("  vi")) names.push_back(line.substr(2, line.find_last_not_of("\r ") - 1));
  }
  return names;
}

TEST_F(VisaTest, EveryNameIsThereAndWhatIsNotSupportedSaysSo) {
  const std::set<std::string> implemented = {
      "viOpenDefaultRM", "viParseRsrc",    "viParseRsrcEx",  "viOpen",         "viFindRsrc",
      "viClose",         "viGetAttribute", "viSetAttribute", "viStatusDesc",   "viTerminate",
      "viLock",          "viUnlock",       "viEnableEvent",  "viDisableEvent", "viDiscardEvents",
      "viRead",          "viWrite",        "viClear",        "viFindNext",     "viBufRead",
      "viBufWrite",      "viFlush",        "viSetBuf",       "viReadToFile",   "viWriteFromFile",
      "viReadSTB",       "viAssertTrigger"};
  const auto names = ExportedNames();
  EXPECT_EQ(names.size(), 105U);
  for (const std::string& name : names) {
    // None of them looks at its arguments, so one signature serves them all.
    const auto call = visa.module.FunctionOf<ViStatus(ViSession)>(name.c_str());
    ASSERT_NE(call, nullptr) << name;
    if (implemented.contains(name)) continue;
    if (name.starts_with("viPeek") || name.starts_with("viPoke")) {
      visa.module.FunctionOf<void(ViSession)>(name.c_str())(manager);
    } else {
      EXPECT_STATUS(call(manager), VI_ERROR_NSUP_OPER) << name;
    }
  }
}

TEST_F(VisaTest, EveryStatusHasItsTextAndNoOtherNumberHasOne) {
  std::string told;
  for (const std::uint32_t base : {0x00000000U, 0x3FFF0000U, 0xBFFF0000U}) {
    for (std::uint32_t code = 0; code < 0x100; ++code) {
      const auto status = static_cast<ViStatus>(base + code);
      std::array<char, 257> text{};
      const ViStatus answer = visa.viStatusDesc(code % 2 == 0 ? 0 : manager, status, text.data());
      if (answer == VI_SUCCESS) {
        told += Hex(status) + " " + text.data() + "\n";
      } else {
        EXPECT_STATUS(answer, VI_WARN_UNKNOWN_STATUS);
        EXPECT_EQ(text.data(), "Unknown status " + Hex(status));
      }
    }
  }
  EXPECT_EQ(told, ContentOf(ZK_STATUS_TEXTS));
}

TEST_F(VisaTest, ClosingClientsGetTheAnswersTheyNeed) {
  constexpr ViEventType kAll = 0x3FFF7FFF;
  EXPECT_STATUS(visa.viEnableEvent(manager, kAll, 1, 0), VI_ERROR_INV_EVENT);
  EXPECT_STATUS(visa.viDisableEvent(manager, kAll, 0xFFFF), VI_SUCCESS_EVENT_DIS);
  EXPECT_STATUS(visa.viDiscardEvents(manager, kAll, 0xFFFF), VI_SUCCESS_QUEUE_EMPTY);
  EXPECT_STATUS(visa.viDisableEvent(manager + 99, kAll, 0xFFFF), VI_ERROR_INV_OBJECT);
  EXPECT_STATUS(visa.viClose(0), VI_WARN_NULL_OBJECT);
  EXPECT_STATUS(visa.viClose(manager + 99), VI_ERROR_INV_OBJECT);
  ViFindList list = 7;
  ViUInt32 count = 7;
  EXPECT_STATUS(visa.viFindRsrc(manager, "?*", &list, &count, nullptr), VI_ERROR_RSRC_NFOUND);
  EXPECT_EQ(count, 0U);
  EXPECT_STATUS(visa.module.FunctionOf<decltype(viFindNext)>("viFindNext")(list, nullptr),
                VI_ERROR_RSRC_NFOUND);
}

TEST_F(VisaSession, BadArgumentsAreRefused) {
  EXPECT_STATUS(visa.viOpenDefaultRM(nullptr), VI_ERROR_USER_BUF);
  EXPECT_STATUS(visa.viOpen(manager, peer.Name().c_str(), 0, 0, nullptr), VI_ERROR_USER_BUF);
  EXPECT_STATUS(visa.viParseRsrc(manager, nullptr, nullptr, nullptr), VI_ERROR_INV_RSRC_NAME);
  EXPECT_STATUS(visa.viParseRsrc(session, peer.Name().c_str(), nullptr, nullptr),
                VI_ERROR_INV_OBJECT);
  EXPECT_STATUS(visa.viFindRsrc(session, "?*", nullptr, nullptr, nullptr), VI_ERROR_INV_OBJECT);
  EXPECT_STATUS(visa.viStatusDesc(session, VI_SUCCESS, nullptr), VI_ERROR_USER_BUF);
  for (const ViUInt32 size : {0, 1}) {
    const ViStatus status = size == 0 ? VI_SUCCESS : VI_ERROR_USER_BUF;
    EXPECT_STATUS(visa.viRead(session, nullptr, size, nullptr), status);
    EXPECT_STATUS(visa.viWrite(session, nullptr, size, nullptr), status);
    EXPECT_STATUS(visa.viBufWrite(session, nullptr, size, nullptr), status);
  }
  EXPECT_STATUS(visa.viReadToFile(session, nullptr, 1, nullptr), VI_ERROR_FILE_ACCESS);
  EXPECT_STATUS(visa.viWriteFromFile(session, nullptr, 1, nullptr), VI_ERROR_FILE_ACCESS);
  EXPECT_STATUS(visa.viReadSTB(session, nullptr), VI_ERROR_USER_BUF);
  EXPECT_STATUS(visa.viAssertTrigger(session, 1), VI_ERROR_INV_PROT);
  EXPECT_STATUS(visa.viSetAttribute(manager + 99, VI_ATTR_USER_DATA, 1), VI_ERROR_INV_OBJECT);
  ViUInt32 count = 7;
  EXPECT_STATUS(visa.viRead(manager + 99, nullptr, 1, &count), VI_ERROR_INV_OBJECT);
  EXPECT_EQ(count, 0U);
  EXPECT_STATUS(visa.viEnableEvent(manager + 99, 0, 1, 0), VI_ERROR_INV_OBJECT);
  EXPECT_STATUS(visa.viDiscardEvents(manager + 99, 0, 1), VI_ERROR_INV_OBJECT);
}

TEST(VisaUnload, LeavesNothingOpenAndLoadsAgain) {
  Peer peer;
  for (int round = 0; round < 3; ++round) {
    VisaModule visa;
    ASSERT_TRUE(visa.is_loaded);
    ViSession manager = 0;
    ViSession session = 0;
    ASSERT_EQ(visa.viOpenDefaultRM(&manager), VI_SUCCESS);
    ASSERT_EQ(visa.viOpen(manager, peer.Name().c_str(), VI_EXCLUSIVE_LOCK, 0, &session),
              VI_SUCCESS);
    auto instrument = peer.Accept();
    visa.module.Unload();
    asio::error_code error;
    char byte = 0;
    asio::read(instrument, asio::buffer(&byte, 1), error);
    EXPECT_TRUE(error) << "the connection outlived the library";
  }
}

}  // namespace
