#include "simulator/RequestLog.h"

#include <algorithm>
#include <cstdio>
#include <string_view>
#include <utility>

#include "simulator/InstrumentFiles.h"
#include "simulator/Wire.h"

namespace simulator {

namespace {

constexpr std::size_t kRememberedBody = 1100;
constexpr std::size_t kShownValues = 10;

struct ParameterName {
  std::uint16_t id;
  bool is_signed;
  std::string_view name;
};

constexpr ParameterName kNames[] = {
    {0, false, "frequency"},      {2, false, "frequency list"},  {3, false, "instrument kind"},
    {4, false, "averaging"},      {5, false, "dwell"},           {7, false, "trigger input"},
    {8, false, "trigger output"}, {10, false, "file"},           {11, false, "compensation mode"},
    {12, true, "level"},          {15, false, "identity"},       {17, false, "reference"},
    {23, false, "feature mask"},  {26, true, "frequency table"}, {31, false, "pulse train"},
    {34, false, "RF button"},     {37, false, "sync generator"}, {76, true, "level list"},
    {79, true, "level"},          {83, false, "serial number"},  {92, true, "phase delay"},
};

ParameterName NameOf(std::uint16_t id) {
  const auto* found = std::find_if(std::begin(kNames), std::end(kNames),
                                   [id](const ParameterName& row) { return row.id == id; });
  return found == std::end(kNames) ? ParameterName{id, false, "parameter"} : *found;
}

// "[1, 2, 3 ... 17 values]"; of a wide frequency that only its signed forms carry, the sign is
// lost.
std::string ValuesText(const Message& message, bool is_signed) {
  const auto format = ElementFormat::FromType(message.type, is_signed);
  if (!format || message.body.size() < 2 + format->size) {
    return "[]";
  }
  const std::vector<double> values =
      DecodeElements(std::span<const std::uint8_t>(message.body).subspan(2), *format);
  std::string text;
  for (std::size_t i = 0; i < std::min(values.size(), kShownValues); ++i) {
    char number[32];
    std::snprintf(number, sizeof number, "%s%.12g", i == 0 ? "[" : ", ", values[i]);
    text += number;
  }
  if (values.size() > kShownValues) {
    text += " ... " + std::to_string(values.size()) + " values";
  }
  return text + "]";
}

// Of a read of a file, the path, and of its answer what stands behind the path.
std::string FileText(const Message& message, bool is_answer) {
  const std::string body(message.body.begin(), message.body.end());
  const std::size_t path_end = std::min(body.find('\0', kPathAt), body.size());
  if (path_end < kPathAt) {
    return {};
  }
  std::string text = is_answer ? body.substr(std::min(path_end + 1, body.size()))
                               : body.substr(kPathAt, path_end - kPathAt);
  // One line of the log stays one line.
  std::replace_if(
      text.begin(), text.end(), [](char c) { return c >= 0 && c < ' '; }, ' ');
  return text;
}

std::string_view CommandName(std::uint16_t command) {
  switch (command) {
    case command::kNone:
      return "nothing";
    case command::kRecover:
      return "recover";
    case command::kWrite:
      return "write";
    case command::kRead:
      return "read";
    case command::kData:
      return "data";
    default:
      return "unknown command";
  }
}

std::string StatusText(std::int16_t status) {
  if (status >= 0) {
    return std::to_string(status);
  }
  char text[16];
  std::snprintf(text, sizeof text, "0x%04X",
                static_cast<unsigned>(static_cast<std::uint16_t>(status)));
  return text;
}

}  // namespace

void RequestLog::Add(RequestRecord record) {
  if (capacity_ == 0) {
    return;
  }
  if (records_.size() == capacity_) {
    records_.pop_front();
  }
  records_.push_back(std::move(record));
}

RequestRecord Describe(std::uint32_t connection, const Message& request, const Message* answer,
                       const char* fate) {
  RequestRecord record;
  record.connection = connection;
  record.sequence = request.sequence;
  record.command = request.command;
  record.count = request.count;
  record.type = request.type;
  record.body.assign(request.body.begin(),
                     request.body.begin() + static_cast<std::ptrdiff_t>(
                                                std::min(request.body.size(), kRememberedBody)));
  const bool of_parameter =
      (request.command == command::kWrite || request.command == command::kRead) &&
      request.body.size() >= 2;
  ParameterName name{0, false, ""};
  record.text = CommandName(request.command);
  if (of_parameter) {
    record.parameter = ReadWord(request.body, 0);
    name = NameOf(record.parameter);
    record.text.append(" ").append(name.name).append(" #").append(std::to_string(record.parameter));
    if (IsFileRead(request)) {
      record.text.append(" ").append(FileText(request, false));
    } else if (request.command == command::kWrite) {
      record.text.append(" ").append(ValuesText(request, name.is_signed));
    }
  }
  record.text += " -> ";
  if (answer == nullptr) {
    record.text += fate;
    return record;
  }
  record.status = answer->status;
  record.text += StatusText(answer->status);
  if (of_parameter && answer->status >= 0) {
    record.text.append(" ").append(IsFileRead(request) ? FileText(*answer, true)
                                                       : ValuesText(*answer, name.is_signed));
  }
  return record;
}

}  // namespace simulator
