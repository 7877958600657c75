// A protocol library that notes how it is used. Variants of it lack an entry point or refuse.
#include <cstdint>
#include <cstdio>
#include <cstring>

#ifdef _WIN32
#define ZK_PROTOCOL_EXPORT extern "C" __declspec(dllexport)
#else
#define ZK_PROTOCOL_EXPORT extern "C" __attribute__((visibility("default")))
#endif

namespace {

constexpr std::uint32_t kSession = 4711;
constexpr std::int32_t kCodeWithoutText = -32762;

// Plain memory, so that nothing keeps the module loaded.
char calls[256];
char description[64];

void Note(const char* name, std::uint32_t session, const char* argument = "") {
  const std::size_t used = std::strlen(calls);
  std::snprintf(calls + used, sizeof calls - used, "%s(%u%s) ", name, session, argument);
}

}  // namespace

ZK_PROTOCOL_EXPORT const char* ProtocolCalls() { return calls; }

ZK_PROTOCOL_EXPORT std::int32_t OpenSession(std::uint32_t* session) {
  Note("Open", *session);
  *session = kSession;
  return ZK_OPEN_RESULT;
}

ZK_PROTOCOL_EXPORT std::int32_t ProtLoadFromFile(std::uint32_t session, const char* file_name) {
  Note("Load", session, file_name);
  return 1;
}

ZK_PROTOCOL_EXPORT const char* GetErrorDescription(std::uint32_t session, std::int32_t code) {
  if (code == kCodeWithoutText) return nullptr;
  std::snprintf(description, sizeof description, "%u tells %d", session, code);
  return description;
}

#ifndef ZK_LACKS_CLOSE_SESSION
ZK_PROTOCOL_EXPORT std::int32_t CloseSession(std::uint32_t session) {
  Note("Close", session);
  return 0;
}
#endif
