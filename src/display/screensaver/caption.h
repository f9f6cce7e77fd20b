#pragma once

#include <array>
#include <filesystem>
#include <string>
#include <variant>
#include <vector>

#include <SDL.h>

#include "base/background_job.h"
#include "display/toolkit/background_image.h"
#include "display/toolkit/frame_context.h"
#include "library/fan_art.h"
#include "state/media_notes.h"

namespace tavek {

/// What is told of a slide's film.
struct CaptionFacts {
  bool slideThere = true;  ///< its file still exists
  bool series = false;     ///< series have no caption
  TitleYear name;
  std::string overview;
  std::filesystem::path logo;  ///< empty without one
};
/// The facts, and the film's file for its size. Reads the disk until `stop` is set.
std::pair<CaptionFacts, std::filesystem::path> captionFactsOf(const Slide& slide, const Flag& stop);
/// Of a film's picture, as its container tells; {0, 0} if that can't be opened.
FrameSize filmSize(const std::filesystem::path& film, const Flag& stop);

/// The words over a slide: its film's logo or title, year, size and story. Worked out in the background.
/// Main thread only.
class Caption {
 public:
  /// The notes outlive all jobs.
  explicit Caption(MediaNotes& notes) : notes_(notes) {}

  /// Once per pass. `showing` tells one showing of the slide from the next. True if there is something new to
  /// draw.
  bool follow(const FrameContext& frame, const Slide* slide, Uint64 showing);
  /// `lastPicture`: of what played last, in place of a film's size that is not known.
  void draw(const FrameContext& frame, SDL_Point lastPicture);
  void drop();
  /// The slide's file is gone.
  bool slideGone() const { return known_ && !facts_.slideThere; }

 private:
  using Message = std::variant<CaptionFacts, FrameSize>;
  struct Fonts;
  void ask(const Slide& slide);
  bool take(const FrameContext& frame);
  void layOut(const FrameContext& frame, const Fonts& fonts);

  MediaNotes& notes_;
  BackgroundJob<Message> job_;
  std::string slide_;   ///< whose caption it is
  Uint64 showing_ = 0;  ///< of it
  bool known_ = false;  ///< the facts are here
  CaptionFacts facts_;
  SDL_Point filmSize_{};
  BackgroundImage logo_;
  std::vector<std::string> lines_;  ///< of the overview
  SDL_Point linesFor_{};            ///< the window that they were broken for
};

}  // namespace tavek
