// The poster strip over the picture: its keys, its way in and out, and what Enter means on it.
#include <algorithm>

#include "display/display.h"
#include "display/strip/strip_layout.h"
#include "display/strip/strip_view.h"
#include "library/file_types.h"
#include "library/media_paths.h"

namespace tavek {
namespace {

/// Textures made in one frame: a screenful at first, then few, so that a film behind stays smooth.
constexpr int posterTarget = static_cast<int>(postersOnScreen);
constexpr int posterBatch = 4;

}  // namespace

void Display::openPosterFolder(const std::filesystem::path& path) {
  // Nothing may change under a strip that is on the screen.
  if (flags_.strip.visible && !posters_.isOpen(path)) {
    pendingFolder_ = path;
    hideStrip();
    return;
  }
  posters_.openPosterFolder(screen_.renderer(), path);
}

void Display::openRoomOf(const std::filesystem::path& file) {
  const auto room = roomRootOf(file);
  if (room && !isInside(posters_.openFolder(), *room)) openPosterFolder(*room);
}

void Display::takePendingPosters(int height, int count) {
  posters_.takePendingPosters(screen_.renderer(), height, count);
}

void Display::showStrip() {
  if (!flags_.strip.visible) letterBar_.reset();
  if (!currentVideo_.empty()) posters_.selectPosterFor(currentVideo_);
  flags_.selectionSettling = true;
  if (flags_.strip.visible) return;
  letterBar_.arm();
  if (flags_.homeMode || (selectedPoster() == nullptr && !posters_.list().empty())) posters_.selectPoster(0);
  flags_.strip = {
      .visible = true, .open = true, .sliding = true, .slidingIn = true, .slideAt = clock_.ticksMs()};
  updateHoldWrites();
}

void Display::hideStrip() {
  if (!flags_.strip.shown()) return;
  flags_.strip = {.visible = true, .sliding = true, .slideAt = clock_.ticksMs()};
  letterBar_.reset();
  updateHoldWrites();
}

void Display::dropStrip() {
  flags_.strip = {};
  letterBar_.reset();
  updateHoldWrites();
}

/// The state file is written when the strip has come to rest below the screen.
void Display::updateHoldWrites() {
  stored_.settings.holdWrites(flags_.strip.shown() || flags_.strip.sliding);
}

void Display::advanceStrip(Uint64 nowMs) {
  StripState& strip = flags_.strip;
  const double reveal = stripReveal(strip, nowMs);
  if (!strip.sliding || (strip.slidingIn ? reveal < 1 : reveal > 0)) return;
  strip.sliding = false;
  if (strip.slidingIn) return;
  dropStrip();
  if (!pendingFolder_) return;
  openPosterFolder(*std::exchange(pendingFolder_, std::nullopt));
  if (!flags_.videoPlaying) showStrip();
}

void Display::drawPosters(const FrameContext& frame) {
  topUpPosters();
  posters_.dropBadTextures(frame.nowMs);
  letterBar_.draw(frame);
  const Poster* poster = selectedPoster();
  const bool labelled = flags_.tvRoom() && poster != nullptr;
  drawStrip(frame, flags_.strip, posters_,
            {.label = labelled ? stripLabel(seriesDepth(posters_.openFolder()), poster->path) : "",
             .error = statusLines_.errorLine()});
}

void Display::topUpPosters() {
  const int missing = posterTarget - static_cast<int>(posters_.list().size());
  takePendingPosters(posterHeight, missing > 0 ? missing : posterBatch);
}

const Poster* Display::selectedPoster() const {
  const int selected = posters_.selectedPoster();
  return selected < 0 ? nullptr : &posters_.list()[static_cast<std::size_t>(selected)];
}

const Poster* Display::watchedToggleTarget() const {
  const bool episodes = flags_.tvRoom() && seriesDepth(posters_.openFolder()) > 1;
  return flags_.strip.shown() && episodes ? selectedPoster() : nullptr;
}

void Display::moveOnStrip(Direction direction, Uint64 nowMs) {
  const bool sideways = direction == Direction::Left || direction == Direction::Right;
  if (sideways) {
    clearError();
    const int delta = direction == Direction::Left ? -1 : +1;
    if (letterBar_.open()) {
      letterBar_.step(delta);
      jumpToTyped();
    } else {
      moveSelection(delta);
      letterBar_.arm();
    }
  } else if (direction == Direction::Up) {
    stepUp(nowMs);
  } else if (letterBar_.open()) {
    letterBar_.close(nowMs);
  } else {
    letterBar_.disarm();
  }
}

/// The first step up only arms the bar, so that it does not open by chance.
void Display::stepUp(Uint64 nowMs) {
  if (letterBar_.open()) return;
  if (!letterBar_.armed()) return letterBar_.arm();
  const Poster* poster = selectedPoster();
  // By its title: many a poster's file is just called poster.jpg.
  letterBar_.openAt(poster != nullptr ? poster->key.raw : "", nowMs);
  jumpToTyped();
}

void Display::moveSelection(int delta) {
  if (posters_.list().empty()) return;
  posters_.selectPoster(std::max(posters_.selectedPoster() + delta, 0));
  flags_.selectionSettling = false;
}

void Display::type(char character) {
  if (!letterBar_.open()) return;
  letterBar_.type(character);
  jumpToTyped();
}

void Display::jumpToTyped() {
  posters_.jumpToTyped(letterBar_.typedText());
}

NavCode Display::selectionAction() {
  if (flags_.musicWithAudio()) return NavCode::ClosePosters;
  if (flags_.roomKind == MediaKind::Music) return NavCode::None;
  if (flags_.tvRoom() && enterSelection()) return NavCode::None;
  return selectedPoster() != nullptr ? NavCode::PlaySelection : NavCode::None;
}

bool Display::enterSelection() {
  const Poster* poster = selectedPoster();
  if (poster == nullptr || isVideoFile(poster->path) || seriesDepth(posters_.openFolder()) > 1) return false;
  const std::filesystem::path parent = poster->path.parent_path();
  std::error_code ignored;
  if (!std::filesystem::is_directory(parent, ignored) || !seriesRootOf(parent)) return false;
  openPosterFolder(parent);
  showStrip();
  return true;
}

/// A level up in a series; at the level of the room out of the strip.
NavCode Display::leaveFolder() {
  if (!flags_.tvRoom() || seriesDepth(posters_.openFolder()) < 1) return NavCode::ClosePosters;
  openPosterFolder(posters_.openFolder().parent_path());
  showStrip();
  return NavCode::None;
}

}  // namespace tavek
