#include "display/toolkit/text.h"

#include <algorithm>
#include <sstream>

#include "display/toolkit/fonts.h"
#include "display/toolkit/sdl_handles.h"

namespace tavek {
namespace {

constexpr const char* dots = "...";

/// One rendered line. The colour's alpha counts in the glyphs and again as the texture's modulation.
class Line {
 public:
  Line(SDL_Renderer* renderer, TTF_Font* font, const std::string& text, Colour colour) : renderer_(renderer) {
    if (renderer == nullptr || font == nullptr || text.empty()) return;
    const SurfacePtr surface(TTF_RenderUTF8_Blended(font, text.c_str(), toSdl(colour)));
    if (!surface) return;
    texture_.reset(SDL_CreateTextureFromSurface(renderer, surface.get()));
    if (!texture_) return;
    width_ = surface->w;
    height_ = surface->h;
    SDL_SetTextureBlendMode(texture_.get(), SDL_BLENDMODE_BLEND);
    SDL_SetTextureAlphaMod(texture_.get(), alphaOf(colour));
  }

  explicit operator bool() const { return texture_ != nullptr; }

  void copyTo(int x, int y) const {
    const SDL_Rect place{x, y, width_, height_};
    SDL_RenderCopy(renderer_, texture_.get(), nullptr, &place);
  }

  void copyAround(int x, int y) const {
    for (int dx = -1; dx <= 1; ++dx) {
      for (int dy = -1; dy <= 1; ++dy) {
        if (dx != 0 || dy != 0) copyTo(x + dx, y + dy);
      }
    }
  }

 private:
  SDL_Renderer* renderer_;
  TexturePtr texture_;
  int width_ = 0;
  int height_ = 0;
};

bool fits(TTF_Font* font, const std::string& text, int maxWidth) {
  return textSize(font, text).x <= maxWidth;
}

void endInDots(TTF_Font* font, std::string& line, int maxWidth) {
  if (!line.ends_with(dots)) line = fitText(font, line + dots, maxWidth);
}

}  // namespace

SDL_Point textSize(TTF_Font* font, const std::string& text) {
  SDL_Point size{0, 0};
  if (font == nullptr || text.empty() || TTF_SizeUTF8(font, text.c_str(), &size.x, &size.y) != 0)
    return {0, 0};
  return size;
}

void drawText(SDL_Renderer* renderer, TTF_Font* font, const std::string& text, int x, int y, Colour colour,
              Colour shadow) {
  const Line line(renderer, font, text, colour);
  if (!line) return;
  if (alphaOf(shadow) != 0) {
    const Line halo(renderer, font, text, shadow);
    if (halo) halo.copyAround(x, y);
  }
  line.copyTo(x, y);
}

void drawTextCentered(SDL_Renderer* renderer, TTF_Font* font, const std::string& text, const SDL_Rect& area,
                      Colour colour, double scale, Colour shadow) {
  if (font == nullptr) return;
  FontPtr larger;
  if (scale > 1.0) {
    const int height = TTF_FontHeight(font);
    larger = openRegularFont(std::max(height + 1, static_cast<int>(height * scale)));
  }
  TTF_Font* used = larger ? larger.get() : font;
  const SDL_Point size = textSize(used, text);
  drawText(renderer, used, text, area.x + (area.w - size.x) / 2, area.y + (area.h - size.y) / 2, colour,
           shadow);
}

void drawOutlinedText(SDL_Renderer* renderer, TTF_Font* font, Colour outline, const std::string& text, int x,
                      int y, Colour colour) {
  constexpr SDL_Point cross[] = {{1, 0}, {-1, 0}, {0, 1}, {0, -1}};
  const Line line(renderer, font, text, colour);
  const Line edge(renderer, font, text, outline);
  if (edge) {
    for (const SDL_Point& step : cross) {
      edge.copyAround(x + step.x, y + step.y);
      edge.copyTo(x + step.x, y + step.y);
    }
    edge.copyAround(x, y);
  }
  if (line) line.copyTo(x, y);
}

void drawShadowedText(SDL_Renderer* renderer, TTF_Font* font, const std::string& text, int x, int y,
                      Colour colour, Colour shadow) {
  drawText(renderer, font, text, x + 1, y + 1, shadow, shadow);
  drawText(renderer, font, text, x, y, colour, shadow);
}

std::string fitText(TTF_Font* font, const std::string& text, int maxWidth) {
  if (font == nullptr || text.empty()) return {};
  if (fits(font, text, maxWidth)) return text;
  if (!fits(font, dots, maxWidth)) return {};
  std::string head = text;
  do {
    head.pop_back();
  } while (!head.empty() && !fits(font, head + dots, maxWidth));
  return head + dots;
}

std::vector<std::string> wrapText(TTF_Font* font, const std::string& text, int maxWidth, int maxLines) {
  std::vector<std::string> lines;
  if (font == nullptr || maxWidth <= 0 || maxLines <= 0) return lines;
  const auto full = [&] { return lines.size() == static_cast<std::size_t>(maxLines); };

  std::istringstream words(text);
  std::string word;
  std::string line;
  bool moreText = false;
  while (!moreText && words >> word) {
    std::string longer = line;
    if (!line.empty()) longer += ' ';
    longer += word;
    if (!full() && fits(font, longer, maxWidth)) {
      line = longer;
      continue;
    }
    if (!line.empty()) lines.push_back(std::move(line));
    line.clear();
    if (full()) {
      moreText = true;
    } else if (fits(font, word, maxWidth)) {
      line = word;
    } else {
      lines.push_back(fitText(font, word, maxWidth));
    }
  }
  if (!line.empty()) lines.push_back(std::move(line));
  if (moreText) endInDots(font, lines.back(), maxWidth);
  return lines;
}

}  // namespace tavek
