// Opening a session that cannot be opened, and where errors say that they come from.
#include <gtest/gtest.h>

#include "platform/os/Text.h"
#include "tests/driver/DriverModule.h"

namespace driver_test {
namespace {

// The discard port of this computer: nobody listens there.
constexpr std::string_view kNobody = "TCPIP0::127.0.0.1::9::SOCKET";

TEST(Initialize, WithoutAVisaLibrary) {
  Surface surface;
  ExpectReported(
      surface.root->Initialize(Text(kNobody).Get(), VARIANT_FALSE, VARIANT_FALSE, nullptr),
      Code(0x8004705B), "ZentrelK4NLib: File not found ZeVisa64.dll", __uuidof(IIviDriver));
  EXPECT_EQ(surface.root->get_Initialized(&surface.flag), S_OK);
  EXPECT_EQ(surface.flag, 0);
}

TEST(Initialize, WithNobodyListening) {
  DriverModule driver(Company::kVisaLibrary);
  {
    Surface surface(driver);
    ExpectReported(
        surface.root->Initialize(Text(kNobody).Get(), VARIANT_TRUE, VARIANT_TRUE, nullptr),
        Code(0x80047060), "ZentrelK4NLib: Unknown resource " + std::string(kNobody) + ".",
        __uuidof(IIviDriver));
    ExpectReported(surface.root->Initialize(nullptr, VARIANT_FALSE, VARIANT_FALSE, nullptr),
                   Code(0x80047060), "ZentrelK4NLib: Unknown resource .", __uuidof(IIviDriver));
    ExpectReported(surface.root->Close(), kNotConnectedCode, kNotConnected, __uuidof(IIviDriver));
  }
  EXPECT_EQ(driver.CanUnloadNow(), S_OK);
}

// Puts a text into the user's classes and takes it away again.
class RegisteredProgId {
 public:
  RegisteredProgId(std::string_view class_id, std::string_view prog_id)
      : key_(os::ToWide("Software\\Classes\\CLSID\\" + std::string(class_id))) {
    const os::WideString path = key_ + os::ToWide("\\ProgID");
    const os::WideString text = os::ToWide(prog_id);
    HKEY key = nullptr;
    EXPECT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                              KEY_ALL_ACCESS, nullptr, &key, nullptr),
              ERROR_SUCCESS);
    EXPECT_EQ(RegSetValueExW(key, nullptr, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                             static_cast<DWORD>((text.size() + 1) * sizeof(os::WideChar))),
              ERROR_SUCCESS);
    RegCloseKey(key);
  }
  ~RegisteredProgId() { RegDeleteTreeW(HKEY_CURRENT_USER, key_.c_str()); }

 private:
  os::WideString key_;
};

std::string TextOf(const GUID& guid) {
  os::WideChar text[39] = {};
  StringFromGUID2(guid, text, 39);
  return os::ToNarrow(text);
}

TEST(ErrorSource, IsTheProgIdOfTheReportingClass) {
  Surface surface;
  surface.power_step->Reset();
  EXPECT_FALSE(TakeErrorInfo().has_source) << "an unregistered class has none";

  const RegisteredProgId root(TextOf(__uuidof(ZentrelK4N)), "ZentrelK4NLib.ZentrelK4N.1");
  const RegisteredProgId power_step(TextOf(__uuidof(ZentrelK4NPowerStep)),
                                    "ZentrelK4NLib.ZentrelK4NPowerStep.1");
  surface.power_step->Reset();
  EXPECT_EQ(TakeErrorInfo().source, "ZentrelK4NLib.ZentrelK4NPowerStep.1");
  surface.power_step->put_Start(1.0);
  EXPECT_EQ(TakeErrorInfo().source, "ZentrelK4NLib.ZentrelK4N.1")
      << "what a child forwards is reported by the root";
  surface.pulse_output->put_Enabled(VARIANT_TRUE);
  EXPECT_EQ(TakeErrorInfo().source, "ZentrelK4NLib.ZentrelK4N.1");
}

}  // namespace
}  // namespace driver_test
