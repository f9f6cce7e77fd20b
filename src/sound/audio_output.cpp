#include "sound/audio_output.h"

#include <algorithm>
#include <span>
#include <stdexcept>
#include <thread>
#include <utility>

#include "base/process_flags.h"
#include "sound/channel_rules.h"

namespace tavek {
namespace {

using std::chrono::microseconds;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

/// No wait of the audio thread is longer, so that a signal needs no wake-up here.
constexpr milliseconds longestWait{50};
constexpr int slicesPerSecond = 20;
/// A sound server tells too short a delay for a second or more after each start.
constexpr std::chrono::seconds settlingTime{3};
/// In a row, for one slice: a device that makes no room for two seconds, or that recovers only to refuse
/// again, is as good as gone.
constexpr int maxRefusals = 40;

/// A device that has not started makes no room, and takes what is still missing at once.
bool makesRoom(snd_pcm_t* pcm, int frames) {
  const auto room = snd_pcm_avail_update(pcm);
  if (room < 0 || room >= frames || snd_pcm_state(pcm) != SND_PCM_STATE_RUNNING) return true;
  return snd_pcm_wait(pcm, static_cast<int>(longestWait.count())) != 0;
}

snd_pcm_sframes_t bufferFrames(snd_pcm_t* pcm) {
  snd_pcm_uframes_t buffer = 0;
  snd_pcm_uframes_t period = 0;
  snd_pcm_get_params(pcm, &buffer, &period);
  return static_cast<snd_pcm_sframes_t>(buffer);
}

/// Ready to be written to, and empty.
void prepare(snd_pcm_t* pcm) {
  if (const int result = snd_pcm_prepare(pcm); result < 0) snd_pcm_recover(pcm, result, 1);
}

}  // namespace

AudioOutput::AudioOutput(const AVCodecParameters* codecParameters, std::string key, SoundMode soundMode,
                         const Stored& stored)
    : stored_(stored),
      key_(std::move(key)),
      volume_(firstVolume(key_.empty() ? std::nullopt : stored.playback.playbackVolume(key_))) {
  if (codecParameters == nullptr) throw std::runtime_error("AudioOutput: null codec parameters");
  if (codecParameters->sample_rate >= 1) outputRate_ = codecParameters->sample_rate;

  AVChannelLayout stereo{};
  av_channel_layout_default(&stereo, 2);
  const bool layoutKnown = codecParameters->ch_layout.nb_channels >= 1;
  const AVChannelLayout& layout = layoutKnown ? codecParameters->ch_layout : stereo;
  int channels = outgoingChannels(layout, soundMode);
  if (soundMode == SoundMode::Auto && channels > 2 && !defaultDeviceTakes(channels, outputRate_))
    channels = 2;

  device_ = openDevice(channels, outputRate_);
  const auto format = codecParameters->format == AV_SAMPLE_FMT_NONE
                          ? AV_SAMPLE_FMT_S16
                          : static_cast<AVSampleFormat>(codecParameters->format);
  resampler_.emplace(layout, format, outputRate_, device_.outputChannels, outputRate_);
  if (!key_.empty()) {
    trebleDb_ = stored_.notes.audioParamA(key_).value_or(0);
    bassDb_ = stored_.notes.audioParamB(key_).value_or(0);
  }
  bass_ = designBassShelf(bassDb_, outputRate_, device_.outputChannels);
  treble_ = designTrebleShelf(trebleDb_, outputRate_, device_.outputChannels);
}

AudioOutput::~AudioOutput() {
  if (!key_.empty()) {
    storeVolume();
    stored_.notes.setAudioParamA(key_, trebleDb_);
    stored_.notes.setAudioParamB(key_, bassDb_);
  }
  if (!device_.pcm) return;
  if (stopSignalled) {
    snd_pcm_drop(device_.pcm.get());
  } else {
    snd_pcm_drain(device_.pcm.get());
  }
}

void AudioOutput::write(const AVFrame* frame) {
  if (frame == nullptr) return;
  const int missing = play(*frame);
  if (missing > 0) waitFor(missing);
}

int AudioOutput::play(const AVFrame& frame) {
  const std::lock_guard guard(lock_);
  if (!device_.pcm) return frame.nb_samples;
  wakeDevice();
  const int frames = renderBlock(frame);
  return frames > 0 ? frames - sendBlock(frames) : frame.nb_samples;
}

void AudioOutput::wakeDevice() {
  snd_pcm_t* pcm = device_.pcm.get();
  const snd_pcm_state_t state = snd_pcm_state(pcm);
  if (state == SND_PCM_STATE_PREPARED || state == SND_PCM_STATE_RUNNING) return;
  prepare(pcm);
  framesSinceStart_ = 0;
}

int AudioOutput::renderBlock(const AVFrame& frame) {
  const int channels = device_.outputChannels;
  if (!resampler_ || !resampler_->takes(frame, channels)) {
    try {
      resampler_.emplace(frame.ch_layout, static_cast<AVSampleFormat>(frame.format), frame.sample_rate,
                         channels, outputRate_);
    } catch (const std::runtime_error&) {
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

int AudioOutput::sendBlock(int frames) {
  snd_pcm_t* pcm = device_.pcm.get();
  const int slice = std::max(outputRate_ / slicesPerSecond, 1);
  int sent = 0;
  for (int refusals = 0; sent < frames && refusals < maxRefusals && !stopSignalled; ++refusals) {
    const int count = std::min(frames - sent, slice);
    if (!makesRoom(pcm, count)) continue;
    const auto* data = block_.data() + static_cast<std::ptrdiff_t>(sent) * device_.outputChannels;
    if (snd_pcm_state(pcm) == SND_PCM_STATE_PREPARED) startedAt_ = steady_clock::now();
    const auto result = snd_pcm_writei(pcm, data, static_cast<snd_pcm_uframes_t>(count));
    if (result > 0) {
      sent += static_cast<int>(result);
      framesSinceStart_ += result;
      refusals = -1;
    } else if (result < 0) {
      if (snd_pcm_recover(pcm, static_cast<int>(result), 1) < 0) break;
      framesSinceStart_ = 0;
    }
  }
  return sent;
}

void AudioOutput::waitFor(int frames) {
  // One running deadline, so that late wake-ups do not add up; after a gap the count starts afresh.
  auto now = steady_clock::now();
  if (silentUntil_ < now - milliseconds(100)) silentUntil_ = now;
  silentUntil_ += microseconds(std::int64_t{frames} * 1000000 / outputRate_);
  for (; now < silentUntil_ && !stopSignalled; now = steady_clock::now()) {
    std::this_thread::sleep_until(std::min(silentUntil_, now + longestWait));
  }
}

void AudioOutput::flush() {
  const std::lock_guard guard(lock_);
  snd_pcm_t* pcm = device_.pcm.get();
  if (pcm == nullptr) return;
  if (resampler_) resampler_->drop();
  if (const int result = snd_pcm_drop(pcm); result < 0) snd_pcm_recover(pcm, result, 1);
  prepare(pcm);
  framesSinceStart_ = 0;
}

void AudioOutput::adjustVolume(double deltaDb) {
  tavek::adjustVolume(volume_, deltaDb);
  storeVolume();
}

void AudioOutput::storeVolume() const {
  if (!key_.empty()) stored_.playback.setPlaybackVolume(key_, volume_.volumeDb);
}

void AudioOutput::close() {
  const std::lock_guard guard(lock_);
  device_.pcm.reset();
}

bool AudioOutput::reopen() {
  const std::lock_guard guard(lock_);
  if (device_.pcm) return true;
  try {
    device_ = openDevice(device_.outputChannels, outputRate_);
    framesSinceStart_ = 0;
  } catch (const std::exception&) {
    return false;
  }
  return true;
}

/// What a device that has just started, or is about to, must still hold: it plays no faster than time goes
/// by. One that has taken more than its buffer without a start keeps nothing.
snd_pcm_sframes_t AudioOutput::unheardFrames(snd_pcm_t* pcm) const {
  const snd_pcm_sframes_t buffer = bufferFrames(pcm);
  if (snd_pcm_state(pcm) == SND_PCM_STATE_PREPARED)
    return framesSinceStart_ <= buffer ? framesSinceStart_ : 0;
  const auto running = steady_clock::now() - startedAt_;
  if (running > settlingTime) return 0;
  const auto playedUs = std::chrono::duration_cast<microseconds>(running).count();
  return std::clamp<snd_pcm_sframes_t>(framesSinceStart_ - playedUs * outputRate_ / 1000000, 0, buffer);
}

std::int64_t AudioOutput::delayUs() {
  const std::lock_guard guard(lock_);
  snd_pcm_t* pcm = device_.pcm.get();
  if (pcm == nullptr) return 0;
  snd_pcm_sframes_t frames = 0;
  if (snd_pcm_delay(pcm, &frames) < 0) frames = 0;
  return std::max(frames, unheardFrames(pcm)) * 1000000 / outputRate_;
}

}  // namespace tavek
