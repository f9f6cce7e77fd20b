#pragma once

#include <cstdint>

namespace tavek {

/// What one pass of the input asks of whoever plays; 0 is nothing.
enum class NavCode : std::int32_t {
  None = 0,
  TogglePause = 1,
  SeekForward = 2,
  SeekBackward = 3,
  SeekCommit = 4,
  OpenPosters = 5,
  ClosePosters = 6,
  Quit = 7,
  GoHome = 8,
  PreviousItem = 9,
  NextItem = 10,
  PlaySelection = 11,
  VolumeUpPress = 12,
  VolumeUpRelease = 13,
  VolumeDownPress = 14,
  VolumeDownRelease = 15,
  Snapshot = 16,
  ToggleSettings = 17,
  AudioModeChanged = 18,
  AudioModeChangedToStereo = 19,
  AudioModeChangedToSurround = 20,
  Wake = 21,
  VoiceStart = 22,
  VoiceResult = 23,
};

}  // namespace tavek
