// A driver with an instrument at the other end of a real connection.
#pragma once

#include <gtest/gtest.h>

#include <initializer_list>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "simulator/Faults.h"
#include "simulator/Simulator.h"
#include "tests/driver/DriverModule.h"

namespace driver_test {

/// An answer that the failure tests look for: a code that no layer gives a meaning.
inline constexpr std::int16_t kRefusal = -321;

/// A simulated instrument on a port of its own and every interface of a driver for it. No session
/// is open before Open().
class SessionTest : public testing::Test {
 protected:
  explicit SessionTest(simulator::Options options = {}) : instrument_(std::move(options)) {
    instrument_.Start();
  }
  ~SessionTest() override { surface_.root->Close(); }

  HRESULT Initialize(VARIANT_BOOL id_query = VARIANT_FALSE, VARIANT_BOOL reset = VARIANT_FALSE,
                     std::string_view options = {}) {
    return surface_.root->Initialize(Text(instrument_.ResourceName()).Get(), id_query, reset,
                                     options.empty() ? nullptr : Text(options).Get());
  }
  /// Without the error information that the missing default detector file leaves.
  void Open(std::string_view options = {}) {
    ASSERT_EQ(Initialize(VARIANT_FALSE, VARIANT_FALSE, options), S_OK);
    TakeErrorInfo();
  }
  bool IsOpen() {
    EXPECT_EQ(surface_.root->get_Initialized(&surface_.flag), S_OK);
    return surface_.flag != 0;
  }
  ComPtr<IZentrelK4NChannel> Channel(std::string_view name) {
    ComPtr<IZentrelK4NChannel> channel;
    EXPECT_EQ(surface_.channels->get_Item(Text(name).Get(), channel.Put()), S_OK);
    return channel;
  }
  /// The recorded failures, oldest first, which are thereby taken away.
  std::vector<LONG> TakeErrors() {
    std::vector<LONG> codes;
    for (;;) {
      LONG code = 0;
      BSTR text = nullptr;
      EXPECT_EQ(surface_.utility->ErrorQuery(&code, &text), S_OK);
      SysFreeString(text);
      if (code == 0) return codes;
      codes.push_back(code);
    }
  }

  simulator::Simulator instrument_;
  Surface surface_{ModuleWithVisa()};
};

/// An array of doubles as clients pass it.
inline SafeArrayOwner Doubles(std::initializer_list<double> values) {
  SafeArrayOwner array(SafeArrayCreateVector(VT_R8, 0, static_cast<ULONG>(values.size())));
  const SafeArrayAccess<double> access(array.Get());
  std::copy(values.begin(), values.end(), access.Values().begin());
  return array;
}
inline std::vector<double> ValuesOf(SAFEARRAY* array) {
  const SafeArrayAccess<double> access(array);
  EXPECT_EQ(access.Result(), S_OK);
  return {access.Values().begin(), access.Values().end()};
}

}  // namespace driver_test
