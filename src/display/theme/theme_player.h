#pragma once

#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <memory>
#include <string>
#include <thread>

#include "base/clock.h"
#include "base/guarded.h"
#include "base/process_flags.h"
#include "base/sound_mode.h"
#include "sound/audio_output.h"
#include "sound/pcm_device.h"
#include "state/stored.h"

namespace tavek {

class Codec;
class Demultiplexer;

/// Plays theme.mp3 files, one at a time and each once, 12 dB below full, with one thread for its whole life.
/// No call of the owner waits. What fails is silent but under debugEnabled.
class ThemePlayer {
 public:
  ThemePlayer(PcmDeviceFactory factory, const Stored& stored, Clock& clock);
  /// Silent at once; leaves the thread, which a dead disk may hold.
  ~ThemePlayer();
  ThemePlayer(const ThemePlayer&) = delete;
  ThemePlayer& operator=(const ThemePlayer&) = delete;

  /// The file from its beginning, in place of what plays.
  void startTheme(const std::filesystem::path& file, SoundMode mode);
  void stopTheme();
  /// True once for a file that is not there, or empty.
  bool takeMissing();

  /// The device for others: each opening of one first makes the theme let go of its own, and waits for that,
  /// a third of a second at most. Any thread; may outlive this.
  PcmDeviceFactory sharing(PcmDeviceFactory factory) const;

 private:
  /// What the owner and the thread know; the thread keeps it alive.
  struct Shared;
  static void run(const std::shared_ptr<Shared>& shared);
  static void play(Shared& shared, const std::filesystem::path& path, SoundMode mode);
  static void sound(Shared& shared, Demultiplexer& file, Codec& codec, AudioOutput& output);

  const std::shared_ptr<Shared> shared_;
  std::shared_ptr<Flag> ended_;
  std::thread thread_;
};

}  // namespace tavek
