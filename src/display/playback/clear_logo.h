#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include <SDL.h>

#include "base/background_job.h"
#include "base/file_state.h"
#include "display/toolkit/fade.h"
#include "display/toolkit/frame_context.h"
#include "display/toolkit/sdl_handles.h"

namespace tavek {

/// The logo's file for an item: beside it, else in the folder of its show. It has to be there and not empty.
std::optional<std::filesystem::path> clearLogoFor(const std::filesystem::path& video);

/// "Season 2, 05 Pilot" from the name of an episode; empty if the name lacks one of the three parts.
std::string episodeLine(const std::filesystem::path& video);

/// Where a logo of a size lies in a window, made smaller if it has to be but never larger.
SDL_Rect clearLogoRect(int width, int height, SDL_Point logo);
/// The top left corner of the line below the logo.
SDL_Point episodeLinePlace(int width, int height, const SDL_Rect& logo, SDL_Point line);

/// What decides whether the logo shows in a frame.
struct ClearLogoInput {
  bool videoPlaying = false;
  bool videoPaused = false;
  bool homeMode = false;
  bool stripOn = false;  ///< the poster strip in any state but closed
};

/// The logo of what stands on the screen, over a paused picture or above the poster strip.
class ClearLogo {
 public:
  /// Has the logo of the item looked for and decoded in the background: at once for a new item, then twice a
  /// second until there is one. A file that can't be read is tried again once it has changed; nothing is
  /// reported.
  void follow(SDL_Renderer* renderer, const std::filesystem::path& currentVideo, Uint64 nowMs);
  void drop();
  bool loaded() const { return texture_ != nullptr; }
  /// Keeps the logo away while the picture fades out.
  void setSuppressed(bool suppressed) { suppressed_ = suppressed; }
  void draw(const FrameContext& frame, const ClearLogoInput& input,
            const std::filesystem::path& currentVideo);

 private:
  /// What the search has come to.
  struct Found {
    FileState file;  ///< without a path if there is none
    std::shared_ptr<SDL_Surface> picture;
  };
  static Found look(const std::filesystem::path& video, const FileState& loaded, const FileState& unreadable);
  void take(SDL_Renderer* renderer, Found found);
  void drawEpisodeLine(const FrameContext& frame, const SDL_Rect& logo, std::uint8_t alpha,
                       const std::filesystem::path& currentVideo) const;

  TexturePtr texture_;
  SDL_Point size_{};
  BackgroundJob<Found> search_;
  std::filesystem::path video_;  ///< whose logo it is, or is looked for
  Uint64 searchedAt_ = 0;
  FileState source_;
  FileState unreadable_;  ///< the last file that failed, so that it isn't decoded in every frame
  FadePair fade_;
  bool suppressed_ = false;
};

}  // namespace tavek
