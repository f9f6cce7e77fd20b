#include "display/display.h"

#include <array>

#include "base/background_job.h"
#include "base/paths.h"
#include "base/process_flags.h"
#include "display/strip/strip_layout.h"
#include "library/file_types.h"
#include "library/match_key.h"
#include "library/media_paths.h"

namespace tavek {
namespace {

constexpr std::chrono::milliseconds passTime{16};

}  // namespace

Display::Display(int x, int y, int width, int height, Orientation orientation, const Stored& stored,
                 Clock& clock)
    : clock_(clock),
      playback_(orientation),
      screen_({x, y, width, height}, playback_.picture()),
      strip_(stored),
      home_(stored),
      screensaver_(stored.notes),
      settings_(stored.settings) {}

Display::~Display() {
  for (Layer* layer : layers_) layer->destroyTextures();
  // A loader that hangs in a dead disk holds a font, whose library has to stay until the process ends.
  if (!joinLeftThreads(std::chrono::milliseconds(100))) screen_.keepLibraries();
}

// --- Drawing ---

void Display::presentFrame(const PictureView& picture, std::int64_t positionUs) {
  if (!usable() || picture.width < 1 || picture.height < 1) return;
  screensaver_.setLastPicture({picture.width, picture.height});
  const FrameContext frame = frameContext();
  strip_.endSlide(frame.renderer, playback_.currentVideo(), !playback_.videoPlaying(), frame.nowMs);
  const FocusFacts facts = focusFacts();
  if (presentScreensaver(frame, facts)) return;
  playback_.picture().visibility = screensaver_.videoVisibility();
  if (!playback_.drawPicture(frame, facts, picture, positionUs)) return;
  for (Layer* layer : layers_) {
    // That lies over the words too.
    if (layer != &screensaver_) layer->draw(frame, facts);
  }
  SDL_SetRenderDrawBlendMode(frame.renderer, SDL_BLENDMODE_NONE);
  SDL_SetRenderDrawColor(frame.renderer, 0, 0, 0, SDL_ALPHA_OPAQUE);
  if (!facts.videoPlaying) statusLines_.draw(frame, facts.homeMode);
  screensaver_.draw(frame, facts);
  SDL_RenderPresent(renderer());
}

void Display::presentBlank() {
  static constexpr std::array<std::uint8_t, 4> luma{};
  static constexpr std::uint8_t chroma = 128;
  presentFrame({.planes = {luma.data(), &chroma, &chroma}, .pitches = {2, 1, 1}, .width = 2, .height = 2}, 0);
}

FrameContext Display::frameContext() const {
  FrameContext frame{.renderer = screen_.renderer(), .baseFont = screen_.baseFont()};
  SDL_GetWindowSize(screen_.window(), &frame.width, &frame.height);
  frame.nowMs = clock_.ticksMs();
  return frame;
}

// --- The item ---

void Display::alignWithItem(const std::filesystem::path& path) {
  playback_.setItem(path, isAudioFile(path));
  strip_.posters().selectPosterFor(path);
}

void Display::setVideoPlaying(bool playing) {
  // The tracks of an album follow each other by themselves.
  if (playback_.setVideoPlaying(playing) && !playback_.audioItem()) screensaver_.touch(clock_.ticksMs());
  if (!playing) return;
  home_.endFadeIn();
  strip_.forgetPendingFolder();
  if (strip_.any()) strip_.drop();
}

void Display::setVideoPaused(bool paused) {
  if (playback_.setVideoPaused(paused, clock_.ticksMs())) screensaver_.touch(clock_.ticksMs());
}

void Display::showSeekBar() {
  playback_.showSeekBar(clock_.ticksMs());
  strip_.drop();
}

// --- Posters ---

void Display::openPosterFolder(const std::filesystem::path& path) {
  strip_.openPosterFolder(renderer(), path, clock_.ticksMs());
}

void Display::openRoomOf(const std::filesystem::path& file) {
  const auto room = roomRootOf(file);
  if (room && !isInside(posters().openFolder(), *room)) openPosterFolder(*room);
}

void Display::takePendingPosters(int height, int count) {
  strip_.posters().takePendingPosters(renderer(), height, count);
}

void Display::showStrip() {
  strip_.show(playback_.currentVideo(), home_.homeMode(), clock_.ticksMs());
}

// --- The screensaver ---

void Display::startScreensaver(Uint64 nowMs) {
  screensaver_.start(nowMs);
  for (const std::filesystem::path& room : home_.rooms()) {
    if (const auto kind = knownKind(room)) requestScans(idleScans_, scanRequests_, room, *kind, nowMs);
  }
}

SlideSources Display::slideSources() {
  const std::filesystem::path current = currentFolder();
  const std::filesystem::path other = otherSlideFolder(current, home_.rooms());
  SlideSources sources{{current}, strip_.posters().titles()};
  if (other != current) sources.folders.push_back(other);
  return sources;
}

/// While nothing shows through it, it is all that is drawn, and that only when it changes.
bool Display::presentScreensaver(const FrameContext& frame, const FocusFacts& facts) {
  const int missing = static_cast<int>(postersOnScreen) - static_cast<int>(posters().list().size());
  if (screensaver_.on() && missing > 0) takePendingPosters(posterHeight, missing);
  if (facts.audioItem && screensaver_.on()) screensaver_.setMusicArt(shownMusicArt());
  if (!screensaver_.full()) return false;
  if (screensaver_.drawAlone(frame, facts)) SDL_RenderPresent(frame.renderer);
  return true;
}

/// A track without a title shows its file's name.
MusicArt Display::shownMusicArt() const {
  MusicArt art = musicArt_;
  if (art.lines.front().empty()) art.lines.front() = playback_.currentVideo().stem().string();
  return art;
}

/// Nothing is saved while something moves on the screen.
void Display::updateHoldWrites() {
  const bool hold = strip_.holdsWrites() || screensaver_.holdsWrites();
  if (std::exchange(writesHeld_, hold) != hold) settings_.holdWrites(hold);
}

// --- Home and rooms ---

void Display::goHome(bool refresh) {
  home_.closeChooser();
  screensaver_.end(clock_.ticksMs());
  strip_.drop();
  strip_.forgetTyped();
  strip_.forgetPendingFolder();
  strip_.clearError();
  setVideoPlaying(false);
  playback_.reset();
  home_.arrive(clock_.ticksMs());
  openRoom(home_.room());
  Posters& posters = strip_.posters();
  posters.clearSelection();
  if (refresh && posters.list().empty()) openPosterFolder(currentFolder());
  posters.waitForTitle(posterTitleKey(mediaRoot() / (home_.activeUser() + ".jpg")));
}

void Display::openChooser() {
  carryOut(home_.openChooser(playback_.videoPlaying()));
}

void Display::runChooser() {
  // What was pressed on the way home counts.
  if (!home_.chooserOpen()) openChooser();
  while (usable() && home_.chooserOpen() && !quitRequested) {
    pollInput();
    presentHome();
    clock_.sleepFor(passTime);
  }
}

void Display::presentHome() {
  FrameContext frame = frameContext();
  SDL_GetRendererOutputSize(renderer(), &frame.width, &frame.height);
  const FocusFacts facts = focusFacts();
  if (presentScreensaver(frame, facts)) return;
  SDL_SetRenderDrawColor(renderer(), 0, 0, 0, SDL_ALPHA_OPAQUE);
  SDL_RenderClear(renderer());
  home_.draw(frame, facts);
  statusLines_.draw(frame, home_.homeMode());
  screensaver_.draw(frame, facts);
  SDL_RenderPresent(renderer());
}

/// Its posters are listed behind the home screen, for the user who is the active one now.
void Display::openRoom(const std::filesystem::path& room) {
  roomKind_ = seriesRootOf(room) ? MediaKind::Series : knownKind(room).value_or(MediaKind::Movies);
  strip_.posters().openPosterFolder(renderer(), room);
  refreshWatchedBits();
}

/// From the home screen to the posters.
void Display::enterRoom(const std::filesystem::path& room) {
  selectRoomForPath(room);
  if (room != posters().openFolder() || posters().list().empty()) openPosterFolder(room);
  refreshWatchedBits();
  showStrip();
}

void Display::selectRoomForPath(const std::filesystem::path& path) {
  const auto root = roomRootOf(path);
  roomKind_ = root ? knownKind(*root).value_or(MediaKind::Movies) : MediaKind::Movies;
  if (root) home_.selectRoom(*root);
}

}  // namespace tavek
