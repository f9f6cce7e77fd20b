#include "sound/audio_output.h"

#include <chrono>
#include <cstring>
#include <thread>

#include <gmock/gmock.h>

#include "base/background_job.h"
#include "base/process_flags.h"
#include "media/handles.h"
#include "state/state_store.h"
#include "support/fake_device.h"
#include "support/parameters.h"

namespace tavek {
namespace {

using namespace std::chrono;

/// Nothing is kept under the empty key, so no file is touched.
StateStore& store() {
  static StateStore kept("");
  return kept;
}

milliseconds timeOf(const auto& action) {
  const auto start = steady_clock::now();
  action();
  return duration_cast<milliseconds>(steady_clock::now() - start);
}

bool soon(const auto& question) {
  for (const auto end = steady_clock::now() + 10s; !question() && steady_clock::now() < end;)
    std::this_thread::sleep_for(1ms);
  return question();
}

class AudioOutputTest : public testing::Test {
 protected:
  std::unique_ptr<AudioOutput> open(const AVCodecParameters* parameters,
                                    SoundMode mode = SoundMode::Surround) {
    return std::make_unique<AudioOutput>(parameters, "", mode, store().parts(), sound.factory(),
                                         steadyClock());
  }
  /// Blocks of 20 ms whose samples all have one value; the first sets the volume, so that it plays at 32760.
  void write(AudioOutput& output, int blocks, int value = 16000) {
    for (int i = 0; i < blocks; ++i) output.write(test::frameOf(*stereo, value).get());
  }

  const test::Parameters stereo = test::parametersOf("stereo");
  test::FakeSound sound{steadyClock()};
};

TEST_F(AudioOutputTest, TheDeviceHearsTheSourceAtItsRate) {
  // After the first volume, which lifts the peak to 32760 but no further than 12 dB.
  const struct {
    const char* layout;
    AVSampleFormat format;
    int rate;
    SoundMode mode;
    int mostChannels;
    std::vector<int> frame;
  } cases[] = {
      {"mono", AV_SAMPLE_FMT_S16, 44100, SoundMode::Surround, 6, {14075, 14075}},
      {"5.1", AV_SAMPLE_FMT_FLT, 48000, SoundMode::Surround, 6, {5460, 10920, 16380, 21840, 27300, 32760}},
      {"5.1(side)", AV_SAMPLE_FMT_FLTP, 44100, SoundMode::Auto, 6, {5460, 10920, 16380, 21840, 27300, 32760}},
      {"7.1", AV_SAMPLE_FMT_FLTP, 48000, SoundMode::Surround, 6, {27119, 32760}},
      {"5.1", AV_SAMPLE_FMT_FLTP, 48000, SoundMode::Stereo, 6, {26074, 32760}},
      {"5.1", AV_SAMPLE_FMT_FLTP, 48000, SoundMode::Surround, 2, {26074, 32760}},
  };
  for (const auto& c : cases) {
    test::FakeSound own(steadyClock());
    own.setMostChannels(c.mostChannels);
    const auto parameters = test::parametersOf(c.layout, c.format, c.rate);
    const auto frames = static_cast<std::size_t>(c.rate / 50);
    {
      AudioOutput output(parameters.get(), "", c.mode, store().parts(), own.factory(), steadyClock());
      output.write(test::channelSteps(*parameters).get());
      output.write(test::channelSteps(*test::parametersOf("3.0", AV_SAMPLE_FMT_FLTP, c.rate)).get());
    }
    EXPECT_EQ(own.wish().rate, c.rate);
    EXPECT_EQ(own.wish().strict, c.mode == SoundMode::Auto);
    const auto heard = own.heard();
    ASSERT_EQ(heard.size(), 2 * frames * c.frame.size()) << c.layout << ": a decoder may change its mind";
    for (std::size_t i = 0; i < frames * c.frame.size(); ++i) {
      ASSERT_NEAR(heard[i], c.frame[i % c.frame.size()], 4) << c.layout << " sample " << i;
    }
  }
}

TEST_F(AudioOutputTest, NoDevicePlaysSomeRates) {
  for (const int rate : {1, 3999, 768'001}) {
    EXPECT_THROW(open(test::parametersOf("stereo", AV_SAMPLE_FMT_S16, rate).get()), std::runtime_error)
        << rate;
  }
  for (const int rate : {0, 4000, 768'000}) {
    EXPECT_NO_THROW(open(test::parametersOf("stereo", AV_SAMPLE_FMT_S16, rate).get())) << rate;
  }
  EXPECT_THROW(open(nullptr), std::runtime_error);
}

/// What the device held when a pause came is heard after it; after a seek it is not.
TEST_F(AudioOutputTest, APauseLosesNoSoundAndASeekLeavesNone) {
  for (const bool seek : {false, true}) {
    test::FakeSound own(steadyClock());
    std::size_t before = 0;
    {
      AudioOutput output(stereo.get(), "", SoundMode::Surround, store().parts(), own.factory(),
                         steadyClock());
      write(output, 20, 16000);
      EXPECT_TRUE(soon([&] { return output.heard() && own.heard().size() > 4800; }));
      output.hold();
      EXPECT_TRUE(soon([&] {
        const auto heard = own.heard().size();
        std::this_thread::sleep_for(30ms);
        before = own.heard().size();
        return heard == before;
      })) << "the device falls silent at once";
      EXPECT_LT(before, 30'000U);
      EXPECT_NEAR(double(output.delayUs()), 400'000 - double(before) / 0.096, 3000);
      if (seek) output.flush();
      EXPECT_NEAR(double(output.delayUs()), seek ? 0 : 400'000 - double(before) / 0.096, 3000);
      output.resume();
      write(output, 1, -16000);
    }
    const auto heard = own.heard();
    const auto old = static_cast<std::size_t>(std::ranges::count(heard, 32760));
    EXPECT_EQ(heard.size() - old, 1920U);
    if (seek) {
      EXPECT_EQ(old, before);
    } else {
      EXPECT_NEAR(double(old), 20 * 1920, 200);
    }
  }
}

/// Whatever a device does, an item keeps its pace, and what comes back is heard again.
void expectPaceWith(const test::FakeSound::Faults& fault, const std::string& what) {
  const auto stereo = test::parametersOf("stereo");
  const auto frame = test::frameOf(*stereo, 16000);
  test::FakeSound sound(steadyClock());
  auto output = std::make_unique<AudioOutput>(stereo.get(), "", SoundMode::Surround, store().parts(),
                                              sound.factory(), steadyClock());
  const auto write = [&](int blocks) {
    while (blocks-- > 0) output->write(frame.get());
  };
  write(2);
  EXPECT_TRUE(soon([&] { return output->heard(); })) << what;
  sound.fail(fault);
  // Two seconds until it counts as gone, and half a second that was queued.
  write(150);
  EXPECT_TRUE(fault.refuses || !output->heard()) << what;
  EXPECT_THAT(timeOf([&] { write(10); }), testing::AllOf(testing::Ge(150ms), testing::Lt(400ms))) << what;
  const auto quick = timeOf([&] {
    output->hold();
    output->flush();
    output->close();
    output->reopen();
    output->adjustVolume(-1);
    EXPECT_GE(output->delayUs(), 0);
  });
  EXPECT_LT(quick, 50ms) << what;
  sound.fail({});
  output->resume();
  EXPECT_TRUE(soon([&] {
    write(5);
    return output->heard();
  })) << what;
  sound.fail(fault);
  EXPECT_LT(timeOf([&] { output.reset(); }), 1200ms) << what;
  sound.fail({});
  EXPECT_TRUE(soon([] { return joinLeftThreads(0ms); })) << what;
}

TEST_F(AudioOutputTest, AnItemKeepsItsPaceWithoutADevice) {
  // All at once, since each takes its time.
  std::thread threads[] = {
      std::thread([] { expectPaceWith({.refuses = true}, "refuses"); }),
      std::thread([] { expectPaceWith({.gone = true}, "gone"); }),
      std::thread([] { expectPaceWith({.hangs = true}, "hangs"); }),
      std::thread([] { expectPaceWith({.standsStill = true}, "stands still"); }),
  };
  for (std::thread& thread : threads) thread.join();
}

TEST_F(AudioOutputTest, TheEndWaitsForWhatIsHeardAndForNothingElse) {
  auto playing = open(stereo.get());
  write(*playing, 10);
  playing.reset();
  EXPECT_EQ(sound.heard().size(), 10 * 1920U) << "it plays what it holds";

  auto hanging = open(stereo.get());
  write(*hanging, 10);
  sound.fail({.hangs = true});
  std::thread audio([&] { write(*hanging, 500); });
  std::this_thread::sleep_for(50ms);
  hanging->interrupt();
  EXPECT_LT(timeOf([&] { audio.join(); }), 200ms) << "a write that waits ends too";
  stopSignalled = true;
  EXPECT_LT(timeOf([&] { hanging.reset(); }), 300ms);
  stopSignalled = false;
  sound.fail({});
  EXPECT_TRUE(joinLeftThreads(5000ms));
}

TEST_F(AudioOutputTest, ADeviceThatComesBackMayHaveFewerChannels) {
  const auto parameters = test::parametersOf("5.1", AV_SAMPLE_FMT_FLTP);
  auto output = open(parameters.get());
  output->write(test::channelSteps(*parameters).get());
  output->close();
  sound.setMostChannels(2);
  output->reopen();
  output->write(test::channelSteps(*parameters).get());
  output.reset();
  EXPECT_EQ(sound.timesOpened(), 2);
  EXPECT_EQ(sound.heard().back(), sound.heard()[sound.heard().size() - 3]) << "frames of two";
}

TEST_F(AudioOutputTest, TheMainThreadMayDoAnythingWhileTheAudioThreadWrites) {
  auto output = open(stereo.get());
  std::thread audio([&] { write(*output, 50); });
  for (int i = 0; i < 100; ++i) {
    output->adjustVolume(i % 3 == 0 ? 1 : -1);
    EXPECT_LE(output->volumeDb(), output->volumeCeilingDb() + 1e-9);
    EXPECT_LE(output->delayUs(), 700'000);
    if (i % 7 == 0) output->flush();
    if (i % 10 == 0) output->hold();
    if (i % 10 == 5) output->resume();
    if (i % 20 == 0) output->close();
    if (i % 20 == 3) output->reopen();
    std::this_thread::sleep_for(2ms);
  }
  output->resume();
  output->reopen();
  audio.join();
}

}  // namespace
}  // namespace tavek
