#include "display/toolkit/text.h"

#include <algorithm>
#include <list>
#include <map>
#include <sstream>
#include <tuple>

#include "display/toolkit/fonts.h"
#include "display/toolkit/sdl_handles.h"

namespace tavek {
namespace {

constexpr const char* dots = "...";

/// Enough for a screen of settings with its list of letters; a line of average length takes some 20 kB.
constexpr std::size_t keptLines = 256;

/// One rendered line. The colour's alpha counts in the glyphs and again as the texture's modulation.
struct Line {
  TexturePtr texture;
  int width = 0;
  int height = 0;

  explicit operator bool() const { return texture != nullptr; }

  void copyTo(SDL_Renderer* renderer, int x, int y) const {
    const SDL_Rect place{x, y, width, height};
    SDL_RenderCopy(renderer, texture.get(), nullptr, &place);
  }
  void copyAround(SDL_Renderer* renderer, int x, int y) const {
    for (int dx = -1; dx <= 1; ++dx) {
      for (int dy = -1; dy <= 1; ++dy) {
        if (dx != 0 || dy != 0) copyTo(renderer, x + dx, y + dy);
      }
    }
  }
};

Line render(SDL_Renderer* renderer, TTF_Font* font, const std::string& text, Colour colour) {
  Line line;
  const SurfacePtr surface(TTF_RenderUTF8_Blended(font, text.c_str(), toSdl(colour)));
  if (!surface) return line;
  line.texture.reset(SDL_CreateTextureFromSurface(renderer, surface.get()));
  line.width = surface->w;
  line.height = surface->h;
  SDL_SetTextureBlendMode(line.texture.get(), SDL_BLENDMODE_BLEND);
  SDL_SetTextureAlphaMod(line.texture.get(), alphaOf(colour));
  return line;
}

/// The lines that were drawn last, the latest first.
class LineCache {
 public:
  /// Stays valid until many other lines were asked for.
  const Line& get(SDL_Renderer* renderer, TTF_Font* font, const std::string& text, Colour colour) {
    static const Line none;
    if (renderer == nullptr || font == nullptr || text.empty()) return none;
    Key key{renderer, font, colour, text};
    const auto known = places_.find(key);
    if (known != places_.end()) {
      lines_.splice(lines_.begin(), lines_, known->second);
      return lines_.front().line;
    }
    lines_.push_front({std::move(key), render(renderer, font, text, colour)});
    places_[lines_.front().key] = lines_.begin();
    if (lines_.size() > keptLines) {
      places_.erase(lines_.back().key);
      lines_.pop_back();
    }
    return lines_.front().line;
  }
  void clear() {
    places_.clear();
    lines_.clear();
  }

 private:
  using Key = std::tuple<SDL_Renderer*, TTF_Font*, Colour, std::string>;
  struct Entry {
    Key key;
    Line line;
  };
  std::list<Entry> lines_;
  std::map<Key, std::list<Entry>::iterator> places_;
};

LineCache& lineCache() {
  static LineCache cache;
  return cache;
}

const Line& lineOf(SDL_Renderer* renderer, TTF_Font* font, const std::string& text, Colour colour) {
  return lineCache().get(renderer, font, text, colour);
}

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

void dropTextCache() {
  lineCache().clear();
}

void drawText(SDL_Renderer* renderer, TTF_Font* font, const std::string& text, int x, int y, Colour colour,
              Colour shadow) {
  const Line& line = lineOf(renderer, font, text, colour);
  if (!line) return;
  if (alphaOf(shadow) != 0) {
    const Line& halo = lineOf(renderer, font, text, shadow);
    if (halo) halo.copyAround(renderer, x, y);
  }
  line.copyTo(renderer, x, y);
}

void drawTextCentered(SDL_Renderer* renderer, TTF_Font* font, const std::string& text, const SDL_Rect& area,
                      Colour colour, double scale, Colour shadow) {
  if (font == nullptr) return;
  TTF_Font* larger = nullptr;
  if (scale > 1.0) {
    const int height = TTF_FontHeight(font);
    larger = regularFont(std::max(height + 1, static_cast<int>(height * scale)));
  }
  TTF_Font* used = larger != nullptr ? larger : font;
  const SDL_Point size = textSize(used, text);
  drawText(renderer, used, text, area.x + (area.w - size.x) / 2, area.y + (area.h - size.y) / 2, colour,
           shadow);
}

void drawOutlinedText(SDL_Renderer* renderer, TTF_Font* font, Colour outline, const std::string& text, int x,
                      int y, Colour colour) {
  constexpr SDL_Point cross[] = {{1, 0}, {-1, 0}, {0, 1}, {0, -1}};
  const Line& line = lineOf(renderer, font, text, colour);
  const Line& edge = lineOf(renderer, font, text, outline);
  if (edge) {
    for (const SDL_Point& step : cross) {
      edge.copyAround(renderer, x + step.x, y + step.y);
      edge.copyTo(renderer, x + step.x, y + step.y);
    }
    edge.copyAround(renderer, x, y);
  }
  if (line) line.copyTo(renderer, x, y);
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
