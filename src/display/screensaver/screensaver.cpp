#include "display/screensaver/screensaver.h"

#include <algorithm>
#include <cmath>
#include <iostream>
#include <string_view>
#include <utility>

#include "display/screensaver/slide_picture.h"
#include "display/toolkit/fade.h"
#include "display/toolkit/fonts.h"
#include "display/toolkit/shapes.h"
#include "display/toolkit/text.h"
#include "display/toolkit/texture.h"

namespace tavek {
namespace {

/// What lay over a window must not stay on it.
constexpr Uint64 redrawMs = 1000;

/// A room without fan art may get some while nobody is there.
constexpr Uint64 lookAgainMs = 60'000;

/// A picture that covers an area of the window's middle, moved by an offset.
SDL_Rect covering(const FrameContext& frame, SDL_Point size, double factor, double dx = 0, double dy = 0) {
  const double scale =
      std::max(static_cast<double>(frame.width) / size.x, static_cast<double>(frame.height) / size.y) *
      factor;
  const int width = static_cast<int>(size.x * scale);
  const int height = static_cast<int>(size.y * scale);
  return {(frame.width - width) / 2 + static_cast<int>(dx),
          (frame.height - height) / 2 + static_cast<int>(dy), width, height};
}

}  // namespace

// --- When it comes and goes ---

bool Screensaver::idle(bool pictureRuns, Uint64 nowMs) {
  if (lastActivityAt_ == 0) lastActivityAt_ = nowMs;
  return !active_ && !pictureRuns && nowMs >= lastActivityAt_ + idleMs;
}

void Screensaver::start(Source source, Uint64 nowMs) {
  fade_.start(true, nowMs);
  if (std::exchange(active_, true)) return;
  reset();
  source_ = std::move(source);
  listedAt_ = nowMs;
  list(source_.folders);
}

void Screensaver::list(std::vector<std::filesystem::path> folders) {
  listing_.start([folders = std::move(folders), posters = source_.posters](JobSide<Listing>& side) {
    for (std::size_t i = 0; i < folders.size(); ++i) {
      std::vector<Slide> slides = listSlides(folders[i], posters, side.stop());
      if (side.stop()) return;
      if (slides.empty()) continue;
      return side.post(
          {std::move(slides), {folders.begin() + static_cast<std::ptrdiff_t>(i) + 1, folders.end()}});
    }
  });
}

void Screensaver::takeListing(Uint64 nowMs) {
  if (auto listing = listing_.take()) {
    slides_ = std::move(listing->slides);
    foldersLeft_ = std::move(listing->foldersLeft);
    clock_.reset();
  }
  if (!slides_.empty() || listing_.running() || listing_.waiting() > 0) return;
  if (!foldersLeft_.empty()) return list(std::exchange(foldersLeft_, {}));
  if (nowMs < listedAt_ + lookAgainMs) return;
  listedAt_ = nowMs;
  list(source_.folders);
}

bool Screensaver::wakes(const SDL_Event& event, Uint64 nowMs) {
  if (!shown() || event.type != SDL_KEYDOWN || event.key.repeat != 0) return false;
  keysDown_.insert(event.key.keysym.sym);
  end(nowMs);
  return true;
}

bool Screensaver::swallows(const SDL_Event& event) {
  if (event.type == SDL_QUIT) return false;
  const bool key = event.type == SDL_KEYDOWN || event.type == SDL_KEYUP;
  if (!key || !keysDown_.contains(event.key.keysym.sym)) return shown();
  const bool again = event.type == SDL_KEYDOWN && event.key.repeat != 0;
  if (!again) keysDown_.erase(event.key.keysym.sym);
  return again || event.type == SDL_KEYUP || shown();
}

void Screensaver::end(Uint64 nowMs) {
  if (!shown()) return;
  fade_.start(false, nowMs);
  active_ = false;
}

void Screensaver::reset() {
  listing_.leave();
  foldersLeft_.clear();
  slides_.clear();
  clock_.reset();
  for (Image& image : images_) {
    image.drop();
  }
  captionJob_.leave();
  captionKey_.clear();
  caption_ = {};
  logo_.drop();
  albumArt_.drop();
  frame_.reset();
  drawn_ = false;
}

// --- What it shows ---

bool Screensaver::follow(const FrameContext& frame, MusicArt art, bool song, FrameSize lastSize) {
  if (!shown()) return false;
  if (fade_.advance(frame.nowMs)) reset();
  song_ = song;
  art_ = std::move(art);
  lastSize_ = lastSize;
  if (!active_) return false;
  if (song_) {
    if (!art_.albumArt.empty()) {
      albumArt_.want({art_.albumArt, {}, 0}, {frame.width / 5, frame.height / 5}, Fit::Inside);
    }
    albumArt_.take(frame.renderer);
  } else {
    takeListing(frame.nowMs);
    turnPages(frame);
  }
  return fade_.full();
}

/// The present slide, once it is there; the next one a minute later, once that is.
void Screensaver::turnPages(const FrameContext& frame) {
  for (Image& image : images_) image.take(frame);
  if (slides_.empty() || frame.width < 1 || frame.height < 1) return;
  const std::size_t current = clock_.current();
  const std::size_t next = (current + 1) % slides_.size();
  want(frame, current);
  want(frame, next);
  // One that has vanished, or cannot be decoded, is no slide.
  for (const std::size_t slide : {next, current}) {
    Image* image = imageOf(slide);
    if (image != nullptr && !image->pending() && !image->shown) return dropSlide(slide);
  }
  const auto ready = [&](std::size_t slide) {
    const Image* image = imageOf(slide);
    return image != nullptr && image->shown != nullptr;
  };
  if (!clock_.begun() && ready(current)) clock_.begin(frame.nowMs);
  if (clock_.due(frame.nowMs) && ready(next)) clock_.next(slides_.size(), frame.nowMs);
  followCaption(frame);
}

/// In the place of a picture that is needed no more.
void Screensaver::want(const FrameContext& frame, std::size_t slide) {
  Image* image = imageOf(slide);
  if (image == nullptr) {
    const auto previous = clock_.previous(frame.nowMs);
    image = std::ranges::find_if(images_, [&](const Image& other) {
      return !other.slide || (*other.slide != clock_.current() && other.slide != previous);
    });
    if (image == images_.end()) return;
    image->drop();
    image->slide = slide;
  }
  if (image->window.x == frame.width && image->window.y == frame.height) return;
  image->window = {frame.width, frame.height};
  image->job.start([file = slides_[slide].path, window = image->window](JobSide<SurfacePtr>& side) {
    side.post(slidePicture(file, window));
    SDL_TLSCleanup();
  });
}

Screensaver::Image* Screensaver::imageOf(std::size_t slide) {
  Image* image = std::ranges::find(images_, std::optional(slide), &Image::slide);
  return image != images_.end() ? image : nullptr;
}

void Screensaver::dropSlide(std::size_t slide) {
  std::cout << "Display: screensaver fanart render failed: " << slides_[slide].path.string() << std::endl;
  slides_.erase(slides_.begin() + static_cast<std::ptrdiff_t>(slide));
  clock_.erase(slide, slides_.size());
  drawn_ = false;
  for (Image& image : images_) {
    if (!image.slide || *image.slide < slide) continue;
    if (*image.slide > slide) {
      --*image.slide;
    } else {
      image.drop();
    }
  }
}

void Screensaver::Image::drop() {
  slide.reset();
  job.leave();
  shown.reset();
  window = {};
}

void Screensaver::Image::take(const FrameContext& frame) {
  const auto picture = job.take();
  if (!picture) return;
  shown.reset(*picture ? SDL_CreateTextureFromSurface(frame.renderer, picture->get()) : nullptr);
}

void Screensaver::followCaption(const FrameContext& frame) {
  if (!clock_.begun()) return;
  const Slide& slide = slides_[clock_.current()];
  if (slide.path != captionKey_) {
    captionKey_ = slide.path;
    caption_ = {};
    logo_.drop();
    captionShowing_.reset();
  }
  if (std::exchange(captionShowing_, clock_.startedAt()) != clock_.startedAt()) {
    captionJob_.start([slide, notes = &notes_](JobSide<Caption>& side) {
      side.post(captionFor(slide, *notes, side.stop()));
    });
  }
  if (auto caption = captionJob_.take()) {
    caption_ = std::move(*caption);
    drawn_ = false;
  }
  if (caption_.slideGone) {
    caption_ = {};
    captionKey_.clear();
    return dropSlide(clock_.current());
  }
  const SDL_Texture* before = logo_.texture();
  if (caption_.logo) logo_.want(*caption_.logo, captionLogoArea(frame.width, frame.height), Fit::Inside);
  logo_.take(frame.renderer);
  if (logo_.texture() != before) drawn_ = false;
}

bool Screensaver::moves(Uint64 nowMs) const {
  return song_ || !fade_.full() || (clock_.begun() && clock_.crossfade(nowMs) < 1);
}

bool Screensaver::drawAlone(const FrameContext& frame) {
  const bool moving = moves(frame.nowMs);
  if (drawn_ && !moving && frame.nowMs < drawnAt_ + redrawMs) return false;
  drawWhole(frame);
  drawn_ = !moving;
  drawnAt_ = frame.nowMs;
  return true;
}

void Screensaver::draw(const FrameContext& frame, const FocusFacts& /*facts*/) {
  if (fade_.alpha() <= 0 || frame.width < 1 || frame.height < 1) return;
  drawn_ = false;
  if (!frame_ || frameSize_.x != frame.width || frameSize_.y != frame.height) {
    frameSize_ = {frame.width, frame.height};
    // All of it is drawn: without a channel for what is not, it is laid over the screen in a quarter of the
    // time where there is no graphics chip.
    frame_.reset(SDL_CreateTexture(frame.renderer, SDL_PIXELFORMAT_RGB888, SDL_TEXTUREACCESS_TARGET,
                                   frame.width, frame.height));
    SDL_SetTextureBlendMode(frame_.get(), SDL_BLENDMODE_BLEND);
  }
  if (!frame_) return drawWhole(frame);
  SDL_Texture* target = SDL_GetRenderTarget(frame.renderer);
  SDL_SetRenderTarget(frame.renderer, frame_.get());
  drawWhole(frame);
  SDL_SetRenderTarget(frame.renderer, target);
  SDL_SetTextureAlphaMod(frame_.get(), fadedAlpha(fade_.alpha()));
  SDL_RenderCopy(frame.renderer, frame_.get(), nullptr, nullptr);
}

void Screensaver::drawWhole(const FrameContext& frame) {
  SDL_SetRenderDrawBlendMode(frame.renderer, SDL_BLENDMODE_NONE);
  SDL_SetRenderDrawColor(frame.renderer, 0, 0, 0, SDL_ALPHA_OPAQUE);
  SDL_RenderClear(frame.renderer);
  song_ ? drawMusic(frame) : drawSlides(frame);
}

void Screensaver::drawSlides(const FrameContext& frame) {
  if (slides_.empty() || !clock_.begun()) return;
  const double crossfade = clock_.crossfade(frame.nowMs);
  // Laid over it, the one that comes takes a part of the one that goes; at half strength half of that.
  if (const auto previous = clock_.previous(frame.nowMs)) drawSlide(frame, *previous, 1 - crossfade / 2);
  drawSlide(frame, clock_.current(), crossfade);
  drawCaption(frame, caption_, logo_.texture(), logo_.size(), lastSize_);
}

void Screensaver::drawSlide(const FrameContext& frame, std::size_t slide, double strength) {
  const Image* image = imageOf(slide);
  if (image == nullptr || !image->shown) return;
  SDL_SetTextureBlendMode(image->shown.get(), strength < 1 ? SDL_BLENDMODE_BLEND : SDL_BLENDMODE_NONE);
  SDL_SetTextureAlphaMod(image->shown.get(), fadedAlpha(strength));
  SDL_RenderCopy(frame.renderer, image->shown.get(), nullptr, nullptr);
}

/// The backdrop breathes and drifts, so that no picture of it stays on the screen.
void Screensaver::drawMusic(const FrameContext& frame) {
  const double seconds = static_cast<double>(frame.nowMs) / 1000;
  if (art_.backdrop != nullptr) {
    const SDL_Rect place = covering(frame, art_.size, 1.05 + 0.02 * std::sin(0.25 * seconds),
                                    20 * std::sin(0.1 * seconds), 16 * std::cos(0.13 * seconds));
    copyTexture(frame.renderer, art_.backdrop, place);
  }
  const BlendScope blending(frame.renderer);
  const int margin = frame.width < 560 ? 40 : std::min(frame.width / 14, 120);
  TTF_Font* const small = regularFont(std::clamp(frame.height / 28, 16, 36));
  const std::array fonts{regularFont(std::clamp(frame.height / 18, 22, 54)), small, small};
  constexpr int gap = 8;
  int height = -gap;
  for (std::size_t i = 0; i < fonts.size(); ++i) {
    if (const int line = textSize(fonts[i], art_.lines[i]).y; line > 0) height += line + gap;
  }
  int y = std::max(frame.height - margin - height, margin);
  for (std::size_t i = 0; i < fonts.size(); ++i) {
    const std::string line = fitText(fonts[i], art_.lines[i], std::max(frame.width - 2 * margin, 1));
    const int lineHeight = textSize(fonts[i], line).y;
    if (lineHeight == 0) continue;
    drawText(frame.renderer, fonts[i], line, margin + 2, y + 2, rgba(0, 0, 0, 179));
    drawText(frame.renderer, fonts[i], line, margin, y, theme::white);
    y += lineHeight + gap;
  }
  if (SDL_Texture* album = albumArt_.texture()) {
    const SDL_Point size = albumArt_.size();
    copyTexture(frame.renderer, album,
                {frame.width - margin - size.x, frame.height - margin - size.y, size.x, size.y});
  }
}

}  // namespace tavek
