#include "zk4n/OutputFile.h"

#include <system_error>
#include <utility>

namespace zk4n {

OutputFile::OutputFile(std::filesystem::path path) : path_(std::move(path)), temporary_(path_) {
  temporary_ += ".part";
  std::error_code error;
  if (std::filesystem::is_directory(path_, error)) return;
  stream_.open(temporary_, std::ios::binary | std::ios::trunc);
  if (!stream_.is_open()) temporary_.clear();
}

OutputFile::~OutputFile() {
  stream_.close();
  std::error_code ignored;
  if (!temporary_.empty()) std::filesystem::remove(temporary_, ignored);
}

bool OutputFile::Write(const std::string& content) {
  stream_.write(content.data(), static_cast<std::streamsize>(content.size()));
  stream_.close();
  return !stream_.fail();
}

bool OutputFile::Commit() {
  std::error_code error;
  std::filesystem::rename(temporary_, path_, error);
  if (error) return false;
  temporary_.clear();
  return true;
}

}  // namespace zk4n
