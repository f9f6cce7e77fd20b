#pragma once

#include <optional>
#include <string>
#include <vector>

#include <SDL.h>

#include "base/file_state.h"
#include "base/process_flags.h"
#include "display/toolkit/frame_context.h"
#include "library/fan_art.h"
#include "state/media_notes.h"

namespace tavek {

/// What is written over a slide.
struct Caption {
  bool slideGone = false;  ///< its file is not there any more
  bool shown = false;      ///< a series has none
  std::string title;
  std::string year;
  std::string overview;
  std::optional<FileState> logo;
  std::string video;    ///< the film, as far as it is known
  FrameSize videoSize;  ///< 0 if unknown
};

/// Reads the film's folder, and opens the film for its size unless that is noted. Any thread but the main
/// one.
Caption captionFor(const Slide& slide, MediaNotes& notes, const Flag& stop);

/// The texts at full strength, with the logo, if there is a picture of it, in the title's place. Without a
/// size of its own the film's badge is that of `lastSize`.
void drawCaption(const FrameContext& frame, const Caption& caption, SDL_Texture* logo, SDL_Point logoSize,
                 FrameSize lastSize);
/// How large a logo may be.
SDL_Point captionLogoArea(int width, int height);

}  // namespace tavek
