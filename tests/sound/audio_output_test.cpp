#include "sound/audio_output.h"

#include <cstring>

#include <gmock/gmock.h>

#include "base/background_job.h"
#include "base/process_flags.h"
#include "media/handles.h"
#include "state/state_store.h"
#include "support/fake_device.h"
#include "support/wait.h"

namespace tavek {
namespace {

using namespace std::chrono;
using test::waitUntil;
using testing::AllOf;
using testing::Ge;
using testing::Lt;

milliseconds timeOf(const auto& action) {
  const auto start = steady_clock::now();
  action();
  return duration_cast<milliseconds>(steady_clock::now() - start);
}

using Parameters =
    std::unique_ptr<AVCodecParameters, decltype([](auto* old) { avcodec_parameters_free(&old); })>;

Parameters parametersOf(const char* layout, AVSampleFormat format = AV_SAMPLE_FMT_S16, int rate = 48000) {
  Parameters parameters(avcodec_parameters_alloc());
  av_channel_layout_from_string(&parameters->ch_layout, layout);
  parameters->format = format;
  parameters->sample_rate = rate;
  return parameters;
}

/// 20 ms in which channel c stands still at `first` + c times `step`.
ffmpeg::FramePtr frameOf(const AVCodecParameters& parameters, int first, int step = 0) {
  auto frame = ffmpeg::makeFrame();
  frame->format = parameters.format;
  frame->sample_rate = parameters.sample_rate;
  frame->nb_samples = parameters.sample_rate / 50;
  av_channel_layout_copy(&frame->ch_layout, &parameters.ch_layout);
  av_frame_get_buffer(frame.get(), 0);
  const int channels = parameters.ch_layout.nb_channels;
  const int size = av_get_bytes_per_sample(static_cast<AVSampleFormat>(parameters.format));
  for (int i = 0; i < frame->nb_samples * channels; ++i) {
    const int value = first + i % channels * step;
    const auto whole = static_cast<std::int16_t>(value);
    const float real = static_cast<float>(value) / 32768.0F;
    auto* place = parameters.format == AV_SAMPLE_FMT_FLTP
                      ? frame->extended_data[i % channels] + i / channels * size
                      : frame->extended_data[0] + i * size;
    std::memcpy(place, size == 2 ? static_cast<const void*>(&whole) : &real, static_cast<std::size_t>(size));
  }
  return frame;
}

/// An item's sound on a card of its own. Nothing is kept under the empty key, so no file is touched.
struct Playing {
  explicit Playing(Parameters given = parametersOf("stereo"), SoundMode soundMode = SoundMode::Surround)
      : parameters(std::move(given)), mode(soundMode) {}

  void open() {
    static StateStore store("");
    output = std::make_unique<AudioOutput>(parameters.get(), "", mode, store.parts(), sound.factory(),
                                           steadyClock());
  }
  /// Blocks of 20 ms whose samples all have one value; the first sets the volume, so that it plays at 32760.
  void write(int blocks, int value = 16000) {
    while (blocks-- > 0) output->write(frameOf(*parameters, value).get());
  }
  bool heardAgain() {
    return waitUntil(10, [&] {
      write(1);
      return output->heard();
    });
  }

  const Parameters parameters;
  const SoundMode mode;
  test::FakeSound sound{steadyClock()};
  std::unique_ptr<AudioOutput> output;
};

TEST(AudioOutput, TheDeviceHearsTheSourceAtItsRate) {
  // After the first volume, which lifts the peak to 32760 but no further than 12 dB.
  using enum SoundMode;
  const std::vector<int> six{5460, 10920, 16380, 21840, 27300, 32760};
  const std::tuple<const char*, AVSampleFormat, int, SoundMode, int, std::vector<int>> cases[] = {
      {"mono", AV_SAMPLE_FMT_S16, 44100, Surround, 6, {14075, 14075}},
      {"5.1", AV_SAMPLE_FMT_FLT, 48000, Surround, 6, six},
      {"5.1(side)", AV_SAMPLE_FMT_FLTP, 44100, Auto, 6, six},
      {"7.1", AV_SAMPLE_FMT_FLTP, 48000, Surround, 6, {27119, 32760}},
      {"5.1", AV_SAMPLE_FMT_FLTP, 48000, Stereo, 6, {26074, 32760}},
      {"5.1", AV_SAMPLE_FMT_FLTP, 48000, Surround, 2, {26074, 32760}},
  };
  for (const auto& [layout, format, rate, mode, mostChannels, frame] : cases) {
    Playing playing(parametersOf(layout, format, rate), mode);
    playing.sound.setMostChannels(mostChannels);
    playing.open();
    playing.output->write(frameOf(*playing.parameters, 5000, 5000).get());
    const auto other = parametersOf("3.0", AV_SAMPLE_FMT_FLTP, rate);
    playing.output->write(frameOf(*other, 5000, 5000).get());
    playing.output.reset();
    EXPECT_EQ(playing.sound.wish().rate, rate);
    EXPECT_EQ(playing.sound.wish().strict, mode == Auto);
    const auto heard = playing.sound.heard();
    const std::size_t samples = static_cast<std::size_t>(rate / 50) * frame.size();
    ASSERT_EQ(heard.size(), 2 * samples) << layout << ": a decoder may change its mind";
    for (std::size_t i = 0; i < samples; ++i)
      ASSERT_NEAR(heard[i], frame[i % frame.size()], 4) << layout << " sample " << i;
  }
}

/// What the device held when a pause came is heard after it; after a seek it is not.
TEST(AudioOutput, APauseLosesNoSoundAndASeekLeavesNone) {
  for (const bool seek : {false, true}) {
    Playing playing;
    playing.open();
    playing.write(20);
    const auto heardSize = [&] { return playing.sound.heard().size(); };
    EXPECT_TRUE(waitUntil(10, [&] { return playing.output->heard() && heardSize() > 4800; }));
    playing.output->hold();
    std::size_t before = 0;
    EXPECT_TRUE(waitUntil(10, [&] {
      before = heardSize();
      std::this_thread::sleep_for(30ms);
      return heardSize() == before;
    })) << "the device falls silent at once";
    EXPECT_LT(before, 30'000U);
    EXPECT_NEAR(double(playing.output->delayUs()), 400'000 - double(before) / 0.096, 3000);
    if (seek) playing.output->flush();
    EXPECT_NEAR(double(playing.output->delayUs()), seek ? 0 : 400'000 - double(before) / 0.096, 3000);
    playing.output->resume();
    playing.write(1, -16000);
    playing.output.reset();
    const auto old = std::ranges::count(playing.sound.heard(), 32760);
    EXPECT_EQ(heardSize() - static_cast<std::size_t>(old), 1920U);
    EXPECT_NEAR(double(old), seek ? double(before) : 20 * 1920, seek ? 0 : 200);
  }
}

/// Whatever a device does, an item keeps its pace, and what comes back is heard again.
void expectPaceWith(const test::FakeSound::Faults& fault, const std::string& what) {
  Playing playing;
  playing.open();
  playing.write(2);
  EXPECT_TRUE(waitUntil(10, [&] { return playing.output->heard(); })) << what;
  playing.sound.fail(fault);
  // Two seconds until it counts as gone, and half a second that was queued.
  playing.write(150);
  EXPECT_TRUE(fault.refuses || !playing.output->heard()) << what;
  EXPECT_THAT(timeOf([&] { playing.write(10); }), AllOf(Ge(150ms), Lt(400ms))) << what;
  const auto quick = timeOf([&] {
    playing.output->hold();
    playing.output->flush();
    playing.output->close();
    playing.output->reopen();
    playing.output->adjustVolume(-1);
    EXPECT_GE(playing.output->delayUs(), 0);
  });
  EXPECT_LT(quick, 50ms) << what;
  playing.sound.fail({});
  playing.output->resume();
  EXPECT_TRUE(playing.heardAgain()) << what;
  playing.sound.fail(fault);
  EXPECT_LT(timeOf([&] { playing.output.reset(); }), 1200ms) << what;
  playing.sound.fail({});
  EXPECT_TRUE(waitUntil(10, [] { return joinLeftThreads(0ms); })) << what;
}

TEST(AudioOutput, AnItemKeepsItsPaceWithoutADevice) {
  // All at once, since each takes its time.
  const std::jthread refuses([] { expectPaceWith({.refuses = true}, "refuses"); });
  const std::jthread gone([] { expectPaceWith({.gone = true}, "gone"); });
  const std::jthread hangs([] { expectPaceWith({.hangs = true}, "hangs"); });
  const std::jthread standsStill([] { expectPaceWith({.standsStill = true}, "stands still"); });
}

TEST(AudioOutput, TheEndWaitsForWhatIsHeardAndForNothingElse) {
  Playing playing;
  playing.open();
  playing.write(10);
  playing.output.reset();
  EXPECT_EQ(playing.sound.heard().size(), 10 * 1920U) << "it plays what it holds";

  playing.open();
  playing.write(10, -16000);
  playing.output->hold();
  EXPECT_LT(timeOf([&] { playing.output.reset(); }), 150ms);
  EXPECT_LT(std::ranges::count(playing.sound.heard(), -32760), 5 * 1920) << "a pause at the end is silent";

  playing.open();
  playing.write(10);
  playing.sound.fail({.hangs = true});
  std::thread audio([&] { playing.write(500); });
  std::this_thread::sleep_for(50ms);
  playing.output->interrupt();
  EXPECT_LT(timeOf([&] { audio.join(); }), 200ms) << "a write that waits ends too";
  stopSignalled = true;
  EXPECT_LT(timeOf([&] { playing.output.reset(); }), 300ms);
  stopSignalled = false;
  playing.sound.fail({});
  EXPECT_TRUE(joinLeftThreads(5000ms));
}

TEST(AudioOutput, ADeviceThatComesBackMayHaveFewerChannels) {
  Playing playing(parametersOf("5.1", AV_SAMPLE_FMT_FLTP));
  playing.open();
  const auto frame = frameOf(*playing.parameters, 5000, 5000);
  playing.output->write(frame.get());
  playing.output->close();
  playing.sound.setMostChannels(2);
  playing.output->reopen();
  playing.output->write(frame.get());
  playing.output.reset();
  EXPECT_EQ(playing.sound.timesOpened(), 2);
  const auto heard = playing.sound.heard();
  EXPECT_EQ(heard.back(), heard[heard.size() - 3]) << "frames of two";
}

TEST(AudioOutput, ADeviceGivenBackWhileItIsOpenedIsNotHeard) {
  Playing playing;
  playing.sound.fail({.hangs = true});
  playing.open();
  playing.write(1);
  playing.output->close();
  playing.sound.fail({});
  EXPECT_TRUE(waitUntil(10, [&] { return playing.sound.timesOpened() == 1; }));
  EXPECT_FALSE(playing.output->heard());
  EXPECT_THAT(timeOf([&] { playing.write(10); }), AllOf(Ge(150ms), Lt(400ms)));
  playing.output->reopen();
  EXPECT_TRUE(playing.heardAgain());
  EXPECT_EQ(playing.sound.timesOpened(), 2);
}

}  // namespace
}  // namespace tavek
