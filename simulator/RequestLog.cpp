#include "simulator/RequestLog.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include "simulator/MessageText.h"

namespace simulator {

namespace {

constexpr std::size_t kRememberedBody = 1100;
constexpr std::size_t kShownValues = 10;

// "[1, 2, 3 ... 17 values]".
std::string ValuesText(const Message& message) {
  const std::vector<NamedValue> values = ElementsOf(message);
  std::string text = "[";
  for (std::size_t i = 0; i < std::min(values.size(), kShownValues); ++i) {
    char number[32];
    std::snprintf(number, sizeof number, "%s%.12g", i == 0 ? "" : ", ", values[i].value);
    text += number;
  }
  if (values.size() > kShownValues) text += " ... " + std::to_string(values.size()) + " values";
  return text + "]";
}

}  // namespace

void RequestLog::Add(RequestRecord record) {
  if (capacity_ == 0) return;
  if (records_.size() == capacity_) records_.pop_front();
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
  const std::optional<std::uint16_t> parameter = ParameterOf(request);
  record.text = NameOfCommand(request.command);
  if (parameter) {
    record.parameter = *parameter;
    record.text.append(" ").append(NameOfParameter(*parameter));
    record.text.append(" #").append(std::to_string(*parameter));
    if (IsFileRead(request)) {
      record.text.append(" ").append(FileText(request, false));
    } else if (request.command == command::kWrite) {
      record.text.append(" ").append(ValuesText(request));
    }
  }
  record.text += " -> ";
  if (answer == nullptr) {
    record.text += fate;
    return record;
  }
  record.status = answer->status;
  record.text += StatusText(answer->status);
  if (parameter && answer->status >= 0) {
    record.text.append(" ").append(IsFileRead(request) ? FileText(*answer, true)
                                                       : ValuesText(*answer));
  }
  return record;
}

}  // namespace simulator
