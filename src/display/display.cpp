#include "display/display.h"

#include <algorithm>
#include <array>
#include <iostream>
#include <utility>

#include "base/background_job.h"
#include "base/paths.h"
#include "base/process_flags.h"
#include "display/strip/strip_layout.h"
#include "library/file_types.h"
#include "library/match_key.h"
#include "library/media_paths.h"
#include "scan/scan_status.h"

namespace tavek {
namespace {

constexpr std::chrono::milliseconds passTime{16};

}  // namespace

Display::Display(int x, int y, int width, int height, Orientation orientation, const Stored& stored,
                 Clock& clock)
    : stored_(stored),
      clock_(clock),
      playback_(orientation),
      screen_({x, y, width, height}, playback_.picture()),
      strip_(stored),
      home_(stored),
      settings_(stored, [this] { carryOut(home_.followUsers(clock_.ticksMs())); }),
      saver_(stored.notes) {}

Display::~Display() {
  themePlayer_.reset();
  for (Layer* layer : layers_) layer->destroyTextures();
  saver_.destroyTextures();
  // A loader that hangs in a dead disk holds a font, whose library has to stay until the process ends.
  if (!joinLeftThreads(std::chrono::milliseconds(100))) screen_.keepLibraries();
}

// --- Drawing ---

void Display::presentFrame(const PictureView& picture, std::int64_t positionUs) {
  owner_.check();
  if (!usable() || picture.width < 1 || picture.height < 1) return;
  const FrameContext frame = frameContext();
  // A room that was entered from home is silent until the first step into a folder.
  if (strip_.endSlide(frame.renderer, playback_.currentVideo(), !playback_.videoPlaying(), frame.nowMs))
    keepTheme_ = true;
  const FocusFacts facts = focusFacts();
  followMusic(frame, facts);
  if (followScreensaver(frame)) return;
  if (settings_.isOpen()) return presentSettings(frame);
  if (!playback_.drawPicture(frame, picture, positionUs, music_.covers())) return;
  music_.drawNowPlaying(frame);
  playback_.drawOnPicture(frame, facts);
  for (Layer* layer : layers_) layer->draw(frame, facts);
  SDL_SetRenderDrawBlendMode(frame.renderer, SDL_BLENDMODE_NONE);
  SDL_SetRenderDrawColor(frame.renderer, 0, 0, 0, SDL_ALPHA_OPAQUE);
  if (!facts.videoPlaying) statusLines_.draw(frame, facts.homeMode);
  saver_.draw(frame, facts);
  SDL_RenderPresent(renderer());
}

void Display::followMusic(const FrameContext& frame, const FocusFacts& facts) {
  static const std::filesystem::path none;
  const Poster* browsed = facts.roomKind == MediaKind::Music && facts.stripAny ? selectedPoster() : nullptr;
  const bool posters = facts.stripShown && !facts.chooserOpen && !strip_.posters().list().empty();
  music_.follow(frame, {.playing = facts.audioItem ? playback_.currentVideo() : none,
                        .browsed = browsed != nullptr ? browsed->path : none,
                        .stripShown = facts.stripShown,
                        .edge = posters ? strip_.top(frame) : frame.height});
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
  // The songs of an album follow each other by themselves.
  if (playback_.setVideoPlaying(playing) && !playback_.audioItem()) saver_.touch(clock_.ticksMs());
  if (!playing) return;
  home_.endFadeIn();
  strip_.forgetPendingFolder();
  if (strip_.any()) strip_.drop();
}

void Display::setVideoPaused(bool paused) {
  if (playback_.setVideoPaused(paused, clock_.ticksMs())) saver_.touch(clock_.ticksMs());
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

void Display::showStrip(bool keepTheme) {
  keepTheme_ = keepTheme;
  if (!keepTheme) stopTheme();
  strip_.show(playback_.currentVideo(), home_.homeMode(), clock_.ticksMs());
}

// --- Themes ---

PcmDeviceFactory Display::soundThemes(PcmDeviceFactory factory) {
  themePlayer_ = std::make_unique<ThemePlayer>(factory, stored_, clock_);
  return themePlayer_->sharing(std::move(factory));
}

void Display::stopTheme() {
  if (theme_.reset() && themePlayer_) themePlayer_->stopTheme();
}

/// Once per pass: what the strip rests on is to sound.
void Display::tickTheme() {
  if (!keepTheme_ || !themePlayer_) return;
  const Poster* selected = selectedPoster();
  const ThemeChoice::Act act = theme_.follow({.tvRoom = roomKind_ == MediaKind::Series,
                                              .videoPlaying = playback_.videoPlaying(),
                                              .stripAny = strip_.any(),
                                              .selected = selected != nullptr ? &selected->path : nullptr},
                                             clock_.ticksMs());
  if (act == ThemeChoice::Act::Stop) themePlayer_->stopTheme();
  if (act == ThemeChoice::Act::Start)
    themePlayer_->startTheme(theme_.candidate().folder / "theme.mp3", soundMode());
  std::string_view reason = theme_.candidate().reason;
  if (themePlayer_->takeMissing()) reason = themeMissing;
  if (reason.empty()) {
    if (act == ThemeChoice::Act::Start) themeSkipReason_ = {};
    return;
  }
  if (debugEnabled && reason != themeSkipReason_) std::cout << "[THEME] " << reason << std::endl;
  themeSkipReason_ = reason;
}

// --- The screensaver ---

/// It goes through the room of the moment, or else through one of the other kind.
void Display::startScreensaver() {
  const std::filesystem::path current = currentFolder();
  const auto isSeries = [](const std::filesystem::path& room) {
    return knownKind(room) == MediaKind::Series;
  };
  const auto& rooms = home_.roomFolders();
  auto other = std::ranges::find_if(
      rooms, [&](const auto& room) { return room != current && isSeries(room) != isSeries(current); });
  if (other == rooms.end())
    other = std::ranges::find_if(rooms, [&](const auto& room) { return room != current; });
  Screensaver::Source source{{current}, strip_.posters().titles()};
  if (other != rooms.end()) source.folders.push_back(*other);
  if (rooms.empty()) source.folders.push_back(isSeries(current) ? mediaRoot() / "movies" : tvRoot());
  saver_.start(std::move(source), clock_.ticksMs());
  for (const std::filesystem::path& room : rooms) {
    if (const auto kind = knownKind(room))
      requestScans(idleScans_, scanRequests_, room, *kind, clock_.ticksMs());
  }
  stored_.settings.holdWrites(true);
}

/// True if nothing else is drawn.
bool Display::followScreensaver(const FrameContext& frame) {
  const SDL_Point size = playback_.pictureSize();
  if (!saver_.follow(frame, saver_.shown() ? music_.art() : MusicArt(), playback_.audioItem(),
                     {size.x, size.y}))
    return false;
  Posters& list = strip_.posters();
  if (!list.posterListComplete()) list.takePendingPosters(frame.renderer, posterHeight, 4);
  if (saver_.drawAlone(frame)) SDL_RenderPresent(frame.renderer);
  return true;
}

// --- Home and rooms ---

void Display::goHome(bool refresh) {
  saver_.end(clock_.ticksMs());
  settings_.closeSettings();
  settings_.forgetPlayback();
  keepTheme_ = false;
  stopTheme();
  home_.closeChooser();
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

void Display::showScanScreen() {
  if (!usable() || !home_.homeMode()) return;
  SDL_SetRenderDrawColor(renderer(), 0, 0, 0, SDL_ALPHA_OPAQUE);
  SDL_RenderClear(renderer());
  if (drawScanScreen(frameContext())) SDL_RenderPresent(renderer());
  openPosterFolder(currentFolder());
}

/// Once its kind is known, since that decides who is asked.
void Display::askForArt(const std::filesystem::path& room) {
  if (room == roomAskedFor_) return;
  const auto kind = knownKind(room);
  if (!kind) return;
  roomAskedFor_ = room;
  if (idleScans_.requestScanOnce(room)) requestScan(scanRequests_, room, *kind);
}

/// Once per pass, but not under a picture or the screensaver.
void Display::followScans() {
  if (saver_.shown() || playback_.videoPlaying()) return;
  if (home_.homeMode()) askForArt(home_.room());
  if (const auto folder = takeChangedFolder()) strip_.posters().folderChanged(*folder);
  strip_.followChange(renderer());
}

void Display::openChooser() {
  carryOut(home_.openChooser(playback_.videoPlaying()));
}

void Display::runChooser() {
  owner_.check();
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
  if (followScreensaver(frame)) return;
  if (settings_.isOpen()) return presentSettings(frame);
  SDL_SetRenderDrawColor(renderer(), 0, 0, 0, SDL_ALPHA_OPAQUE);
  SDL_RenderClear(renderer());
  home_.draw(frame, focusFacts());
  statusLines_.draw(frame, home_.homeMode());
  saver_.draw(frame, focusFacts());
  SDL_RenderPresent(renderer());
}

// --- Settings ---

void Display::toggleSettings(bool playing) {
  settings_.isOpen() ? settings_.closeSettings() : settings_.openSettings(playing);
}

/// Nothing shows through them.
void Display::presentSettings(const FrameContext& frame) {
  SDL_SetRenderDrawColor(renderer(), 0, 0, 0, SDL_ALPHA_OPAQUE);
  SDL_RenderClear(renderer());
  settings_.draw(frame, focusFacts());
  saver_.draw(frame, focusFacts());
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
  showStrip(false);
}

void Display::selectRoomForPath(const std::filesystem::path& path) {
  const auto root = roomRootOf(path);
  roomKind_ = root ? knownKind(*root).value_or(MediaKind::Movies) : MediaKind::Movies;
  if (root) home_.selectRoom(*root);
}

}  // namespace tavek
