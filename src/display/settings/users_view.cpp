#include "display/settings/users_view.h"

#include <algorithm>
#include <vector>

#include "display/settings/keyboard_view.h"
#include "display/toolkit/shapes.h"
#include "display/toolkit/text.h"

namespace tavek {
namespace {

constexpr Colour listColour = rgba(24, 24, 24, 230);
constexpr Colour selectedColour = rgba(40, 136, 72, 110);
constexpr Colour deleteColour = rgba(200, 60, 60);
constexpr Colour statusColour = rgba(210, 210, 210);
constexpr Colour statusFrame = rgba(68, 68, 68);
constexpr Colour buttonColour = rgba(32, 136, 72);
constexpr Colour chosenColour = rgba(48, 176, 96);

constexpr Colour shadow(std::uint8_t alpha) {
  return rgba(0, 0, 0, alpha);
}

/// Where a line of text begins to stand in the middle of a box.
int middleOf(const FrameContext& frame, const SDL_Rect& box) {
  return box.y + (box.h - (frame.baseFont != nullptr ? TTF_FontHeight(frame.baseFont) : 0)) / 2;
}

/// What is typed, or what could be; so far to the left that its end can be seen.
void drawInput(const FrameContext& frame, const SDL_Rect& box, int inset, const std::string& typed,
               const char* placeholder, bool caret) {
  constexpr int caretRoom = 8;
  drawPanel(frame.renderer, box, false);
  const int width = textSize(frame.baseFont, typed).x;
  const int x = std::min(box.x + inset, box.x + box.w - caretRoom - width);
  SDL_RenderSetClipRect(frame.renderer, &box);
  if (typed.empty()) {
    drawText(frame.renderer, frame.baseFont, placeholder, box.x + inset, middleOf(frame, box),
             withAlpha(theme::white, 200), shadow(90));
  } else {
    drawText(frame.renderer, frame.baseFont, typed, x, middleOf(frame, box), theme::white, shadow(90));
  }
  SDL_RenderSetClipRect(frame.renderer, nullptr);
  drawCaret(frame.renderer, box, x + width, textSize(frame.baseFont, "|").y, caret);
}

void drawDeleteButton(SDL_Renderer* renderer, const SDL_Rect& button, bool focused) {
  fillRect(renderer, button, deleteColour);
  setDrawColour(renderer, theme::white);
  for (int k = 0; k < 3; ++k) {
    const int top = button.y + 5 + k;
    SDL_RenderDrawLine(renderer, button.x + 6, top, button.x + 22, top + 16);
    SDL_RenderDrawLine(renderer, button.x + 6, top + 16, button.x + 22, top);
  }
  if (focused) outlineRect(renderer, button, withAlpha(theme::accent, 200));
}

/// The name gives way to the mark of the active user, and both to the button.
void drawName(const FrameContext& frame, const SDL_Rect& row, const std::string& name, bool active) {
  const std::string mark = active ? " (active)" : "";
  const int left = row.x + 12;
  const int width = deleteButtonOf(row).x - 8 - left - textSize(frame.baseFont, mark).x;
  drawText(frame.renderer, frame.baseFont, fitText(frame.baseFont, name, width) + mark, left,
           middleOf(frame, row), theme::white, shadow(140));
}

void drawList(const FrameContext& frame, const UsersForm& form, const UsersLayout& layout,
              const std::string& activeUser, bool focused) {
  fillRect(frame.renderer, layout.list, listColour);
  for (std::size_t i = 0; i < layout.rows.size(); ++i) {
    const std::size_t user = layout.firstRow + i;
    const SDL_Rect& row = layout.rows[i];
    const std::string& name = form.userNames()[user];
    const bool selected = user == form.selectedUser();
    selected ? fillRect(frame.renderer, row, selectedColour) : fillPanel(frame.renderer, row);
    if (user == form.renameIndex()) {
      drawInput(frame, renameBoxOf(row), 6, form.field(), "Rename user...", focused);
    } else {
      drawName(frame, row, name, name == activeUser);
    }
    drawDeleteButton(frame.renderer, deleteButtonOf(row), selected && form.userRowButtonFocus());
  }
}

/// On a box of its own, since it lies over the list; or where the name field was, so that it does not hide
/// what is typed.
void drawStatus(const FrameContext& frame, const UsersForm& form, const UsersLayout& layout) {
  constexpr int pad = 8;
  const std::string& status = form.usersStatus();
  const std::vector<std::string> lines = wrapText(frame.baseFont, status, layout.list.w - 2 * pad, 3);
  const int lineHeight = textSize(frame.baseFont, status).y;
  int width = 0;
  for (const std::string& line : lines) width = std::max(width, textSize(frame.baseFont, line).x);
  int y = layout.nameField.y + 12 + (form.renameIndex() ? 0 : layout.nameField.h);
  const SDL_Rect box{layout.list.x - pad, y - pad / 2, width + 2 * pad,
                     lineHeight * static_cast<int>(lines.size()) + pad};
  fillPanel(frame.renderer, box);
  outlineRect(frame.renderer, box, statusFrame);
  for (const std::string& line : lines) {
    drawText(frame.renderer, frame.baseFont, line, layout.list.x, y, statusColour, shadow(100));
    y += lineHeight;
  }
}

void drawDialogButton(const FrameContext& frame, const SDL_Rect& button, const char* label, bool chosen) {
  fillRect(frame.renderer, button, chosen ? chosenColour : buttonColour);
  framePanel(frame.renderer, button, chosen);
  drawTextCentered(frame.renderer, frame.baseFont, label, button, theme::white);
}

}  // namespace

void drawUsers(const FrameContext& frame, const UsersForm& form, const UsersLayout& layout,
               const std::string& activeUser, bool focused) {
  if (frame.renderer == nullptr) return;
  const BlendScope blend(frame.renderer);
  const bool typing = focused && form.wantsText();
  if (!form.renameIndex()) {
    drawInput(frame, layout.nameField, 12, form.field(), "New user name...",
              typing && form.usersFocus() == UsersFocus::NameField);
  }
  drawList(frame, form, layout, activeUser, typing);
  const ScreenKeyboard& keyboard = form.keyboard();
  if (keyboard.visible()) {
    drawKeyboard(frame, keyboard, layout.keyboard, focused && form.usersFocus() == UsersFocus::Keyboard,
                 !keyboard.shift() && !form.field().empty());
  }
  if (!form.usersStatus().empty()) drawStatus(frame, form, layout);
}

void drawDeleteDialog(const FrameContext& frame, const DeleteDialog& dialog,
                      const DeleteDialogLayout& layout) {
  if (frame.renderer == nullptr) return;
  const BlendScope blend(frame.renderer);
  fillRect(frame.renderer, layout.box, shadow(230));
  framePanel(frame.renderer, layout.box, true);
  const std::string around = "Delete \"\"?";
  const int width = layout.box.w - 24 - textSize(frame.baseFont, around).x;
  int y = layout.box.y + 20;
  for (const std::string& line : {"Delete \"" + fitText(frame.baseFont, dialog.name, width) + "\"?",
                                  std::string("This action cannot be undone.")}) {
    const SDL_Point size = textSize(frame.baseFont, line);
    drawText(frame.renderer, frame.baseFont, line, layout.box.x + (layout.box.w - size.x) / 2, y,
             theme::white);
    y += size.y + 8;
  }
  drawDialogButton(frame, layout.cancel, "Cancel", !dialog.deleteChosen);
  drawDialogButton(frame, layout.remove, "Delete", dialog.deleteChosen);
}

}  // namespace tavek
