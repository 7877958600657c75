#include <dlfcn.h>
#include <link.h>

#include <algorithm>
#include <string>

#include "platform/os/Files.h"
#include "platform/os/Module.h"

namespace os {
namespace {

constexpr std::size_t kLongestModulePath = 260;

/// "ZeVISA.dll" is libzevisa.so; a name that ends in .so is a file's own.
std::string FileNameOf(std::string name) {
  if (name.ends_with(".so")) return name;
  std::transform(name.begin(), name.end(), name.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
  if (name.ends_with(".dll")) name.resize(name.size() - 4);
  return "lib" + name + ".so";
}

/// The full path of what the loader knows by this name; empty when it cannot be told. The program
/// itself is known under the name it was called by, which tells no folder when it was found by
/// search.
std::filesystem::path FileOf(const std::string& name) {
  std::error_code error;
  std::filesystem::path file = name.find('/') == name.npos
                                   ? std::filesystem::read_symlink("/proc/self/exe", error)
                                   : std::filesystem::absolute(name, error);
  return error ? std::filesystem::path() : file;
}

std::filesystem::path ThisModulePath() {
  Dl_info info{};
  if (dladdr(reinterpret_cast<void*>(&ThisModuleFolder), &info) == 0 || info.dli_fname == nullptr) {
    return {};
  }
  return FileOf(info.dli_fname);
}

}  // namespace

bool Module::Load(const std::filesystem::path& name) {
  Unload();
  const std::filesystem::path path = NativePath(name);
  const std::filesystem::path file = path.parent_path() / FileNameOf(path.filename().string());
  handle_ = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
  return handle_ != nullptr;
}

void Module::Unload() {
  if (handle_ != nullptr) dlclose(handle_);
  handle_ = nullptr;
}

void* Module::Symbol(const char* name) const {
  return handle_ == nullptr ? nullptr : dlsym(handle_, name);
}

WideString Module::File() const {
  link_map* map = nullptr;
  if (handle_ == nullptr || dlinfo(handle_, RTLD_DI_LINKMAP, &map) != 0) return {};
  return WideOf(FileOf(map->l_name));
}

WideString ThisModuleFile() { return WideOf(ThisModulePath()); }

std::filesystem::path ThisModuleFolder() {
  const std::filesystem::path file = ThisModulePath();
  if (file.empty() || WideOf(file).size() > kLongestModulePath) return {};
  return file.parent_path() / "";
}

void KeepThisModule() { dlopen(ThisModulePath().c_str(), RTLD_NOW | RTLD_NOLOAD | RTLD_NODELETE); }

}  // namespace os
