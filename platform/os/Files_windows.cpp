#include "platform/os/Files.h"

#include <windows.h>

#include <algorithm>
#include <cstdint>

namespace os {
namespace {

class Handle {
 public:
  explicit Handle(HANDLE handle) : handle_(handle) {}
  ~Handle() {
    if (handle_ != INVALID_HANDLE_VALUE) CloseHandle(handle_);
  }
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;
  [[nodiscard]] HANDLE Get() const { return handle_; }

 private:
  const HANDLE handle_;
};

}  // namespace

WideString WideOf(const std::filesystem::path& path) { return path.native(); }

std::optional<std::string> ReadWholeFile(const std::filesystem::path& path, std::size_t largest) {
  constexpr DWORD kShare = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
  const Handle file(CreateFileW(NativePath(path).c_str(), GENERIC_READ, kShare, nullptr,
                                OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
  LARGE_INTEGER size = {};
  // Consoles, pipes and "NUL" can be opened like files, volumes and disks even count as them, but
  // have no size.
  if (GetFileType(file.Get()) != FILE_TYPE_DISK || !GetFileSizeEx(file.Get(), &size)) {
    return std::nullopt;
  }
  std::string content;
  if (static_cast<std::uint64_t>(size.QuadPart) > largest) return content;
  content.resize(static_cast<std::size_t>(size.QuadPart));
  std::size_t count = 0;
  while (count < content.size()) {
    constexpr std::size_t kMost = 1U << 30;
    DWORD got = 0;
    const auto wanted = static_cast<DWORD>(std::min(content.size() - count, kMost));
    if (!ReadFile(file.Get(), content.data() + count, wanted, &got, nullptr)) return std::string();
    if (got == 0) break;  // it has become shorter
    count += got;
  }
  content.resize(count);
  return content;
}

}  // namespace os
