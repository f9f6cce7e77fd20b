#pragma once

#include <atomic>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "base/clock.h"
#include "base/sound_mode.h"
#include "sound/device_line.h"
#include "sound/resampler.h"
#include "sound/shelf.h"
#include "sound/volume.h"
#include "state/stored.h"

extern "C" {
#include <libavcodec/codec_par.h>
#include <libavutil/frame.h>
}

namespace tavek {

/// The last stage of one item's sound: decoded frames go in, in whatever format they have, and leave through
/// a device as 16-bit samples at the stream's own rate, with the volume applied. Where no device can be had,
/// or one is gone, the sound goes by unheard in the time that it would have taken.
///
/// write is the item's audio thread's, everything else the owner's. Only write waits, and not for the device
/// but for room before it. The volume takes no lock: its words are relaxed atomics.
class AudioOutput {
 public:
  /// The key is the item's path, under which its volume is kept; empty for a theme, which keeps none and may
  /// be given one. The
  /// device is opened in the background. Throws std::runtime_error for sound that no device could play.
  AudioOutput(const AVCodecParameters* codecParameters, std::string key, SoundMode soundMode,
              const Stored& stored, PcmDeviceFactory factory, Clock& clock,
              std::optional<double> volumeDb = std::nullopt);
  /// Plays what is queued to its end, unless a signal has come, but waits for no device that stands still.
  ~AudioOutput();
  AudioOutput(const AudioOutput&) = delete;
  AudioOutput& operator=(const AudioOutput&) = delete;

  /// Waits until the frame is on its way to the device.
  void write(const AVFrame* frame);
  /// Ends a write that waits, and all that follow. Any thread.
  void interrupt();

  /// Drops what is queued.
  void flush();
  /// The device falls silent at once; what it held comes first when it goes on.
  void hold() { line_.hold(); }
  void resume() { line_.resume(); }
  /// Gives the device back, and takes it again.
  void close() { line_.close(); }
  void reopen() { line_.reopen(); }

  /// Sound comes out of a device.
  bool heard() const { return line_.heard(); }
  /// The sound that is queued and not yet heard, in microseconds.
  std::int64_t delayUs() const { return line_.delay().count(); }

  void adjustVolume(double deltaDb);
  void storeVolume() const;
  double volumeCeilingDb() const { return tavek::volumeCeilingDb(volume_); }
  double volumeDb() const { return volume_.volumeDb; }

 private:
  bool prepareFor(unsigned generation);
  int renderBlock(const AVFrame& frame);
  void letPass(int frames);

  const Stored stored_;
  const std::string key_;
  Clock& clock_;
  Volume volume_;
  int outputRate_;
  double trebleDb_ = 0;
  double bassDb_ = 0;
  Flag interrupted_;
  std::atomic<std::uint64_t> flushes_{0};
  DeviceLine line_;

  // The audio thread's.
  DeviceLine::Opened device_;
  std::uint64_t flushesSeen_ = 0;
  std::optional<Resampler> resampler_;
  Shelf bass_;
  Shelf treble_;
  std::vector<std::int16_t> block_;
  Clock::Time silentUntil_;  ///< when the last sound that went by unheard would have ended
};

}  // namespace tavek
