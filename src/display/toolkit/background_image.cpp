#include "display/toolkit/background_image.h"

#include <utility>

namespace tavek {

bool BackgroundImage::want(const FileState& file, SDL_Point area, Fit fit) {
  const bool sameArea = area.x == wish_.area.x && area.y == wish_.area.y && fit == wish_.fit;
  if (file == wish_.file && sameArea) return false;
  wish_ = {file, area, fit};
  job_.start([wish = wish_](JobSide<SurfacePtr>& side) {
    side.post(fittedTo(loadImage(wish.file.path), wish.area, wish.fit));
    SDL_TLSCleanup();
  });
  return true;
}

void BackgroundImage::drop() {
  job_.leave();
  wish_ = {};
  texture_.reset();
  size_ = {};
  source_.clear();
}

void BackgroundImage::take(SDL_Renderer* renderer) {
  const auto picture = job_.take();
  if (!picture) return;
  texture_.reset(*picture ? SDL_CreateTextureFromSurface(renderer, picture->get()) : nullptr);
  size_ = texture_ ? SDL_Point{(*picture)->w, (*picture)->h} : SDL_Point{};
  source_ = texture_ ? wish_.file.path : std::filesystem::path();
}

}  // namespace tavek
