#include "display/strip/strip.h"

#include <algorithm>
#include <system_error>
#include <utility>

#include "display/strip/strip_layout.h"
#include "display/strip/strip_view.h"
#include "display/toolkit/key_input.h"
#include "library/file_types.h"
#include "library/media_paths.h"

namespace tavek {
namespace {

/// Textures made in one frame: a screenful at first, then few, so that a film behind stays smooth.
constexpr int posterTarget = static_cast<int>(postersOnScreen);
constexpr int posterBatch = 4;

bool isTyped(SDL_Keycode key) {
  return key == SDLK_BACKSPACE || (key >= SDLK_SPACE && key < SDLK_DELETE);
}

}  // namespace

// --- Keys ---

constexpr Strip::Key Strip::keys[] = {
    {SDLK_AC_SEARCH, &Strip::startVoice}, {SDLK_AC_BACK, &Strip::back},      {SDLK_ESCAPE, &Strip::close},
    {SDLK_RETURN, &Strip::activate},      {SDLK_KP_ENTER, &Strip::activate},
};

Meaning Strip::key(const KeyPress& press, const FocusFacts& facts, Uint64 nowMs) {
  if (!press.down) return Unhandled();
  if (const auto direction = directionOf(press.key)) return move(*direction, facts, nowMs);
  const auto* entry = std::ranges::find(keys, press.key, &Key::key);
  if (entry != std::end(keys)) return (this->*entry->serve)(facts, nowMs);
  if (!isTyped(press.key)) return Unhandled();
  type(static_cast<char>(press.key), nowMs);
  return Handled();
}

/// In the letters too, since remotes often send no repeats of their own.
bool Strip::repeats(const FocusFacts& facts) const {
  return owns(focusOf(facts)) && (!selectionSettling_ || letterBar_.open());
}

Meaning Strip::move(Direction direction, const FocusFacts& /*facts*/, Uint64 nowMs) {
  switch (direction) {
    case Direction::Left:
      moveSideways(-1, nowMs);
      break;
    case Direction::Right:
      moveSideways(+1, nowMs);
      break;
    case Direction::Up:
      moveUp(nowMs);
      break;
    case Direction::Down:
      letterBar_.open() ? letterBar_.close(nowMs) : letterBar_.disarm();
      break;
  }
  return Handled();
}

void Strip::moveSideways(int delta, Uint64 nowMs) {
  clearError();
  if (letterBar_.open()) {
    letterBar_.step(delta, nowMs);
    return jumpToTyped();
  }
  letterBar_.arm();
  if (posters_.list().empty()) return;
  posters_.selectPoster(std::max(posters_.selectedPoster() + delta, 0));
  selectionSettling_ = false;
}

/// The first step up only arms the bar, so that it does not open by chance.
void Strip::moveUp(Uint64 nowMs) {
  if (letterBar_.open()) return;
  if (!letterBar_.armed()) return letterBar_.arm();
  const Poster* poster = selectedPoster();
  // By its title: many a poster's file is just called poster.jpg.
  letterBar_.openAt(poster != nullptr ? poster->key.raw : "", nowMs);
  jumpToTyped();
}

void Strip::type(char character, Uint64 nowMs) {
  if (!letterBar_.open()) return;
  letterBar_.type(character, nowMs);
  jumpToTyped();
}

void Strip::jumpToTyped() {
  posters_.jumpToTyped(letterBar_.typedText());
}

Meaning Strip::startVoice(const FocusFacts& /*facts*/, Uint64 /*nowMs*/) {
  return NavCode::VoiceStart;
}

Meaning Strip::close(const FocusFacts& /*facts*/, Uint64 /*nowMs*/) {
  return NavCode::ClosePosters;
}

/// A level up in a series; at the level of the room out of the strip.
Meaning Strip::back(const FocusFacts& facts, Uint64 nowMs) {
  if (facts.roomKind != MediaKind::Series || seriesDepth(posters_.openFolder()) < 1)
    return NavCode::ClosePosters;
  openPosterFolder(nullptr, posters_.openFolder().parent_path(), nowMs);
  return Handled();
}

Meaning Strip::activate(const FocusFacts& facts, Uint64 nowMs) {
  if (facts.musicWithAudio()) return NavCode::ClosePosters;
  if (facts.roomKind == MediaKind::Music) return Handled();
  if (facts.roomKind == MediaKind::Series && enterSelection(nowMs)) return Handled();
  return selectedPoster() != nullptr ? Meaning(NavCode::PlaySelection) : Meaning(Handled());
}

bool Strip::enterSelection(Uint64 nowMs) {
  const Poster* poster = selectedPoster();
  if (poster == nullptr || isVideoFile(poster->path) || seriesDepth(posters_.openFolder()) > 1) return false;
  const std::filesystem::path parent = poster->path.parent_path();
  std::error_code ignored;
  if (!std::filesystem::is_directory(parent, ignored) || !seriesRootOf(parent)) return false;
  openPosterFolder(nullptr, parent, nowMs);
  return true;
}

// --- Its way in and out ---

void Strip::openPosterFolder(SDL_Renderer* renderer, const std::filesystem::path& path, Uint64 nowMs) {
  // Nothing may change under a strip that is on the screen.
  if (state_.visible && !posters_.isOpen(path)) {
    pendingFolder_ = path;
    return hide(nowMs);
  }
  posters_.openPosterFolder(renderer, path);
}

void Strip::followChange(SDL_Renderer* renderer) {
  posters_.followChange(renderer, posterHeight, posterBatch);
}

void Strip::show(const std::filesystem::path& currentVideo, bool fromHome, Uint64 nowMs) {
  // On its way out it does not jump to another poster.
  if (state_.visible && state_.sliding && !state_.slidingIn) return;
  if (!state_.visible) letterBar_.reset();
  if (!currentVideo.empty()) posters_.selectPosterFor(currentVideo);
  selectionSettling_ = true;
  if (state_.visible) return;
  letterBar_.arm();
  if (fromHome || (selectedPoster() == nullptr && !posters_.list().empty())) posters_.selectPoster(0);
  state_ = {.visible = true, .open = true, .sliding = true, .slidingIn = true, .slideAt = nowMs};
  updateHoldWrites();
}

void Strip::hide(Uint64 nowMs) {
  if (!state_.visible) return;
  state_ = {.visible = true, .sliding = true, .slideAt = nowMs};
  letterBar_.reset();
  updateHoldWrites();
}

void Strip::drop() {
  state_ = {};
  letterBar_.reset();
  updateHoldWrites();
}

/// The state file is written when the strip has come to rest below the screen.
void Strip::updateHoldWrites() {
  stored_.settings.holdWrites(state_.visible || state_.sliding);
}

bool Strip::endSlide(SDL_Renderer* renderer, const std::filesystem::path& currentVideo, bool slideIn,
                     Uint64 nowMs) {
  letterBar_.forgetTyped(nowMs);
  const double reveal = stripReveal(state_, nowMs);
  if (!state_.sliding || (state_.slidingIn ? reveal < 1 : reveal > 0)) return false;
  state_.sliding = false;
  if (state_.slidingIn) return false;
  drop();
  if (!pendingFolder_) return false;
  openPosterFolder(renderer, *std::exchange(pendingFolder_, std::nullopt), nowMs);
  if (slideIn) show(currentVideo, false, nowMs);
  return slideIn;
}

// --- What it shows ---

const Poster* Strip::selectedPoster() const {
  const int selected = posters_.selectedPoster();
  return selected < 0 ? nullptr : &posters_.list()[static_cast<std::size_t>(selected)];
}

const Poster* Strip::watchedToggleTarget(MediaKind roomKind) const {
  const Poster* poster = selectedPoster();
  const bool episode = poster != nullptr && roomKind == MediaKind::Series && isVideoFile(poster->path);
  return state_.visible && episode ? poster : nullptr;
}

int Strip::top(const FrameContext& frame) const {
  return static_cast<int>(stripTop(frame.height, stripReveal(state_, frame.nowMs)));
}

void Strip::draw(const FrameContext& frame, const FocusFacts& facts) {
  if (facts.chooserOpen || (!state_.visible && !state_.sliding)) return;
  const int missing = posterTarget - static_cast<int>(posters_.list().size());
  posters_.takePendingPosters(frame.renderer, posterHeight, missing > 0 ? missing : posterBatch);
  posters_.dropBadTextures(frame.nowMs);
  letterBar_.draw(frame);
  const Poster* poster = selectedPoster();
  const bool labelled = facts.roomKind == MediaKind::Series && poster != nullptr;
  drawStrip(frame, state_, posters_,
            {.label = labelled ? stripLabel(seriesDepth(posters_.openFolder()), poster->path) : "",
             .error = errorLine_});
}

}  // namespace tavek
