#include "tests/server/ClassesDump.h"

#include "platform/com/RegKey.h"
#include "tests/link/Hex.h"

const std::set<server::RegistrationScope> kScopesFoundByProgId = {
    server::RegistrationScope::kMachine};

namespace {

constexpr DWORD kRoom = 16384;

std::string Utf8(std::wstring_view text) { return os::ToNarrow(text, os::kUtf8CodePage); }

/// The top keys as registered classes name them: an existing key keeps its own spelling, and Wine
/// has others. Empty for the view of 32-bit programs, which repeats what is shared.
std::string TopKey(const std::wstring& name) {
  for (const wchar_t* key : {L"AppID", L"TypeLib"}) {
    if (lstrcmpiW(key, name.c_str()) == 0) return Utf8(key);
  }
  return name == L"Wow6432Node" ? std::string() : Utf8(name);
}

/// A text with its end as it is; anything else as its type and bytes.
std::string Shown(DWORD type, std::wstring_view data, DWORD size) {
  const std::size_t end = data.find(L'\0');
  if (type == REG_SZ && (end + 1) * sizeof(wchar_t) == size) return Utf8(data.substr(0, end));
  return std::to_string(type) + ":" + ToHex({reinterpret_cast<const BYTE*>(data.data()), size});
}

}  // namespace

void DumpKey(HKEY parent, const std::wstring& name, const std::string& path, ClassesLines& lines) {
  RegKey key;
  if (key.Open(parent, name, KEY_READ) != ERROR_SUCCESS) return;
  if (!path.empty()) lines.insert(path);
  std::wstring text(kRoom, 0);
  std::wstring data(kRoom, 0);
  for (DWORD index = 0;; ++index) {
    DWORD length = kRoom;
    DWORD size = kRoom * sizeof(wchar_t);
    DWORD type = 0;
    if (RegEnumValueW(key.Get(), index, text.data(), &length, nullptr, &type,
                      reinterpret_cast<BYTE*>(data.data()), &size) != ERROR_SUCCESS) {
      break;
    }
    lines.insert(path + " " + Utf8({text.data(), length}) + "=" + Shown(type, data, size));
  }
  for (DWORD index = 0;; ++index) {
    DWORD length = kRoom;
    if (RegEnumKeyExW(key.Get(), index, text.data(), &length, nullptr, nullptr, nullptr, nullptr) !=
        ERROR_SUCCESS) {
      break;
    }
    const std::wstring subkey(text, 0, length);
    const std::string subpath = path.empty() ? TopKey(subkey) : path + "\\" + Utf8(subkey);
    if (!subpath.empty()) DumpKey(key.Get(), subkey, subpath, lines);
  }
}

ClassesLines DumpClasses(server::RegistrationScope scope) {
  const server::ClassesPlace place = server::ClassesOf(scope);
  ClassesLines lines;
  DumpKey(place.root, place.path, "", lines);
  return lines;
}
