// Identifiers and ProgIDs as texts.
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>

#include "platform/com/ClassKeys.h"
#include "platform/com/Com.h"

namespace {

using Text = std::u16string_view;

constexpr int kGuidLength = 38;
// Where the digit pairs of a GUID's text stand, and the dashes between them.
constexpr int kPairPositions[] = {1, 3, 5, 7, 10, 12, 15, 17, 20, 22, 25, 27, 29, 31, 33, 35};
constexpr int kDashPositions[] = {9, 14, 19, 24};

/// The bytes in the order in which they are written; the three numbers are written highest digit
/// first.
struct WrittenBytes {
  std::uint8_t bytes[16];
};

WrittenBytes ToWritten(REFGUID guid) {
  const auto byte = [](std::uint32_t value, int shift) {
    return static_cast<std::uint8_t>(value >> shift);
  };
  WrittenBytes written = {{byte(guid.Data1, 24), byte(guid.Data1, 16), byte(guid.Data1, 8),
                           byte(guid.Data1, 0), byte(guid.Data2, 8), byte(guid.Data2, 0),
                           byte(guid.Data3, 8), byte(guid.Data3, 0)}};
  std::memcpy(written.bytes + 8, guid.Data4, sizeof(guid.Data4));
  return written;
}

GUID FromWritten(const WrittenBytes& written) {
  const auto& b = written.bytes;
  GUID guid = {};
  guid.Data1 =
      (std::uint32_t{b[0]} << 24) | (std::uint32_t{b[1]} << 16) | (std::uint32_t{b[2]} << 8) | b[3];
  guid.Data2 = static_cast<std::uint16_t>((b[4] << 8) | b[5]);
  guid.Data3 = static_cast<std::uint16_t>((b[6] << 8) | b[7]);
  std::memcpy(guid.Data4, b + 8, sizeof(guid.Data4));
  return guid;
}

int HexDigit(char16_t c) {
  if (c >= u'0' && c <= u'9') return c - u'0';
  if (c >= u'A' && c <= u'F') return c - u'A' + 10;
  if (c >= u'a' && c <= u'f') return c - u'a' + 10;
  return -1;
}

std::optional<GUID> Parse(Text text) {
  if (text.size() != kGuidLength || text.front() != u'{' || text.back() != u'}') return {};
  for (const int dash : kDashPositions) {
    if (text[static_cast<std::size_t>(dash)] != u'-') return {};
  }
  WrittenBytes written = {};
  for (std::size_t i = 0; i < std::size(kPairPositions); ++i) {
    const auto position = static_cast<std::size_t>(kPairPositions[i]);
    const int high = HexDigit(text[position]);
    const int low = HexDigit(text[position + 1]);
    if (high < 0 || low < 0) return {};
    written.bytes[i] = static_cast<std::uint8_t>((high << 4) | low);
  }
  return FromWritten(written);
}

}  // namespace

std::u16string GuidText(REFGUID guid) {
  constexpr Text kDigits = u"0123456789ABCDEF";
  const WrittenBytes written = ToWritten(guid);
  std::u16string text = u"{00000000-0000-0000-0000-000000000000}";
  for (std::size_t i = 0; i < std::size(kPairPositions); ++i) {
    const auto position = static_cast<std::size_t>(kPairPositions[i]);
    text[position] = kDigits[written.bytes[i] >> 4];
    text[position + 1] = kDigits[written.bytes[i] & 0x0F];
  }
  return text;
}

int StringFromGUID2(REFGUID guid, LPOLESTR text, int capacity) {
  if (text == nullptr || capacity <= kGuidLength) return 0;
  const std::u16string digits = GuidText(guid);
  std::memcpy(text, digits.c_str(), (kGuidLength + 1) * sizeof(OLECHAR));
  return kGuidLength + 1;
}

HRESULT CLSIDFromProgID(LPCOLESTR prog_id, CLSID* clsid) {
  if (prog_id == nullptr || clsid == nullptr) return E_INVALIDARG;
  *clsid = GUID_NULL;
  return ComBoundary([&] {
    const auto text = ClassesValue(std::u16string(prog_id) + u"\\CLSID");
    const auto parsed = text ? Parse(*text) : std::nullopt;
    if (!parsed) return CO_E_CLASSSTRING;
    *clsid = *parsed;
    return S_OK;
  });
}

HRESULT CLSIDFromString(LPCOLESTR text, CLSID* clsid) {
  if (clsid == nullptr) return E_INVALIDARG;
  *clsid = GUID_NULL;
  if (text == nullptr) return S_OK;
  if (text[0] != u'{') return CLSIDFromProgID(text, clsid);
  const auto parsed = Parse(text);
  if (!parsed) return CO_E_CLASSSTRING;
  *clsid = *parsed;
  return S_OK;
}

HRESULT IIDFromString(LPCOLESTR text, IID* iid) {
  if (iid == nullptr) return E_INVALIDARG;
  *iid = GUID_NULL;
  if (text == nullptr) return S_OK;
  if (Text(text).size() != kGuidLength) return E_INVALIDARG;
  const auto parsed = Parse(text);
  if (!parsed) return CO_E_IIDSTRING;
  *iid = *parsed;
  return S_OK;
}

HRESULT ProgIDFromCLSID(REFCLSID clsid, LPOLESTR* prog_id) {
  if (prog_id == nullptr) return E_INVALIDARG;
  *prog_id = nullptr;
  return ComBoundary([&] {
    const auto text = ClassesValue(u"CLSID\\" + GuidText(clsid) + u"\\ProgID");
    if (!text) return REGDB_E_CLASSNOTREG;
    const std::size_t size = (text->size() + 1) * sizeof(OLECHAR);
    auto* const copy = static_cast<LPOLESTR>(CoTaskMemAlloc(size));
    if (copy == nullptr) return E_OUTOFMEMORY;
    std::memcpy(copy, text->c_str(), size);
    *prog_id = copy;
    return S_OK;
  });
}

LPVOID CoTaskMemAlloc(std::size_t size) { return std::malloc(size); }

void CoTaskMemFree(LPVOID memory) { std::free(memory); }
