#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include <SDL.h>

#include "display/settings/screen_keyboard.h"

/// Where everything lies on the users' page. Pixels.
namespace tavek {

struct UsersLayout {
  SDL_Rect nameField{};
  SDL_Rect list{};
  std::size_t firstRow = 0;    ///< the user in the top row
  std::vector<SDL_Rect> rows;  ///< of those that fit
  KeyboardLayout keyboard{};

  /// The user whose row is at that height of the list.
  std::optional<std::size_t> userAt(int y) const;
};

/// The list ends above the keyboard, of which `animation` has slid in, and shows the selected user; the
/// keyboard leaves room for one row at least.
UsersLayout layoutUsers(SDL_Point window, int top, double animation, std::size_t users, std::size_t selected);
SDL_Rect deleteButtonOf(const SDL_Rect& row);
/// The box that takes the row's text while the user is renamed.
SDL_Rect renameBoxOf(const SDL_Rect& row);

struct DeleteDialogLayout {
  SDL_Rect box{};
  SDL_Rect cancel{};
  SDL_Rect remove{};
};

DeleteDialogLayout layoutDeleteDialog(SDL_Point window);

}  // namespace tavek
