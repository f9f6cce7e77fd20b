#include "display/screensaver/slides.h"

#include <utility>

#include "display/toolkit/fade.h"
#include "display/toolkit/texture.h"

namespace tavek {
namespace {

/// A scan that runs meanwhile may bring some.
constexpr Uint64 lookAgainMs = 60'000;
constexpr int halfStrength = 128;

bool drawSlide(const FrameContext& frame, const BackgroundImage& image, Uint8 alpha) {
  SDL_Texture* texture = image.texture();
  SDL_SetTextureBlendMode(texture, SDL_BLENDMODE_BLEND);
  const bool alive = SDL_SetTextureAlphaMod(texture, alpha) == 0;
  copyTexture(frame.renderer, texture, slidePlace({frame.width, frame.height}, image.size()));
  SDL_SetTextureAlphaMod(texture, 255);
  return alive;
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
  if (file == path && wished.x == area.x && wished.y == area.y) return;
  // What stands keeps its picture until the one of another size has come.
  if (file != path) drop();
  path = file;
  area = wished;
  image.want({.path = file}, wished, Fit::Cover);
}

void Slides::Slot::drop() {
  image.drop();
  path.clear();
  area = {};
}

bool Slides::follow(const FrameContext& frame) {
  takeListing();
  bool changed = false;
  for (Slot& each : slots_) {
    const bool waited = each.image.pending();
    each.image.take(frame.renderer);
    changed = changed || (waited && !each.image.pending() && &each == &slot(here));
  }
  if (slot(here).failed()) dropCurrent();
  if (slides_.empty()) return changed;
  const SDL_Point area = slideArea({frame.width, frame.height});
  slot(here).ask(slides_[clock_.current].path, area);
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
  prepareNext(area);
  return stepOn(frame.nowMs) || changed;
}

void Slides::prepareNext(SDL_Point area) {
  const std::size_t index = slideAfter(clock_.current, slides_.size());
  if (!slot(next).failed()) return slot(next).ask(slides_[index].path, area);
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

bool Slides::draw(const FrameContext& frame) const {
  if (current() == nullptr || !slot(here).ready()) return true;
  const double strength = clock_.crossfade(frame.nowMs);
  if (strength < 1 && slot(before).ready() &&
      !drawSlide(frame, slot(before).image, fadedAlpha(1 - strength, halfStrength)))
    return false;
  return drawSlide(frame, slot(here).image, fadedAlpha(strength, halfStrength));
}

}  // namespace tavek
