#include "sound/audio_output.h"

#include <algorithm>
#include <span>
#include <stdexcept>
#include <utility>

#include "base/process_flags.h"
#include "sound/channel_rules.h"

namespace tavek {
namespace {

using std::chrono::microseconds;
using std::chrono::milliseconds;

constexpr int slowestRate = 4000;
constexpr int fastestRate = 768'000;
constexpr int defaultRate = 48'000;
constexpr milliseconds longestWait{50};

const AVCodecParameters& required(const AVCodecParameters* parameters) {
  if (parameters == nullptr) throw std::runtime_error("AudioOutput: null codec parameters");
  return *parameters;
}

int rateOf(const AVCodecParameters& parameters) {
  const int rate = parameters.sample_rate >= 1 ? parameters.sample_rate : defaultRate;
  if (rate < slowestRate || rate > fastestRate)
    throw std::runtime_error("AudioOutput: no device plays that rate");
  return rate;
}

DeviceWish wishFor(const AVCodecParameters& parameters, SoundMode soundMode) {
  AVChannelLayout stereo{};
  av_channel_layout_default(&stereo, 2);
  const bool layoutKnown = parameters.ch_layout.nb_channels >= 1;
  return {.channels = outgoingChannels(layoutKnown ? parameters.ch_layout : stereo, soundMode),
          .rate = rateOf(parameters),
          .strict = soundMode == SoundMode::Auto};
}

}  // namespace

AudioOutput::AudioOutput(const AVCodecParameters* codecParameters, std::string key, SoundMode soundMode,
                         const Stored& stored, PcmDeviceFactory factory, Clock& clock,
                         std::optional<double> volumeDb)
    : stored_(stored),
      key_(std::move(key)),
      clock_(clock),
      volume_(firstVolume(key_.empty() ? volumeDb : stored.playback.playbackVolume(key_))),
      outputRate_(rateOf(required(codecParameters))),
      line_(wishFor(*codecParameters, soundMode), std::move(factory), clock) {
  if (key_.empty()) return;
  trebleDb_ = stored_.notes.audioParamA(key_).value_or(0);
  bassDb_ = stored_.notes.audioParamB(key_).value_or(0);
}

AudioOutput::~AudioOutput() {
  if (!key_.empty()) {
    storeVolume();
    stored_.notes.setAudioParamA(key_, trebleDb_);
    stored_.notes.setAudioParamB(key_, bassDb_);
  }
  line_.finish(stopSignalled);
}

void AudioOutput::write(const AVFrame* frame) {
  if (frame == nullptr) return;
  for (;;) {
    const unsigned generation = line_.generation();
    const int frames = prepareFor(generation) ? renderBlock(*frame) : 0;
    if (frames == 0) return letPass(frame->nb_samples);
    const auto samples = std::span(block_).first(static_cast<std::size_t>(frames) *
                                                 static_cast<std::size_t>(device_.channels));
    switch (line_.push(samples, generation)) {
      case DeviceLine::Pushed::All:
        return;
      case DeviceLine::Pushed::Nothing:
        return letPass(frames);
      case DeviceLine::Pushed::Again:
        break;
    }
  }
}

/// False without a device. What depends on the device's channels is made anew for another one.
bool AudioOutput::prepareFor(unsigned generation) {
  if (generation == 0) return false;
  if (const std::uint64_t flushes = flushes_; std::exchange(flushesSeen_, flushes) != flushes && resampler_) {
    resampler_->drop();
  }
  if (generation == device_.generation) return true;
  device_ = line_.opened();
  bass_ = designBassShelf(bassDb_, outputRate_, device_.channels);
  treble_ = designTrebleShelf(trebleDb_, outputRate_, device_.channels);
  return true;
}

int AudioOutput::renderBlock(const AVFrame& frame) {
  const int channels = device_.channels;
  if (!resampler_ || !resampler_->takes(frame, channels)) {
    try {
      resampler_.emplace(frame.ch_layout, static_cast<AVSampleFormat>(frame.format), frame.sample_rate,
                         channels, outputRate_);
    } catch (const std::runtime_error&) {
      resampler_.reset();
      return 0;
    }
  }
  const int frames = resampler_->convert(frame, block_);
  const auto samples =
      std::span(block_).first(static_cast<std::size_t>(frames) * static_cast<std::size_t>(channels));
  applyVolume(volume_, samples);
  applyShelf(bass_, samples, channels);
  applyShelf(treble_, samples, channels);
  reorderChannels(samples, device_.channelMap);
  return frames;
}

void AudioOutput::letPass(int frames) {
  // One running deadline, so that late wake-ups do not add up; after a gap the count starts afresh.
  auto now = clock_.now();
  if (silentUntil_ < now - milliseconds(100)) silentUntil_ = now;
  silentUntil_ += microseconds(std::int64_t{frames} * 1'000'000 / outputRate_);
  const std::uint64_t flushes = flushes_;
  for (; now < silentUntil_ && !interrupted_ && !stopSignalled && flushes == flushes_; now = clock_.now()) {
    clock_.sleepUntil(std::min(silentUntil_, now + longestWait));
  }
}

void AudioOutput::interrupt() {
  interrupted_ = true;
  line_.interrupt();
}

void AudioOutput::flush() {
  ++flushes_;
  line_.flush();
}

void AudioOutput::adjustVolume(double deltaDb) {
  tavek::adjustVolume(volume_, deltaDb);
  storeVolume();
}

void AudioOutput::storeVolume() const {
  if (!key_.empty()) stored_.playback.setPlaybackVolume(key_, volume_.volumeDb);
}

}  // namespace tavek
