// A run of the built program on a stage of its own.
#pragma once

#include <gtest/gtest.h>

#include "rig/stage.h"

namespace tavek {

/// Sanitizers slow the program down; what depends on the machine's speed is then judged mildly.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr bool sanitized = true;
#else
inline constexpr bool sanitized = false;
#endif

/// A tolerance in time.
constexpr double mild(double tolerance) {
  return sanitized ? tolerance * 30 : tolerance;
}

struct ProgramTest : testing::Test {
  std::filesystem::path at(const std::string& name) const { return stage.library.path() / name; }
  std::filesystem::path film(const std::string& name) const { return at("movies") / name; }
  /// Copies the clip into the library.
  std::filesystem::path addTo(const std::string& name, const rig::Clip& clip);
  std::filesystem::path add(const std::string& name, const rig::Clip& clip) {
    return addTo("movies/" + name, clip);
  }
  /// In a folder of the library; the words are ImageMagick's.
  void addPicture(const std::string& name, const char* size, const char* words);
  void start(std::vector<std::string> arguments, const rig::Environment& changes = {});
  /// Waits for a number from `from` up to `to`, and gives the window the focus for the keys that follow.
  bool waitForNumber(int from, int to = 1 << 16, double seconds = 10);
  /// Signs of a normal end: in time, with status 0 and not a word beside what the start says.
  void expectEnd(double seconds, bool silent = true);

  rig::Stage stage;
  rig::Watch watch{stage.screen};
  std::unique_ptr<rig::Program> program;
};

}  // namespace tavek
