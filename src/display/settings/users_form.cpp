#include "display/settings/users_form.h"

#include <algorithm>
#include <utility>

#include "base/text.h"
#include "display/toolkit/key_input.h"
#include "library/titles.h"

namespace tavek {
namespace {

constexpr Uint64 statusMs = 5000;

bool isControl(char32_t character) {
  return character < 0x20 || (character >= 0x7F && character < 0xA0);
}

bool isLetter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

char toUpper(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

}  // namespace

bool namesCollide(std::string_view a, std::string_view b) {
  return foldCase(trim(a)) == foldCase(trim(b));
}

UsersForm::UsersForm(StoredUsers& users, std::function<void()> usersChanged)
    : users_(users), usersChanged_(std::move(usersChanged)) {
  reloadUsers();
}

void UsersForm::openUsersTab() {
  reloadUsers();
  dialog_.reset();
  moveFocus(UsersFocus::NameField);
  field_.clear();
}

void UsersForm::advance(Uint64 nowMs) {
  keyboard_.advance(nowMs);
  if (!statusSince_) statusSince_ = nowMs;
  if (nowMs - *statusSince_ >= statusMs) status_.clear();
}

// --- Keys ---

constexpr UsersForm::Key UsersForm::keys[] = {
    {SDLK_RIGHT, {&UsersForm::openKeyboard, nullptr, &UsersForm::focusRowButton, &UsersForm::cursorRight}},
    {SDLK_LEFT, {nullptr, nullptr, &UsersForm::focusRow, &UsersForm::cursorLeft}},
    {SDLK_DOWN,
     {&UsersForm::toFirstUser, &UsersForm::toFirstUser, &UsersForm::nextUser, &UsersForm::cursorDown}},
    {SDLK_UP,
     {&UsersForm::toNeutral, &UsersForm::toNameField, &UsersForm::previousUser, &UsersForm::cursorUp}},
    {SDLK_RETURN,
     {&UsersForm::consume, &UsersForm::consume, &UsersForm::pressRow, &UsersForm::pressKeyboardKey}},
    {SDLK_DELETE,
     {&UsersForm::askDeleteUser, &UsersForm::askDeleteUser, &UsersForm::askDeleteUser,
      &UsersForm::askDeleteUser}},
};

bool UsersForm::usersKeyDown(const KeyPress& press) {
  // The page is left with these.
  if (press.key == SDLK_BACKSPACE || press.key == SDLK_AC_BACK) return false;
  // One long press must not open the question and answer it.
  if (isEnter(press.key) && press.repeat) return true;
  if (dialog_) {
    keyInDialog(press);
    return true;
  }
  const auto* entry = std::ranges::find(keys, isEnter(press.key) ? SDLK_RETURN : press.key, &Key::key);
  if (entry == std::end(keys)) return false;
  const auto serve = entry->serve[static_cast<std::size_t>(focus_)];
  if (serve != nullptr) (this->*serve)();
  return serve != nullptr;
}

void UsersForm::keyInDialog(const KeyPress& press) {
  if (press.key == SDLK_ESCAPE) return closeDeleteDialog();
  if (isEnter(press.key)) return dialog_->deleteChosen ? confirmDeleteUser() : closeDeleteDialog();
  if (press.key == SDLK_LEFT) dialog_->deleteChosen = false;
  if (press.key == SDLK_RIGHT) dialog_->deleteChosen = true;
  if (press.key == SDLK_TAB) dialog_->deleteChosen = !press.shift;
}

void UsersForm::openKeyboard() {
  moveFocus(UsersFocus::Keyboard);
  keyboard_.showKeyboard(true);
  keyboard_.setKeyboardCursor(0, 0);
}

void UsersForm::toFirstUser() {
  moveFocus(UsersFocus::UserList);
  selectedUser_ = 0;
}

void UsersForm::nextUser() {
  selectedUser_ = (selectedUser_ + 1) % userNames_.size();
  userRowButtonFocus_ = false;
}

void UsersForm::previousUser() {
  if (selectedUser_ == 0) return toNeutral();
  --selectedUser_;
  userRowButtonFocus_ = false;
}

void UsersForm::cursorLeft() {
  if (keyboard_.cursor().column == 0) return moveFocus(UsersFocus::UserList);
  keyboard_.moveKeyboardCursor(0, -1);
}

void UsersForm::cursorUp() {
  if (keyboard_.cursor().row == 0) return toNameField();
  keyboard_.moveKeyboardCursor(-1, 0);
}

void UsersForm::cursorDown() {
  const std::size_t before = keyboard_.cursor().row;
  keyboard_.moveKeyboardCursor(+1, 0);
  if (keyboard_.cursor().row == before) moveFocus(UsersFocus::UserList);
}

void UsersForm::pressKeyboardKey() {
  if (!keyboard_.visible()) return;
  const ScreenKey& key = keyboard_.currentKey();
  switch (key.kind) {
    case ScreenKeyKind::Character:
    case ScreenKeyKind::Space:
      return appendNameCharacter({&key.code, 1});
    case ScreenKeyKind::Backspace:
      return eraseNameCharacter();
    case ScreenKeyKind::Submit:
      return submitUserName();
    case ScreenKeyKind::Close:
      return moveFocus(UsersFocus::UserList);
    case ScreenKeyKind::Shift:
      return keyboard_.toggleKeyboardShift();
  }
}

/// The keyboard goes, and the row that was edited keeps its name.
void UsersForm::moveFocus(UsersFocus focus) {
  focus_ = focus;
  userRowButtonFocus_ = false;
  keyboard_.showKeyboard(false);
  if (renameIndex_) field_.clear();
  renameIndex_.reset();
}

// --- Clicks ---

void UsersForm::clickDeleteButton(std::size_t row) {
  clickList(row);
  if (selectedUser_ == row) askDeleteUser();
}

void UsersForm::clickList(std::optional<std::size_t> row) {
  moveFocus(UsersFocus::UserList);
  if (row && *row < userNames_.size()) selectedUser_ = *row;
}

void UsersForm::clickNameField() {
  moveFocus(UsersFocus::Keyboard);
  keyboard_.showKeyboard(true);
}

void UsersForm::clickKeyboard(std::optional<KeyPlace> key) {
  focus_ = UsersFocus::Keyboard;
  keyboard_.showKeyboard(true);
  if (!key) return;
  keyboard_.setKeyboardCursor(static_cast<int>(key->row), static_cast<int>(key->column));
  pressKeyboardKey();
}

// --- Names ---

void UsersForm::typeText(std::string_view typed) {
  if (!wantsText()) return;
  if (!keyboard_.wanted()) focus_ = UsersFocus::NameField;
  while (!typed.empty()) {
    std::string_view rest = typed;
    if (!takeCharacter(rest)) rest.remove_prefix(1);
    appendNameCharacter(typed.substr(0, typed.size() - rest.size()));
    typed = rest;
  }
}

/// A whole one, or a byte that is none; letters of ASCII get the case that a name has.
void UsersForm::appendNameCharacter(std::string_view character) {
  std::string_view rest = character;
  const auto code = takeCharacter(rest);
  if (!code || isControl(*code) || field_.size() + character.size() > longestUserName) return;
  if (isLetter(character.front())) {
    const bool upper = keyboard_.shift() || field_.empty();
    field_ += upper ? std::string(1, toUpper(character.front())) : toLower(character);
  } else {
    field_ += character;
  }
  keyboard_.setKeyboardShift(false);
}

void UsersForm::eraseNameCharacter() {
  const auto continues = [](char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; };
  while (!field_.empty() && continues(field_.back())) field_.pop_back();
  if (!field_.empty()) field_.pop_back();
}

void UsersForm::submitUserName() {
  const std::string name = trim(field_);
  if (name.empty()) return say("Name cannot be empty.");
  if (name.size() > longestUserName) return say("Name cannot exceed 16 characters.");
  if (renameIndex_ && namesCollide(userNames_[*renameIndex_], name))
    return backToRow(*renameIndex_, "Name unchanged.");
  const auto same =
      std::ranges::find_if(userNames_, [&](const std::string& other) { return namesCollide(other, name); });
  if (same != userNames_.end())
    return backToRow(static_cast<std::size_t>(same - userNames_.begin()), "User already exists.");
  renameIndex_ ? renameUser(*renameIndex_, name) : addUser(name);
}

void UsersForm::renameUser(std::size_t row, const std::string& name) {
  const std::string old = userNames_[row];
  users_.renameUser(old, name);
  reloadUsers();
  backToRow(std::min(row, userNames_.size() - 1), "Renamed \"" + old + "\" to \"" + name + "\"");
  usersChanged_();
}

/// The focus stays, for one more name.
void UsersForm::addUser(const std::string& name) {
  users_.addUser(name);
  reloadUsers();
  selectedUser_ = userNames_.size() - 1;
  field_.clear();
  moveFocus(focus_);
  say("Added \"" + name + "\"");
  usersChanged_();
}

void UsersForm::backToRow(std::size_t row, std::string status) {
  moveFocus(UsersFocus::UserList);
  selectedUser_ = row;
  say(std::move(status));
}

void UsersForm::beginUserRename() {
  openKeyboard();
  renameIndex_ = selectedUser_;
  field_ = userNames_[selectedUser_];
}

void UsersForm::askDeleteUser() {
  if (userNames_.size() < 2) return say("At least one user required.");
  dialog_ = DeleteDialog{userNames_[selectedUser_]};
  userRowButtonFocus_ = true;
}

void UsersForm::confirmDeleteUser() {
  const std::string name = dialog_->name;
  closeDeleteDialog();
  if (users_.users().size() < 2) return say("At least one user required.");
  // The row that was edited may be another user's now.
  if (renameIndex_) moveFocus(UsersFocus::UserList);
  users_.removeUser(name);
  reloadUsers();
  say("Deleted \"" + name + "\"");
  usersChanged_();
}

void UsersForm::closeDeleteDialog() {
  dialog_.reset();
  userRowButtonFocus_ = false;
}

void UsersForm::reloadUsers() {
  userNames_ = users_.users();
  selectedUser_ = std::min(selectedUser_, userNames_.size() - 1);
  userRowButtonFocus_ = false;
}

void UsersForm::say(std::string status) {
  status_ = std::move(status);
  statusSince_.reset();
}

}  // namespace tavek
