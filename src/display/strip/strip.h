#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include <SDL.h>

#include "display/strip/letter_bar.h"
#include "display/strip/posters.h"
#include "display/strip/strip_state.h"
#include "display/toolkit/frame_context.h"
#include "display/toolkit/layer.h"
#include "state/stored.h"

namespace tavek {

/// The strip of posters over the lower part of the picture, with the bar of letters at the top. It leads
/// through the folders of a series, and to what plays.
class Strip final : public Layer {
 public:
  explicit Strip(const Stored& stored) : stored_(stored), posters_(stored.users) {}

  bool owns(FocusName focus) const override { return focus == FocusName::Tv || focus == FocusName::Poster; }
  Meaning key(const KeyPress& press, const FocusFacts& facts, Uint64 nowMs) override;
  Meaning move(Direction direction, const FocusFacts& facts, Uint64 nowMs) override;
  bool repeats(const FocusFacts& facts) const override;
  void draw(const FrameContext& frame, const FocusFacts& facts) override;
  void destroyTextures() override { posters_.clear(); }
  /// A step of the selection, or in the letters.
  void moveSideways(int delta, Uint64 nowMs);
  /// Enter, wherever it comes from.
  Meaning activate(const FocusFacts& facts, Uint64 nowMs);

  /// Covers the picture's lower part, or is about to.
  bool shown() const { return state_.visible; }
  /// The upper edge of the posters.
  int top(const FrameContext& frame) const;
  /// In any state but closed.
  bool any() const { return state_.any(); }

  /// Lists a folder. With the strip on the screen it slides out first, and in again over the new list; only
  /// without it the renderer is needed.
  /// Once per pass: follows a change of the open folder on the disk.
  void followChange(SDL_Renderer* renderer);
  void openPosterFolder(SDL_Renderer* renderer, const std::filesystem::path& path, Uint64 nowMs);
  /// Up from below, at the poster of the item, or at the first one on the way from home.
  void show(const std::filesystem::path& currentVideo, bool fromHome, Uint64 nowMs);
  void hide(Uint64 nowMs);
  /// Gone at once.
  void drop();
  void forgetPendingFolder() { pendingFolder_.reset(); }
  void forgetTyped() { letterBar_ = {}; }
  /// Once per frame: ends a slide, and opens the folder that has waited for it. `slideIn`: no picture runs.
  /// True where the strip comes in again over that folder.
  bool endSlide(SDL_Renderer* renderer, const std::filesystem::path& currentVideo, bool slideIn,
                Uint64 nowMs);

  Posters& posters() { return posters_; }
  const Posters& posters() const { return posters_; }
  /// Null without a selection.
  const Poster* selectedPoster() const;
  /// The poster on which the watched mark can be switched: an episode; null for anything else.
  const Poster* watchedToggleTarget(MediaKind roomKind) const;

  /// Stands above the strip until the next step in it.
  void showError(std::string text) { errorLine_ = std::move(text); }
  void clearError() { errorLine_.clear(); }

 private:
  struct Key {
    SDL_Keycode key;
    Meaning (Strip::*serve)(const FocusFacts&, Uint64);
  };
  static const Key keys[];

  Meaning startVoice(const FocusFacts& facts, Uint64 nowMs);
  Meaning back(const FocusFacts& facts, Uint64 nowMs);
  Meaning close(const FocusFacts& facts, Uint64 nowMs);
  void moveUp(Uint64 nowMs);
  bool enterSelection(Uint64 nowMs);
  void type(char character, Uint64 nowMs);
  void jumpToTyped();
  void updateHoldWrites();

  const Stored stored_;
  Posters posters_;
  LetterBar letterBar_;
  StripState state_;
  bool selectionSettling_ = false;  ///< it has just gone to another poster by itself; held keys wait
  std::optional<std::filesystem::path> pendingFolder_;  ///< to open when the strip has slid out
  std::string errorLine_;
};

}  // namespace tavek
