#include "simulator/MessageText.h"

#include <algorithm>
#include <cstdio>

namespace simulator {

namespace {

constexpr std::size_t kIdentifierSize = 2;

// Before the chunk the form's elements, then offset and count, then the entries.
ElementName NameOfElement(const ParameterForm& form, std::size_t index) {
  constexpr ElementName kChunk[] = {{"offset"}, {"count"}};
  if (index < form.count) return form.elements[index];
  index -= form.count;
  return index < std::size(kChunk) ? kChunk[index]
                                   : form.entry[(index - std::size(kChunk)) % form.entry.size()];
}

}  // namespace

std::optional<std::uint16_t> ParameterOf(const Message& message) {
  if ((message.command != command::kWrite && message.command != command::kRead) ||
      message.body.size() < kIdentifierSize) {
    return std::nullopt;
  }
  return ReadWord(message.body, 0);
}

std::vector<NamedValue> ElementsOf(const Message& message) {
  const auto id = ParameterOf(message);
  const bool has_fraction = (message.type & 0x0F) != 0;
  const ParameterForm* const form =
      id ? FindParameterForm(*id, message.count, message.type) : nullptr;
  const auto format =
      ElementFormat::FromType(message.type, form != nullptr ? form->is_signed : has_fraction);
  if (!id || !format) return {};
  std::vector<double> values =
      DecodeElements(std::span(message.body).subspan(kIdentifierSize), *format);
  if (form != nullptr && form->entry.empty() && values.size() > form->count) {
    values.resize(form->count);  // what makes a request's length even is no element
  }
  std::vector<NamedValue> elements;
  elements.reserve(values.size());
  for (std::size_t i = 0; i < values.size(); ++i) {
    elements.push_back({form != nullptr ? NameOfElement(*form, i) : ElementName{}, values[i]});
  }
  return elements;
}

std::string StatusText(std::int16_t status) {
  if (status >= 0) return std::to_string(status);
  char text[16];
  std::snprintf(text, sizeof text, "0x%04X",
                static_cast<unsigned>(static_cast<std::uint16_t>(status)));
  return text;
}

std::string FileText(const Message& message, bool is_answer) {
  const std::string body(message.body.begin(), message.body.end());
  const std::size_t path_end = std::min(body.find('\0', kPathAt), body.size());
  if (path_end < kPathAt) return {};
  std::string text = is_answer ? body.substr(std::min(path_end + 1, body.size()))
                               : body.substr(kPathAt, path_end - kPathAt);
  std::replace_if(
      text.begin(), text.end(), [](char c) { return c >= 0 && c < ' '; }, ' ');
  return text;
}

}  // namespace simulator
