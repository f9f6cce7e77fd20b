#include "display/settings/users_layout.h"

#include <algorithm>

namespace tavek {
namespace {

constexpr int margin = 24;
constexpr int fieldHeight = 48;
constexpr int fieldGap = 16;
constexpr int rowPitch = 44;
constexpr int keyboardGap = 8;

}  // namespace

std::optional<std::size_t> UsersLayout::userAt(int y) const {
  const auto row = static_cast<std::size_t>(std::max(y - list.y, 0) / rowPitch);
  return row < rows.size() ? std::optional(firstRow + row) : std::nullopt;
}

UsersLayout layoutUsers(SDL_Point window, int top, double animation, std::size_t users,
                        std::size_t selected) {
  UsersLayout layout;
  layout.nameField = {margin, top + margin, window.x - 2 * margin, fieldHeight};
  const int listTop = layout.nameField.y + fieldHeight + fieldGap;
  const int keyboardTop = listTop + rowPitch + keyboardGap;
  layout.keyboard = layoutKeyboard({0, keyboardTop, window.x, window.y - keyboardTop}, animation);

  const int bottom = std::min(window.y - margin, layout.keyboard.panel.y - keyboardGap);
  const int height = std::max(std::min(static_cast<int>(users) * rowPitch, bottom - listTop), rowPitch);
  layout.list = {margin, listTop, layout.nameField.w, height};
  const std::size_t count = std::min(static_cast<std::size_t>(height / rowPitch), users);
  layout.firstRow = std::min(selected - std::min(selected, count / 2), users - count);
  for (int i = 0; i < static_cast<int>(count); ++i)
    layout.rows.push_back({margin + 4, listTop + 6 + rowPitch * i, layout.list.w - 8, 36});
  return layout;
}

SDL_Rect deleteButtonOf(const SDL_Rect& row) {
  constexpr int side = 28;
  return {row.x + row.w - 34, row.y + (row.h - side) / 2, side, side};
}

SDL_Rect renameBoxOf(const SDL_Rect& row) {
  const int left = row.x + 12;
  return {left, row.y + 6, deleteButtonOf(row).x - 8 - left, row.h - 12};
}

DeleteDialogLayout layoutDeleteDialog(SDL_Point window) {
  constexpr int gap = 20;
  DeleteDialogLayout layout;
  const int width = std::min(window.x - 64, 420);
  layout.box = {(window.x - width) / 2, (window.y - 170) / 2, width, 170};
  const int button = std::min(140, (width - 3 * gap) / 2);
  const int left = layout.box.x + (width - 2 * button - gap) / 2;
  layout.cancel = {left, layout.box.y + layout.box.h - 68, button, 44};
  layout.remove = layout.cancel;
  layout.remove.x += button + gap;
  return layout;
}

}  // namespace tavek
