// Construction, the transactions and the data reads.
#include "K4NHardWare/D3THardWare.h"

#include <algorithm>
#include <memory>
#include <optional>

#include "K4NHardWare/CommandExchanger.h"
#include "K4NHardWare/Event.h"

using namespace k4n;

D3THardWare::D3THardWare(CommandExchanger& exchanger) : exchanger_(exchanger) {
  parameters_.reserve(kParameterCount);
  for (const ParameterRow& row : kParameterTable) parameters_.emplace_back(row.layout);
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
  // Only the low byte: the last answer may have left anything in the high byte.
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
    Discard(Recover());  // the refusal is the result
    return result;
  }
  // The answer must be for this parameter. Only the low byte of the identifier is compared:
  // requests always carry 0 in the high byte.
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

StatusAnd<ReceivedBlock> D3THardWare::ReadDataBlock(std::span<std::uint8_t> buffer,
                                                    measurement::ReadingFormat wanted) {
  ProtocolMessage message(buffer);
  message.Begin(Command::kReadData, 0, static_cast<std::uint8_t>(wanted));
  const std::array<ProtocolMessage*, 1> messages = {&message};
  const Status sent = exchanger_.SendMessages(messages);
  return sent == Status::kOk ? FinishDataRead(message) : StatusAnd<ReceivedBlock>{sent};
}

StatusAnd<ReceivedBlock> D3THardWare::PollDataBlock(std::span<std::uint8_t> buffer,
                                                    measurement::ReadingFormat wanted) {
  ProtocolMessage message(buffer);
  message.Begin(Command::kReadData, 0, static_cast<std::uint8_t>(wanted));
  const Status polled = exchanger_.StartRead(message);
  return polled == Status::kOk ? FinishDataRead(message) : StatusAnd<ReceivedBlock>{polled};
}

StatusAnd<ReceivedBlock> D3THardWare::FinishDataRead(const ProtocolMessage& message) {
  if (message.status() != Status::kOk) return {message.status()};
  const std::optional<measurement::ReadingFormat> format =
      measurement::ReadingFormatOf(message.type());
  if (!format) {
    // Not a data answer but a late one to a setting, which may be as long as a block.
    exchanger_.RejectAnswer();
    return {Status::kVisaProtocolViolation};
  }
  const ReceivedBlock received{message.payload(), *format};
  const std::optional<measurement::DataBlock> block = measurement::ParseBlock(received.body);
  if (!block || !IsNegative(block->word)) return {Status::kOk, received};
  std::unique_ptr<uIEvent::Event> event(
      uIEvent::MakeErrorEvent(this, "Data processing error", nullptr));
  ProcessEvent(event.get());
  static_cast<void>(event.release());  // the final handler keeps it
  return {block->word, received};
}

std::string D3THardWare::DescribeStatus(Status code) {
  return exchanger_.device().StatusDescription(code);
}
