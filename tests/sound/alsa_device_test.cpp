#include "sound/alsa_device.h"

#include <dlfcn.h>

#include <alsa/asoundlib.h>
#include <gmock/gmock.h>

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

/// A new device with this ELD file.
void plugIn(ScriptedDevice scripted, const char* eld = "") {
  static const test::TempFolder folder;
  test::writeText(folder.path() / "card0/eld#0.0", eld);
  test::writeText(folder.path() / "asound.conf", "pcm.!default { type null }\n");
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

constexpr const char *noMonitor = "monitor_present 0\n", *stereoSink = "monitor_present 1\nsad0_channels 2\n",
                     *quadSink = "monitor_present 1\nsad0_channels 4\n",
                     *surroundSink = "monitor_present 1\nsad0_channels 8\n";

std::unique_ptr<PcmDevice> open(const DeviceWish& wish) {
  return alsaDeviceFactory()(wish);
}

TEST(AlsaDevice, ChannelsAreAgreedWithSinkAndDevice) {
  using Row = std::tuple<const char*, int, unsigned, unsigned, unsigned>;
  for (const auto& [eld, card, mostChannels, inSurround, inAuto] : {Row{surroundSink, 0, 6, 6, 6},
                                                                    {quadSink, 0, 6, 6, 2},
                                                                    {stereoSink, 0, 6, 2, 2},
                                                                    {noMonitor, 0, 6, 6, 6},
                                                                    {noMonitor, 0, 4, 2, 2},
                                                                    {surroundSink, -1, 6, 2, 2}}) {
    for (const bool strict : {false, true}) {
      plugIn({.card = card, .mostChannels = mostChannels}, eld);
      const auto opened = open({.channels = 6, .strict = strict});
      EXPECT_EQ(device.channels, strict ? inAuto : inSurround) << strict << card << mostChannels << eld;
      EXPECT_EQ(opened->channels(), static_cast<int>(device.channels));
    }
  }
}

TEST(AlsaDevice, TellsItsOrderAndPassesSamplesOn) {
  plugIn({.card = 0, .positions = {SND_CHMAP_FR, SND_CHMAP_FL}}, surroundSink);
  const auto opened = open({.channels = 2, .rate = 44100});
  EXPECT_EQ(device.rate, 44100U);
  EXPECT_THAT(opened->channelMap(), ElementsAre(1, 0));
  const std::vector<std::int16_t> samples{1, 2, 3, 4};
  EXPECT_EQ(opened->write(samples, 50ms), 2);
  EXPECT_EQ(device.heard, samples);
}

TEST(AlsaDevice, NamesAreTriedInOrderAndABusyOneIsAskedFiveTimes) {
  plugIn({.refusedOpens = 5, .refusal = -EBUSY});
  const auto start = steady_clock::now();
  open({});
  EXPECT_GE(steady_clock::now() - start, 480ms);
  EXPECT_THAT(device.opened, ElementsAre("default", "default", "default", "default", "default", "dmix"));

  plugIn({.refusedOpens = 4});
  EXPECT_THAT([] { open({}); }, testing::ThrowsMessage<std::runtime_error>(
                                    "AudioOutput: snd_pcm_open failed (Permission denied)"));
  EXPECT_THAT(device.opened, ElementsAre("default", "dmix", "plug:default", "plughw:0,0"));
}

TEST(AlsaDevice, TellsWhatIsNotHeardYet) {
  plugIn({});
  const auto opened = open({.rate = 48000});
  const std::vector<std::int16_t> block(2 * 960);
  opened->write(block, 50ms);
  EXPECT_EQ(opened->delay(), 960) << "it has not started yet";
  opened->drop();
  EXPECT_EQ(opened->delay(), 0);
  device.startsAfter = device.writes + 25;
  for (int i = 0; i < 30; ++i) opened->write(block, 50ms);
  EXPECT_NEAR(double(opened->delay()), 24000, 1500) << "none plays faster than time goes by";
}

TEST(AlsaDevice, IsGoneWhenItFailsOrOnlyClaimsToRecover) {
  const std::vector<std::int16_t> block(2 * 960);
  for (const long failure : {-ENODEV, -EPIPE}) {
    plugIn({.writeResult = failure});
    const auto opened = open({});
    int tries = 0;
    while (opened->write(block, 50ms) == 0 && tries < 1000) ++tries;
    EXPECT_LT(tries, 100) << failure;
  }
}

}  // namespace
}  // namespace tavek
