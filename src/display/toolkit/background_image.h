#pragma once

#include <filesystem>

#include <SDL.h>

#include "base/background_job.h"
#include "base/file_state.h"
#include "display/toolkit/image_file.h"
#include "display/toolkit/sdl_handles.h"

namespace tavek {

/// A picture from a file, decoded on a thread of its own and kept no larger than it is drawn. The one before
/// stays until it has come. Main thread only.
class BackgroundImage {
 public:
  /// The file to show, and the area that it is drawn in. Asking for the same again costs nothing; one that
  /// could not be decoded is tried again once it has changed. True for a new wish.
  bool want(const FileState& file, SDL_Point area, Fit fit);
  /// Nothing is shown or wanted any more.
  void drop();
  /// Once per frame: makes a texture of what has come. What cannot be decoded leaves none.
  void take(SDL_Renderer* renderer);

  /// Null without a picture.
  SDL_Texture* texture() const { return texture_.get(); }
  /// Of the texture, which may be smaller than the file's picture.
  SDL_Point size() const { return size_; }
  /// What the texture shows.
  const std::filesystem::path& source() const { return source_; }
  /// The wanted picture is still on its way.
  bool pending() const { return job_.running() || job_.waiting() > 0; }

 private:
  struct Wish {
    FileState file;
    SDL_Point area{};
    Fit fit = Fit::Cover;
  };

  Wish wish_;
  BackgroundJob<SurfacePtr> job_;
  TexturePtr texture_;
  SDL_Point size_{};
  std::filesystem::path source_;
};

}  // namespace tavek
