#include "display/settings/users_page.h"

#include "display/settings/users_view.h"

namespace tavek {

bool UsersPage::click(SDL_Point point, Uint64 /*nowMs*/) {
  const auto hits = [&](const SDL_Rect& rect) { return SDL_PointInRect(&point, &rect) == SDL_TRUE; };
  if (form_.deleteDialog()) {
    if (hits(dialogLayout_.remove)) {
      form_.confirmDeleteUser();
    } else if (hits(dialogLayout_.cancel)) {
      form_.closeDeleteDialog();
    }
    return true;
  }
  for (std::size_t i = 0; i < layout_.rows.size(); ++i) {
    if (!hits(deleteButtonOf(layout_.rows[i]))) continue;
    form_.clickDeleteButton(layout_.firstRow + i);
    return true;
  }
  if (hits(layout_.list)) {
    form_.clickList(layout_.userAt(point.y));
  } else if (hits(layout_.nameField)) {
    form_.clickNameField();
  } else if (form_.keyboard().visible() && hits(layout_.keyboard.panel)) {
    form_.clickKeyboard(hitTestKeyboard(layout_.keyboard, point));
  } else {
    return false;
  }
  return true;
}

void UsersPage::draw(const FrameContext& frame, int top, bool focused) {
  const SDL_Point window{frame.width, frame.height};
  layout_ =
      layoutUsers(window, top, form_.keyboard().animation(), form_.userNames().size(), form_.selectedUser());
  drawUsers(frame, form_, layout_, users_.activeUser(), focused);
  dialogLayout_ = {};
  if (!form_.deleteDialog()) return;
  dialogLayout_ = layoutDeleteDialog(window);
  drawDeleteDialog(frame, *form_.deleteDialog(), dialogLayout_);
}

}  // namespace tavek
