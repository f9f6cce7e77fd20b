#pragma once

#include <filesystem>
#include <optional>

#include <SDL.h>

#include "base/background_job.h"
#include "base/file_state.h"
#include "display/music/track_page.h"
#include "display/toolkit/background_image.h"
#include "display/toolkit/layer.h"
#include "display/toolkit/music_art.h"

namespace tavek {

/// What a song shows in place of a picture: a backdrop from the folders above it, what its tags tell, and the
/// tracks of its album. While the strip is up in a music room it tells of the album selected there.
class MusicScreen final : public Layer {
 public:
  /// What the other screens show.
  struct Facts {
    const std::filesystem::path& playing;  ///< the song; empty while none is on the screen
    const std::filesystem::path& browsed;  ///< the track that the strip stands on; empty without one
    bool stripShown = false;
    int edge = 0;  ///< the upper one of the posters, or the window's lower one
  };

  bool owns(FocusName focus) const override { return focus == FocusName::Music; }
  Meaning key(const KeyPress& press, const FocusFacts& facts, Uint64 nowMs) override;
  Meaning move(Direction, const FocusFacts&, Uint64) override { return Unhandled(); }
  bool repeats(const FocusFacts&) const override { return false; }
  /// The text of the strip's album, over the strip.
  void draw(const FrameContext& frame, const FocusFacts& facts) override;
  void destroyTextures() override { backdrop_.drop(); }

  /// Once per frame, before anything is drawn.
  void follow(const FrameContext& frame, const Facts& facts);
  /// For the screensaver; nothing without a song.
  MusicArt art() const;
  /// Over the picture of a song.
  void drawNowPlaying(const FrameContext& frame);
  /// It hides all of the picture.
  bool covers() const { return plays() && backdrop_.texture() != nullptr; }

 private:
  bool plays() const { return !playing_.track().empty(); }
  /// What the search for a song's pictures has come to.
  struct Found {
    std::optional<FileState> backdrop;
    std::filesystem::path albumArt;
  };
  void refreshBackdrop(const FrameContext& frame);
  void dropBackdrop();
  void take(Found found, const FrameContext& frame);

  TrackPage playing_;
  TrackPage browsed_;
  bool stripShown_ = false;
  int edge_ = 0;
  BackgroundImage backdrop_;
  std::filesystem::path albumArtPath_;
  BackgroundJob<Found> search_;
  std::filesystem::path searchedFor_;
  Uint64 searchedAt_ = 0;
};

}  // namespace tavek
