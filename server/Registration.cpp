// The entry points that register the module, and take the registration away.
#include <array>

#include "driver/CallFrame.h"
#include "platform/os/Module.h"
#include "server/Exports.h"
#include "server/Registrar.h"
#include "server/ScriptResource.h"
#include "server/TypeLibraryRegistration.h"
#include "server/interface/Guids.h"

namespace {

constexpr int kApplicationScript = 101;

/// A class and what registers it; a class of no category has none.
struct ClassScript {
  int number;
  CLSID class_id;
  const GUID* category;
};

constexpr std::array kClassScripts{
    ClassScript{103, __uuidof(ZentrelK4NChannel), nullptr},
    ClassScript{207, __uuidof(ZentrelK4NPowerStep), nullptr},
    ClassScript{209, __uuidof(ZentrelK4NPulseGeneratorOutput), nullptr},
    ClassScript{213, __uuidof(ZentrelK4NTriggerOutput), nullptr},
    ClassScript{214, __uuidof(ZentrelK4NSyncGenerator), nullptr},
    ClassScript{210, __uuidof(ZentrelK4NPulseGeneratorDouble), nullptr},
    ClassScript{211, __uuidof(ZentrelK4NPulseModulation), nullptr},
    ClassScript{212, __uuidof(ZentrelK4NPulsePacketGenerator), nullptr},
    ClassScript{208, __uuidof(ZentrelK4NPulseGenerator), nullptr},
    ClassScript{102, __uuidof(ZentrelK4N), &kIviCategoryId},
};

/// A class says on its own key which categories it implements.
constexpr std::string_view kCategoryScript =
    "HKCR { NoRemove CLSID { NoRemove %CLASS% { 'Implemented Categories' { %CATEGORY% } } } }";

/// The registration of the whole module for one scope.
class ModuleRegistration {
 public:
  explicit ModuleRegistration(RegistrationScope scope)
      : scope_(scope),
        module_file_(os::ThisModuleFile()),
        scripts_(scope, {{"MODULE", module_file_}, {"APPID", RegistryName(kApplicationId)}}) {}

  /// Stops at the first failure.
  [[nodiscard]] HRESULT Register() const {
    HRESULT result = scripts_.Register(ScriptResource(kApplicationScript));
    for (const ClassScript& script : kClassScripts) {
      if (SUCCEEDED(result)) result = scripts_.Register(ScriptResource(script.number));
      if (SUCCEEDED(result) && script.category != nullptr) {
        result = Category(script).Register(kCategoryScript);
      }
    }
    return FAILED(result) ? result : RegisterTypeLibrary(scope_, module_file_);
  }

  /// Takes away as much as can be, last things first; gives the first failure.
  [[nodiscard]] HRESULT Remove() const {
    HRESULT first = UnregisterTypeLibrary(scope_);
    const auto keep = [&first](HRESULT result) {
      if (SUCCEEDED(first)) first = result;
    };
    for (auto script = kClassScripts.rbegin(); script != kClassScripts.rend(); ++script) {
      if (script->category != nullptr) keep(Category(*script).Remove(kCategoryScript));
      keep(scripts_.Remove(ScriptResource(script->number)));
    }
    keep(scripts_.Remove(ScriptResource(kApplicationScript)));
    return first;
  }

 private:
  [[nodiscard]] Registrar Category(const ClassScript& script) const {
    return {
        scope_,
        {{"CLASS", RegistryName(script.class_id)}, {"CATEGORY", RegistryName(*script.category)}}};
  }

  RegistrationScope scope_;
  os::WideString module_file_;
  Registrar scripts_;
};

HRESULT RunRegistration(RegistrationScope scope, bool install) {
  return driver::Frame([&] {
    const ModuleRegistration registration(scope);
    return install ? registration.Register() : registration.Remove();
  });
}

/// "user", in any case.
bool IsUser(const OLECHAR* arguments) {
  for (const char wanted : {'u', 's', 'e', 'r'}) {
    if ((*arguments++ | 0x20) != wanted) return false;
  }
  return *arguments == 0;
}

}  // namespace

STDAPI DllRegisterServer() ZK_EXPORT;
STDAPI DllUnregisterServer() ZK_EXPORT;
STDAPI DllInstall(BOOL install, LPCWSTR arguments) ZK_EXPORT;

STDAPI DllRegisterServer() { return RunRegistration(RegistrationScope::kMachine, true); }

STDAPI DllUnregisterServer() { return RunRegistration(RegistrationScope::kMachine, false); }

// Not needed by COM: it is where `regsvr32 /n /i:user` asks for the current user's registration,
// which needs no administrator. Without arguments it does what the two above do.
STDAPI DllInstall(BOOL install, LPCWSTR arguments) {
  const bool for_user = arguments != nullptr && IsUser(arguments);
  if (!for_user && arguments != nullptr && *arguments != 0) return E_INVALIDARG;
  return RunRegistration(for_user ? RegistrationScope::kUser : RegistrationScope::kMachine,
                         install != FALSE);
}
