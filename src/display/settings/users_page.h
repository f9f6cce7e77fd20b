#pragma once

#include <functional>
#include <utility>

#include "display/settings/settings_page.h"
#include "display/settings/users_form.h"
#include "display/settings/users_layout.h"

namespace tavek {

/// The settings' page on which users are added, renamed and deleted.
class UsersPage final : public SettingsPage {
 public:
  /// `usersChanged` is called after each change that was made here.
  UsersPage(StoredUsers& users, std::function<void()> usersChanged)
      : users_(users), form_(users, std::move(usersChanged)) {}

  void open() override { form_.openUsersTab(); }
  void reload() override { open(); }
  PageAct key(const KeyPress& press, Uint64 /*nowMs*/) override {
    return form_.usersKeyDown(press) ? PageAct::Handled : PageAct::Unhandled;
  }
  bool wantsText() const override { return form_.wantsText(); }
  void text(std::string_view typed, Uint64 /*nowMs*/) override { form_.typeText(typed); }
  bool click(SDL_Point point, Uint64 nowMs) override;
  void advance(Uint64 nowMs) override { form_.advance(nowMs); }
  void draw(const FrameContext& frame, int top, bool focused) override;

 private:
  StoredUsers& users_;
  UsersForm form_;
  // Of the last frame.
  UsersLayout layout_;
  DeleteDialogLayout dialogLayout_;
};

}  // namespace tavek
