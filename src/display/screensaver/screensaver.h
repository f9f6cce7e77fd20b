#pragma once

#include <array>
#include <cstddef>
#include <filesystem>
#include <optional>
#include <set>
#include <vector>

#include <SDL.h>

#include "base/background_job.h"
#include "display/screensaver/caption.h"
#include "display/screensaver/saver_rules.h"
#include "display/toolkit/background_image.h"
#include "display/toolkit/layer.h"
#include "display/toolkit/music_art.h"
#include "display/toolkit/sdl_handles.h"
#include "library/fan_art.h"

namespace tavek {

/// After five minutes without a key the fan art of the library, with captions; over music its backdrop, which
/// drifts. It fades in over whatever is on the screen, and any key only makes it fade out.
class Screensaver final : public Layer {
 public:
  /// The notes outlive all jobs.
  explicit Screensaver(MediaNotes& notes) : notes_(notes) {}

  bool owns(FocusName focus) const override { return focus == FocusName::Screensaver; }
  Meaning key(const KeyPress&, const FocusFacts&, Uint64) override { return Handled(); }
  Meaning move(Direction, const FocusFacts&, Uint64) override { return Handled(); }
  bool repeats(const FocusFacts&) const override { return false; }
  Meaning event(const SDL_Event&, Uint64) override { return Handled(); }
  /// Blends over the frame while it fades.
  void draw(const FrameContext& frame, const FocusFacts& facts) override;
  void destroyTextures() override { reset(); }

  /// Somebody is there.
  void touch(Uint64 nowMs) { lastActivityAt_ = nowMs; }
  /// Nobody has been for five minutes, and no picture runs.
  bool idle(bool pictureRuns, Uint64 nowMs);
  /// Where its slides come from: the first folder that has any.
  struct Source {
    std::vector<std::filesystem::path> folders;
    std::vector<PosterTitle> posters;
  };
  void start(Source source, Uint64 nowMs);
  /// True for the first key that goes down: it wakes, and does nothing else, neither while it repeats nor
  /// when it comes up.
  bool wakes(const SDL_Event& event, Uint64 nowMs);
  /// An event that is none of anybody else's business.
  bool swallows(const SDL_Event& event);
  /// Fades out.
  void end(Uint64 nowMs);

  bool active() const { return active_; }
  bool shown() const { return active_ || fade_.alpha() > 0; }

  /// Once per frame, before anything is drawn. True if it hides everything: then drawAlone() is the frame.
  bool follow(const FrameContext& frame, MusicArt art, bool song, FrameSize lastSize);
  /// False if the screen shows it already.
  bool drawAlone(const FrameContext& frame);

 private:
  static constexpr std::size_t kept = 3;  ///< the slide before, the present one and the next
  struct Image {
    std::optional<std::size_t> slide;
    BackgroundJob<SurfacePtr> job;
    TexturePtr shown;  ///< of the window's size
    SDL_Point window{};

    void drop();
    void take(const FrameContext& frame);
    bool pending() const { return job.running() || job.waiting() > 0; }
  };

  struct Listing {
    std::vector<Slide> slides;
    std::vector<std::filesystem::path> foldersLeft;
  };

  void reset();
  void list(std::vector<std::filesystem::path> folders);
  void takeListing(Uint64 nowMs);
  void turnPages(const FrameContext& frame);
  void want(const FrameContext& frame, std::size_t slide);
  Image* imageOf(std::size_t slide);
  void dropSlide(std::size_t slide);
  void followCaption(const FrameContext& frame);
  void drawWhole(const FrameContext& frame);
  void drawSlides(const FrameContext& frame);
  void drawSlide(const FrameContext& frame, std::size_t slide, double strength);
  void drawMusic(const FrameContext& frame);
  bool moves(Uint64 nowMs) const;

  MediaNotes& notes_;
  bool active_ = false;
  SaverFade fade_;
  Uint64 lastActivityAt_ = 0;
  std::set<SDL_Keycode> keysDown_;  ///< that went down while it was shown

  Source source_;
  BackgroundJob<Listing> listing_;
  Uint64 listedAt_ = 0;
  std::vector<std::filesystem::path> foldersLeft_;  ///< where to look when no slide of the list is any good
  std::vector<Slide> slides_;
  SlideClock clock_;
  std::array<Image, kept> images_;
  BackgroundJob<Caption> captionJob_;
  std::filesystem::path captionKey_;
  std::optional<Uint64> captionShowing_;  ///< of the slide
  Caption caption_;
  BackgroundImage logo_;
  FrameSize lastSize_;

  bool song_ = false;
  MusicArt art_;
  BackgroundImage albumArt_;

  TexturePtr frame_;  ///< what is blended
  SDL_Point frameSize_{};
  bool drawn_ = false;  ///< the screen shows what there is
  Uint64 drawnAt_ = 0;
};

}  // namespace tavek
