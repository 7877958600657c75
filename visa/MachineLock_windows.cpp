#include <windows.h>

#include "visa/MachineLock.h"

// The existence of a named object is the lock. Owning a mutex would not do: a thread owns it, and a
// session may be closed by another thread than the one that opened it.
namespace zevisa {
namespace {

std::wstring ObjectName(const std::string& name) {
  // "Global" is one for all sessions of the machine. A back slash would be another folder of names.
  std::wstring object = L"Global\\zevisa-lock-";
  for (const char c : name) object += c == '\\' ? L'/' : static_cast<unsigned char>(c);
  return object;
}

}  // namespace

bool MachineLock::TryAcquire(const std::string& name) {
  const HANDLE handle = CreateMutexW(nullptr, FALSE, ObjectName(name).c_str());
  if (handle == nullptr) return false;  // another user's
  if (GetLastError() == ERROR_ALREADY_EXISTS) {
    CloseHandle(handle);
    return false;
  }
  Release();
  handle_ = reinterpret_cast<std::intptr_t>(handle);
  return true;
}

void MachineLock::Release() {
  if (handle_ != kNone) CloseHandle(reinterpret_cast<HANDLE>(handle_));
  handle_ = kNone;
}

bool MachineLock::IsHeld(const std::string& name) {
  const HANDLE handle = OpenMutexW(SYNCHRONIZE, FALSE, ObjectName(name).c_str());
  if (handle == nullptr) return GetLastError() == ERROR_ACCESS_DENIED;
  CloseHandle(handle);
  return true;
}

}  // namespace zevisa
