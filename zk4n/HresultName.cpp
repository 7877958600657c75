#include "zk4n/HresultName.h"

#include <array>
#include <cstdio>

namespace {

struct NamedResult {
  std::uint32_t bits;
  std::string_view name;
};

constexpr NamedResult kNames[] = {
    {0x00000000, "S_OK"},
    {0x00000001, "S_FALSE"},
    {0x00002749, "no instrument session"},
    {0x00047065, "identification query not supported"},
    {0x00047066, "reset not supported"},
    {0x80004001, "E_NOTIMPL"},
    {0x80004002, "E_NOINTERFACE"},
    {0x80004003, "E_POINTER"},
    {0x80004005, "E_FAIL"},
    {0x80040110, "CLASS_E_NOAGGREGATION"},
    {0x80040111, "CLASS_E_CLASSNOTAVAILABLE"},
    {0x80040154, "REGDB_E_CLASSNOTREG"},
    {0x80047000, "cannot recover"},
    {0x80047001, "instrument error"},
    {0x80047002, "cannot open file"},
    {0x80047003, "cannot read file"},
    {0x80047010, "invalid value"},
    {0x80047011, "method not supported"},
    {0x80047012, "property not supported"},
    {0x80047013, "enumeration value not supported"},
    {0x8004701D, "not connected"},
    {0x80047020, "unknown channel name"},
    {0x80047056, "out of memory"},
    {0x80047057, "operation in progress"},
    {0x80047059, "unexpected response"},
    {0x8004705B, "file not found"},
    {0x8004705C, "invalid file format"},
    {0x8004705E, "identification failed"},
    {0x80047060, "unknown resource"},
    {0x800401F3, "CO_E_CLASSSTRING"},
    {0x800401F8, "CO_E_DLLNOTFOUND"},
    {0x800401F9, "CO_E_ERRORINDLL"},
    {0x8002801C, "TYPE_E_REGISTRYACCESS"},
    {0x80029C4A, "TYPE_E_CANTLOADLIBRARY"},
    {0x80070005, "E_ACCESSDENIED"},
    {0x8007000B, "unreadable registration script"},
    {0x8007001D, "registry cannot be written"},
    {0x800703F1, "registry file is damaged"},
    {0x80070057, "E_INVALIDARG"},
    {0x8007000E, "E_OUTOFMEMORY"},
    {0xBFFF000F, "VI_ERROR_RSRC_LOCKED"},
    {0xBFFF0011, "VI_ERROR_RSRC_NFOUND"},
    {0xBFFF0012, "VI_ERROR_INV_RSRC_NAME"},
    {0xBFFF0015, "VI_ERROR_TMO"},
    {0xBFFF0037, "VI_ERROR_INP_PROT_VIOL"},
    {0xBFFF003C, "VI_ERROR_ALLOC"},
    {0xBFFF003E, "VI_ERROR_IO"},
    {0xBFFF0067, "VI_ERROR_NSUP_OPER"},
    {0xBFFF009E, "VI_ERROR_LIBRARY_NFOUND"},
    {0xBFFF00A6, "VI_ERROR_CONN_LOST"},
    {0xFFFF8002, "instrument: request not supported"},
    {0xFFFF8003, "instrument: form not supported"},
    {0xFFFF8007, "instrument: PLL unlocked"},
    {0xFFFF801C, "instrument: ERG fault"},
    {0xFFFF8103, "instrument: no such file"},
};

}  // namespace

std::string_view HresultName(std::int32_t result) {
  const auto bits = static_cast<std::uint32_t>(result);
  for (const NamedResult& named : kNames) {
    if (named.bits == bits) return named.name;
  }
  if (bits >= 1 && bits <= 6) return "instrument notice";
  if (bits >= 0xFFFF8000) return "instrument error code";
  if ((bits & 0xFFFF0000) == 0xBFFF0000) return "VISA error";
  return "unnamed result";
}

std::string HresultText(std::int32_t result) {
  std::array<char, 16> text{};
  std::snprintf(text.data(), text.size(), "0x%08X", static_cast<unsigned>(result));
  return text.data();
}
