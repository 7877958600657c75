#include <windows.h>
// The next one needs what the first declares.
#include <tlhelp32.h>

#include "visa/MachineLock.h"

// The existence of a named object is the lock. Owning a mutex would not do: a thread owns it, and a
// session may be closed by another thread than the one that opened it. A second object, whose name
// ends with a process number, says who holds the first: shared memory could say more, but takes a
// privilege to be shared by all users.
namespace zevisa {
namespace {

constexpr char kLock[] = "lock-";
constexpr char kHolder[] = "holder-";  // the lock's name, "-", the process number follow

std::wstring ObjectName(const std::string& name) {
  // "Global" is one for all sessions of the machine. A back slash would be another folder of names.
  std::wstring object = L"Global\\zevisa-";
  for (const char c : name) object += c == '\\' ? L'/' : static_cast<unsigned char>(c);
  return object;
}

std::string HolderName(const std::string& name, DWORD process) {
  return kHolder + name + "-" + std::to_string(process);
}

bool Exists(const std::string& name) {
  const HANDLE handle = OpenMutexW(SYNCHRONIZE, FALSE, ObjectName(name).c_str());
  if (handle == nullptr) return GetLastError() == ERROR_ACCESS_DENIED;  // another user's
  CloseHandle(handle);
  return true;
}

void Close(std::intptr_t handle) { CloseHandle(reinterpret_cast<HANDLE>(handle)); }

std::string NarrowText(const wchar_t* text) {
  std::string narrow(4 * MAX_PATH, '\0');
  const int size = WideCharToMultiByte(CP_ACP, 0, text, -1, narrow.data(),
                                       static_cast<int>(narrow.size()), nullptr, nullptr);
  narrow.resize(size > 0 ? static_cast<std::size_t>(size - 1) : 0);
  return narrow;
}

}  // namespace

bool MachineLock::TryAcquire(const std::string& name) {
  const HANDLE handle = CreateMutexW(nullptr, FALSE, ObjectName(kLock + name).c_str());
  if (handle == nullptr) return false;  // another user's
  if (GetLastError() == ERROR_ALREADY_EXISTS) {
    CloseHandle(handle);
    return false;
  }
  Release();
  handle_ = reinterpret_cast<std::intptr_t>(handle);
  const HANDLE note =
      CreateMutexW(nullptr, FALSE, ObjectName(HolderName(name, GetCurrentProcessId())).c_str());
  if (note != nullptr) note_ = reinterpret_cast<std::intptr_t>(note);
  return true;
}

void MachineLock::Release() {
  if (note_ != kNone) Close(note_);
  if (handle_ != kNone) Close(handle_);
  note_ = handle_ = kNone;
}

bool MachineLock::IsHeld(const std::string& name) { return Exists(kLock + name); }

std::string MachineLock::Holder(const std::string& name) {
  const HANDLE processes = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
  if (processes == INVALID_HANDLE_VALUE) return {};
  std::string holder;
  PROCESSENTRY32W process{};
  process.dwSize = sizeof process;
  for (BOOL more = Process32FirstW(processes, &process); more && holder.empty();
       more = Process32NextW(processes, &process)) {
    if (!Exists(HolderName(name, process.th32ProcessID))) continue;
    holder = "process " + std::to_string(process.th32ProcessID) + " (" +
             NarrowText(process.szExeFile) + ")";
  }
  CloseHandle(processes);
  return holder;
}

}  // namespace zevisa
