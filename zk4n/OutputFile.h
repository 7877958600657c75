// A file that a command writes.
#pragma once

#include <filesystem>
#include <fstream>
#include <string>

namespace zk4n {

/// Written whole or not at all: into a neighbouring temporary file, which takes the name at last. A
/// link, a device and a pipe stay what they are: what they lead to is written. Opened early, so
/// that a name that cannot be written is known before the work is done.
class OutputFile {
 public:
  explicit OutputFile(std::filesystem::path path);
  /// Removes the temporary file, if it has not taken the name.
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  /// False when the folder does not exist or takes no file, or when the name is a folder's.
  [[nodiscard]] bool IsOpen() const { return stream_.is_open(); }
  /// The whole content, once. False when it cannot be written.
  [[nodiscard]] bool Write(const std::string& content);
  /// The temporary file takes the name, in place of a file that has it. False when it cannot.
  [[nodiscard]] bool Commit();

 private:
  std::filesystem::path path_;
  std::filesystem::path temporary_;  ///< empty when there is none to take the name
  std::ofstream stream_;
};

}  // namespace zk4n
