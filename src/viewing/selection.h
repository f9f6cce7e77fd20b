#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "base/background_job.h"

namespace tavek {

class Display;

/// What becomes of the poster that the viewer has picked: a file, or words, or neither.
struct SelectionOutcome {
  std::string consoleLine;
  std::string errorLine;
  std::optional<std::filesystem::path> item;
};

/// Finds the file that plays for the poster selected on the strip. Looking for it may walk folders, so the
/// answer comes later. Main thread only.
class Selection {
 public:
  enum class Loading { StatusLine, ErrorLine };  ///< where "Loading posters..." goes
  explicit Selection(Loading loading) : loading_(loading) {}

  /// A question that is still open is dropped.
  void ask(Display& display);
  /// Once for each answer: the file, after its words are on the screen. None without one, or without an
  /// answer yet.
  std::optional<std::filesystem::path> poll(Display& display);

 private:
  const Loading loading_;
  BackgroundJob<SelectionOutcome> job_;
};

}  // namespace tavek
