#include <fcntl.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <stdexcept>
#include <thread>

#include "tests/zk4n/Program.h"

Program::Program(const std::filesystem::path& file, const std::vector<std::string>& arguments,
                 const std::filesystem::path& folder)
    : output_(folder / "stdout.txt"), errors_(folder / "stderr.txt") {
  std::vector<std::string> texts{file.string()};
  texts.insert(texts.end(), arguments.begin(), arguments.end());
  std::vector<char*> pointers;
  pointers.reserve(texts.size() + 1);
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);

  // A pair of sockets can be written without a signal when nobody reads any more.
  std::array<int, 2> ends{};
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) {
    throw std::runtime_error("no input for " + file.string());
  }
  input_ = ends[1];
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  constexpr int kNewFile = O_WRONLY | O_CREAT | O_TRUNC;
  posix_spawn_file_actions_adddup2(&actions, ends[0], STDIN_FILENO);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, output_.c_str(), kNewFile, 0600);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, errors_.c_str(), kNewFile, 0600);
  pid_t pid = 0;
  const int error = posix_spawn(&pid, file.c_str(), &actions, nullptr, pointers.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  close(ends[0]);
  if (error != 0) {
    CloseInput();
    throw std::runtime_error("cannot start " + file.string());
  }
  process_ = pid;
}

Program::~Program() {
  CloseInput();
  if (process_ == 0) return;
  kill(static_cast<pid_t>(process_), SIGKILL);
  waitpid(static_cast<pid_t>(process_), nullptr, 0);
}

std::optional<int> Program::Wait(std::chrono::milliseconds time) {
  const auto end = std::chrono::steady_clock::now() + time;
  int status = 0;
  while (waitpid(static_cast<pid_t>(process_), &status, WNOHANG) == 0) {
    if (std::chrono::steady_clock::now() > end) return std::nullopt;
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  process_ = 0;
  return WIFEXITED(status) ? std::optional(WEXITSTATUS(status)) : std::nullopt;
}

void Program::Interrupt() { kill(static_cast<pid_t>(process_), SIGINT); }

void Program::Write(std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t sent = send(static_cast<int>(input_), bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (sent <= 0) return;
    bytes.remove_prefix(static_cast<std::size_t>(sent));
  }
}

void Program::CloseInput() {
  if (input_ != 0) close(static_cast<int>(input_));
  input_ = 0;
}
