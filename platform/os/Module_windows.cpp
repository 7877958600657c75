#include <windows.h>

#include "platform/os/Files.h"
#include "platform/os/Module.h"

namespace os {

bool Module::Load(std::string_view name) {
  Unload();
  // A file that is no module must not bring up a box.
  DWORD previous_mode = 0;
  SetThreadErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX, &previous_mode);
  handle_ = LoadLibraryW(NativePath(name).c_str());
  SetThreadErrorMode(previous_mode, nullptr);
  return handle_ != nullptr;
}

void Module::Unload() {
  if (handle_ != nullptr) FreeLibrary(static_cast<HMODULE>(handle_));
  handle_ = nullptr;
}

void* Module::Symbol(const char* name) const {
  if (handle_ == nullptr) return nullptr;
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(handle_), name));
}

std::string ThisModuleFolder() {
  HMODULE module = nullptr;
  constexpr DWORD kFlags =
      GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
  if (!GetModuleHandleExW(kFlags, reinterpret_cast<LPCWSTR>(&ThisModuleFolder), &module)) return {};
  wchar_t path[MAX_PATH + 1] = {};
  const DWORD length = GetModuleFileNameW(module, path, MAX_PATH + 1);
  if (length == 0 || length > MAX_PATH) return {};
  const std::wstring_view text(path, length);
  const auto separator = text.find_last_of(L'\\');
  return separator == std::wstring_view::npos ? std::string()
                                              : ToNarrow(text.substr(0, separator + 1));
}

}  // namespace os
