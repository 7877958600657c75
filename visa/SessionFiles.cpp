// Transfers between the instrument and a file.
#include <algorithm>
#include <fstream>

#include "visa/Session.h"

namespace zevisa {
namespace {

constexpr ViUInt32 kChunk = 65536;

}  // namespace

ViStatus Session::ReadToFile(const char* file_name, ViUInt32 count, ViUInt32& returned) {
  returned = 0;
  return InTurn(read_mutex_, [&]() -> ViStatus {
    const bool appends = attributes_.Number(Slot::kFileAppend) != 0;
    std::ofstream file(file_name, std::ios::binary | (appends ? std::ios::app : std::ios::trunc));
    if (!file) return VI_ERROR_FILE_ACCESS;
    std::vector<ViByte> chunk(std::min(count, kChunk));
    ViStatus status = VI_SUCCESS;
    while (returned < count) {
      ViUInt32 size = 0;
      status = Fill(std::span(chunk).first(std::min(kChunk, count - returned)), Terminator(), size);
      file.write(reinterpret_cast<const char*>(chunk.data()), size);
      if (!file.flush()) return VI_ERROR_FILE_IO;
      returned += size;
      if (status != VI_SUCCESS_MAX_CNT) break;
    }
    return status;
  });
}

ViStatus Session::WriteFromFile(const char* file_name, ViUInt32 count, ViUInt32& returned) {
  returned = 0;
  return InTurn(write_mutex_, [&]() -> ViStatus {
    std::ifstream file(file_name, std::ios::binary);
    if (!file) return VI_ERROR_FILE_ACCESS;
    std::vector<ViByte> chunk(std::min(count, kChunk));
    while (returned < count) {
      file.read(reinterpret_cast<char*>(chunk.data()), std::min(kChunk, count - returned));
      if (file.bad()) return VI_ERROR_FILE_IO;
      const auto size = static_cast<std::size_t>(file.gcount());
      if (size == 0) break;  // the file is shorter than wanted
      ViUInt32 sent = 0;
      const ViStatus status = Push(std::span(chunk).first(size), sent);
      returned += sent;
      if (status != VI_SUCCESS) return status;
    }
    return VI_SUCCESS;
  });
}

}  // namespace zevisa
