#pragma once

#include "player/stream_decoder.h"
#include "sound/audio_output.h"

namespace tavek {

/// Feeds the device from the packets of the sound stream, and tells the clock what is heard.
class SoundDecoder final : public StreamDecoder {
 public:
  SoundDecoder(std::unique_ptr<Codec> codec, StreamTime time, std::unique_ptr<AudioOutput> output,
               Clock& clock, Exchange& exchange)
      : StreamDecoder(std::move(codec), time, exchange.soundPackets, exchange),
        output_(std::move(output)),
        clock_(clock) {}

  /// Its main thread's operations only, while this runs.
  AudioOutput& output() { return *output_; }

 private:
  void seek() override;
  void takeFrame(AVFrame& frame) override;
  void endRound() override;
  bool waitWhilePaused();

  const std::unique_ptr<AudioOutput> output_;
  Clock& clock_;
};

}  // namespace tavek
