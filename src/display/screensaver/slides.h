#pragma once

#include <array>
#include <filesystem>
#include <string>
#include <vector>

#include <SDL.h>

#include "base/background_job.h"
#include "display/screensaver/saver_rules.h"
#include "display/toolkit/background_image.h"
#include "display/toolkit/frame_context.h"
#include "display/toolkit/sdl_handles.h"
#include "library/fan_art.h"

namespace tavek {

/// Where slides may come from: the first folder that has any, and the posters that tell their order.
struct SlideSources {
  std::vector<std::filesystem::path> folders;
  std::vector<PosterTitle> posters;
};

/// The slides: listed and decoded in the background, a minute each. Three pictures are held at most, the one
/// that stands, the one that goes and the one that comes. Main thread only.
class Slides {
 public:
  /// Nothing is shown, and nothing is looked for any more.
  void reset();
  /// There are none, and it is time to look for some.
  bool wantsList(Uint64 nowMs) const;
  void list(SlideSources sources, Uint64 nowMs);

  /// Once per pass: takes what the workers have, and steps on in time. True if there is something new to
  /// draw.
  bool follow(const FrameContext& frame);
  /// Two slides, or one and black, lie over each other.
  bool crossfading(Uint64 nowMs) const;
  /// At half strength, over black.
  void draw(const FrameContext& frame) const;
  /// The one that stands; null without one.
  const Slide* current() const;
  /// Tells one showing of a slide from the next.
  Uint64 startedAt() const { return clock_.startedAt; }
  /// The file of the current one is gone.
  void dropCurrent();

 private:
  struct Listing {
    std::vector<Slide> slides;
    std::vector<std::filesystem::path> foldersLeft;
  };
  /// A place for a picture, and what is to be in it.
  struct Slot {
    BackgroundImage image;
    TexturePtr picture;  ///< as it is on the screen, of the window's size
    std::string path;
    SDL_Point window{};

    void ask(const std::string& file, SDL_Point wished);
    void take(SDL_Renderer* renderer);
    void drop();
    bool ready() const { return picture != nullptr; }
    bool failed() const {
      return !path.empty() && !image.pending() && image.texture() == nullptr && !ready();
    }
  };

  void startListing();
  void takeListing();
  bool stepOn(Uint64 nowMs);
  void prepareNext(SDL_Point window);
  Slot& slot(std::size_t ahead) { return slots_[(slot_ + ahead) % slots_.size()]; }
  const Slot& slot(std::size_t ahead) const { return slots_[(slot_ + ahead) % slots_.size()]; }

  // Seen from the slot of the one that stands.
  static constexpr std::size_t here = 0;
  static constexpr std::size_t next = 1;
  static constexpr std::size_t before = 2;

  SlideSources sources_;
  BackgroundJob<Listing> listing_;
  Uint64 listedAt_ = 0;
  std::vector<Slide> slides_;
  SlideClock clock_;
  std::array<Slot, 3> slots_;
  std::size_t slot_ = 0;
};

}  // namespace tavek
