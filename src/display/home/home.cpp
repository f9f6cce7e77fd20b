#include "display/home/home.h"

#include <algorithm>
#include <utility>

#include "display/toolkit/key_input.h"
#include "library/media_paths.h"

namespace tavek {
namespace {

constexpr Uint64 folderChangeMs = 500;
/// A disk may be mounted long after the start, or be put in while the users are shown.
constexpr Uint64 lookAgainMs = 2000;

}  // namespace

// --- Keys ---

constexpr Home::Key Home::keys[] = {
    {SDLK_AC_SEARCH, &Home::startVoice}, {SDLK_AUDIOPLAY, &Home::startVoice}, {SDLK_RETURN, &Home::enter},
    {SDLK_KP_ENTER, &Home::enter},       {SDLK_UP, &Home::upOrDown},          {SDLK_DOWN, &Home::upOrDown},
    {SDLK_LEFT, &Home::sideways},        {SDLK_RIGHT, &Home::sideways},
};

bool Home::owns(FocusName focus) const {
  return focus == FocusName::Home || focus == FocusName::UsersTab;
}

Meaning Home::key(const KeyPress& press, const FocusFacts& facts, Uint64 nowMs) {
  if (!press.down) {
    view_.setArrows(false, false);
    return Handled();
  }
  // The key was meant for those who are still on the screen.
  if (othersCame()) return takeRooms(nowMs);
  const auto* entry = std::ranges::find(keys, press.key, &Key::key);
  return entry != std::end(keys) ? (this->*entry->serve)(press, facts, nowMs) : Meaning(Unhandled());
}

Meaning Home::startVoice(const KeyPress& /*press*/, const FocusFacts& /*facts*/, Uint64 /*nowMs*/) {
  return NavCode::VoiceStart;
}

Meaning Home::enter(const KeyPress& press, const FocusFacts& /*facts*/, Uint64 nowMs) {
  if (press.repeat) return Handled();
  if (chooserOpen_) return confirmUser(nowMs);
  leave();
  return EnterRoom{room()};
}

Meaning Home::upOrDown(const KeyPress& press, const FocusFacts& /*facts*/, Uint64 /*nowMs*/) {
  return chooserOpen_ && homeMode_ ? switchRoom(press.key == SDLK_UP) : Meaning(Handled());
}

Meaning Home::sideways(const KeyPress& press, const FocusFacts& facts, Uint64 nowMs) {
  return move(*directionOf(press.key), facts, nowMs);
}

Meaning Home::move(Direction direction, const FocusFacts& /*facts*/, Uint64 /*nowMs*/) {
  const bool side = direction == Direction::Left || direction == Direction::Right;
  if (!chooserOpen_ || !side || confirmed()) return Handled();
  return view_.moveUser(direction == Direction::Left ? -1 : +1) ? makeUserCurrent() : Meaning(Handled());
}

Meaning Home::confirmUser(Uint64 nowMs) {
  if (folderChange_) return Handled();
  confirmWaits_ = rooms_.folders().empty() && rooms_.reading();
  if (confirmWaits_) return Handled();
  stored_.users.setActiveUser(selectedUser());
  stored_.users.setUserMode(selectedUser(), normalizeRoomName(roomNameOfRoot(room())));
  folderChange_ = {nowMs, room()};
  confirmedOnce_ = true;
  view_.endFadeIn();
  return Handled();
}

Meaning Home::switchRoom(bool up) {
  if (confirmed()) return Handled();
  view_.setArrows(up, !up);
  const auto count = rooms_.folders().size();
  const std::size_t index = rooms_.index() + (up ? std::size_t{0} - 1 : 1);
  if (index >= count) return Handled();
  rooms_.select(index);
  stored_.users.setUserMode(selectedUser(), normalizeRoomName(roomNameOfRoot(room())));
  return OpenRoom{room()};
}

Meaning Home::makeUserCurrent() {
  if (selectedUser() != stored_.users.activeUser()) stored_.users.setActiveUser(selectedUser());
  rooms_.choose(stored_.users.userMode(selectedUser()).value_or(""));
  return OpenRoom{room()};
}

// --- Its life ---

Meaning Home::advance(Uint64 nowMs) {
  if (rooms_.poll()) return takeRooms(nowMs);
  if (homeMode_ && nowMs >= lookedAt_ + lookAgainMs) look(nowMs);
  if (!folderChange_ || nowMs < folderChange_->at + folderChangeMs) return Unhandled();
  const std::filesystem::path folder = std::exchange(folderChange_, std::nullopt)->folder;
  closeChooser();
  leave();
  return EnterRoom{folder};
}

/// For the users too: theirs is a file of the library.
void Home::look(Uint64 nowMs) {
  lookedAt_ = nowMs;
  rooms_.reload(stored_.users.rereading());
}

bool Home::othersCame() const {
  return chooserOpen_ && homeMode_ && !folderChange_ && view_.users() != stored_.users.users();
}

Meaning Home::takeRooms(Uint64 nowMs) {
  stored_.users.ensureRooms(rooms_.folders());
  const bool others = othersCame();
  if (!homeMode_ || (!rooms_.changed() && !others && !confirmWaits_)) return Handled();
  if (others) {
    // Those that were shown stood in for the ones of a library that has come late.
    confirmWaits_ = false;
    showUsers();
  }
  rooms_.choose(
      stored_.users.userMode(confirmWaits_ ? selectedUser() : stored_.users.activeUser()).value_or(""));
  if (confirmWaits_ && chooserOpen_) confirmUser(nowMs);
  return OpenRoom{room()};
}

void Home::arrive(Uint64 nowMs) {
  folderChange_.reset();
  confirmWaits_ = false;
  look(nowMs);
  rooms_.choose(stored_.users.userMode(stored_.users.activeUser()).value_or(""));
  view_.startFadeIn(nowMs);
  view_.showHint(nowMs);
  homeMode_ = true;
}

void Home::showUsers() {
  std::vector<std::string> users = stored_.users.users();
  const auto active = std::ranges::find(users, stored_.users.activeUser());
  const auto index = active == users.end() ? 0 : static_cast<std::size_t>(active - users.begin());
  view_.setUsers(std::move(users), index);
}

Meaning Home::openChooser(bool videoPlaying) {
  showUsers();
  view_.setArrows(false, false);
  const bool opens = !chooserOpen_ && !view_.users().empty();
  chooserOpen_ = !view_.users().empty();
  pausedPlayback_ = opens && videoPlaying && !pauseToggle_;
  if (pausedPlayback_) pauseToggle_ = true;
  return chooserOpen_ ? makeUserCurrent() : Meaning(Unhandled());
}

void Home::closeChooser() {
  chooserOpen_ = false;
  if (std::exchange(pausedPlayback_, false)) pauseToggle_ = true;
}

void Home::leave() {
  homeMode_ = false;
  chooserOpen_ = false;
  pausedPlayback_ = false;
  folderChange_.reset();
  confirmWaits_ = false;
  view_.endFadeIn();
}

void Home::selectRoom(const std::filesystem::path& room) {
  const auto found = std::ranges::find(rooms_.folders(), room);
  if (found != rooms_.folders().end())
    rooms_.select(static_cast<std::size_t>(found - rooms_.folders().begin()));
}

void Home::draw(const FrameContext& frame, const FocusFacts& facts) {
  if (!chooserOpen_) return;
  view_.draw(frame, {.roomLabels = rooms_.labels(),
                     .roomIndex = rooms_.index(),
                     .homeMode = homeMode_,
                     .stripOn = facts.stripAny,
                     .folderChangeAt = folderChange_ ? std::optional(folderChange_->at) : std::nullopt});
}

}  // namespace tavek
