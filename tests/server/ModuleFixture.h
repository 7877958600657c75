// The built module and its entry points for registration.
#pragma once

#include "platform/os/Module.h"
#include "server/Registrar.h"
#include "tests/platform/RegistryFixture.h"

using Install = HRESULT STDAPICALLTYPE(BOOL, LPCWSTR);
using Entry = HRESULT STDAPICALLTYPE();

/// Nothing is registered when a test begins.
class ModuleTest : public RegistryTest {
 protected:
  ModuleTest() {
    EXPECT_TRUE(module_.Load(ZK_DRIVER_MODULE));
    Call(server::RegistrationScope::kUser, false);
    Call(server::RegistrationScope::kMachine, false);
  }

  /// The machine's scope by the two entry points of COM, the user's by the third.
  HRESULT Call(server::RegistrationScope scope, bool install) const {
    if (scope == server::RegistrationScope::kUser) {
      return module_.FunctionOf<Install>("DllInstall")(install ? TRUE : FALSE, OLESTR("USER"));
    }
    return module_.FunctionOf<Entry>(install ? "DllRegisterServer" : "DllUnregisterServer")();
  }

  os::Module module_;
};
