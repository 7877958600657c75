#include <windows.h>

#include <algorithm>
#include <tuple>

#include "platform/os/Files.h"
#include "platform/os/GrowingFile.h"

namespace os {
namespace {

HANDLE OpenShared(const std::filesystem::path& path, DWORD access) {
  constexpr DWORD kShare = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
  return CreateFileW(NativePath(path).c_str(), access, kShare, nullptr, OPEN_EXISTING,
                     FILE_ATTRIBUTE_NORMAL, nullptr);
}

HANDLE HandleOf(std::intptr_t file) { return reinterpret_cast<HANDLE>(file); }

auto IdentityOf(const BY_HANDLE_FILE_INFORMATION& file) {
  return std::tuple(file.dwVolumeSerialNumber, file.nFileIndexHigh, file.nFileIndexLow);
}

}  // namespace

GrowingFile::GrowingFile(const std::filesystem::path& path)
    : file_(reinterpret_cast<std::intptr_t>(OpenShared(path, GENERIC_READ))) {
  if (IsOpen() && GetFileType(HandleOf(file_)) != FILE_TYPE_DISK) {
    CloseHandle(HandleOf(file_));
    file_ = reinterpret_cast<std::intptr_t>(INVALID_HANDLE_VALUE);
  }
}

GrowingFile::~GrowingFile() {
  if (IsOpen()) CloseHandle(HandleOf(file_));
}

bool GrowingFile::IsOpen() const { return HandleOf(file_) != INVALID_HANDLE_VALUE; }

std::size_t GrowingFile::Read(std::span<char> buffer) {
  constexpr std::size_t kMost = 1U << 30;
  DWORD got = 0;
  const auto wanted = static_cast<DWORD>(std::min(buffer.size(), kMost));
  if (!ReadFile(HandleOf(file_), buffer.data(), wanted, &got, nullptr)) return 0;
  position_ += got;
  return got;
}

bool GrowingFile::IsStillAt(const std::filesystem::path& path) const {
  const HANDLE other = OpenShared(path, FILE_READ_ATTRIBUTES);
  if (other == INVALID_HANDLE_VALUE) return false;
  BY_HANDLE_FILE_INFORMATION ours = {};
  BY_HANDLE_FILE_INFORMATION theirs = {};
  const bool known = GetFileInformationByHandle(HandleOf(file_), &ours) != 0 &&
                     GetFileInformationByHandle(other, &theirs) != 0;
  CloseHandle(other);
  const std::uint64_t size =
      (static_cast<std::uint64_t>(ours.nFileSizeHigh) << 32) | ours.nFileSizeLow;
  return known && IdentityOf(ours) == IdentityOf(theirs) && size >= position_;
}

}  // namespace os
