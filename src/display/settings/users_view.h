#pragma once

#include <string>

#include "display/settings/users_form.h"
#include "display/settings/users_layout.h"
#include "display/toolkit/frame_context.h"

/// The looks of the users' page. `focused`: the keys go to the page.
namespace tavek {

void drawUsers(const FrameContext& frame, const UsersForm& form, const UsersLayout& layout,
               const std::string& activeUser, bool focused);
/// Over all of it.
void drawDeleteDialog(const FrameContext& frame, const DeleteDialog& dialog,
                      const DeleteDialogLayout& layout);

}  // namespace tavek
