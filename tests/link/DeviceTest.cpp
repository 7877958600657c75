// Opening the session, and a library that lacks entry points.
#include "K4NHardWare/VisaLibrary.h"
#include "tests/link/LinkFixture.h"

namespace {

using scripted::Function;
using uDevice::Interface;
using uDevice::VisaLibrary;

TEST(DeviceTest, OpensUnderTheGivenNameAndClosesTheSessionOnly) {
  scripted::Visa visa;
  {
    const Interface device("tcpip::Odd Name::5025::SOCKET");
    EXPECT_EQ(device.last_status(), 0);
    EXPECT_EQ(visa.OpenSessions(), 1U);
  }
  std::vector<Function> order;
  for (std::size_t i = 0; const auto* call = visa.CallAt(i); ++i) order.push_back(call->function);
  EXPECT_THAT(order, testing::ElementsAre(Function::kOpenDefaultRM, Function::kOpen,
                                          Function::kSetAttribute, Function::kClose));
  const Bytes& opened = visa.Calls(Function::kOpen).at(0)->bytes;
  EXPECT_EQ(std::string(opened.begin(), opened.end()), "tcpip::Odd Name::5025::SOCKET");
  EXPECT_EQ(visa.Calls(Function::kSetAttribute).at(0)->value, 2000U);
  EXPECT_EQ(visa.OpenSessions(), 0U);
}

TEST(DeviceTest, ReadsCountCompletionCodesAsZeroAndReportPartialCounts) {
  scripted::Visa visa;
  Interface device(kResource);
  const Bytes request(16);
  std::uint32_t count = 99;
  visa.AnswerRaw("01 02 03"_hex);
  EXPECT_EQ(device.Write(request, count), 0);
  EXPECT_EQ(count, 16U);
  std::array<std::uint8_t, 2> buffer{};
  EXPECT_EQ(device.Read(buffer, count), 0);
  EXPECT_EQ(count, 2U);
  EXPECT_EQ(device.ReadWithTimeout(buffer, count), scripted::kTimeout);
  EXPECT_EQ(count, 1U);
  EXPECT_EQ(device.last_status(), scripted::kTimeout);
  visa.SetResult(Function::kWrite, 0x3FFF0006);
  EXPECT_EQ(device.Write(request, count), 0x3FFF0006);
}

TEST(VisaLibraryTest, MissingEntryPointsAnswerLibraryNotFound) {
  scripted::Visa visa;
  VisaLibrary library;
  EXPECT_EQ(library.missing_count(), -1);
  EXPECT_EQ(library.Bind({}), 105 - 9);
  EXPECT_EQ(library.viClear(1), 0);
  EXPECT_EQ(library.viUsbControlIn(1, 0, 0, 0, 0, 0, nullptr, nullptr),
            Status::kVisaLibraryNotFound);
  EXPECT_EQ(library.viPrintf(1, "%d", 5), Status::kVisaLibraryNotFound);
  EXPECT_EQ(library.viQueryf(1, "a", "b"), Status::kVisaLibraryNotFound);
  ViUInt8 untouched = 7;
  library.viPeek8(1, nullptr, &untouched);
  EXPECT_EQ(untouched, 7);
  library.Reset();
  EXPECT_EQ(library.missing_count(), -1);
  EXPECT_EQ(library.viClear(1), Status::kVisaLibraryNotFound);
}

TEST(VisaLibraryTest, NamedFileIsNotReplacedByAnother) {
  scripted::Visa visa;
  VisaLibrary library;
  EXPECT_EQ(library.Bind("no_such_visa.dll"), -1);
  EXPECT_EQ(library.viClear(1), Status::kVisaLibraryNotFound);
}

}  // namespace
