#pragma once

#include <span>
#include <string>

#include <SDL.h>
#include <SDL_ttf.h>

#include "display/toolkit/colour.h"

/// The drop-down list: a window of rows around the selection, below or above the row that opened it.
namespace tavek {

struct ListStyle {
  Colour fill = theme::panelFill;
  Colour frame = theme::panelFrame;
  Colour text = theme::white;
  Colour highlightFill = theme::accent;
  Colour highlightText = theme::white;
  Colour shadow = rgba(0, 0, 0, 130);
  int rowHeight = 36;
  int margin = 12;  ///< kept free at the right and lower edge of the bounds
};

/// The rows are borrowed for the call.
struct DropDownList {
  TTF_Font* font = nullptr;
  std::span<const std::string> rows{};
  int selected = 0;
  int visibleRows = 8;
  ListStyle style{};
};

/// The box on screen and the rows of the list that it shows; all zero for an empty list.
struct ListLayout {
  SDL_Rect box{};
  int firstRow = 0;
  int rowCount = 0;
};

/// `anchor` is the row that opened the list, `bounds` what the list should stay inside.
ListLayout listLayout(const DropDownList& list, const SDL_Rect& anchor, const SDL_Rect& bounds);
ListLayout drawList(const DropDownList& list, SDL_Renderer* renderer, const SDL_Rect& anchor,
                    const SDL_Rect& bounds);

}  // namespace tavek
