#include "driver/ErrorMessage.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <span>

namespace driver {

namespace {

struct MessageTemplate {
  Status code;
  std::string_view text;
};

// The dash of the first text is an en dash in Windows-1252, one byte.
constexpr std::array kTemplates{
    MessageTemplate{Status::kCannotRecover, "Failure \x96 cannot recover."},
    MessageTemplate{Status::kCannotOpenFile, "Cannot open file %1."},
    MessageTemplate{Status::kCannotReadFile, "Error reading file %1."},
    MessageTemplate{Status::kInvalidValue, "Invalid value (%1) for method %2, parameter %3."},
    MessageTemplate{Status::kMethodNotSupported,
                    "Does not support this class-compliant feature: method %1."},
    MessageTemplate{Status::kPropertyNotSupported,
                    "Does not support this class-compliant feature: property %1."},
    MessageTemplate{Status::kNotConnected, kNotConnectedText},
    MessageTemplate{Status::kUnknownChannelName, "Unknown channel name."},
    MessageTemplate{Status::kOutOfMemory, "Could not allocate necessary memory."},
    MessageTemplate{Status::kOperationInProgress, "Operation in progress."},
    MessageTemplate{Status::kFileNotFound, "File not found %1"},
    MessageTemplate{Status::kUnknownResource, "Unknown resource %1."},
};
constexpr std::string_view kUnknownErrorTemplate = "Unknown error %1!X!.";
constexpr std::string_view kHexadecimalMark = "!X!";

std::string Hexadecimal(Status code) {
  std::array<char, 8> digits{};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(),
                                 static_cast<std::uint32_t>(code), 16)
                       .ptr;
  std::string text(digits.data(), end);
  std::transform(text.begin(), text.end(), text.begin(),
                 [](char c) { return c >= 'a' ? static_cast<char>(c - 'a' + 'A') : c; });
  return text;
}

// FormatMessage's rules, as far as the templates use them: %n is the n-th insert, "%n!X!" the code
// as a hexadecimal number; what was inserted is not looked at again. No template ends in a %.
os::WideString Format(std::string_view text, Status code, std::span<const os::WideView> inserts) {
  os::WideString result;
  while (!text.empty()) {
    const std::size_t mark = text.find('%');
    result += os::ToWide(text.substr(0, mark));
    if (mark == std::string_view::npos) break;
    const auto index = static_cast<std::size_t>(text[mark + 1] - '1');
    text.remove_prefix(mark + 2);
    if (text.starts_with(kHexadecimalMark)) {
      result += os::ToWide(Hexadecimal(code));
      text.remove_prefix(kHexadecimalMark.size());
    } else if (index < inserts.size()) {
      result += inserts[index];
    }
  }
  return result;
}

std::string UnsupportedValue(std::int32_t value, std::string_view kind) {
  std::string text = "Does not support this class-compliant feature: (enumeration) value ";
  text += std::to_string(value);
  text += " passed as the value for ";
  text += kind;
  return text;
}

}  // namespace

os::WideString BuildErrorMessage(Status code, os::WideView insert_1, os::WideView insert_2,
                                 os::WideView insert_3) {
  const auto* const row = std::find_if(kTemplates.begin(), kTemplates.end(),
                                       [code](const auto& entry) { return entry.code == code; });
  const std::array inserts{insert_1, insert_2, insert_3};
  return Format(row == kTemplates.end() ? kUnknownErrorTemplate : row->text, code, inserts);
}

os::WideString PrefixedMessage(os::WideView message) {
  os::WideString text = os::ToWide(kLibraryName) + os::ToWide(": ");
  text += message;
  return text;
}

std::string UnsupportedPropertyValue(std::int32_t value, std::string_view property, FullStop stop) {
  std::string text = UnsupportedValue(value, "property ");
  text += property;
  return stop == FullStop::kYes ? text + "." : text;
}

std::string UnsupportedParameterValue(std::int32_t value, std::string_view parameter,
                                      std::string_view method) {
  std::string text = UnsupportedValue(value, "parameter ");
  text += parameter;
  text += " in method ";
  text += method;
  return text + ".";
}

}  // namespace driver
