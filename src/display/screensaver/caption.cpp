#include "display/screensaver/caption.h"

#include <algorithm>
#include <system_error>
#include <utility>

#include "display/screensaver/caption_layout.h"
#include "display/toolkit/fonts.h"
#include "display/toolkit/shapes.h"
#include "display/toolkit/text.h"
#include "display/toolkit/texture.h"
#include "library/file_types.h"
#include "library/media_paths.h"
#include "library/overview.h"
#include "media/demultiplexer.h"
#include "media/error.h"

namespace tavek {
namespace {

namespace fs = std::filesystem;

constexpr const char* tagText = "FILM";
constexpr int lineGap = 4;
constexpr Colour softWhite = 0xE6FFFFFF;
constexpr Colour shadowColour = 0xC8000000;

/// The font is shared: bold for as long as this lives.
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

std::string overviewOf(const fs::path& slideFolder, const fs::path& film) {
  constexpr const char* name = "metadata.json";
  auto overview = readOverview(slideFolder / name);
  if (!overview && !film.empty()) overview = readOverview(film.parent_path() / name);
  return overview.value_or("");
}

}  // namespace

// --- What is told ---

std::pair<CaptionFacts, fs::path> captionFactsOf(const Slide& slide, const Flag& stop) {
  CaptionFacts facts;
  const fs::path picture(slide.path);
  facts.slideThere = isUsableFile(picture);
  learnRoomKind(picture, stop);
  facts.series = seriesRootOf(picture).has_value();
  if (facts.series || !facts.slideThere) return {facts, {}};
  facts.name = splitTitleYear(slide.name);
  const fs::path film = filmOfSlide(slide, stop).value_or("");
  facts.overview = overviewOf(picture.parent_path(), film);
  const fs::path logo = picture.parent_path() / "clearlogo.png";
  if (isUsableFile(logo)) facts.logo = logo;
  return {facts, film};
}

FrameSize filmSize(const fs::path& film, const Flag& stop) {
  try {
    const Demultiplexer file(film.string(), {}, Pictures::Needed, stop);
    const AVCodecParameters* video = file.videoParameters();
    if (video != nullptr && video->width > 0 && video->height > 0) return {video->width, video->height};
  } catch (const ffmpeg::Error&) {
    // What can't be opened has no size to tell.
  }
  return {};
}

void Caption::ask(const Slide& slide) {
  job_.start([slide, notes = &notes_](JobSide<Message>& side) {
    const auto [facts, film] = captionFactsOf(slide, side.stop());
    side.post(facts);
    if (film.empty()) return;
    auto size = notes->frameSize(film.string());
    if (!size) {
      size = filmSize(film, side.stop());
      if (size->width > 0) notes->setFrameSize(film.string(), size->width, size->height);
    }
    side.post(*size);
  });
}

bool Caption::follow(const FrameContext& frame, const Slide* slide, Uint64 showing) {
  if (slide == nullptr) {
    if (!slide_.empty()) drop();
    return false;
  }
  if (slide->path != slide_) {
    drop();
    slide_ = slide->path;
  }
  if (showing != showing_) {
    showing_ = showing;
    ask(*slide);
  }
  return take(frame);
}

bool Caption::take(const FrameContext& frame) {
  bool changed = false;
  while (auto message = job_.take()) {
    changed = true;
    if (const auto* size = std::get_if<FrameSize>(&*message)) {
      filmSize_ = {size->width, size->height};
      continue;
    }
    facts_ = std::get<CaptionFacts>(std::move(*message));
    known_ = true;
    linesFor_ = {};
  }
  if (facts_.logo.empty()) return changed;
  logo_.want({.path = facts_.logo}, logoArea({frame.width, frame.height}), Fit::Inside);
  const bool waited = logo_.pending();
  logo_.take(frame.renderer);
  return changed || (waited && !logo_.pending());
}

void Caption::drop() {
  job_.leave();
  slide_.clear();
  showing_ = 0;
  known_ = false;
  facts_ = {};
  filmSize_ = {};
  logo_.drop();
  lines_.clear();
  linesFor_ = {};
}

// --- How it looks ---

struct Caption::Fonts {
  explicit Fonts(int height) {
    const CaptionFonts sizes = captionFonts(height);
    year = regularFont(sizes.year);
    title = regularFont(sizes.title);
    overview = regularFont(sizes.overview);
    badge = regularFont(sizes.badge);
    tag = regularFont(sizes.tag);
  }
  int lineHeight() const {
    return (overview != nullptr ? std::max(TTF_FontLineSkip(overview), 1) : 1) + lineGap;
  }
  TTF_Font* year;
  TTF_Font* title;
  TTF_Font* overview;
  TTF_Font* badge;
  TTF_Font* tag;
};

/// Breaking the lines measures every word, too much for each frame.
void Caption::layOut(const FrameContext& frame, const Fonts& fonts) {
  if (linesFor_.x == frame.width && linesFor_.y == frame.height) return;
  linesFor_ = {frame.width, frame.height};
  lines_ = wrapText(fonts.overview, facts_.overview, overviewWidth(frame.width),
                    overviewLineLimit(frame.height, fonts.lineHeight()));
}

void Caption::draw(const FrameContext& frame, SDL_Point lastPicture) {
  // A title that gave way to a logo a moment later would flicker.
  const bool logoComes = !facts_.logo.empty() && logo_.texture() == nullptr && logo_.pending();
  if (!known_ || facts_.series || logoComes) return;
  const Fonts fonts(frame.height);
  layOut(frame, fonts);
  const bool sizeKnown = filmSize_.x > 0 && filmSize_.y > 0;
  const std::string badge = resolutionBadge(sizeKnown ? filmSize_ : lastPicture);
  const bool logo = logo_.texture() != nullptr;
  const BoldScope bold(fonts.title);
  const std::string title =
      fitText(fonts.title, facts_.name.title, frame.width - 2 * captionMargin(frame.width));
  const CaptionPlaces places = placeCaption({.window = {frame.width, frame.height},
                                             .year = textSize(fonts.year, facts_.name.year),
                                             .badge = textSize(fonts.badge, badge),
                                             .title = textSize(fonts.title, title),
                                             .logo = logo ? logo_.size() : SDL_Point{},
                                             .tag = textSize(fonts.tag, tagText),
                                             .lines = static_cast<int>(lines_.size()),
                                             .lineHeight = fonts.lineHeight()});

  const auto words = [&](TTF_Font* font, const std::string& text, SDL_Point at, Colour colour) {
    drawText(frame.renderer, font, text, at.x, at.y, colour, shadowColour);
  };
  words(fonts.year, facts_.name.year, places.year, theme::white);
  words(fonts.badge, badge, places.badge, softWhite);
  if (logo) {
    SDL_SetTextureBlendMode(logo_.texture(), SDL_BLENDMODE_BLEND);
    copyTexture(frame.renderer, logo_.texture(), places.logo);
  } else {
    words(fonts.title, title, places.title, theme::white);
  }
  SDL_Point at = places.overview;
  for (const std::string& line : lines_) {
    words(fonts.overview, line, at, softWhite);
    at.y += fonts.lineHeight();
  }
  if (facts_.name.title.empty()) return;
  fillRect(frame.renderer, places.tagBox, withAlpha(theme::black, 140));
  words(fonts.tag, tagText, places.tag, theme::white);
}

}  // namespace tavek
