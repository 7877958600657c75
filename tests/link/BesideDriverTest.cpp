// The VISA library lies in the search path under the second name, or beside the driver, where it is
// looked for last.
#include <gtest/gtest.h>

#include "K4NHardWare/DeviceInterface.h"
#include "tests/platform/ResultCode.h"

namespace {

TEST(BesideDriverTest, LibraryFoundLaterOpensASession) {
  const uDevice::Interface device("TCPIP0::127.0.0.1::5025::SOCKET");
  EXPECT_EQ(device.last_status(), 0);
}

}  // namespace
