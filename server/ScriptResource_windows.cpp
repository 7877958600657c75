#include "platform/com/Com.h"
#include "server/ScriptResource.h"

namespace server {

std::string_view ScriptResource(int number) {
  HMODULE module = nullptr;
  constexpr DWORD kFlags =
      GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
  if (!GetModuleHandleExW(kFlags, reinterpret_cast<LPCWSTR>(&ScriptResource), &module)) return {};
  const HRSRC place = FindResourceW(module, MAKEINTRESOURCEW(number), L"REGISTRY");
  if (place == nullptr) return {};
  const auto* const text = static_cast<const char*>(LockResource(LoadResource(module, place)));
  return text == nullptr ? std::string_view()
                         : std::string_view(text, SizeofResource(module, place));
}

}  // namespace server
