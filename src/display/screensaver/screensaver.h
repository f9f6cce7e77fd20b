#pragma once

#include <set>
#include <utility>

#include <SDL.h>

#include "display/screensaver/caption.h"
#include "display/screensaver/music_variant.h"
#include "display/screensaver/saver_rules.h"
#include "display/screensaver/slides.h"
#include "display/toolkit/frame_context.h"
#include "display/toolkit/layer.h"
#include "display/toolkit/music_art.h"
#include "display/toolkit/sdl_handles.h"

namespace tavek {

/// After five minutes without a key it fades in over all else, and then has the frame for itself: fan art of
/// the library with what is told of its films, or the backdrop of the music that plays. Any key ends it, and
/// does nothing else. Main thread only.
class Screensaver final : public Layer {
 public:
  explicit Screensaver(MediaNotes& notes) : caption_(notes) {}

  bool owns(FocusName focus) const override { return focus == FocusName::Screensaver; }
  Meaning key(const KeyPress& press, const FocusFacts& facts, Uint64 nowMs) override;
  Meaning move(Direction, const FocusFacts&, Uint64) override { return Handled(); }
  bool repeats(const FocusFacts& /*facts*/) const override { return false; }
  Meaning event(const SDL_Event& event, Uint64 nowMs) override;
  Meaning advance(Uint64 nowMs) override;
  /// Blends it over what is there.
  void draw(const FrameContext& frame, const FocusFacts& facts) override;
  void destroyTextures() override;

  // Its life.
  void touch(Uint64 nowMs) { lastActivityAt_ = nowMs; }
  bool idleTooLong(bool running, Uint64 nowMs) {
    return !fade_.active && tavek::idleTooLong(lastActivityAt_, running, nowMs);
  }
  void start(Uint64 nowMs);
  /// Fades out, if it is on.
  void end(Uint64 nowMs) { fade_.end(nowMs); }
  /// It has the focus.
  bool active() const { return fade_.active; }
  /// Events other than a closed window are its own: it is seen, or about to be.
  bool on() const { return fade_.on(); }
  /// So is what follows of a key that has woken it, as long as that key is down.
  bool takesKey(const KeyPress& press);
  bool holdsWrites() const { return fade_.active || fade_.target; }

  // What it shows.
  bool wantsSlides(Uint64 nowMs) const { return fade_.active && slides_.wantsList(nowMs); }
  void listSlides(SlideSources sources, Uint64 nowMs) { slides_.list(std::move(sources), nowMs); }
  void setMusicArt(MusicArt art) { musicArt_ = std::move(art); }
  void setLastPicture(SDL_Point size) { lastPicture_ = size; }
  /// It is drawn alone, over nothing.
  bool full() const { return fade_.full(); }
  double videoVisibility() const { return fade_.videoVisibility(); }
  /// Once per pass while it is full: draws the whole frame, unless the screen shows that already. False if
  /// so.
  bool drawAlone(const FrameContext& frame, const FocusFacts& facts);

 private:
  bool follow(const FrameContext& frame, const FocusFacts& facts);
  void drawScreensaver(const FrameContext& frame, const FocusFacts& facts);
  bool prepareFrame(const FrameContext& frame);
  void resetSlideshow();

  SaverFade fade_;
  Uint64 lastActivityAt_ = 0;
  std::set<SDL_Keycode> keysDown_;  ///< that went down while it was on
  Slides slides_;
  Caption caption_;
  MusicVariant music_;
  MusicArt musicArt_;
  SDL_Point lastPicture_{};
  TexturePtr screensaverFrame_;  ///< the target of a fade
  SDL_Point frameSize_{};
  Uint64 drawnAt_ = 0;
};

}  // namespace tavek
