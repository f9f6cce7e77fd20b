#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <SDL.h>

#include "display/settings/screen_keyboard.h"
#include "display/toolkit/layer.h"
#include "state/stored_users.h"

namespace tavek {

inline constexpr std::size_t longestUserName = 16;  ///< bytes

enum class UsersFocus {
  NameField,
  Neutral,  ///< a stop between field and list where nothing stands out
  UserList,
  Keyboard,
};

/// Whether two names are the same but for their case and the blanks around them.
bool namesCollide(std::string_view a, std::string_view b);

/// The question before a user goes; the name is the one that it asks about.
struct DeleteDialog {
  std::string name;
  bool deleteChosen = true;
};

/// What the users' page edits, without its looks. Each user that is added, renamed or deleted is stored at
/// once, and `usersChanged` is told. Main thread only.
class UsersForm {
 public:
  UsersForm(StoredUsers& users, std::function<void()> usersChanged);

  /// As nothing was typed or chosen; the list is read anew.
  void openUsersTab();
  /// Whether the key was consumed. A repeated one is a press like any other, but for Enter.
  bool usersKeyDown(const KeyPress& press);
  /// Whether typed text is taken.
  bool wantsText() const {
    return !dialog_ && (focus_ == UsersFocus::NameField || focus_ == UsersFocus::Keyboard);
  }
  /// UTF-8; what is none is left out.
  void typeText(std::string_view typed);
  /// Slides the keyboard, and takes the status away when it has stood for its time.
  void advance(Uint64 nowMs);

  void clickDeleteButton(std::size_t row);
  /// Anywhere in the list; none if it is no row.
  void clickList(std::optional<std::size_t> row);
  void clickNameField();
  /// Anywhere on the keyboard's panel.
  void clickKeyboard(std::optional<KeyPlace> key);
  void confirmDeleteUser();
  void closeDeleteDialog();

  /// Never empty.
  const std::vector<std::string>& userNames() const { return userNames_; }
  std::size_t selectedUser() const { return selectedUser_; }
  bool userRowButtonFocus() const { return userRowButtonFocus_; }
  UsersFocus usersFocus() const { return focus_; }
  const ScreenKeyboard& keyboard() const { return keyboard_; }
  const std::optional<DeleteDialog>& deleteDialog() const { return dialog_; }
  /// The row that is the editor of its name.
  std::optional<std::size_t> renameIndex() const { return renameIndex_; }
  /// What is typed into: the new name of that row, else that of a new user.
  const std::string& field() const { return field_; }
  /// Empty if there is nothing to tell.
  const std::string& usersStatus() const { return status_; }

 private:
  struct Key {
    SDL_Keycode key;
    void (UsersForm::*serve[4])();  ///< by UsersFocus; null is not consumed
  };
  static const Key keys[];

  void keyInDialog(const KeyPress& press);
  void openKeyboard();
  void focusRowButton() { userRowButtonFocus_ = true; }
  void focusRow() { userRowButtonFocus_ = false; }
  void toNeutral() { moveFocus(UsersFocus::Neutral); }
  void toNameField() { moveFocus(UsersFocus::NameField); }
  void toFirstUser();
  void nextUser();
  void previousUser();
  void pressRow() { userRowButtonFocus_ ? askDeleteUser() : beginUserRename(); }
  void cursorLeft();
  void cursorRight() { keyboard_.moveKeyboardCursor(0, 1); }
  void cursorUp();
  void cursorDown();
  void consume() {}
  void pressKeyboardKey();

  void moveFocus(UsersFocus focus);
  void appendNameCharacter(std::string_view character);
  void eraseNameCharacter();
  void submitUserName();
  void addUser(const std::string& name);
  void renameUser(std::size_t row, const std::string& name);
  void backToRow(std::size_t row, std::string status);
  void beginUserRename();
  void askDeleteUser();
  void reloadUsers();
  void say(std::string status);

  StoredUsers& users_;
  const std::function<void()> usersChanged_;
  std::vector<std::string> userNames_;
  std::size_t selectedUser_ = 0;
  bool userRowButtonFocus_ = false;  ///< on the selected row's delete button
  UsersFocus focus_ = UsersFocus::NameField;
  std::string field_;
  std::optional<std::size_t> renameIndex_;
  std::optional<DeleteDialog> dialog_;
  ScreenKeyboard keyboard_;
  std::string status_;
  std::optional<Uint64> statusSince_;
};

}  // namespace tavek
