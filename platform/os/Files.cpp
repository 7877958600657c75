#include "platform/os/Files.h"

#include <algorithm>
#include <utility>

namespace os {

std::filesystem::path PathOf(WideView name, CodePage code_page) {
  if (ToWide(ToNarrow(name, code_page), code_page) != name) return {};
  return std::filesystem::path(name);
}

std::filesystem::path NativePath(const std::filesystem::path& path) {
  using Char = std::filesystem::path::value_type;
  std::filesystem::path::string_type text = path.native();
  std::replace(text.begin(), text.end(), static_cast<Char>('\\'), static_cast<Char>('/'));
  return std::filesystem::path(std::move(text)).make_preferred();
}

std::ofstream OpenForWriting(const std::filesystem::path& path) {
  return std::ofstream(NativePath(path), std::ios::binary | std::ios::trunc);
}

std::ofstream OpenForAppending(const std::filesystem::path& path) {
  return std::ofstream(NativePath(path), std::ios::binary | std::ios::app);
}

}  // namespace os
