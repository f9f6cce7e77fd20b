#include "sound/alsa_device.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <span>
#include <stdexcept>
#include <string>
#include <thread>

#include "base/paths.h"
#include "base/process_flags.h"
#include "sound/alsa_handles.h"
#include "sound/channel_rules.h"
#include "sound/eld.h"

namespace tavek {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr std::array deviceNames = {"default", "dmix", "plug:default", "plughw:0,0"};
constexpr int openAttempts = 5;
constexpr milliseconds busyWait{120};
constexpr unsigned latencyUs = 500000;
/// A sound server tells too short a delay for a second or more after each start.
constexpr std::chrono::seconds settlingTime{3};
/// A device that recovers only to refuse again is as good as gone.
constexpr int maxRecoveries = 40;

void printNothing(const char*, int, const char*, int, const char*, ...) {}

/// A missing device is no event for the console.
void silenceAlsa() {
  static const int once = snd_lib_error_set_handler(printNothing);
  static_cast<void>(once);
}

int openPcm(PcmHandle& pcm, const char* name, int mode) {
  snd_pcm_t* opened = nullptr;
  const int result = snd_pcm_open(&opened, name, SND_PCM_STREAM_PLAYBACK, mode);
  pcm.reset(opened);
  return result;
}

/// Another program, or the item before this one, may need a moment to let go of the device.
int openWhenFree(PcmHandle& pcm, const char* name) {
  int result = openPcm(pcm, name, 0);
  for (int attempt = 1; attempt < openAttempts && result == -EBUSY && !stopSignalled; ++attempt) {
    std::this_thread::sleep_for(busyWait);
    result = openPcm(pcm, name, 0);
  }
  return result;
}

PcmHandle openFirst() {
  int result = 0;
  for (const char* name : deviceNames) {
    PcmHandle pcm;
    result = openWhenFree(pcm, name);
    if (result >= 0) return pcm;
  }
  throw std::runtime_error(std::string("AudioOutput: snd_pcm_open failed (") + snd_strerror(result) + ")");
}

SinkChannels sinkOf(snd_pcm_t* pcm) {
  snd_pcm_info_t* allocated = nullptr;
  if (snd_pcm_info_malloc(&allocated) < 0) return {};
  const PcmInfoHandle info(allocated);
  if (snd_pcm_info(pcm, allocated) < 0) return {};
  const unsigned device = snd_pcm_info_get_device(allocated);
  return readSinkChannels(alsaProcFolder(), snd_pcm_info_get_card(allocated), static_cast<int>(device));
}

bool setParameters(snd_pcm_t* pcm, int channels, int rate) {
  return snd_pcm_set_params(pcm, SND_PCM_FORMAT_S16_LE, SND_PCM_ACCESS_RW_INTERLEAVED,
                            static_cast<unsigned>(channels), static_cast<unsigned>(rate), 1, latencyUs) >= 0;
}

int maxChannelsOfDefault() {
  PcmHandle pcm;
  if (openPcm(pcm, "default", SND_PCM_NONBLOCK) < 0) return 0;
  snd_pcm_hw_params_t* allocated = nullptr;
  if (snd_pcm_hw_params_malloc(&allocated) < 0) return 0;
  const HardwareParametersHandle parameters(allocated);
  unsigned channels = 0;
  if (snd_pcm_hw_params_any(pcm.get(), allocated) < 0) return 0;
  if (snd_pcm_hw_params_get_channels_max(allocated, &channels) < 0) return 0;
  return static_cast<int>(std::min(channels, 1024U));
}

/// A device without such a control goes on in its own order, so the result says nothing.
void requestOrder(snd_pcm_t* pcm, int channels) {
  const std::vector<unsigned> positions = requestedPositions(channels);
  std::vector<unsigned> words(sizeof(snd_pcm_chmap_t) / sizeof(unsigned) + positions.size());
  auto* map = reinterpret_cast<snd_pcm_chmap_t*>(words.data());
  map->channels = static_cast<unsigned>(positions.size());
  std::ranges::copy(positions, static_cast<unsigned*>(map->pos));
  snd_pcm_set_chmap(pcm, map);
}

std::vector<std::size_t> readChannelMap(snd_pcm_t* pcm, int channels) {
  const PositionMapHandle map(snd_pcm_get_chmap(pcm));
  if (!map) return {};
  return channelMapFor(std::span(static_cast<const unsigned*>(map->pos), map->channels), channels);
}

/// The strict check: sink, hardware parameters and a trial set-up of the default device.
bool defaultDeviceTakes(int channels, int rate) {
  PcmHandle probe;
  if (openPcm(probe, "default", 0) < 0) return false;
  const SinkChannels sink = sinkOf(probe.get());
  if (sink.channels ? *sink.channels < std::max(3, channels) : !sink.eldFound) return false;
  const int most = maxChannelsOfDefault();
  return most > 2 && most >= channels && setParameters(probe.get(), channels, rate);
}

/// Ready to be written to, and empty.
void prepare(snd_pcm_t* pcm) {
  if (const int result = snd_pcm_prepare(pcm); result < 0) snd_pcm_recover(pcm, result, 1);
}

class AlsaDevice final : public PcmDevice {
 public:
  explicit AlsaDevice(const DeviceWish& wish);
  int channels() const override { return channels_; }
  const std::vector<std::size_t>& channelMap() const override { return channelMap_; }
  std::ptrdiff_t write(std::span<const std::int16_t> samples, milliseconds limit) override;
  std::ptrdiff_t delay() override;
  void drop() override;
  void drain() override { snd_pcm_drain(pcm_.get()); }

 private:
  bool makesRoom(std::ptrdiff_t frames, milliseconds limit) const;
  std::ptrdiff_t unheardFrames() const;

  PcmHandle pcm_;
  int channels_;
  int rate_;
  std::vector<std::size_t> channelMap_;
  std::ptrdiff_t bufferFrames_ = 0;
  int recoveries_ = 0;                   ///< since it took something
  std::ptrdiff_t framesSinceStart_ = 0;  ///< taken since it was prepared
  steady_clock::time_point startedAt_;   ///< the write with which it began to play
};

AlsaDevice::AlsaDevice(const DeviceWish& wish) : channels_(wish.channels), rate_(wish.rate) {
  silenceAlsa();
  if (wish.strict && channels_ > 2 && !defaultDeviceTakes(channels_, rate_)) channels_ = 2;
  pcm_ = openFirst();
  snd_pcm_t* pcm = pcm_.get();
  if (const SinkChannels sink = sinkOf(pcm); sink.channels ? *sink.channels < 3 : !sink.eldFound)
    channels_ = 2;
  if (!setParameters(pcm, channels_, rate_)) {
    channels_ = 2;
    if (!setParameters(pcm, channels_, rate_))
      throw std::runtime_error("AudioOutput: snd_pcm_set_params failed");
  }
  requestOrder(pcm, channels_);
  channelMap_ = readChannelMap(pcm, channels_);
  snd_pcm_uframes_t buffer = 0;
  snd_pcm_uframes_t period = 0;
  snd_pcm_get_params(pcm, &buffer, &period);
  bufferFrames_ = static_cast<std::ptrdiff_t>(buffer);
}

/// A device that has not started makes no room, and takes what is still missing at once.
bool AlsaDevice::makesRoom(std::ptrdiff_t frames, milliseconds limit) const {
  const auto room = snd_pcm_avail_update(pcm_.get());
  if (room < 0 || room >= frames || snd_pcm_state(pcm_.get()) != SND_PCM_STATE_RUNNING) return true;
  return snd_pcm_wait(pcm_.get(), static_cast<int>(limit.count())) != 0;
}

std::ptrdiff_t AlsaDevice::write(std::span<const std::int16_t> samples, milliseconds limit) {
  snd_pcm_t* pcm = pcm_.get();
  const auto count = static_cast<std::ptrdiff_t>(samples.size()) / channels_;
  const snd_pcm_state_t state = snd_pcm_state(pcm);
  if (state != SND_PCM_STATE_PREPARED && state != SND_PCM_STATE_RUNNING) {
    prepare(pcm);
    framesSinceStart_ = 0;
  }
  if (!makesRoom(count, limit)) return 0;
  if (snd_pcm_state(pcm) == SND_PCM_STATE_PREPARED) startedAt_ = steady_clock::now();
  const auto taken = snd_pcm_writei(pcm, samples.data(), static_cast<snd_pcm_uframes_t>(count));
  if (taken >= 0) {
    recoveries_ = 0;
    framesSinceStart_ += taken;
    return taken;
  }
  framesSinceStart_ = 0;
  const bool recovered = snd_pcm_recover(pcm, static_cast<int>(taken), 1) >= 0;
  return recovered && ++recoveries_ < maxRecoveries ? 0 : -1;
}

std::ptrdiff_t AlsaDevice::delay() {
  snd_pcm_sframes_t frames = 0;
  if (snd_pcm_delay(pcm_.get(), &frames) < 0) frames = 0;
  return std::max<std::ptrdiff_t>(frames, unheardFrames());
}

/// What a device that has just started, or is about to, must still hold: it plays no faster than time goes
/// by. One that has taken more than its buffer without a start keeps nothing.
std::ptrdiff_t AlsaDevice::unheardFrames() const {
  if (snd_pcm_state(pcm_.get()) == SND_PCM_STATE_PREPARED)
    return framesSinceStart_ <= bufferFrames_ ? framesSinceStart_ : 0;
  const auto running = steady_clock::now() - startedAt_;
  if (running > settlingTime) return 0;
  const auto playedUs = std::chrono::duration_cast<std::chrono::microseconds>(running).count();
  return std::clamp<std::ptrdiff_t>(framesSinceStart_ - playedUs * rate_ / 1000000, 0, bufferFrames_);
}

void AlsaDevice::drop() {
  snd_pcm_t* pcm = pcm_.get();
  if (const int result = snd_pcm_drop(pcm); result < 0) snd_pcm_recover(pcm, result, 1);
  prepare(pcm);
  framesSinceStart_ = 0;
}

}  // namespace

PcmDeviceFactory alsaDeviceFactory() {
  return [](const DeviceWish& wish) { return std::make_unique<AlsaDevice>(wish); };
}

}  // namespace tavek
