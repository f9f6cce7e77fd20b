#include "display/screensaver/caption.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "display/screensaver/saver_rules.h"
#include "display/toolkit/fonts.h"
#include "display/toolkit/shapes.h"
#include "display/toolkit/text.h"
#include "display/toolkit/texture.h"
#include "library/file_types.h"
#include "library/media_paths.h"
#include "library/overview.h"
#include "media/demultiplexer.h"

namespace tavek {
namespace {

namespace fs = std::filesystem;

constexpr int gap = 12;
constexpr Colour soft = rgba(255, 255, 255, 230);
constexpr Colour shadow = rgba(0, 0, 0, 200);
constexpr Colour tagFill = rgba(0, 0, 0, 140);

FrameSize sizeOf(const fs::path& video, const Flag& stop) {
  try {
    const Demultiplexer film(video.string(), {}, Pictures::Needed, stop);
    const AVCodecParameters* picture = film.videoParameters();
    if (picture != nullptr && picture->width > 0 && picture->height > 0)
      return {picture->width, picture->height};
  } catch (const std::exception&) {
    // Its size stays unknown.
  }
  return {};
}

/// Each film is opened once in the program's life.
FrameSize notedSize(const fs::path& video, MediaNotes& notes, const Flag& stop) {
  if (const auto noted = notes.frameSize(video.string())) return *noted;
  const FrameSize size = sizeOf(video, stop);
  if (size.width > 0) notes.setFrameSize(video.string(), size.width, size.height);
  return size;
}

/// Bold for as long as it lives, since the font is everybody's.
class BoldScope {
 public:
  explicit BoldScope(TTF_Font* font) : font_(font), before_(font != nullptr ? TTF_GetFontStyle(font) : 0) {
    if (font_ != nullptr) TTF_SetFontStyle(font_, before_ | TTF_STYLE_BOLD);
  }
  ~BoldScope() {
    if (font_ != nullptr) TTF_SetFontStyle(font_, before_);
  }
  BoldScope(const BoldScope&) = delete;
  BoldScope& operator=(const BoldScope&) = delete;

 private:
  TTF_Font* font_;
  int before_;
};

/// Lays the parts out and draws them, from the overview upwards.
class CaptionPainter {
 public:
  CaptionPainter(const FrameContext& frame, const Caption& caption)
      : frame_(frame),
        caption_(caption),
        margin_(frame.width < 720 ? 24 : std::min(frame.width / 30, 64)),
        overviewFont_(regularFont(std::clamp(frame.height / 20, 24, 44))) {}

  void draw(SDL_Texture* logo, SDL_Point logoSize, FrameSize size) {
    wrapOverview();
    const int below = drawYear();
    drawBadge(size, below);
    const bool logoDrawn = drawLogo(logo, logoSize);
    if (!logoDrawn) drawTitle();
    for (std::size_t i = 0; i < lines_.size(); ++i)
      text(overviewFont_, lines_[i], margin_, *top_ + static_cast<int>(i) * lineHeight_, soft);
    drawTag(logoDrawn);
  }

 private:
  void text(TTF_Font* font, const std::string& words, int x, int y, Colour colour) const {
    drawText(frame_.renderer, font, words, x, y, colour, shadow);
  }

  void wrapOverview() {
    if (overviewFont_ == nullptr || caption_.overview.empty()) return;
    const int available = std::max(frame_.width - 2 * margin_, 1);
    int width = available;
    if (available > 259) width = std::max(std::min(available, static_cast<int>(0.55 * frame_.width)), 260);
    lineHeight_ = std::max(TTF_FontLineSkip(overviewFont_), 1) + 4;
    lines_ =
        wrapText(overviewFont_, caption_.overview, width, std::clamp(frame_.height / 3 / lineHeight_, 2, 6));
    if (lines_.empty()) return;
    const int height = lineHeight_ * static_cast<int>(lines_.size()) - 4;
    top_ = std::max(frame_.height - margin_ - height, margin_);
  }

  /// At the lower right. Gives its lower edge, 0 without a year.
  int drawYear() const {
    TTF_Font* font = regularFont(frame_.height < 240 ? 40 : std::min(frame_.height / 6, 96));
    const SDL_Point size = textSize(font, caption_.year);
    if (size.x == 0) return 0;
    const int y = std::max(frame_.height - margin_ - size.y - 20, margin_);
    text(font, caption_.year, frame_.width - margin_ - size.x, y, theme::white);
    return y + size.y;
  }

  void drawBadge(FrameSize film, int below) const {
    const std::string badge = resolutionBadge(film.width, film.height);
    TTF_Font* font = regularFont(std::clamp(frame_.height / 28, 18, 30));
    const SDL_Point size = textSize(font, badge);
    if (size.x == 0) return;
    const int lowest = frame_.height - margin_ - size.y;
    const bool fits = below > 0 && below + gap <= lowest;
    text(font, badge, frame_.width - margin_ - size.x, std::max(fits ? below + gap : lowest, margin_), soft);
  }

  bool drawLogo(SDL_Texture* logo, SDL_Point size) const {
    if (logo == nullptr) return false;
    int y = top_ ? *top_ - gap - size.y : margin_;
    if (y + size.y > frame_.height - margin_) y = frame_.height - margin_ - size.y;
    copyTexture(frame_.renderer, logo, {margin_, std::max(y, margin_), size.x, size.y});
    return true;
  }

  void drawTitle() const {
    TTF_Font* font = regularFont(frame_.height < 432 ? 72 : 3 * std::min(frame_.height / 18, 42));
    const BoldScope bold(font);
    const std::string title = fitText(font, caption_.title, std::max(frame_.width - 2 * margin_, 1));
    const SDL_Point size = textSize(font, title);
    const int bottom = top_ ? *top_ - gap : frame_.height - margin_;
    text(font, title, margin_, std::max(bottom - size.y, margin_), theme::white);
  }

  void drawTag(bool logoDrawn) const {
    TTF_Font* font = regularFont(std::clamp(frame_.height / 40, 16, 24));
    const SDL_Point size = textSize(font, "FILM");
    if (caption_.title.empty() || size.x == 0) return;
    const int y = margin_ + (logoDrawn ? std::clamp(size.y + 16, 18, 36) : 0);
    fillRect(frame_.renderer, {margin_, y, size.x + 16, size.y + 8}, tagFill);
    text(font, "FILM", margin_ + 8, y + 4, theme::white);
  }

  const FrameContext& frame_;
  const Caption& caption_;
  const int margin_;
  TTF_Font* const overviewFont_;
  int lineHeight_ = 0;
  std::vector<std::string> lines_;
  std::optional<int> top_;  ///< of the overview
};

}  // namespace

Caption captionFor(const Slide& slide, MediaNotes& notes, const Flag& stop) {
  Caption caption;
  caption.slideGone = !isUsableFile(slide.path);
  if (caption.slideGone || seriesRootOf(slide.path)) return caption;
  caption.shown = true;
  TitleYear name = splitTitleYear(slide.name);
  caption.title = std::move(name.title);
  caption.year = std::move(name.year);
  const fs::path folder = slide.path.parent_path();
  if (isUsableFile(folder / "clearlogo.png")) caption.logo = fileStateOf(folder / "clearlogo.png");
  auto overview = readOverview(folder / "metadata.json");
  if (const auto video = videoOfSlide(slide, stop)) {
    caption.video = video->string();
    caption.videoSize = notedSize(*video, notes, stop);
    if (!overview) overview = readOverview(video->parent_path() / "metadata.json");
  }
  caption.overview = overview.value_or("");
  return caption;
}

SDL_Point captionLogoArea(int width, int height) {
  return {std::max(static_cast<int>(0.28 * width), 1), std::max(static_cast<int>(0.2 * height), 1)};
}

void drawCaption(const FrameContext& frame, const Caption& caption, SDL_Texture* logo, SDL_Point logoSize,
                 FrameSize lastSize) {
  if (!caption.shown) return;
  const BlendScope blending(frame.renderer);
  CaptionPainter(frame, caption)
      .draw(logo, logoSize, caption.videoSize.width > 0 ? caption.videoSize : lastSize);
}

}  // namespace tavek
