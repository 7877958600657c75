#include "zk4n/OutputFile.h"

#include <system_error>
#include <utility>

namespace zk4n {

namespace fs = std::filesystem;

OutputFile::OutputFile(fs::path path) : path_(std::move(path)) {
  std::error_code error;
  const fs::file_status there = fs::status(path_, error);
  if (fs::is_directory(there)) return;
  const bool is_file = !fs::exists(there) || fs::is_regular_file(there);
  // A link stays one, too.
  if (const fs::path real = fs::canonical(path_, error); is_file && !error) path_ = real;
  const fs::path written = is_file ? fs::path(path_) += ".part" : path_;
  stream_.open(written, std::ios::binary | std::ios::trunc);
  if (is_file && stream_.is_open()) temporary_ = written;
}

OutputFile::~OutputFile() {
  stream_.close();
  std::error_code ignored;
  if (!temporary_.empty()) fs::remove(temporary_, ignored);
}

bool OutputFile::Write(const std::string& content) {
  stream_.write(content.data(), static_cast<std::streamsize>(content.size()));
  stream_.close();
  return !stream_.fail();
}

bool OutputFile::Commit() {
  if (temporary_.empty()) return true;
  std::error_code error;
  fs::rename(temporary_, path_, error);
  if (error) return false;
  temporary_.clear();
  return true;
}

}  // namespace zk4n
