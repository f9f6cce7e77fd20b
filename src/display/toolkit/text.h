#pragma once

#include <string>
#include <vector>

#include <SDL.h>
#include <SDL_ttf.h>

#include "display/toolkit/colour.h"

/// Lines of text. Those of the last frames are kept as pictures, so that a line that stands costs a copy. A
/// null renderer, a null font, an empty string or text that can't be rendered draws nothing. Positions are
/// the top left corner in pixels. Main thread only.
namespace tavek {

/// Drops the lines that are kept; has to run before their renderer or their fonts go.
void dropTextCache();

/// Width and height of one line; zero without a font or text.
SDL_Point textSize(TTF_Font* font, const std::string& text);

/// A shadow with an alpha above zero is laid as a halo on the eight neighbouring pixels.
void drawText(SDL_Renderer* renderer, TTF_Font* font, const std::string& text, int x, int y, Colour colour,
              Colour shadow = 0);

/// Centred in `area`; a scale above 1 draws it in a larger size of the regular face.
void drawTextCentered(SDL_Renderer* renderer, TTF_Font* font, const std::string& text, const SDL_Rect& area,
                      Colour colour, double scale = 1.0, Colour shadow = 0);

/// With an outline all round, heavier than the halo, to stand out on a bright picture.
void drawOutlinedText(SDL_Renderer* renderer, TTF_Font* font, Colour outline, const std::string& text, int x,
                      int y, Colour colour);

/// With a drop shadow one pixel down and right, on top of the halo.
void drawShadowedText(SDL_Renderer* renderer, TTF_Font* font, const std::string& text, int x, int y,
                      Colour colour, Colour shadow);

/// The text, or its longest head with "..." behind it that is no wider than `maxWidth`; it is cut by bytes.
/// Empty if not even the dots fit.
std::string fitText(TTF_Font* font, const std::string& text, int maxWidth);

/// The words of the text in at most `maxLines` lines; the last one ends in "..." if there was more.
std::vector<std::string> wrapText(TTF_Font* font, const std::string& text, int maxWidth, int maxLines);

}  // namespace tavek
