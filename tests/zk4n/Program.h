// A command-line program in a process of its own, its output kept in files.
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

class Program {
 public:
  /// Starts it with these arguments (UTF-8, without quotes). `folder` takes the two files of its
  /// output. Throws std::runtime_error when it cannot be started.
  Program(const std::filesystem::path& file, const std::vector<std::string>& arguments,
          const std::filesystem::path& folder);
  /// Ends it, if it still runs.
  ~Program();
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  /// Its exit status; none while it still runs after so long, or when a signal ended it.
  std::optional<int> Wait(std::chrono::milliseconds time = std::chrono::minutes(2));
  /// What Ctrl-C does.
  void Interrupt();

  /// Gives it these bytes to read; nothing more happens when it has ended.
  void Write(std::string_view bytes);
  /// Ends what it has to read.
  void CloseInput();

  /// What it wrote so far to standard output, from a place in it on, and to standard error.
  [[nodiscard]] std::string Output(std::size_t from = 0) const { return TextOf(output_, from); }
  [[nodiscard]] std::string Errors() const { return TextOf(errors_); }

 private:
  static std::string TextOf(const std::filesystem::path& file, std::size_t from = 0);

  std::filesystem::path output_;
  std::filesystem::path errors_;
  std::intptr_t input_ = 0;  ///< the writing end
  std::intptr_t process_ = 0;
};
