#include "simulator/ParameterTable.h"

#include <algorithm>
#include <iterator>

#include "simulator/Wire.h"

namespace simulator {

namespace {

constexpr ParameterName kParameterNames[] = {
    {0, "frequency"},
    {2, "frequency list"},
    {3, "instrument kind"},
    {4, "averaging"},
    {5, "dwell"},
    {7, "trigger input"},
    {8, "trigger output"},
    {10, "file"},
    {11, "compensation mode"},
    {12, "level"},
    {15, "identity"},
    {17, "reference"},
    {23, "feature mask"},
    {26, "frequency table"},
    {31, "pulse train"},
    {34, "RF button"},
    {37, "sync generator"},
    {76, "level list"},
    {79, "level"},
    {83, "serial number"},
    {92, "phase delay"},
};

using enum ElementUnit;

constexpr ElementName kFrequency[] = {{"frequency", kHertz}};
constexpr ElementName kFrequencySweep[] = {
    {"start", kHertz}, {"points"}, {"step", kHertz}, {"stop", kHertz}};
constexpr ElementName kKind[] = {{"kind"}};
constexpr ElementName kAveraging[] = {{"factor"}};
constexpr ElementName kDwell[] = {{"selector"}, {"dwell", kNanosecond}};
constexpr ElementName kTriggerInput[] = {
    {"code"},        {"falling edge"},        {"value"},        {"flag"},        {"last"},
    {"second code"}, {"second falling edge"}, {"second value"}, {"second flag"}, {"second last"}};
constexpr ElementName kTriggerOutput[] = {
    {"code"},        {"inverse"},     {"width", kMicrosecond}, {"flag"},
    {"last"},        {"second code"}, {"second inverse"},      {"second width", kMicrosecond},
    {"second flag"}, {"second last"}};
constexpr ElementName kMode[] = {{"mode"}};
constexpr ElementName kShortLevel[] = {
    {"output"}, {"level", kDecibelMilliwatt}, {"points"}, {"step", kDecibel}};
constexpr ElementName kLevel[] = {{"output"},         {"attenuator mode"},          {"setting 1"},
                                  {"setting 2"},      {"level", kDecibelMilliwatt}, {"points"},
                                  {"step", kDecibel}, {"stop", kDecibelMilliwatt}};
constexpr ElementName kReference[] = {{"enabled"}, {"frequency", kHertz}};
constexpr ElementName kMask[] = {{"mask"}};
constexpr ElementName kPulseHead[] = {{"mode"}, {"source"}, {"inverse"}};
constexpr ElementName kPulse[] = {{"width", kNanosecond}, {"gap", kNanosecond}};
constexpr ElementName kButton[] = {{"pressed"}};
constexpr ElementName kSync[] = {
    {"width", kNanosecond}, {"gap", kNanosecond}, {"delay", kNanosecond}};
constexpr ElementName kListLevel[] = {{"level", kDecibelMilliwatt}};
constexpr ElementName kDelay[] = {{"delay"}};

constexpr ParameterForm kParameterForms[] = {
    // id, elements, bytes an element and fraction, signed
    {0, 1, 0x60, false, kFrequency, {}},      {0, 3, 0x40, false, kFrequencySweep, {}},
    {0, 3, 0x60, true, kFrequencySweep, {}},  {0, 4, 0x60, true, kFrequencySweep, {}},
    {2, 0, 0x60, false, {}, kFrequency},      {3, 1, 0x20, false, kKind, {}},
    {4, 1, 0x10, false, kAveraging, {}},      {5, 2, 0x40, false, kDwell, {}},
    {7, 5, 0x10, false, kTriggerInput, {}},   {7, 10, 0x10, false, kTriggerInput, {}},
    {8, 5, 0x10, false, kTriggerOutput, {}},  {8, 10, 0x10, false, kTriggerOutput, {}},
    {11, 1, 0x20, false, kMode, {}},          {12, 2, 0x21, true, kShortLevel, {}},
    {12, 2, 0x42, true, kShortLevel, {}},     {12, 4, 0x42, true, kShortLevel, {}},
    {17, 1, 0x10, false, kReference, {}},     {17, 2, 0x40, false, kReference, {}},
    {23, 1, 0x20, false, kMask, {}},          {31, 2, 0x40, false, kPulseHead, kPulse},
    {31, 3, 0x40, false, kPulseHead, kPulse}, {34, 1, 0x20, false, kButton, {}},
    {37, 3, 0x40, false, kSync, {}},          {76, 4, 0x42, true, kLevel, kListLevel},
    {79, 5, 0x42, true, kLevel, {}},          {79, 7, 0x42, true, kLevel, {}},
    {79, 8, 0x42, true, kLevel, {}},          {79, 5, 0x62, true, kLevel, {}},
    {79, 7, 0x62, true, kLevel, {}},          {79, 8, 0x62, true, kLevel, {}},
    {92, 1, 0x42, true, kDelay, {}},
};

constexpr CommandName kCommandNames[] = {
    {command::kNone, "nothing"}, {command::kRecover, "recover"}, {command::kWrite, "write"},
    {command::kRead, "read"},    {command::kData, "data"},
};

constexpr StatusName kStatusNames[] = {
    {status::kGood, "good"},
    {status::kLevelNotSettled, "level not settled"},
    {status::kUnknownCommand, "command not supported"},
    {status::kUnknownParameter, "request not supported"},
    {status::kUnknownForm, "form not supported"},
    {status::kPllUnlocked, "PLL unlocked"},
    {status::kErgFault, "ERG fault"},
    {status::kFileMissing, "no such file"},
};

/// The row whose `key` is `value`; null when there is none.
template <typename Row, std::size_t kRows, typename Key>
const Row* RowOf(const Row (&rows)[kRows], Key Row::*key, Key value) {
  const Row* const found = std::find_if(std::begin(rows), std::end(rows),
                                        [=](const Row& row) { return row.*key == value; });
  return found == std::end(rows) ? nullptr : found;
}

}  // namespace

std::string_view SymbolOf(ElementUnit unit) {
  constexpr std::string_view kSymbols[] = {"", "Hz", "dBm", "dB", "ns", "us"};
  return kSymbols[static_cast<std::size_t>(unit)];
}

std::span<const ParameterName> ParameterNames() { return kParameterNames; }
std::span<const ParameterForm> ParameterForms() { return kParameterForms; }
std::span<const CommandName> CommandNames() { return kCommandNames; }
std::span<const StatusName> StatusNames() { return kStatusNames; }

std::string_view NameOfParameter(std::uint16_t id) {
  const ParameterName* const row = RowOf(kParameterNames, &ParameterName::id, id);
  return row == nullptr ? "parameter" : row->name;
}

std::string_view NameOfCommand(std::uint16_t command) {
  const CommandName* const row = RowOf(kCommandNames, &CommandName::command, command);
  return row == nullptr ? "unknown command" : row->name;
}

std::string_view NameOfStatus(std::int16_t status) {
  const StatusName* const row = RowOf(kStatusNames, &StatusName::status, status);
  return row == nullptr ? std::string_view() : row->name;
}

const ParameterForm* FindParameterForm(std::uint16_t id, std::uint8_t count, std::uint8_t type) {
  const auto* const found = std::find_if(
      std::begin(kParameterForms), std::end(kParameterForms), [=](const ParameterForm& form) {
        return form.id == id && form.count == count && form.type == type;
      });
  return found == std::end(kParameterForms) ? nullptr : found;
}

}  // namespace simulator
