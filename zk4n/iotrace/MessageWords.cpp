#include "zk4n/iotrace/MessageWords.h"

#include <algorithm>

#include "platform/os/Text.h"
#include "zk4n/Quantity.h"

namespace iotrace {
namespace {

using simulator::ElementUnit;
using simulator::Message;
using simulator::NamedValue;

constexpr std::size_t kShownElements = 10;
constexpr std::uint16_t kIdentity = 15;
constexpr std::size_t kIdentifierSize = 2;

/// The instrument's texts are Windows-1251; a line end behind them is no part of them.
std::string Utf8Of(std::string text) {
  text.erase(text.find_last_not_of(' ') + 1);
  return os::ToNarrow(os::ToWide(text, os::kCyrillicCodePage), os::kUtf8CodePage);
}

std::string IdentityText(const Message& answer) {
  const std::string text(answer.body.begin() + kIdentifierSize, answer.body.end());
  return Utf8Of(text.substr(0, text.find('\0')));
}

/// Each character times the request's key, modulo 65537, is a word of the answer; a checksum
/// follows.
std::string SerialNumberText(const Message& request, const Message& answer) {
  if (request.body.size() < 4 || answer.body.size() < 4) return {};
  const std::uint64_t key = simulator::ReadWord(request.body, kIdentifierSize);
  std::string text;
  for (std::size_t at = kIdentifierSize; at + 4 <= answer.body.size(); at += 2) {
    const char c = static_cast<char>(simulator::ReadWord(answer.body, at) * key % 65537);
    text += c >= 0 && c < ' ' ? ' ' : c;
  }
  return Utf8Of(text);
}

double InSeconds(const NamedValue& value) {
  return value.value * (value.element.unit == ElementUnit::kNanosecond ? 1e-9 : 1e-6);
}

std::string ValueText(const NamedValue& value) {
  constexpr int kDigits = 12;
  switch (value.element.unit) {
    case ElementUnit::kHertz:
      return zk4n::FormatQuantity(value.value, zk4n::Unit::kHertz, kDigits);
    case ElementUnit::kNanosecond:
    case ElementUnit::kMicrosecond:
      return zk4n::FormatQuantity(InSeconds(value), zk4n::Unit::kSecond, kDigits);
    case ElementUnit::kDecibelMilliwatt:
    case ElementUnit::kDecibel:
      return zk4n::FormatNumber(value.value) + " " + std::string(SymbolOf(value.element.unit));
    case ElementUnit::kNone:
      break;
  }
  return zk4n::FormatNumber(value.value, kDigits);
}

}  // namespace

Content RequestContent(const Exchange& exchange) {
  if (!exchange.request) return {};
  const Message& request = exchange.request->message;
  if (simulator::IsFileRead(request)) return {Utf8Of(simulator::FileText(request, false)), {}};
  if (request.command != simulator::command::kWrite) return {};
  return {{}, simulator::ElementsOf(request)};
}

Content AnswerContent(const Exchange& exchange) {
  if (!exchange.request || !exchange.answer || exchange.answer->message.status < 0) return {};
  const Message& request = exchange.request->message;
  const Message& answer = exchange.answer->message;
  if (simulator::IsFileRead(request)) return {Utf8Of(simulator::FileText(answer, true)), {}};
  if (simulator::IsSerialNumberQuery(request)) return {SerialNumberText(request, answer), {}};
  const auto parameter = simulator::ParameterOf(answer);
  if (parameter == kIdentity) return {IdentityText(answer), {}};
  return {{}, simulator::ElementsOf(answer)};
}

std::string TitleOf(const Exchange& exchange) {
  if (!exchange.request) return "unknown request";
  const Message& request = exchange.request->message;
  std::string title(simulator::NameOfCommand(request.command));
  if (const auto parameter = simulator::ParameterOf(request)) {
    title.append(" ").append(simulator::NameOfParameter(*parameter));
    title.append(" #").append(std::to_string(*parameter));
  }
  return title;
}

std::string ElementsText(const std::vector<NamedValue>& elements) {
  std::string text;
  for (std::size_t i = 0; i < std::min(elements.size(), kShownElements); ++i) {
    if (i != 0) text += ", ";
    if (!elements[i].element.name.empty()) text.append(elements[i].element.name).append(" ");
    text += ValueText(elements[i]);
  }
  if (elements.size() > kShownElements) {
    text += " ... " + std::to_string(elements.size()) + " values";
  }
  return text;
}

std::vector<NamedValue> Changed(const std::vector<NamedValue>& asked,
                                const std::vector<NamedValue>& answered) {
  if (asked.size() != answered.size()) return answered;
  std::vector<NamedValue> changed;
  for (std::size_t i = 0; i < answered.size(); ++i) {
    if (asked[i].value != answered[i].value) changed.push_back(answered[i]);
  }
  return changed;
}

}  // namespace iotrace
