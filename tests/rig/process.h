// Programs that a test starts, and the temporary folders in which they live. All waiting has a deadline.
#pragma once

#include <map>
#include <sys/types.h>
#include <vector>

#include "support/temp_folder.h"
#include "support/wait.h"

namespace tavek::rig {

/// Seconds on CLOCK_MONOTONIC: the one clock of all rig measurements.
double now();

/// Lets the time of a measurement go by.
inline void let(double seconds) {
  std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
}

using test::readText;
using test::TempFolder;
using test::waitUntil;
using test::writeText;

using Environment = std::map<std::string, std::string>;

/// One child process, with its standard streams in files (or standard output in a pipe). It sees only the
/// given environment beside PATH and the sanitizers' options, and dies with its owner. Belongs to one thread.
class Program {
 public:
  Program(const std::vector<std::string>& arguments, const Environment& environment, int outputPipe = -1);
  ~Program();

  void signal(int number) const;
  /// True once the process has ended; then the values below are valid.
  bool waitForEnd(double seconds);
  /// Exit status, or minus the number of the signal that ended it.
  int status() const { return status_; }
  double startedAt() const { return startedAt_; }
  long peakKilobytes() const { return peakKilobytes_; }
  /// CPU time of all threads so far, or in all after the end.
  double cpuSeconds() const;
  std::string output() const { return readText(folder_.path() / "out"); }
  std::string errors() const { return readText(folder_.path() / "err"); }

 private:
  static constexpr int running = -1000;

  TempFolder folder_;
  pid_t id_ = -1;
  int status_ = running;
  double startedAt_ = 0, cpuSeconds_ = 0;
  long peakKilobytes_ = 0;
};

}  // namespace tavek::rig
