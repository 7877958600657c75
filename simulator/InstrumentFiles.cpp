#include "simulator/InstrumentFiles.h"

#include <algorithm>
#include <string_view>

namespace simulator {

namespace {

constexpr std::size_t kIdentitySize = 100;
// Windows-1251: "Изготовлен ", "Программа DSP от ", "Прошивка ПЛИС от ".
constexpr std::string_view kManufacturedKey = "\xC8\xE7\xE3\xEE\xF2\xEE\xE2\xEB\xE5\xED ";
constexpr std::string_view kDspKey = "\xCF\xF0\xEE\xE3\xF0\xE0\xEC\xEC\xE0 DSP \xEE\xF2 ";
constexpr std::string_view kFpgaKey = "\xCF\xF0\xEE\xF8\xE8\xE2\xEA\xE0 \xCF\xCB\xC8\xD1 \xEE\xF2 ";

constexpr std::string_view kSerialFile = "\\FRAM\\SERIAL.TXT";
constexpr std::string_view kTypeFile = "\\FRAM\\TYPE.TXT";
constexpr std::uint32_t kModulus = 65537;

std::optional<std::string> FileContent(const Options& options, const std::string& path) {
  if (std::find(options.missing_files.begin(), options.missing_files.end(), path) !=
      options.missing_files.end()) {
    return std::nullopt;
  }
  if (const auto found = options.files.find(path); found != options.files.end()) {
    return found->second;
  }
  if (path == kSerialFile) return options.serial_number + "\r\n";
  if (path == kTypeFile) return options.type + "\r\n";
  return std::nullopt;
}

// The number by which `key` times it is 1: key to the power of modulus - 2, as the modulus is
// prime.
std::uint32_t Inverse(std::uint32_t key) {
  std::uint64_t result = 1;
  std::uint64_t power = key;
  for (std::uint32_t exponent = kModulus - 2; exponent != 0; exponent >>= 1) {
    if ((exponent & 1U) != 0) result = result * power % kModulus;
    power = power * power % kModulus;
  }
  return static_cast<std::uint32_t>(result);
}

// The 16-bit word that, times the key, ends in the character. The product may have any high byte;
// of two neighbours one gives a word other than 65536, which has no 16 bits.
std::uint16_t Scramble(std::uint8_t character, std::uint32_t inverse) {
  const std::uint64_t word = static_cast<std::uint64_t>(character) * inverse % kModulus;
  if (word < kModulus - 1) return static_cast<std::uint16_t>(word);
  return static_cast<std::uint16_t>((character + 256ULL) * inverse % kModulus);
}

std::uint16_t Crc16(std::string_view text) {
  std::uint32_t crc = 0;
  for (const char character : text) {
    crc ^= static_cast<std::uint8_t>(character);
    for (int bit = 0; bit < 8; ++bit) crc = (crc & 1U) != 0 ? (crc >> 1) ^ 0xA001U : crc >> 1;
  }
  return static_cast<std::uint16_t>(crc);
}

}  // namespace

Bytes IdentityText(const Options& options) {
  std::string text;
  text.append(kManufacturedKey).append(options.manufactured).append(" ");
  text.append(kDspKey).append(options.dsp_program).append(" ");
  text.append(kFpgaKey).append(options.fpga_firmware);
  text.resize(kIdentitySize);
  return {text.begin(), text.end()};
}

std::int16_t ReadFile(const Options& options, const Message& request, Bytes& answer) {
  const Bytes& body = request.body;
  const auto path_end =
      body.size() > kPathAt ? std::find(body.begin() + kPathAt, body.end(), 0) : body.end();
  if (path_end == body.end()) return status::kUnknownForm;
  const std::optional<std::string> content =
      FileContent(options, std::string(body.begin() + kPathAt, path_end));
  if (!content) return status::kFileMissing;
  answer.assign(body.begin(), path_end + 1);
  const std::size_t offset = std::min<std::size_t>(ReadDoubleWord(body, 2), content->size());
  const std::size_t count = std::min({static_cast<std::size_t>(ReadDoubleWord(body, 6)),
                                      content->size() - offset, kMaxBody - answer.size()});
  const auto first = content->begin() + static_cast<std::ptrdiff_t>(offset);
  answer.insert(answer.end(), first, first + static_cast<std::ptrdiff_t>(count));
  return status::kGood;
}

std::int16_t ScrambledSerialNumber(const Options& options, const Message& request, Bytes& answer) {
  if (!options.serial_number_query) return status::kUnknownParameter;
  const std::uint32_t key = request.body.size() < 4 ? 0 : ReadWord(request.body, 2);
  if (key == 0) return status::kUnknownForm;
  const std::uint32_t inverse = Inverse(key);
  answer.assign(request.body.begin(), request.body.begin() + 2);
  for (const char character : options.serial_number) {
    AppendInteger(answer, Scramble(static_cast<std::uint8_t>(character), inverse), 2);
  }
  AppendInteger(answer, Crc16(options.serial_number), 2);
  return status::kGood;
}

}  // namespace simulator
