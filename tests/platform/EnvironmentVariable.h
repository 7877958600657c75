// An environment variable for the length of a test.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>

/// Set from here on, and unset afterwards.
class EnvironmentVariable {
 public:
  EnvironmentVariable(const char* name, const std::filesystem::path& value) : name_(name) {
    Set(value.string());
  }
  ~EnvironmentVariable() { Set(""); }
  EnvironmentVariable(const EnvironmentVariable&) = delete;
  EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;

 private:
  void Set(const std::string& value) {
#ifdef _WIN32
    _putenv_s(name_, value.c_str());
#else
    setenv(name_, value.c_str(), 1);
#endif
  }

  const char* name_;
};
