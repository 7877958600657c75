// The messages on the wire and the numbers in them, as the instrument sees them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace simulator {

using Bytes = std::vector<std::uint8_t>;

inline constexpr std::uint16_t kHeaderWord = 0x55AA;
inline constexpr std::size_t kHeaderSize = 16;
inline constexpr std::size_t kMaxBody = 0xFFFF;  ///< the length field has 16 bits

namespace command {
inline constexpr std::uint16_t kNone = 0;
inline constexpr std::uint16_t kRecover = 1;
inline constexpr std::uint16_t kWrite = 3;
inline constexpr std::uint16_t kRead = 4;
inline constexpr std::uint16_t kData = 6;
}  // namespace command

namespace status {
inline constexpr std::int16_t kGood = 0;
inline constexpr std::int16_t kLevelNotSettled = 6;
inline constexpr std::int16_t kUnknownCommand = -0x7FFF;    ///< 0x8001
inline constexpr std::int16_t kUnknownParameter = -0x7FFE;  ///< 0x8002
inline constexpr std::int16_t kUnknownForm = -0x7FFD;       ///< 0x8003
inline constexpr std::int16_t kPllUnlocked = -0x7FF9;       ///< 0x8007
inline constexpr std::int16_t kErgFault = -0x7FE4;          ///< 0x801C
inline constexpr std::int16_t kFileMissing = -0x7EFD;       ///< 0x8103
}  // namespace status

struct Message {
  std::uint16_t command = 0;
  std::int16_t status = 0;
  std::uint8_t count = 0;
  std::uint8_t type = 0;
  std::uint32_t sequence = 0;
  Bytes body;
};

/// The header's fields, the body left empty; of at least kHeaderSize bytes.
Message DecodeHeader(std::span<const std::uint8_t> bytes);
/// Bytes of the body, as the header tells them.
std::size_t BodyLength(std::span<const std::uint8_t> header);

/// Cuts a stream of bytes into requests. Bytes before a header word are passed over.
class RequestParser {
 public:
  void Feed(std::span<const std::uint8_t> bytes);
  /// The next complete request; none while its end has not come.
  std::optional<Message> Next();

 private:
  Bytes buffer_;
  std::size_t position_ = 0;  ///< of the first byte that is not taken yet
};

/// An answer's bytes; a body over kMaxBody is cut.
Bytes EncodeAnswer(const Message& answer);

/// Two reads carry no parameter in the usual form: theirs is told by identifier, count and type.
bool IsFileRead(const Message& request);
bool IsSerialNumberQuery(const Message& request);

inline constexpr std::size_t kPathAt = 10;  ///< of the path in the body of a file request

/// How the elements of a parameter lie in its body: little-endian fixed point.
struct ElementFormat {
  std::size_t size = 1;      ///< bytes, 1 to 8
  std::size_t fraction = 0;  ///< of them below the radix point
  bool is_signed = false;

  /// From the header's type code; none for one that no element has.
  static std::optional<ElementFormat> FromType(std::uint8_t type, bool is_signed);
};

/// Reads as many elements as there are whole ones.
std::vector<double> DecodeElements(std::span<const std::uint8_t> bytes,
                                   const ElementFormat& format);
/// Rounds to the nearest, halves away from zero; what does not fit becomes the nearest that does.
void AppendElements(Bytes& bytes, const ElementFormat& format, std::span<const double> values);

std::uint16_t ReadWord(std::span<const std::uint8_t> bytes, std::size_t offset);
std::uint32_t ReadDoubleWord(std::span<const std::uint8_t> bytes, std::size_t offset);
/// Little-endian, the low `size` bytes.
void AppendInteger(Bytes& bytes, std::uint64_t value, std::size_t size);

}  // namespace simulator
