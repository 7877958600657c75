// A machine without any VISA library.
#include <gtest/gtest.h>

#include <array>

#include "K4NHardWare/DeviceInterface.h"
#include "K4NHardWare/VisaLibrary.h"

namespace {

TEST(NoLibraryTest, EveryCallAnswersLibraryNotFound) {
  uDevice::Interface device("TCPIP0::127.0.0.1::5025::SOCKET");
  EXPECT_EQ(device.last_status(), Status::kVisaLibraryNotFound);
  std::array<std::uint8_t, 4> buffer{};
  std::uint32_t count = 99;
  EXPECT_EQ(device.Read(buffer, count), Status::kVisaLibraryNotFound);
  EXPECT_EQ(count, 0U);
  EXPECT_EQ(device.Write(buffer, count), Status::kVisaLibraryNotFound);
  EXPECT_EQ(device.ReadWithTimeout(buffer, count), Status::kVisaLibraryNotFound);
  EXPECT_EQ(device.Clear(), Status::kVisaLibraryNotFound);
  EXPECT_EQ(device.StatusDescription(Status::kOk), "");
}

TEST(NoLibraryTest, BindingWithoutAPathFails) {
  uDevice::VisaLibrary library;
  EXPECT_EQ(library.Bind({}), -1);
  EXPECT_EQ(library.missing_count(), -1);
  EXPECT_EQ(library.Bind(ZK_VISA_MODULE), 0) << "but of one that has every entry point";
}

}  // namespace
