// The entry points that register the module, and take the registration away.
#include "driver/CallFrame.h"
#include "platform/com/RegKey.h"
#include "platform/os/Module.h"
#include "server/ObjectMap.h"
#include "server/Registrar.h"
#include "server/ScriptResource.h"
#include "server/TypeLibraryRegistration.h"
#include "server/interface/Guids.h"

using namespace server;

namespace {

constexpr int kApplicationScript = 101;

/// The key of a class lists the categories that it implements.
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
    for (const ObjectMapEntry& entry : ObjectMap()) {
      if (SUCCEEDED(result)) result = scripts_.Register(ScriptResource(entry.script));
      if (SUCCEEDED(result) && entry.category != nullptr) {
        result = Category(entry).Register(kCategoryScript);
      }
    }
    return FAILED(result) ? result : RegisterTypeLibrary(scope_, module_file_);
  }

  /// Removes as much as possible, in reverse order; returns the first failure.
  [[nodiscard]] HRESULT Remove() const {
    HRESULT first = UnregisterTypeLibrary(scope_);
    const auto keep = [&first](HRESULT result) {
      if (SUCCEEDED(first)) first = result;
    };
    const auto map = ObjectMap();
    for (auto entry = map.rbegin(); entry != map.rend(); ++entry) {
      if (entry->category != nullptr) keep(Category(*entry).Remove(kCategoryScript));
      keep(scripts_.Remove(ScriptResource(entry->script)));
    }
    keep(scripts_.Remove(ScriptResource(kApplicationScript)));
    return first;
  }

 private:
  [[nodiscard]] Registrar Category(const ObjectMapEntry& entry) const {
    return {scope_,
            {{"CLASS", RegistryName(entry.class_id)}, {"CATEGORY", RegistryName(*entry.category)}}};
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
