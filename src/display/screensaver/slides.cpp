#include "display/screensaver/slides.h"

#include <iostream>
#include <utility>

#include "display/toolkit/colour.h"
#include "display/toolkit/fade.h"
#include "display/toolkit/texture.h"

namespace tavek {
namespace {

/// A scan that runs meanwhile may bring some.
constexpr Uint64 lookAgainMs = 60'000;
constexpr Uint8 halfStrength = 128;

/// A decoded slide as it is shown: over the whole window, at half strength. So each frame is a plain copy.
TexturePtr shownSlide(SDL_Renderer* renderer, const BackgroundImage& image, SDL_Point window) {
  TexturePtr shown(
      SDL_CreateTexture(renderer, SDL_PIXELFORMAT_RGB888, SDL_TEXTUREACCESS_TARGET, window.x, window.y));
  SDL_Texture* before = SDL_GetRenderTarget(renderer);
  if (!shown || SDL_SetRenderTarget(renderer, shown.get()) != 0) return {};
  setDrawColour(renderer, theme::black);
  SDL_RenderClear(renderer);
  SDL_SetTextureBlendMode(image.texture(), SDL_BLENDMODE_BLEND);
  SDL_SetTextureAlphaMod(image.texture(), halfStrength);
  copyTexture(renderer, image.texture(), slidePlace(window, image.size()));
  SDL_SetRenderTarget(renderer, before);
  return shown;
}

void drawShown(SDL_Renderer* renderer, SDL_Texture* slide, double strength) {
  SDL_SetTextureBlendMode(slide, strength < 1 ? SDL_BLENDMODE_BLEND : SDL_BLENDMODE_NONE);
  SDL_SetTextureAlphaMod(slide, fadedAlpha(strength));
  SDL_RenderCopy(renderer, slide, nullptr, nullptr);
}

}  // namespace

// --- The list ---

void Slides::reset() {
  listing_.leave();
  listedAt_ = 0;
  sources_ = {};
  slides_.clear();
  clock_ = {};
  for (Slot& each : slots_) each.drop();
}

bool Slides::wantsList(Uint64 nowMs) const {
  const bool looking = listing_.running() || listing_.waiting() > 0;
  return slides_.empty() && !looking && (listedAt_ == 0 || nowMs >= listedAt_ + lookAgainMs);
}

void Slides::list(SlideSources sources, Uint64 nowMs) {
  sources_ = std::move(sources);
  listedAt_ = nowMs;
  startListing();
}

void Slides::startListing() {
  listing_.start([sources = sources_](JobSide<Listing>& side) {
    Listing listing{{}, sources.folders};
    while (listing.slides.empty() && !listing.foldersLeft.empty()) {
      listing.slides = listSlides(listing.foldersLeft.front(), sources.posters, side.stop());
      listing.foldersLeft.erase(listing.foldersLeft.begin());
    }
    side.post(std::move(listing));
  });
}

void Slides::takeListing() {
  auto listing = listing_.take();
  if (!listing) return;
  slides_ = std::move(listing->slides);
  sources_.folders = std::move(listing->foldersLeft);
  clock_ = {};
}

// --- The slide that stands ---

void Slides::Slot::ask(const std::string& file, SDL_Point wished) {
  if (file == path && wished.x == window.x && wished.y == window.y) return;
  // What stands keeps its picture until the one of another size has come.
  if (file != path) drop();
  path = file;
  window = wished;
  image.want({.path = file}, slideArea(wished), Fit::Cover);
}

/// In two passes, so that none of them takes long.
void Slides::Slot::take(SDL_Renderer* renderer) {
  if (image.texture() == nullptr || image.pending()) return image.take(renderer);
  picture = shownSlide(renderer, image, window);
  const std::string error = SDL_GetError();
  if (!picture && !error.empty())
    std::cout << "Display: screensaver fanart render failed: " << error << std::endl;
  image.drop();
}

void Slides::Slot::drop() {
  image.drop();
  picture.reset();
  path.clear();
  window = {};
}

bool Slides::follow(const FrameContext& frame) {
  takeListing();
  bool changed = false;
  for (Slot& each : slots_) {
    const SDL_Texture* shown = each.picture.get();
    each.take(frame.renderer);
    changed = changed || (each.picture.get() != shown && &each == &slot(here));
  }
  if (slot(here).failed()) dropCurrent();
  if (slides_.empty()) return changed;
  const SDL_Point window{frame.width, frame.height};
  slot(here).ask(slides_[clock_.current].path, window);
  if (!slot(here).ready()) return changed;
  if (clock_.startedAt == 0) {
    clock_.startedAt = frame.nowMs;
    return true;
  }
  if (crossfading(frame.nowMs)) return true;
  if (!slot(before).path.empty()) {
    slot(before).drop();
    changed = true;
  }
  prepareNext(window);
  return stepOn(frame.nowMs) || changed;
}

void Slides::prepareNext(SDL_Point window) {
  const std::size_t index = slideAfter(clock_.current, slides_.size());
  if (!slot(next).failed()) return slot(next).ask(slides_[index].path, window);
  slot(next).drop();
  // The one that stands is known to be good: with no other left, it stands on.
  if (index != clock_.current) eraseSlide(slides_, clock_, index);
}

bool Slides::stepOn(Uint64 nowMs) {
  if (!clock_.over(nowMs) || !slot(next).ready()) return false;
  clock_.current = slideAfter(clock_.current, slides_.size());
  clock_.startedAt = nowMs;
  slot_ = (slot_ + next) % slots_.size();
  return true;
}

void Slides::dropCurrent() {
  slot(here).drop();
  clock_.startedAt = 0;
  if (slides_.empty()) return;
  eraseSlide(slides_, clock_, clock_.current);
  // What was decoded ahead is most likely the one that follows.
  slot_ = (slot_ + next) % slots_.size();
  slot(before).drop();
  if (slides_.empty() && !sources_.folders.empty()) startListing();
}

bool Slides::crossfading(Uint64 nowMs) const {
  return current() != nullptr && clock_.crossfade(nowMs) < 1;
}

const Slide* Slides::current() const {
  return slides_.empty() || clock_.startedAt == 0 ? nullptr : &slides_[clock_.current];
}

void Slides::draw(const FrameContext& frame) const {
  if (current() == nullptr || !slot(here).ready()) return;
  const double strength = clock_.crossfade(frame.nowMs);
  // Laid over it, the one that comes takes a part of the one that goes, too; at half strength half of that.
  if (strength < 1 && slot(before).ready())
    drawShown(frame.renderer, slot(before).picture.get(), 1 - strength / 2);
  drawShown(frame.renderer, slot(here).picture.get(), strength);
}

}  // namespace tavek
