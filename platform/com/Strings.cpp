// Automation texts.
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>

#include "platform/com/Com.h"

namespace {

// The text follows a block of this size, whose last four bytes are its length in bytes; so the text
// is aligned.
constexpr std::size_t kBstrPrefixSize = 8;
constexpr UINT kLongest = std::numeric_limits<INT>::max() - kBstrPrefixSize - sizeof(OLECHAR);

char* BytesOf(BSTR text) { return reinterpret_cast<char*>(text); }

/// `bytes` may be null: the text is then all zeros.
BSTR Allocate(const void* bytes, UINT size) {
  if (size > kLongest) return nullptr;
  // Zeroed, and with room for the closing zero behind an odd number of bytes, too.
  auto* const block =
      static_cast<char*>(std::calloc(1, kBstrPrefixSize + size + sizeof(OLECHAR) + 1));
  if (block == nullptr) return nullptr;
  std::memcpy(block + kBstrPrefixSize - sizeof(size), &size, sizeof(size));
  if (bytes != nullptr) std::memcpy(block + kBstrPrefixSize, bytes, size);
  return reinterpret_cast<BSTR>(block + kBstrPrefixSize);
}

}  // namespace

BSTR SysAllocStringByteLen(const char* bytes, UINT length) { return Allocate(bytes, length); }

BSTR SysAllocStringLen(const OLECHAR* text, UINT length) {
  if (length > kLongest / sizeof(OLECHAR)) return nullptr;
  return Allocate(text, static_cast<UINT>(length * sizeof(OLECHAR)));
}

BSTR SysAllocString(const OLECHAR* text) {
  if (text == nullptr) return nullptr;
  const std::size_t length = std::char_traits<OLECHAR>::length(text);
  return length > kLongest ? nullptr : SysAllocStringLen(text, static_cast<UINT>(length));
}

void SysFreeString(BSTR text) {
  if (text != nullptr) std::free(BytesOf(text) - kBstrPrefixSize);
}

UINT SysStringByteLen(BSTR text) {
  UINT size = 0;
  if (text != nullptr) std::memcpy(&size, BytesOf(text) - sizeof(size), sizeof(size));
  return size;
}

UINT SysStringLen(BSTR text) { return static_cast<UINT>(SysStringByteLen(text) / sizeof(OLECHAR)); }
