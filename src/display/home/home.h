#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include <SDL.h>

#include "display/home/home_view.h"
#include "display/home/rooms.h"
#include "display/toolkit/frame_context.h"
#include "display/toolkit/layer.h"
#include "state/stored.h"

namespace tavek {

/// The home screen: the users, each with the rooms of the library. Users are chosen to the side and rooms up
/// and down; Enter leads into the room. It can lie over an item too, and then has paused it.
class Home final : public Layer {
 public:
  explicit Home(const Stored& stored) : stored_(stored) { look(0); }

  /// In their order; empty until they are read.
  const std::vector<std::filesystem::path>& roomFolders() const { return rooms_.folders(); }
  bool owns(FocusName focus) const override;
  Meaning key(const KeyPress& press, const FocusFacts& facts, Uint64 nowMs) override;
  Meaning move(Direction direction, const FocusFacts& facts, Uint64 nowMs) override;
  bool repeats(const FocusFacts& /*facts*/) const override { return false; }
  /// A confirmed user's way to the room, and a list of rooms that has come.
  Meaning advance(Uint64 nowMs) override;
  void draw(const FrameContext& frame, const FocusFacts& facts) override;
  void destroyTextures() override { view_ = {}; }

  bool homeMode() const { return homeMode_; }
  bool chooserOpen() const { return chooserOpen_; }
  /// Arrives at the top level, fading in; the active user's room is the selected one.
  void arrive(Uint64 nowMs);
  /// Shows the users, if there are any. Over a picture that runs, the item is to pause.
  Meaning openChooser(bool videoPlaying);
  /// An item that the users have paused goes on.
  void closeChooser();
  void leave();
  void endFadeIn() { view_.endFadeIn(); }
  bool takePauseToggle() { return std::exchange(pauseToggle_, false); }

  /// True once after a user was confirmed.
  bool takeConfirmed() { return std::exchange(confirmedOnce_, false); }
  /// The users may have changed.
  Meaning followUsers(Uint64 nowMs) { return othersCame() ? takeRooms(nowMs) : Meaning(Unhandled()); }

  std::string activeUser() const { return stored_.users.activeUser(); }
  /// The selected room.
  std::filesystem::path room() const { return rooms_.current(); }
  /// Selects the room, if it is one of the library's.
  void selectRoom(const std::filesystem::path& room);

 private:
  struct Key {
    SDL_Keycode key;
    Meaning (Home::*serve)(const KeyPress&, const FocusFacts&, Uint64);
  };
  static const Key keys[];

  /// A confirmed user's way to the room.
  struct FolderChange {
    Uint64 at;
    std::filesystem::path folder;
  };

  Meaning startVoice(const KeyPress& press, const FocusFacts& facts, Uint64 nowMs);
  Meaning enter(const KeyPress& press, const FocusFacts& facts, Uint64 nowMs);
  Meaning upOrDown(const KeyPress& press, const FocusFacts& facts, Uint64 nowMs);
  Meaning sideways(const KeyPress& press, const FocusFacts& facts, Uint64 nowMs);
  Meaning confirmUser(Uint64 nowMs);
  Meaning switchRoom(bool up);
  Meaning makeUserCurrent();
  void look(Uint64 nowMs);
  Meaning takeRooms(Uint64 nowMs);
  /// The users in the file are not those on the screen.
  bool othersCame() const;
  void showUsers();
  /// The user is chosen; nothing else is chosen any more on the way to the room.
  bool confirmed() const { return confirmWaits_ || folderChange_; }
  const std::string& selectedUser() const { return view_.users()[view_.userIndex()]; }

  const Stored stored_;
  HomeView view_;
  Rooms rooms_;
  Uint64 lookedAt_ = 0;
  bool confirmWaits_ = false;  ///< for the first list of rooms, on a slow disk
  bool homeMode_ = false;
  bool chooserOpen_ = false;
  bool pausedPlayback_ = false;  ///< the users lie over an item that ran
  bool pauseToggle_ = false;     ///< still to be told to whoever plays
  bool confirmedOnce_ = false;   ///< still to be told
  std::optional<FolderChange> folderChange_;
};

}  // namespace tavek
