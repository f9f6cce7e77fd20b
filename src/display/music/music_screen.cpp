#include "display/music/music_screen.h"

#include <algorithm>
#include <array>
#include <iomanip>
#include <iostream>
#include <utility>

#include "base/process_flags.h"
#include "display/toolkit/texture.h"
#include "library/backdrop.h"

namespace tavek {
namespace {

/// Pictures may be put beside the song while it plays.
constexpr Uint64 searchAgainMs = 2000;

struct KeyCode {
  SDL_Keycode key;
  NavCode code;
};

/// Up and down step the track, and left and right are dead.
constexpr std::array keys{
    KeyCode{SDLK_RETURN, NavCode::OpenPosters},
    KeyCode{SDLK_KP_ENTER, NavCode::OpenPosters},
    KeyCode{SDLK_DOWN, NavCode::SeekForward},
    KeyCode{SDLK_UP, NavCode::SeekBackward},
    KeyCode{SDLK_AUDIOFASTFORWARD, NavCode::SeekForward},
    KeyCode{SDLK_AUDIOREWIND, NavCode::SeekBackward},
};

/// The place of a picture that covers the window.
SDL_Rect coveringRect(SDL_Point window, SDL_Point picture) {
  const double scale =
      std::max(static_cast<double>(window.x) / picture.x, static_cast<double>(window.y) / picture.y);
  const int width = static_cast<int>(picture.x * scale);
  const int height = static_cast<int>(picture.y * scale);
  return {(window.x - width) / 2, (window.y - height) / 2, width, height};
}

}  // namespace

Meaning MusicScreen::key(const KeyPress& press, const FocusFacts& /*facts*/, Uint64 /*nowMs*/) {
  const auto* entry = std::ranges::find(keys, press.key, &KeyCode::key);
  return press.down && entry != keys.end() ? Meaning(entry->code) : Meaning(Unhandled());
}

void MusicScreen::follow(const FrameContext& frame, const Facts& facts) {
  static const std::filesystem::path none;
  playing_.follow(facts.playing);
  // Over the album that plays, the strip tells of the song.
  const bool otherAlbum =
      plays() && !facts.browsed.empty() && facts.browsed.parent_path() != facts.playing.parent_path();
  browsed_.follow(otherAlbum ? facts.browsed : none);
  stripShown_ = facts.stripShown;
  edge_ = facts.edge;
  refreshBackdrop(frame);
}

/// That of the album on the strip, else of the song.
void MusicScreen::refreshBackdrop(const FrameContext& frame) {
  while (auto found = search_.take()) take(std::move(*found), frame);
  backdrop_.take(frame.renderer);
  if (!plays()) return dropBackdrop();
  const auto& source = browsed_.track().empty() ? playing_.track() : browsed_.track();
  const bool same = source.native() == searchedFor_.native();
  if (same && (search_.running() || frame.nowMs < searchedAt_ + searchAgainMs)) return;
  if (!same) searchedFor_ = source;
  searchedAt_ = frame.nowMs;
  search_.start([track = source](JobSide<Found>& side) {
    const auto file = findBackdrop(track);
    side.post(file ? Found{fileStateOf(*file), findAlbumLogo(track).value_or("")} : Found());
  });
}

void MusicScreen::take(Found found, const FrameContext& frame) {
  albumArtPath_ = std::move(found.albumArt);
  if (!found.backdrop) return backdrop_.drop();
  if (!backdrop_.want(*found.backdrop, {frame.width, frame.height}, Fit::Cover) || !debugEnabled) return;
  std::cout << "[music] backdrop: " << std::quoted(found.backdrop->path.string()) << std::endl;
}

void MusicScreen::dropBackdrop() {
  if (searchedFor_.empty()) return;
  search_.leave();
  searchedFor_.clear();
  backdrop_.drop();
  albumArtPath_.clear();
}

MusicArt MusicScreen::art() const {
  if (!plays()) return {};
  return {backdrop_.texture(), backdrop_.size(), albumArtPath_,
          restingLines(playing_.track(), playing_.info())};
}

void MusicScreen::drawNowPlaying(const FrameContext& frame) {
  if (!plays()) return;
  if (SDL_Texture* texture = backdrop_.texture()) {
    copyTexture(frame.renderer, texture, coveringRect({frame.width, frame.height}, backdrop_.size()));
  }
  // One text at a time: the strip brings its own.
  if (!stripShown_) playing_.draw(frame, playing_.track(), {.aboveEdge = false, .edge = frame.height});
}

void MusicScreen::draw(const FrameContext& frame, const FocusFacts& /*facts*/) {
  if (!plays() || !stripShown_) return;
  TrackPage& page = browsed_.track().empty() ? playing_ : browsed_;
  page.draw(frame, playing_.track(), {.aboveEdge = true, .edge = edge_});
}

}  // namespace tavek
