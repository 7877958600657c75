// A program in a process of its own, ended without warning.
#pragma once

#include <cstdint>
#include <string>

class ChildProcess {
 public:
  ChildProcess(const std::string& program, const std::string& argument);
  ~ChildProcess() { Kill(); }
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  [[nodiscard]] unsigned long Id() const { return id_; }
  /// Ends the process as a crash would, and waits until it has gone.
  void Kill();

 private:
  std::intptr_t process_ = 0;
  unsigned long id_ = 0;
};
