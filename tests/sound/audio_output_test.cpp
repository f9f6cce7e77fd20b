#include "sound/audio_output.h"

#include <chrono>
#include <cstring>
#include <dlfcn.h>
#include <fstream>
#include <thread>

#include <gmock/gmock.h>

#include "base/process_flags.h"
#include "media/handles.h"
#include "state/state_store.h"
#include "support/temp_folder.h"

namespace tavek {
namespace {

using namespace std::chrono;
using testing::ElementsAre;

/// Stands before ALSA's null device: scripts what a device would say, and keeps what it would hear.
struct ScriptedDevice {
  int card = -1;                      ///< its ELD files are those of device 0
  unsigned mostChannels = 6;          ///< more are refused
  std::vector<unsigned> positions{};  ///< the device's channel map, or none
  std::size_t refusedOpens = 0;       ///< so many attempts fail with refusal
  int refusal = -EACCES;
  long writeResult = 0;       ///< negative: every write fails with it
  int startsAfter = 1 << 30;  ///< writes
  std::vector<std::string> opened{};
  unsigned channels = 0, rate = 0;
  std::vector<std::int16_t> heard{};
  int writes = 0;
} device;

/// Nothing is kept under the empty key, so no file is touched.
StateStore store{""};

/// A new device with this ELD file.
void plugIn(ScriptedDevice scripted, const char* eld = "") {
  static const test::TempFolder folder;
  std::filesystem::create_directories(folder.path() / "card0");
  std::ofstream(folder.path() / "card0" / "eld#0.0") << eld;
  std::ofstream(folder.path() / "asound.conf") << "pcm.!default { type null }\n";
  setenv("ALSA_CONFIG_PATH", (folder.path() / "asound.conf").c_str(), 1);
  setenv("TAVEK_PROC_ASOUND", folder.path().c_str(), 1);
  device = std::move(scripted);
}

template <typename Function>
Function* real(Function* /*type*/, const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

// The program's own definitions win over those of the shared library.
extern "C" {
int snd_pcm_open(snd_pcm_t** pcm, const char* name, snd_pcm_stream_t stream, int mode) {
  device.opened.emplace_back(name);
  if (device.opened.size() <= device.refusedOpens) return device.refusal;
  return real(snd_pcm_open, "snd_pcm_open")(pcm, "default", stream, mode);
}
int snd_pcm_info_get_card(const snd_pcm_info_t*) {
  return device.card;
}
int snd_pcm_set_params(snd_pcm_t* pcm, snd_pcm_format_t format, snd_pcm_access_t access, unsigned channels,
                       unsigned rate, int resample, unsigned latency) {
  if (channels > device.mostChannels) return -EINVAL;
  device.channels = channels;
  device.rate = rate;
  return real(snd_pcm_set_params, "snd_pcm_set_params")(pcm, format, access, channels, rate, resample,
                                                        latency);
}
snd_pcm_state_t snd_pcm_state(snd_pcm_t* pcm) {
  return device.writes >= device.startsAfter ? SND_PCM_STATE_RUNNING
                                             : real(snd_pcm_state, "snd_pcm_state")(pcm);
}
snd_pcm_chmap_t* snd_pcm_get_chmap(snd_pcm_t*) {
  auto* map = static_cast<unsigned*>(std::calloc(device.positions.size() + 1, sizeof(unsigned)));
  map[0] = static_cast<unsigned>(device.positions.size());
  std::ranges::copy(device.positions, map + 1);
  return reinterpret_cast<snd_pcm_chmap_t*>(map);
}
snd_pcm_sframes_t snd_pcm_writei(snd_pcm_t* pcm, const void* buffer, snd_pcm_uframes_t frames) {
  ++device.writes;
  if (device.writeResult < 0) return device.writeResult;
  const auto* samples = static_cast<const std::int16_t*>(buffer);
  device.heard.insert(device.heard.end(), samples, samples + frames * device.channels);
  return real(snd_pcm_writei, "snd_pcm_writei")(pcm, buffer, frames);
}
}

constexpr const char* noMonitor = "monitor_present 0\n";
constexpr const char* stereoSink = "monitor_present 1\nsad0_channels 2\n";
constexpr const char* quadSink = "monitor_present 1\nsad0_channels 4\n";
constexpr const char* surroundSink = "monitor_present 1\nsad0_channels 8\n";

using Parameters =
    std::unique_ptr<AVCodecParameters, decltype([](auto* old) { avcodec_parameters_free(&old); })>;

Parameters parametersOf(const char* layout, AVSampleFormat format = AV_SAMPLE_FMT_S16, int rate = 48000) {
  Parameters parameters(avcodec_parameters_alloc());
  av_channel_layout_from_string(&parameters->ch_layout, layout);
  parameters->format = format;
  parameters->sample_rate = rate;
  return parameters;
}

/// 20 ms in which channel c stands still at 5000 x (c + 1).
ffmpeg::FramePtr frameOf(const AVCodecParameters& parameters) {
  auto frame = ffmpeg::makeFrame();
  frame->format = parameters.format;
  frame->sample_rate = parameters.sample_rate;
  frame->nb_samples = parameters.sample_rate / 50;
  av_channel_layout_copy(&frame->ch_layout, &parameters.ch_layout);
  av_frame_get_buffer(frame.get(), 0);
  const int channels = parameters.ch_layout.nb_channels;
  const int size = av_get_bytes_per_sample(static_cast<AVSampleFormat>(parameters.format));
  for (int i = 0; i < frame->nb_samples * channels; ++i) {
    const auto whole = static_cast<std::int16_t>(5000 * (i % channels + 1));
    const float real = static_cast<float>(5000 * (i % channels + 1)) / 32768.0F;
    auto* place = parameters.format == AV_SAMPLE_FMT_FLTP
                      ? frame->extended_data[i % channels] + i / channels * size
                      : frame->extended_data[0] + i * size;
    std::memcpy(place, size == 2 ? static_cast<const void*>(&whole) : &real, static_cast<std::size_t>(size));
  }
  return frame;
}

milliseconds timeOf(const auto& action) {
  const auto start = steady_clock::now();
  action();
  return duration_cast<milliseconds>(steady_clock::now() - start);
}

TEST(AudioOutput, ChannelsAreAgreedWithSinkAndDevice) {
  using Row = std::tuple<const char*, int, unsigned, unsigned, unsigned>;
  for (const auto& [eld, card, mostChannels, inSurround, inAuto] :
       {Row{surroundSink, 0, 6, 6, 6}, Row{quadSink, 0, 6, 6, 2}, Row{stereoSink, 0, 6, 2, 2},
        Row{noMonitor, 0, 6, 6, 6}, Row{noMonitor, 0, 4, 2, 2}, Row{surroundSink, -1, 6, 2, 2}}) {
    for (const auto& [mode, channels] :
         {std::pair{SoundMode::Surround, inSurround}, std::pair{SoundMode::Auto, inAuto},
          std::pair{SoundMode::Stereo, 2U}}) {
      plugIn({.card = card, .mostChannels = mostChannels}, eld);
      const AudioOutput output(parametersOf("5.1").get(), "", mode, store.parts());
      EXPECT_EQ(device.channels, channels)
          << static_cast<int>(mode) << " " << card << " " << mostChannels << eld;
    }
  }
}

TEST(AudioOutput, TheDeviceHearsTheSourceAtItsRateInItsOrder) {
  // After the first volume, which lifts the peak to 32760 but no further than 12 dB.
  using Row = std::tuple<const char*, AVSampleFormat, int, std::vector<unsigned>, std::vector<int>>;
  const std::vector<unsigned> cardOrder = {SND_CHMAP_FL, SND_CHMAP_FR, SND_CHMAP_RL,
                                           SND_CHMAP_RR, SND_CHMAP_FC, SND_CHMAP_LFE};
  for (const auto& [source, format, rate, positions, frame] :
       {Row{"mono", AV_SAMPLE_FMT_S16, 44100, {}, {14075, 14075}},
        {"stereo", AV_SAMPLE_FMT_FLTP, 44100, {SND_CHMAP_FR, SND_CHMAP_FL}, {32760, 16380}},
        {"5.1", AV_SAMPLE_FMT_FLT, 48000, cardOrder, {5460, 10920, 27300, 32760, 16380, 21840}},
        {"5.1(side)", AV_SAMPLE_FMT_FLTP, 44100, {}, {5460, 10920, 16380, 21840, 27300, 32760}},
        {"7.1", AV_SAMPLE_FMT_FLTP, 48000, {}, {27119, 32760}}}) {
    plugIn({.card = 0, .positions = positions}, surroundSink);
    const auto parameters = parametersOf(source, format, rate);
    const auto size = frame.size() * static_cast<std::size_t>(rate / 50);
    AudioOutput output(parameters.get(), "", SoundMode::Surround, store.parts());
    output.write(frameOf(*parameters).get());
    EXPECT_EQ(device.rate, static_cast<unsigned>(rate));
    ASSERT_EQ(device.heard.size(), size) << source;
    for (std::size_t i = 0; i < size; ++i) {
      ASSERT_NEAR(device.heard[i], frame[i % frame.size()], 4) << source << " sample " << i;
    }
    output.write(frameOf(*parametersOf("3.0", AV_SAMPLE_FMT_FLTP, rate)).get());
    EXPECT_EQ(device.heard.size(), 2 * size) << "a decoder may change its mind";
  }
}

TEST(AudioOutput, DevicesAreTriedInOrderAndABusyOneIsAskedFiveTimes) {
  const Parameters nameless(avcodec_parameters_alloc());
  plugIn({.refusedOpens = 5, .refusal = -EBUSY});
  EXPECT_GE(timeOf([&] { AudioOutput(nameless.get(), "", SoundMode::Auto, store.parts()); }), 480ms);
  EXPECT_THAT(device.opened, ElementsAre("default", "default", "default", "default", "default", "dmix"));
  EXPECT_EQ(device.rate, 48000U);

  plugIn({.refusedOpens = 4});
  EXPECT_THAT(
      [&] { AudioOutput(nameless.get(), "", SoundMode::Surround, store.parts()); },
      testing::ThrowsMessage<std::runtime_error>("AudioOutput: snd_pcm_open failed (Permission denied)"));
  EXPECT_THAT(device.opened, ElementsAre("default", "dmix", "plug:default", "plughw:0,0"));
}

TEST(AudioOutput, AnItemWithoutADeviceKeepsItsPace) {
  plugIn({});
  const auto parameters = parametersOf("stereo");
  AudioOutput output(parameters.get(), "", SoundMode::Surround, store.parts());
  const auto frame = frameOf(*parameters);
  const auto fiveBlocks = [&] {
    for (int i = 0; i < 5; ++i) output.write(frame.get());
  };
  for (const long failure : {-ENODEV, -EPIPE, 0}) {
    device.writeResult = failure;
    if (failure == 0) output.close();
    EXPECT_THAT(timeOf(fiveBlocks), testing::AllOf(testing::Ge(95ms), testing::Lt(500ms))) << failure;
  }
  EXPECT_LT(device.writes, 500) << "a device that only claims to recover is left alone";
  stopSignalled = true;
  EXPECT_LT(timeOf(fiveBlocks), 50ms);
  stopSignalled = false;
}

TEST(AudioOutput, AReopenedDeviceMayHaveFewerChannels) {
  plugIn({.card = 0}, surroundSink);
  const auto parameters = parametersOf("5.1", AV_SAMPLE_FMT_FLTP);
  AudioOutput output(parameters.get(), "", SoundMode::Surround, store.parts());
  output.close();
  plugIn({.refusedOpens = 4});
  EXPECT_FALSE(output.reopen());
  EXPECT_TRUE(output.reopen());
  output.write(frameOf(*parameters).get());
  EXPECT_EQ(device.heard.size(), 2 * 960U);
}

TEST(AudioOutput, TheMainThreadMayDoAnythingWhileTheAudioThreadWrites) {
  plugIn({});
  const auto parameters = parametersOf("5.1", AV_SAMPLE_FMT_FLTP);
  AudioOutput output(parameters.get(), "", SoundMode::Surround, store.parts());
  const auto frame = frameOf(*parameters);
  output.write(frame.get());
  EXPECT_EQ(output.delayUs(), 20000) << "it has not started yet";
  output.flush();
  EXPECT_EQ(output.delayUs(), 0);
  device.startsAfter = device.writes + 25;
  for (int i = 0; i < 30; ++i) output.write(frame.get());
  EXPECT_NEAR(double(output.delayUs()), 500000, 30000) << "none plays faster than time goes by";
  output.flush();
  std::thread audio([&] {
    for (int i = 0; i < 300; ++i) output.write(frame.get());
  });
  for (int i = 0; i < 100; ++i) {
    output.adjustVolume(i % 3 == 0 ? 1 : -1);
    EXPECT_LE(output.volumeDb(), output.volumeCeilingDb() + 1e-9);
    EXPECT_LE(output.delayUs(), 510000);
    output.flush();
    if (i % 10 == 0) output.close();
    EXPECT_TRUE(output.reopen());
  }
  audio.join();
}

}  // namespace
}  // namespace tavek
