#include <windows.h>

#include "visa/AppendFile.h"

namespace zevisa {
namespace {

// All may read, write and rename the file meanwhile.
constexpr DWORD kShare = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

HANDLE HandleOf(std::intptr_t handle) { return reinterpret_cast<HANDLE>(handle); }

/// Volume and number of a file; empty when the system does not tell.
std::string IdentityOf(HANDLE file) {
  BY_HANDLE_FILE_INFORMATION found{};
  if (!GetFileInformationByHandle(file, &found)) return {};
  return std::to_string(found.dwVolumeSerialNumber) + "-" + std::to_string(found.nFileIndexHigh) +
         "-" + std::to_string(found.nFileIndexLow);
}

}  // namespace

bool AppendFile::Open(const std::filesystem::path& path) {
  Close();
  // The right to append alone makes the system put each write at the end.
  handle_ = reinterpret_cast<std::intptr_t>(
      CreateFileW(path.c_str(), FILE_APPEND_DATA | FILE_READ_ATTRIBUTES | SYNCHRONIZE, kShare,
                  nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
  const DWORD type = GetFileType(HandleOf(handle_));
  if (type != FILE_TYPE_DISK && type != FILE_TYPE_CHAR) Close();
  return IsOpen();
}

void AppendFile::Close() {
  if (IsOpen()) CloseHandle(HandleOf(handle_));
  handle_ = kNone;
}

std::size_t AppendFile::Append(std::string_view bytes) const {
  DWORD written = 0;
  WriteFile(HandleOf(handle_), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
  return written;
}

std::uint64_t AppendFile::Size() const {
  LARGE_INTEGER size{};
  GetFileSizeEx(HandleOf(handle_), &size);
  return static_cast<std::uint64_t>(size.QuadPart);
}

bool AppendFile::IsAt(const std::filesystem::path& path) const {
  const HANDLE there = CreateFileW(path.c_str(), FILE_READ_ATTRIBUTES, kShare, nullptr,
                                   OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (there == INVALID_HANDLE_VALUE) return false;
  const std::string identity = IdentityOf(there);
  CloseHandle(there);
  return identity == Identity();
}

std::string AppendFile::Identity() const { return IdentityOf(HandleOf(handle_)); }

// A file that is open gives its name to no other: it is put aside first, and goes when the last
// process closes it.
bool AppendFile::Replace(const std::filesystem::path& from, const std::filesystem::path& to) {
  if (std::filesystem::is_directory(to)) return false;
  const std::wstring aside = to.native() + L"-" + std::to_wstring(GetCurrentProcessId());
  if (MoveFileExW(to.c_str(), aside.c_str(), MOVEFILE_REPLACE_EXISTING)) DeleteFileW(aside.c_str());
  return MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING) != FALSE;
}

}  // namespace zevisa
