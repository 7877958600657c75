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

// Gives a class its ProgID and takes it away again: among the computer's classes, or among the
// user's where the test may not write there.
class RegisteredProgId {
 public:
  RegisteredProgId(std::string_view class_id, std::string_view prog_id)
      : text_(os::ToWide(prog_id)),
        key_("CLSID\\" + std::string(class_id)),
        root_(HKEY_CLASSES_ROOT) {
    if (!Write()) {
      key_ = "Software\\Classes\\" + key_;
      root_ = HKEY_CURRENT_USER;
      EXPECT_TRUE(Write());
    }
  }
  ~RegisteredProgId() { RegDeleteTreeW(root_, os::ToWide(key_).c_str()); }

 private:
  bool Write() const {
    HKEY key = nullptr;
    if (RegCreateKeyExW(root_, os::ToWide(key_ + "\\ProgID").c_str(), 0, nullptr,
                        REG_OPTION_NON_VOLATILE, KEY_ALL_ACCESS, nullptr, &key,
                        nullptr) != ERROR_SUCCESS) {
      return false;
    }
    const auto size = static_cast<DWORD>((text_.size() + 1) * sizeof(os::WideChar));
    const auto written =
        RegSetValueExW(key, nullptr, 0, REG_SZ, reinterpret_cast<const BYTE*>(text_.c_str()), size);
    RegCloseKey(key);
    return written == ERROR_SUCCESS;
  }

  os::WideString text_;
  std::string key_;
  HKEY root_;
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
