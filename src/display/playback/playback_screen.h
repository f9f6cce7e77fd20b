#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

#include "base/orientation.h"
#include "display/playback/clear_logo.h"
#include "display/playback/pause_icon.h"
#include "display/playback/picture_view.h"
#include "display/playback/seek_bar.h"
#include "display/playback/video_picture.h"
#include "display/playback/volume_bar.h"
#include "display/toolkit/frame_context.h"
#include "display/toolkit/layer.h"

namespace tavek {

/// The picture of an item, with what lies over it while it runs or stands: the clear logo, the volume, the
/// seek bar and the pause icon. It is the screen of the remote's keys when no other lies over it.
class PlaybackScreen final : public Layer {
 public:
  explicit PlaybackScreen(Orientation orientation) : picture_(orientation) {}

  bool owns(FocusName focus) const override { return focus == FocusName::Movie || focus == FocusName::Seek; }
  Meaning key(const KeyPress& press, const FocusFacts& facts, Uint64 nowMs) override;
  Meaning move(Direction direction, const FocusFacts& facts, Uint64 nowMs) override;
  bool repeats(const FocusFacts& facts) const override { return facts.seekFocus; }
  /// The seek bar and the pause icon.
  void draw(const FrameContext& frame, const FocusFacts& facts) override;
  void destroyTextures() override;

  /// A key that changes the volume came up, under whatever focus; it ends its steps.
  std::optional<NavCode> volumeRelease(const KeyPress& press);
  /// A seek key's release was eaten.
  void endSeek() { seekFocus_ = false; }
  bool seekFocus() const { return seekFocus_; }

  // The item.
  void setItem(std::filesystem::path file, bool audio);
  const std::filesystem::path& currentVideo() const { return currentVideo_; }
  bool audioItem() const { return audioItem_; }
  void setDuration(std::int64_t us) { seekBar_.setDuration(us); }
  /// False if pictures flowed, or stood, before.
  bool setVideoPlaying(bool playing);
  bool setVideoPaused(bool paused, Uint64 nowMs);
  bool videoPlaying() const { return videoPlaying_; }
  bool videoPaused() const { return videoPaused_; }
  void startFadeIn(Uint64 nowMs) { picture_.fadeIn.start(nowMs); }
  void startFadeOut(Uint64 nowMs);
  /// No item any more: nothing of it is left but its picture.
  void reset();

  void showSeekBar(Uint64 nowMs) { seekBar_.show(nowMs); }
  void showVolume(int percent, double gainDb, double minDb, double maxDb, Uint64 nowMs) {
    volumeBar_.show(percent, gainDb, minDb, maxDb, nowMs);
  }

  VideoPicture& picture() { return picture_; }
  /// Of the last picture.
  SDL_Point pictureSize() const { return pictureSize_; }
  /// The picture below all screens, or black where something else hides it. False skips the frame.
  /// `positionUs` is for the seek bar; negative means not known.
  bool drawPicture(const FrameContext& frame, const PictureView& picture, std::int64_t positionUs,
                   bool hidden);
  /// The clear logo and the volume.
  void drawOnPicture(const FrameContext& frame, const FocusFacts& facts);

 private:
  struct Key {
    SDL_Keycode key;
    Meaning (PlaybackScreen::*serve)(const KeyPress&, const FocusFacts&, Uint64);
  };
  static const Key movieKeys[];

  Meaning sideways(const KeyPress& press, const FocusFacts& facts, Uint64 nowMs);
  Meaning mediaSeek(const KeyPress& press, const FocusFacts& facts, Uint64 nowMs);
  Meaning dropSeekBar(const KeyPress& press, const FocusFacts& facts, Uint64 nowMs);
  Meaning openPosters(const KeyPress& press, const FocusFacts& facts, Uint64 nowMs);
  Meaning snapshot(const KeyPress& press, const FocusFacts& facts, Uint64 nowMs);
  Meaning movieKeyUp(SDL_Keycode key, const FocusFacts& facts);
  Meaning startSeek(NavCode code, Uint64 nowMs);

  VideoPicture picture_;
  SeekBar seekBar_;
  VolumeBar volumeBar_;
  PauseIcon pauseIcon_;
  ClearLogo clearLogo_;
  std::filesystem::path currentVideo_;
  std::int64_t positionUs_ = -1;  ///< of the picture that is drawn
  SDL_Point pictureSize_{};
  bool audioItem_ = false;
  bool videoPlaying_ = true;
  bool videoPaused_ = false;  ///< by the viewer
  bool seekFocus_ = false;
  SDL_Keycode volumeKey_ = SDLK_UNKNOWN;  ///< that is down
};

}  // namespace tavek
