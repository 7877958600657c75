// Construction, the transactions and the data reads.
#include "K4NHardWare/D3THardWare.h"

#include <algorithm>
#include <limits>
#include <memory>

#include "K4NHardWare/CommandExchanger.h"
#include "K4NHardWare/Event.h"

namespace {

/// The format marks of data answers: readings with 8 fractional bits, or integers, which every
/// other mark asks for, too.
constexpr char kFractionalFormat = 'A';
constexpr char kIntegerFormat = '@';

std::uint8_t RequestedFormat(char format) {
  return static_cast<std::uint8_t>(format == kFractionalFormat ? kFractionalFormat
                                                               : kIntegerFormat);
}

}  // namespace

D3THardWare::D3THardWare(CommandExchanger& exchanger)
    : exchanger_(exchanger), parameters_(kParameterTable.begin(), kParameterTable.end()) {
  exchanger_.SetManager(this);
}

Status D3THardWare::WriteParameter(HardWareParametr& parameter) {
  message_.Begin(Command::kWriteParameter, parameter.count_byte(), parameter.type_code());
  const Status result = Transact(parameter);
  if (!IsInstrumentCode(result)) return result;
  parameter.set_status(static_cast<std::uint16_t>(result));
  return std::min(result, Status::kOk);
}

Status D3THardWare::ReadParameter(HardWareParametr& parameter) {
  // Without the high byte, which the last answer may have set to anything.
  message_.Begin(Command::kReadParameter, parameter.count_byte(), parameter.type_code(),
                 parameter.Serialise().front());
  return Transact(parameter);
}

Status D3THardWare::Recover() {
  message_.Begin(Command::kRecover);
  return Exchange();
}

Status D3THardWare::Transact(HardWareParametr& parameter) {
  message_.Append(parameter.Serialise());
  const Status result = Exchange();
  if (!IsInstrumentCode(result)) return result;
  if (IsNegative(result)) {
    Discard(Recover());  // what was refused is the result
    return result;
  }
  // What another parameter holds must not become this one's values. The identifier's high byte
  // tells nothing: requests carry 0 there, whatever it is.
  const std::span<const std::uint8_t> image = message_.payload();
  if (!image.empty() && image.front() != parameter.Serialise().front()) {
    exchanger_.RejectAnswer();
    return Status::kVisaProtocolViolation;
  }
  parameter.Deserialise(image);
  return result;
}

Status D3THardWare::ClearAndRecover() {
  exchanger_.ClearBeforeNext();
  return Recover();
}

Status D3THardWare::Exchange() {
  const std::array<ProtocolMessage*, 1> messages = {&message_};
  if (const Status failed = exchanger_.SendMessages(messages); failed != Status::kOk) return failed;
  return message_.status();
}

Status D3THardWare::WriteElements(HardWareParametr& parameter,
                                  std::initializer_list<ElementValue> values) {
  for (const auto& [element, value] : values) parameter.SetValue(*value, element);
  const Status result = WriteParameter(parameter);
  if (result != Status::kOk) return result;
  for (const auto& [element, value] : values) *value = parameter.GetValue(element);
  return result;
}

Status D3THardWare::ReadDataBlock(std::span<std::uint8_t> buffer, std::uint32_t& length,
                                  char& format) {
  ProtocolMessage message(buffer);
  message.Begin(Command::kReadData, 0, RequestedFormat(format));
  const std::array<ProtocolMessage*, 1> messages = {&message};
  if (const Status failed = exchanger_.SendMessages(messages); failed != Status::kOk) return failed;
  return FinishDataRead(message, length, format);
}

Status D3THardWare::PollDataBlock(std::span<std::uint8_t> buffer, std::uint32_t& length,
                                  char& format) {
  ProtocolMessage message(buffer);
  message.Begin(Command::kReadData, 0, RequestedFormat(format));
  if (const Status failed = exchanger_.StartRead(message); failed != Status::kOk) return failed;
  return FinishDataRead(message, length, format);
}

Status D3THardWare::FinishDataRead(const ProtocolMessage& message, std::uint32_t& length,
                                   char& format) {
  if (message.status() != Status::kOk) return message.status();
  const auto mark = static_cast<char>(message.type());
  if (mark != kFractionalFormat && mark != kIntegerFormat) {
    // A late answer to a setting may be as long as a block.
    exchanger_.RejectAnswer();
    return Status::kVisaProtocolViolation;
  }
  const std::span<const std::uint8_t> block = message.payload();
  length = static_cast<std::uint32_t>(block.size());
  format = mark;
  if (block.size() < sizeof(std::int16_t)) return Status::kOk;
  const Status block_status{
      static_cast<std::int16_t>(block[block.size() - 2] | block[block.size() - 1] << 8)};
  if (!IsNegative(block_status)) return Status::kOk;
  std::unique_ptr<uIEvent::Event> event(
      uIEvent::MakeErrorEvent(this, "Data processing error", nullptr));
  ProcessEvent(event.get());
  static_cast<void>(event.release());  // the final handler keeps it
  return block_status;
}

std::string D3THardWare::DescribeStatus(Status code) {
  return exchanger_.device().StatusDescription(code);
}
