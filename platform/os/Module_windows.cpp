#include <windows.h>

#include "platform/os/Files.h"
#include "platform/os/Module.h"

namespace os {
namespace {

/// The longest path that Windows has.
constexpr DWORD kLongestPath = 32767;

std::wstring FileOf(HMODULE module) {
  std::wstring path(kLongestPath, 0);
  path.resize(GetModuleFileNameW(module, path.data(), kLongestPath));
  return path;
}

/// The module that holds this code; null when the system does not tell.
HMODULE ThisModule(DWORD flags) {
  HMODULE module = nullptr;
  const auto address = reinterpret_cast<LPCWSTR>(&ThisModule);
  GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | flags, address, &module);
  return module;
}

}  // namespace

bool Module::Load(const std::filesystem::path& name) {
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

WideString Module::File() const {
  return handle_ == nullptr ? WideString() : FileOf(static_cast<HMODULE>(handle_));
}

WideString ThisModuleFile() {
  const HMODULE module = ThisModule(GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT);
  return module == nullptr ? WideString() : FileOf(module);
}

std::filesystem::path ThisModuleFolder() {
  const std::wstring path = ThisModuleFile();
  const auto separator = path.find_last_of(L'\\');
  if (path.size() > MAX_PATH || separator == std::wstring::npos) return {};
  return path.substr(0, separator + 1);
}

void KeepThisModule() { ThisModule(GET_MODULE_HANDLE_EX_FLAG_PIN); }

}  // namespace os
