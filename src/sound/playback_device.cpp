#include "sound/playback_device.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <span>
#include <stdexcept>
#include <string>
#include <thread>

#include "base/paths.h"
#include "base/process_flags.h"
#include "sound/channel_rules.h"
#include "sound/eld.h"

namespace tavek {
namespace {

constexpr std::array deviceNames = {"default", "dmix", "plug:default", "plughw:0,0"};
constexpr int openAttempts = 5;
constexpr std::chrono::milliseconds busyWait{120};
constexpr unsigned latencyUs = 500000;

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

}  // namespace

PlaybackDevice openDevice(int channels, int rate) {
  silenceAlsa();
  PlaybackDevice device{openFirst(), channels, {}};
  snd_pcm_t* pcm = device.pcm.get();
  if (const SinkChannels sink = sinkOf(pcm); sink.channels ? *sink.channels < 3 : !sink.eldFound) {
    device.outputChannels = 2;
  }
  if (!setParameters(pcm, device.outputChannels, rate)) {
    device.outputChannels = 2;
    if (!setParameters(pcm, device.outputChannels, rate)) {
      throw std::runtime_error("AudioOutput: snd_pcm_set_params failed");
    }
  }
  requestOrder(pcm, device.outputChannels);
  device.channelMap = readChannelMap(pcm, device.outputChannels);
  return device;
}

bool defaultDeviceTakes(int channels, int rate) {
  silenceAlsa();
  PcmHandle probe;
  if (openPcm(probe, "default", 0) < 0) return false;
  const SinkChannels sink = sinkOf(probe.get());
  if (sink.channels ? *sink.channels < std::max(3, channels) : !sink.eldFound) return false;
  const int most = maxChannelsOfDefault();
  return most > 2 && most >= channels && setParameters(probe.get(), channels, rate);
}

}  // namespace tavek
