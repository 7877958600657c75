// What clients asked for, in the words of the instrument.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <vector>

namespace simulator {

struct Message;

/// A request as the instrument understood it, and what it answered.
struct RequestRecord {
  std::uint32_t connection = 0;  ///< 1, 2 ... in order of their coming
  std::uint32_t sequence = 0;    ///< the sender's number
  std::uint16_t command = 0;     ///< 1 recovery, 3 write, 4 read, 6 data
  std::uint16_t parameter = 0;   ///< identifier; 0 where there is none
  std::uint8_t count = 0;
  std::uint8_t type = 0;
  std::vector<std::uint8_t> body;      ///< the first 1100 bytes
  std::optional<std::int16_t> status;  ///< of the answer; none for a data request that was taken
                                       ///< up, and for one that a fault left without an answer
  std::string text;                    ///< one line: what was asked for, and the answer
};

/// The last requests.
class RequestLog {
 public:
  explicit RequestLog(std::size_t capacity) : capacity_(capacity) {}

  void Add(RequestRecord record);
  void Clear() { records_.clear(); }
  [[nodiscard]] std::vector<RequestRecord> Records() const {
    return {records_.begin(), records_.end()};
  }

 private:
  std::size_t capacity_;
  std::deque<RequestRecord> records_;
};

/// `answer` is null when none is given, or not yet; `fate` then tells why: "dropped".
RequestRecord Describe(std::uint32_t connection, const Message& request, const Message* answer,
                       const char* fate);

}  // namespace simulator
