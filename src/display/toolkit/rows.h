#pragma once

#include <span>
#include <string>
#include <vector>

#include <SDL.h>
#include <SDL_ttf.h>

#include "display/toolkit/colour.h"

/// The tab strip and the rows of the settings pages: a label on the left, a control on the right. A row has
/// no disabled state of its own; a caller shows one through the colours that it passes.
namespace tavek {

/// `area` is the strip of tabs, without the line under it; the labels are borrowed for the call.
struct TabRow {
  SDL_Renderer* renderer = nullptr;
  TTF_Font* font = nullptr;
  SDL_Rect area{};
  int margin = 0;
  int gap = 0;
  std::span<const std::string> labels{};
};

/// Where each tab lies; pixels that do not divide go one each to the tabs from the left.
std::vector<SDL_Rect> tabRects(const SDL_Rect& area, int margin, int gap, int count);
void drawTabRow(const TabRow& row, int selected);

/// What all rows have in common; text and shadow colour go to drawText.
struct Row {
  SDL_Renderer* renderer = nullptr;
  TTF_Font* font = nullptr;
  SDL_Rect rect{};
  std::string label{};
  Colour text = theme::white;
  Colour shadow = 0;
};

struct FieldRow {
  Row row{};
  std::string value{};  ///< "(none)" stands for an empty one
  bool focused = false;
  bool isToggle = false;  ///< a switch, which shows `on`, in place of the value
  bool on = false;
  bool isList = false;  ///< the value is picked from a list, so a triangle takes the caret's place
};

struct ToggleRow {
  Row row{};
  bool focused = false;
  bool on = false;
  int rightPad = 12;
  int switchWidth = 60;
  int switchHeight = 28;
};

/// Where a value row's box and text lie, from the sizes of the label and the value.
struct ValueLayout {
  SDL_Rect box;
  SDL_Point text;
};
ValueLayout valueLayout(const SDL_Rect& row, int labelWidth, int valueWidth);

/// Draws the label and returns its size.
SDL_Point drawLabeledRow(const Row& row);
/// Draws the box with the value, beside a label of that width.
void drawValueRow(const FieldRow& field, int labelWidth);
/// The whole row: background, label, and switch or value.
void drawFieldRow(const FieldRow& field);
void drawToggleRow(const ToggleRow& toggle);

}  // namespace tavek
