// The home screen: the users, their rooms, and the way from there to the posters and back.
#include <algorithm>

#include "base/paths.h"
#include "base/process_flags.h"
#include "display/display.h"
#include "library/match_key.h"
#include "library/media_paths.h"

namespace tavek {
namespace {

constexpr Uint64 folderChangeMs = 500;
constexpr Uint32 passMs = 16;

}  // namespace

void Display::goHome(bool refresh) {
  const Uint64 now = clock_.ticksMs();
  closeChooser();
  dropStrip();
  setVideoPlaying(false);
  alignWithItem({});
  seekBar_.reset();
  volumeBar_.reset();
  clearLogo_.drop();
  clearLogo_.setSuppressed(false);
  clearError();
  folderChange_.reset();
  pendingFolder_.reset();

  rooms_.reload();
  const std::string user = stored_.users.activeUser();
  rooms_.choose(stored_.users.userMode(user).value_or(""));
  selectRoom(rooms_.index(), false);
  posters_.clearSelection();
  if (refresh && posters_.list().empty()) openPosterFolder(currentFolder());
  posters_.waitForTitle(posterTitleKey(mediaRoot() / (user + ".jpg")));

  chooser_.startFadeIn(now);
  chooser_.showHint(now);
  flags_.homeMode = true;
  noteActivity(now);
}

void Display::runChooser() {
  // What was pressed on the way home counts.
  if (!flags_.chooserOpen) openChooser();
  while (usable() && flags_.chooserOpen && !quitRequested) {
    pollInput();
    presentChooser();
    SDL_Delay(passMs);
  }
}

void Display::presentChooser() {
  SDL_SetRenderDrawColor(renderer(), 0, 0, 0, SDL_ALPHA_OPAQUE);
  SDL_RenderClear(renderer());
  FrameContext frame = frameContext();
  SDL_GetRendererOutputSize(renderer(), &frame.width, &frame.height);
  drawChooser(frame);
  statusLines_.draw(frame, flags_.homeMode);
  SDL_RenderPresent(renderer());
}

void Display::drawChooser(const FrameContext& frame) {
  chooser_.draw(frame, {.roomLabels = rooms_.labels(),
                        .roomIndex = rooms_.index(),
                        .homeMode = flags_.homeMode,
                        .stripOn = flags_.strip.any(),
                        .folderChangeAt = folderChange_ ? std::optional(folderChange_->at) : std::nullopt});
}

void Display::openChooser() {
  StoredUsers& state = stored_.users;
  std::vector<std::string> users = state.users();
  const auto active = std::ranges::find(users, state.activeUser());
  const auto index = active == users.end() ? 0 : static_cast<std::size_t>(active - users.begin());
  chooser_.setUsers(std::move(users), index);
  makeUserCurrent();
  chooser_.setArrows(false, false);
  const bool opens = !flags_.chooserOpen && !chooser_.users().empty();
  flags_.chooserOpen = !chooser_.users().empty();
  chooserPausedPlayback_ = opens && flags_.videoPlaying && !pendingPauseChooser_;
  if (chooserPausedPlayback_) pendingPauseChooser_ = true;
}

void Display::leaveHome() {
  flags_.homeMode = false;
  flags_.chooserOpen = false;
  chooserPausedPlayback_ = false;
  folderChange_.reset();
}

/// A film that the discs have paused goes on.
void Display::closeChooser() {
  flags_.chooserOpen = false;
  if (std::exchange(chooserPausedPlayback_, false)) pendingPauseChooser_ = true;
}

void Display::makeUserCurrent() {
  if (chooser_.users().empty()) return;
  StoredUsers& state = stored_.users;
  const std::string& user = chooser_.users()[chooser_.userIndex()];
  if (user != state.activeUser()) state.setActiveUser(user);
  rooms_.choose(state.userMode(user).value_or(""));
  selectRoom(rooms_.index(), false);
  refreshWatchedBits();
}

void Display::moveUser(Direction direction) {
  const bool sideways = direction == Direction::Left || direction == Direction::Right;
  if (sideways && chooser_.moveUser(direction == Direction::Left ? -1 : +1)) makeUserCurrent();
}

void Display::confirmUser(Uint64 nowMs) {
  if (folderChange_) return;
  if (chooser_.users().empty()) {
    closeChooser();
    return leaveHome();
  }
  StoredUsers& state = stored_.users;
  const std::string& user = chooser_.users()[chooser_.userIndex()];
  state.setActiveUser(user);
  state.setUserMode(user, normalizeRoomName(roomNameOfRoot(currentFolder())));
  refreshWatchedBits();
  folderChange_ = {nowMs, currentFolder()};
  chooser_.endFadeIn();
}

void Display::finishFolderChange(Uint64 nowMs) {
  if (!folderChange_ || nowMs < folderChange_->at + folderChangeMs) return;
  const std::filesystem::path folder = std::exchange(folderChange_, std::nullopt)->folder;
  closeChooser();
  chooser_.endFadeIn();
  leaveHome();
  if (folder != posters_.openFolder() || posters_.list().empty()) openPosterFolder(folder);
  showStrip();
}

void Display::leaveHomeForStrip() {
  leaveHome();
  const std::filesystem::path folder = currentFolder();
  selectRoomForPath(folder);
  openPosterFolder(folder);
  if (flags_.roomKind != MediaKind::Music) showStrip();
}

void Display::switchRoom(Direction direction) {
  const bool up = direction == Direction::Up;
  chooser_.setArrows(up, !up);
  if (folderChange_) return;
  if (rooms_.folders().empty()) rooms_.reload();
  const auto last = static_cast<int>(rooms_.folders().size()) - 1;
  const int index = static_cast<int>(rooms_.index()) + (up ? -1 : +1);
  if (index >= 0 && index <= last) selectRoom(static_cast<std::size_t>(index), true);
}

bool Display::selectRoom(std::size_t index, bool remember) {
  if (rooms_.folders().empty()) rooms_.reload();
  if (index >= rooms_.folders().size()) return false;
  const std::filesystem::path& room = rooms_.folders()[index];
  if (index == rooms_.index() && room == posters_.openFolder()) return false;
  rooms_.select(index);
  enterRoom(room);
  if (remember && !chooser_.users().empty()) {
    stored_.users.setUserMode(chooser_.users()[chooser_.userIndex()],
                              normalizeRoomName(roomNameOfRoot(room)));
  }
  return true;
}

void Display::enterRoom(const std::filesystem::path& path) {
  flags_.roomKind = seriesRootOf(path) ? MediaKind::Series : classifyFolder(path, quitRequested);
  posters_.openPosterFolder(renderer(), path);
}

void Display::discardInput() {
  SDL_PumpEvents();
  // Keys that come up are still to be seen to do so.
  SDL_FlushEvent(SDL_KEYDOWN);
  SDL_FlushEvent(SDL_TEXTINPUT);
}

void Display::selectRoomForPath(const std::filesystem::path& path) {
  const auto root = roomRootOf(path);
  flags_.roomKind = root ? classifyFolder(*root, quitRequested) : MediaKind::Movies;
  const auto room = root ? std::ranges::find(rooms_.folders(), *root) : rooms_.folders().end();
  if (room != rooms_.folders().end())
    rooms_.select(static_cast<std::size_t>(room - rooms_.folders().begin()));
}

}  // namespace tavek
