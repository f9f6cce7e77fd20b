#include "base/run_tool.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <optional>
#include <poll.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <system_error>
#include <thread>

#include "base/descriptor.h"

namespace tavek {
namespace {

namespace fs = std::filesystem;
using std::chrono::milliseconds;
using SystemClock = std::chrono::steady_clock;

/// Between two looks at the stop flag.
constexpr milliseconds look{20};
/// What a process that was killed may take to be gone; one that hangs in a dead disk is left behind.
constexpr milliseconds killPatience{200};

bool isExecutable(const fs::path& file) {
  std::error_code ignored;
  return fs::is_regular_file(file, ignored) && access(file.c_str(), X_OK) == 0;
}

/// The tool's end of its standard input and output, and ours. Its input is a socket, so that writing to a
/// tool that reads no more can be told not to raise a signal.
struct Pipes {
  Descriptor toolInput, input, toolOutput, output;
};

std::optional<Pipes> openPipes(bool withInput) {
  std::array<int, 2> out{};
  if (pipe2(out.data(), O_CLOEXEC) != 0) return {};
  Pipes pipes{Descriptor(), Descriptor(), Descriptor(out[1]), Descriptor(out[0])};
  if (withInput) {
    std::array<int, 2> in{};
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, in.data()) != 0) return {};
    pipes.toolInput = Descriptor(in[0]);
    pipes.input = Descriptor(in[1]);
  } else {
    pipes.toolInput = Descriptor(open("/dev/null", O_RDONLY | O_CLOEXEC));
  }
  return pipes;
}

/// What a process is started with.
class SpawnSetup {
 public:
  explicit SpawnSetup(const Pipes& pipes) {
    posix_spawn_file_actions_init(&actions_);
    posix_spawn_file_actions_adddup2(&actions_, pipes.toolInput.get(), STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions_, pipes.toolOutput.get(), STDOUT_FILENO);
    posix_spawn_file_actions_addopen(&actions_, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addclosefrom_np(&actions_, STDERR_FILENO + 1);

    posix_spawnattr_init(&attributes_);
    sigset_t none;
    sigset_t all;
    sigemptyset(&none);
    sigfillset(&all);
    posix_spawnattr_setsigmask(&attributes_, &none);
    posix_spawnattr_setsigdefault(&attributes_, &all);
    posix_spawnattr_setpgroup(&attributes_, 0);
    posix_spawnattr_setflags(&attributes_,
                             POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
  }
  ~SpawnSetup() {
    posix_spawn_file_actions_destroy(&actions_);
    posix_spawnattr_destroy(&attributes_);
  }
  SpawnSetup(const SpawnSetup&) = delete;
  SpawnSetup& operator=(const SpawnSetup&) = delete;

  /// The process, or -1.
  pid_t start(const std::vector<std::string>& arguments) const {
    std::vector<char*> words;
    words.reserve(arguments.size() + 1);
    // The interface lacks a const that it keeps.
    for (const std::string& argument : arguments) words.push_back(const_cast<char*>(argument.c_str()));
    words.push_back(nullptr);
    pid_t process = -1;
    return posix_spawnp(&process, words[0], &actions_, &attributes_, words.data(), environ) == 0 ? process
                                                                                                 : -1;
  }

 private:
  posix_spawn_file_actions_t actions_{};
  posix_spawnattr_t attributes_{};
};

/// Moves what can be moved now, and waits for that up to one look.
class Exchange {
 public:
  Exchange(Pipes pipes, const ToolCall& call)
      : pipes_(std::move(pipes)), rest_(call.input), limit_(call.outputLimit) {
    fcntl(pipes_.output.get(), F_SETFL, O_NONBLOCK);
  }

  void step() {
    std::array<pollfd, 2> entries{{{pipes_.output.get(), POLLIN, 0}, {pipes_.input.get(), POLLOUT, 0}}};
    if (rest_.empty()) pipes_.input.close();
    if (rest_.empty()) entries[1].fd = -1;
    poll(entries.data(), entries.size(), static_cast<int>(look.count()));
    if (entries[1].revents != 0) give();
    if (entries[0].revents != 0) take();
  }

  /// What is left in the pipe of a tool that has ended.
  std::string finish() {
    take();
    return std::move(output_);
  }

 private:
  void give() {
    const ssize_t written = send(pipes_.input.get(), rest_.data(), rest_.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    if (written > 0) rest_.remove_prefix(static_cast<std::size_t>(written));
    if (written < 0 && errno != EAGAIN && errno != EINTR) rest_ = {};
  }

  void take() {
    std::array<char, 4096> piece{};
    ssize_t got = 0;
    while ((got = read(pipes_.output.get(), piece.data(), piece.size())) > 0) {
      output_.append(piece.data(), std::min(static_cast<std::size_t>(got), limit_ - output_.size()));
    }
    // Nothing more comes, so nothing wakes the wait for it.
    if (got == 0) pipes_.output.close();
  }

  Pipes pipes_;
  std::string_view rest_;
  std::size_t limit_;
  std::string output_;
};

void killGroup(pid_t process) {
  kill(-process, SIGKILL);
  int status = 0;
  const auto end = SystemClock::now() + killPatience;
  while (waitpid(process, &status, WNOHANG) == 0 && SystemClock::now() < end)
    std::this_thread::sleep_for(milliseconds(1));
}

}  // namespace

std::string toolPath(std::string_view name, std::initializer_list<std::string_view> places) {
  const char* folder = std::getenv("TAVEK_TOOL_DIR");
  if (folder != nullptr && *folder != '\0') {
    const fs::path file = fs::path(folder) / name;
    if (isExecutable(file)) return file.string();
  }
  for (const std::string_view place : places) {
    std::error_code ignored;
    if (fs::exists(place, ignored)) return std::string(place);
  }
  return std::string(name);
}

ToolResult runTool(const ToolCall& call, const Flag& stop) {
  ToolResult result;
  auto pipes = openPipes(!call.input.empty());
  if (!pipes || call.arguments.empty() || stop) return result;
  const pid_t process = SpawnSetup(*pipes).start(call.arguments);
  if (process < 0) return result;
  pipes->toolInput.close();
  pipes->toolOutput.close();

  Exchange exchange(std::move(*pipes), call);
  result.end = ToolEnd::Killed;
  const auto end = SystemClock::now() + call.deadline;
  while (!stop && SystemClock::now() < end) {
    exchange.step();
    int status = 0;
    const pid_t ended = waitpid(process, &status, WNOHANG);
    if (ended == 0) continue;
    if (ended == process && WIFEXITED(status)) {
      result.end = ToolEnd::Exited;
      result.status = WEXITSTATUS(status);
    }
    result.output = exchange.finish();
    return result;
  }
  killGroup(process);
  return result;
}

}  // namespace tavek
