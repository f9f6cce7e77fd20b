#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "base/sound_mode.h"
#include "sound/playback_device.h"
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
/// ALSA as 16-bit samples at the stream's own rate, with the volume applied.
///
/// write and delayUs are called by the item's audio thread, everything else by the thread that owns the
/// object. lock_ guards the device, the resampler and the filters, and is held while ALSA blocks. The volume
/// takes no lock: its words are relaxed atomics.
class AudioOutput {
 public:
  /// The key is the item's path, under which its volume is kept; empty for a theme, which keeps none. Throws
  /// std::runtime_error when no device can be had.
  AudioOutput(const AVCodecParameters* codecParameters, std::string key, SoundMode soundMode,
              const Stored& stored);
  /// Plays what is queued to its end, unless a signal has come.
  ~AudioOutput();
  AudioOutput(const AudioOutput&) = delete;
  AudioOutput& operator=(const AudioOutput&) = delete;

  /// Blocks for as long as ALSA does. What no device takes is dropped in the time that it would have played,
  /// so that an item without sound keeps its pace.
  void write(const AVFrame* frame);
  /// Drops what is queued and leaves the device ready.
  void flush();
  /// Closes the device at once and keeps the object.
  void close();
  /// True if the device is open afterwards.
  bool reopen();
  /// The sound that is queued and not yet heard, in microseconds; 0 when that is not known.
  std::int64_t delayUs();

  void adjustVolume(double deltaDb);
  void storeVolume() const;
  double volumeCeilingDb() const { return tavek::volumeCeilingDb(volume_); }
  double volumeDb() const { return volume_.volumeDb; }

 private:
  int play(const AVFrame& frame);
  snd_pcm_sframes_t unheardFrames(snd_pcm_t* pcm) const;
  void wakeDevice();
  int renderBlock(const AVFrame& frame);
  int sendBlock(int frames);
  void waitFor(int frames);

  const Stored stored_;
  std::string key_;
  Volume volume_;
  std::mutex lock_;
  int outputRate_ = 48000;
  PlaybackDevice device_;
  std::optional<Resampler> resampler_;
  double trebleDb_ = 0;
  double bassDb_ = 0;
  Shelf bass_;
  Shelf treble_;
  std::vector<std::int16_t> block_;
  snd_pcm_sframes_t framesSinceStart_ = 0;             ///< taken by the device since it was prepared
  std::chrono::steady_clock::time_point startedAt_;    ///< the write with which it began to play
  std::chrono::steady_clock::time_point silentUntil_;  ///< when the last dropped sound would have ended
};

}  // namespace tavek
