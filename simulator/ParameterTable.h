// The protocol's parameters by name: what each element of their forms is, and its unit. The one
// table of these words, for the request log, for readers of I/O traces and for the dissector.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace simulator {

enum class ElementUnit : std::uint8_t {
  kNone,
  kHertz,
  kDecibelMilliwatt,
  kDecibel,
  kNanosecond,
  kMicrosecond
};

/// "Hz", "dBm", "dB", "ns", "us"; empty for none.
std::string_view SymbolOf(ElementUnit unit);

struct ElementName {
  std::string_view name;
  ElementUnit unit = ElementUnit::kNone;
};

/// One form of a parameter, told by identifier, count and type code of the message.
struct ParameterForm {
  std::uint16_t id;
  std::uint8_t count;  ///< elements before the chunk, if there is one
  std::uint8_t type;
  bool is_signed;
  std::span<const ElementName> elements;  ///< names of the first `count`
  std::span<const ElementName> entry;     ///< of a chunk: offset, count and then these, repeated
};

struct ParameterName {
  std::uint16_t id;
  std::string_view name;
};

std::span<const ParameterName> ParameterNames();
std::span<const ParameterForm> ParameterForms();

/// "parameter" for one that has no name.
std::string_view NameOfParameter(std::uint16_t id);
/// Null for a form that is not in the table.
const ParameterForm* FindParameterForm(std::uint16_t id, std::uint8_t count, std::uint8_t type);

struct CommandName {
  std::uint16_t command;
  std::string_view name;
};
std::span<const CommandName> CommandNames();
/// "unknown command" for one that has no name.
std::string_view NameOfCommand(std::uint16_t command);

struct StatusName {
  std::int16_t status;
  std::string_view name;
};
std::span<const StatusName> StatusNames();
/// Empty for one that has no name.
std::string_view NameOfStatus(std::int16_t status);

}  // namespace simulator
