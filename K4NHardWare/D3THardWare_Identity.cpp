// The instrument's identity: its record, its files and its serial number.
#include <algorithm>
#include <random>
#include <utility>

#include "K4NHardWare/D3THardWare.h"
#include "platform/os/Sync.h"

using namespace k4n;

namespace {

/// The checksum of the serial number: CRC-16 with the reflected polynomial 0xA001, initial value 0.
std::uint16_t Crc16(std::string_view text) {
  std::uint16_t crc = 0;
  for (const char c : text) {
    crc ^= static_cast<std::uint8_t>(c);
    for (int bit = 0; bit < 8; ++bit) {
      crc = static_cast<std::uint16_t>((crc & 1U) != 0 ? (crc >> 1U) ^ 0xA001U : crc >> 1U);
    }
  }
  return crc;
}

std::uint32_t WordAt(std::span<const std::uint8_t> bytes, std::size_t offset) {
  return bytes[offset] | static_cast<std::uint32_t>(bytes[offset + 1]) << 8U;
}

}  // namespace

Status D3THardWare::ReadIdentity() {
  HardWareParametr& parameter = At(Parameter::kIdentity);
  uIEvent::IEventProcessor* const manager = std::exchange(manager_, nullptr);
  const Status result = ReadParameter(parameter);
  manager_ = manager;
  if (result == Status::kInstrumentNotSupported || result == Status::kInstrumentNoIdentity) {
    identity_ = {};
    return Recover();
  }
  // Without a readable record only the dates are missing: go on, the frequency limits are read
  // next.
  if (result == Status::kVisaProtocolViolation) {
    identity_ = {};
    return Status::kOk;
  }
  if (IsNegative(result)) return result;

  const std::span<const std::uint8_t> bytes = parameter.Serialise().subspan(2);
  const std::string_view record(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  identity_ = ParseIdentityRecord(record.substr(0, record.find('\0')));
  return result;
}

Status D3THardWare::ReadInstrumentFile(std::string_view path, std::string& text) {
  // Identifier 10, then 0 and the maximum byte count (32 bits each), then the path, padded to whole
  // 32-bit words.
  static constexpr std::array<std::uint8_t, 10> kRequest = {10, 0, 0, 0, 0, 0, 0x00, 0xFA, 0, 0};
  constexpr std::size_t kWord = 4;
  const std::size_t path_length = path.size() + 1;
  std::vector<std::uint8_t> path_words((path_length + kWord - 1) / kWord * kWord);
  std::copy(path.begin(), path.end(), path_words.begin());
  message_.Begin(Command::kReadParameter, 2, 0x40);
  message_.Append(kRequest);
  message_.Append(path_words);
  if (const Status result = Exchange(); IsNegative(result) || !IsInstrumentCode(result))
    return result;

  const std::span<const std::uint8_t> payload = message_.payload();
  text.clear();
  for (std::size_t i = path_length + kRequest.size(); i < payload.size(); ++i) {
    const char c = static_cast<char>(payload[i]);
    if (c == '\r' || c == '\0') break;
    if (c != ' ' && c != '\t') text += c;
  }
  return Status::kOk;
}

Status D3THardWare::QuerySerialNumber(std::string& serial_number) {
  std::mt19937 generator(os::TickCount());
  const std::uint32_t key = std::max<std::uint32_t>(generator() & 0xFFFFU, 2U);
  const std::array<std::uint8_t, 4> request = {'S', 0, static_cast<std::uint8_t>(key),
                                               static_cast<std::uint8_t>(key >> 8U)};
  message_.Begin(Command::kReadParameter, 1, 0x20);
  message_.Append(request);
  if (const Status result = Exchange(); IsNegative(result) || !IsInstrumentCode(result))
    return result;

  const std::span<const std::uint8_t> payload = message_.payload();
  if (payload.size() < 4) return Status::kRefused;
  std::string text((payload.size() - 4) / 2, '\0');
  for (std::size_t i = 0; i < text.size(); ++i) {
    const std::uint32_t word = WordAt(payload, 2 + 2 * i);
    text[i] = static_cast<char>(static_cast<std::uint8_t>(word * key % 65537U));
  }
  if (Crc16(text) != WordAt(payload, 2 + 2 * text.size())) return Status::kRefused;
  serial_number = std::move(text);
  return Status::kOk;
}
