#include "rig/process.h"

#include <fcntl.h>
#include <signal.h>
#include <stdexcept>
#include <string_view>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

extern char** environ;

namespace tavek::rig {
namespace {

double seconds(const timeval& time) {
  return double(time.tv_sec) + double(time.tv_usec) / 1e6;
}

std::vector<std::string> childEnvironment(const Environment& given) {
  std::vector<std::string> lines;
  for (char** entry = environ; *entry != nullptr; ++entry) {
    const std::string_view line = *entry, name = line.substr(0, line.find('='));
    if (name == "PATH" || name.ends_with("SAN_OPTIONS")) lines.emplace_back(line);
  }
  for (const auto& [name, value] : given) lines.push_back(name + "=" + value);
  return lines;
}

std::vector<char*> pointers(std::vector<std::string>& texts) {
  std::vector<char*> result;
  for (std::string& text : texts) result.push_back(text.data());
  result.push_back(nullptr);
  return result;
}

}  // namespace

double now() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

Program::Program(const std::vector<std::string>& arguments, const Environment& environment, int outputPipe) {
  std::vector<std::string> words = arguments, variables = childEnvironment(environment);
  const std::vector<char*> argv = pointers(words), envp = pointers(variables);
  const std::string out = folder_.path() / "out", err = folder_.path() / "err";
  startedAt_ = now();
  id_ = fork();
  if (id_ == 0) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    const int mode = O_WRONLY | O_CREAT | O_TRUNC;
    dup2(open("/dev/null", O_RDONLY), 0);
    dup2(outputPipe >= 0 ? outputPipe : open(out.c_str(), mode, 0600), 1);
    dup2(open(err.c_str(), mode, 0600), 2);
    closefrom(3);
    execvpe(argv[0], argv.data(), envp.data());
    _exit(127);
  }
  if (id_ < 0) throw std::runtime_error("cannot start " + words[0]);
}

Program::~Program() {
  signal(SIGKILL);
  waitForEnd(10);
}

void Program::signal(int number) const {
  if (status_ == running) kill(id_, number);
}

bool Program::waitForEnd(double limit) {
  if (status_ != running) return true;
  int result = 0;
  rusage usage{};
  if (!waitUntil(limit, [&] { return wait4(id_, &result, WNOHANG, &usage) == id_; })) return false;
  status_ = WIFEXITED(result) ? WEXITSTATUS(result) : -WTERMSIG(result);
  cpuSeconds_ = seconds(usage.ru_utime) + seconds(usage.ru_stime);
  peakKilobytes_ = usage.ru_maxrss;
  return true;
}

double Program::cpuSeconds() const {
  if (status_ != running) return cpuSeconds_;
  clockid_t clock{};
  timespec time{};
  if (clock_getcpuclockid(id_, &clock) != 0 || clock_gettime(clock, &time) != 0) return 0;
  return double(time.tv_sec) + double(time.tv_nsec) / 1e9;
}

}  // namespace tavek::rig
