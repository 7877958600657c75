// Automation texts as Mono's own: it frees those that the driver gives from where their length
// stands. Loaded before the COM run time, whose functions for texts these replace.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "platform/com/Com.h"

namespace {

constexpr std::size_t kPrefix = sizeof(std::uint32_t);

std::uint32_t* BlockOf(BSTR text) { return reinterpret_cast<std::uint32_t*>(text) - 1; }

}  // namespace

BSTR SysAllocStringByteLen(const char* bytes, UINT length) {
  void* const block = std::calloc(1, kPrefix + length + sizeof(OLECHAR));
  if (block == nullptr) return nullptr;
  char* const text = static_cast<char*>(block) + kPrefix;
  std::memcpy(block, &length, kPrefix);
  if (bytes != nullptr) std::memcpy(text, bytes, length);
  return reinterpret_cast<BSTR>(text);
}

BSTR SysAllocStringLen(const OLECHAR* text, UINT length) {
  return SysAllocStringByteLen(reinterpret_cast<const char*>(text),
                               static_cast<UINT>(length * sizeof(OLECHAR)));
}

BSTR SysAllocString(const OLECHAR* text) {
  if (text == nullptr) return nullptr;
  return SysAllocStringLen(text, static_cast<UINT>(std::char_traits<OLECHAR>::length(text)));
}

void SysFreeString(BSTR text) {
  if (text != nullptr) std::free(BlockOf(text));
}
