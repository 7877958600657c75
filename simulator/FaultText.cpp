#include "simulator/FaultText.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <limits>
#include <stdexcept>
#include <string>

namespace simulator {

namespace {

struct KindName {
  std::string_view name;
  FaultKind kind;
  std::string_view needed;  // a value without which the fault is none
};

constexpr KindName kKinds[] = {
    {"refuse", FaultKind::kRefuse, "status"},
    {"drop", FaultKind::kDrop, ""},
    {"silence", FaultKind::kSilence, ""},
    {"delay", FaultKind::kDelay, "pause"},
    {"header", FaultKind::kHeaderWord, "word"},
    {"pieces", FaultKind::kPieces, "bytes"},
    {"block-status", FaultKind::kBlockStatus, "status"},
    {"body", FaultKind::kBodyLength, "bytes"},
    {"length", FaultKind::kAnnouncedLength, "bytes"},
};

struct ValueName {
  std::string_view name;
  std::int64_t low;
  std::int64_t high;
  void (*set)(Fault&, std::int64_t);
};

constexpr std::int64_t kWord = 0xFFFF;
constexpr std::int64_t kHour = 3'600'000;  // ms

constexpr ValueName kValues[] = {
    {"command", 0, kWord,
     [](Fault& fault, std::int64_t value) { fault.command = static_cast<std::uint16_t>(value); }},
    {"parameter", 0, kWord,
     [](Fault& fault, std::int64_t value) { fault.parameter = static_cast<std::uint16_t>(value); }},
    {"after", 0, UINT32_MAX,
     [](Fault& fault, std::int64_t value) { fault.after = static_cast<std::uint32_t>(value); }},
    {"times", 0, UINT32_MAX,
     [](Fault& fault, std::int64_t value) { fault.times = static_cast<std::uint32_t>(value); }},
    // Codes of the instrument are written as they look on the wire, 0x8003, or as they count.
    {"status", INT16_MIN, kWord,
     [](Fault& fault, std::int64_t value) { fault.status = static_cast<std::int16_t>(value); }},
    {"word", 0, kWord,
     [](Fault& fault, std::int64_t value) { fault.word = static_cast<std::uint16_t>(value); }},
    {"bytes", -kWord, kWord,
     [](Fault& fault, std::int64_t value) { fault.bytes = static_cast<std::int32_t>(value); }},
    {"pause", 0, kHour,
     [](Fault& fault, std::int64_t value) { fault.pause = std::chrono::milliseconds(value); }},
};

[[noreturn]] void Refuse(std::string_view what, std::string_view text) {
  throw std::invalid_argument("fault: " + std::string(what) + ": " + std::string(text));
}

template <typename Row, std::size_t kRows>
const Row& Find(const Row (&rows)[kRows], std::string_view name, std::string_view what) {
  const Row* const found = std::find_if(std::begin(rows), std::end(rows),
                                        [name](const Row& row) { return row.name == name; });
  if (found == std::end(rows)) Refuse(what, name);
  return *found;
}

std::int64_t NumberOf(std::string_view text) {
  std::string_view digits = text;
  const bool hexadecimal = digits.starts_with("0x") || digits.starts_with("0X");
  if (hexadecimal) digits.remove_prefix(2);
  std::int64_t value = 0;
  const auto [end, error] =
      std::from_chars(digits.data(), digits.data() + digits.size(), value, hexadecimal ? 16 : 10);
  if (error != std::errc{} || end != digits.data() + digits.size()) Refuse("not a number", text);
  return value;
}

}  // namespace

Fault ParseFault(std::string_view text) {
  const auto colon = text.find(':');
  const KindName& kind = Find(kKinds, text.substr(0, colon), "unknown kind");
  Fault fault;
  fault.kind = kind.kind;
  bool complete = kind.needed.empty();
  std::string_view rest = colon == text.npos ? std::string_view() : text.substr(colon + 1);
  while (!rest.empty()) {
    const auto comma = std::min(rest.find(','), rest.size());
    const std::string_view assignment = rest.substr(0, comma);
    rest.remove_prefix(std::min(comma + 1, rest.size()));
    const auto equals = std::min(assignment.find('='), assignment.size());
    const ValueName& name = Find(kValues, assignment.substr(0, equals), "unknown name");
    const std::int64_t value = NumberOf(assignment.substr(std::min(equals + 1, assignment.size())));
    if (value < name.low || value > name.high) Refuse("out of range", assignment);
    name.set(fault, value);
    complete = complete || name.name == kind.needed;
  }
  if (!complete) Refuse(std::string(kind.needed) + "= is missing", text);
  return fault;
}

}  // namespace simulator
