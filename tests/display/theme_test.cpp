#include <atomic>
#include <cstdlib>

#include <gtest/gtest.h>

#include "base/paths.h"
#include "display/theme/theme_player.h"
#include "display/theme/theme_rules.h"
#include "library/media_paths.h"
#include "state/state_store.h"
#include "support/fake_device.h"
#include "support/temp_folder.h"

namespace tavek {
namespace {

using namespace std::chrono_literals;
using Act = ThemeChoice::Act;

TEST(ThemeChoice, SoundsOnceWhereTheSelectionRests) {
  const std::filesystem::path tv = tvRoot();
  std::filesystem::create_directories(tv);
  classifyFolder(tv, {});
  const std::filesystem::path a = tv / "A/poster.jpg", a2 = tv / "A/Season 1/S01E02.mkv",
                              b = tv / "B/poster.jpg", top = tv / "C.jpg";
  const ThemeFacts onA{true, false, true, &a}, onA2{true, false, true, &a2}, onB{true, false, true, &b},
      onTop{true, false, true, &top}, nothing{true, false, true, nullptr}, films{false, false, true, &a},
      playing{true, true, true, &a}, closed{true, false, false, &a};
  const struct {
    Uint64 at;
    const ThemeFacts& facts;
    Act act;
    std::string_view reason;
  } steps[] = {
      {10'000, onA, Act::None, ""},
      {10'149, onA, Act::None, ""},
      {10'150, onA, Act::Start, ""},
      {10'200, onA2, Act::None, ""},  // another tile of the show
      {90'000, onA2, Act::None, ""},
      {90'100, nothing, Act::None, ""},  // its season is being listed
      {90'200, onA, Act::None, ""},
      {91'300, nothing, Act::Stop, "skip: poster selection invalid"},
      {92'000, onA, Act::Start, ""},
      {92'100, onB, Act::Stop, ""},
      {92'249, onB, Act::None, ""},
      {92'250, onB, Act::Start, ""},
      {92'300, playing, Act::Stop, "skip: video playing"},
      {93'000, onB, Act::None, ""},
      {93'150, onB, Act::Start, ""},
      {93'200, closed, Act::Stop, "skip: posters inactive"},
      {94'000, films, Act::None, "skip: not tv library"},
      {95'000, onTop, Act::None, "skip: no tv show root"},
  };
  ThemeChoice choice;
  for (const auto& step : steps) {
    EXPECT_EQ(choice.follow(step.facts, step.at), step.act) << step.at;
    EXPECT_EQ(choice.candidate().reason, step.reason) << step.at;
  }
}

/// A card that one can open at a time.
class OneAtATime {
 public:
  PcmDeviceFactory factory() {
    return [this, inner = sound.factory()](const DeviceWish& wish) -> std::unique_ptr<PcmDevice> {
      if (open_.exchange(true)) throw std::runtime_error("busy");
      return std::make_unique<Device>(inner(wish), open_);
    };
  }
  bool open() const { return open_; }
  test::FakeSound sound{steadyClock()};

 private:
  struct Device final : PcmDevice {
    Device(std::unique_ptr<PcmDevice> d, std::atomic<bool>& o) : device(std::move(d)), open(o) {}
    ~Device() override { open = false; }
    int channels() const override { return device->channels(); }
    const std::vector<std::size_t>& channelMap() const override { return device->channelMap(); }
    std::ptrdiff_t write(std::span<const std::int16_t> samples, std::chrono::milliseconds limit) override {
      return device->write(samples, limit);
    }
    std::ptrdiff_t delay() override { return device->delay(); }
    void drop() override { device->drop(); }
    void drain() override { device->drain(); }
    const std::unique_ptr<PcmDevice> device;
    std::atomic<bool>& open;
  };
  std::atomic<bool> open_ = false;
};

bool soon(const auto& question) {
  for (int i = 0; i < 500; ++i) {
    if (question()) return true;
    steadyClock().sleepFor(10ms);
  }
  return false;
}

TEST(ThemePlayer, GivesTheDeviceToWhoeverPlays) {
  const test::TempFolder folder;
  const auto make = [&](const std::string& name, const std::string& arguments) {
    const std::filesystem::path path = folder.path() / name;
    EXPECT_EQ(std::system(("ffmpeg -nostdin -loglevel error " + arguments + " " + path.string()).c_str()), 0);
    return path;
  };
  const auto theme = make("theme.mp3", "-f lavfi -i aevalsrc='0.7*sin(2000*PI*t)|0.7*sin(2000*PI*t)':d=20");
  const auto brief = make("brief.mp3", "-f lavfi -i aevalsrc='0.7*sin(2000*PI*t)':d=0.3");
  test::writeText(folder.path() / "empty.mp3", "");
  test::writeText(folder.path() / "noise.mp3", std::string(5000, '\x7f'));
  const auto silent = make("silent.mkv", "-f lavfi -i testsrc=d=1:s=64x48");
  StateStore store("");
  OneAtATime card;
  {
    ThemePlayer player(card.factory(), store.parts(), steadyClock());
    const PcmDeviceFactory shared = player.sharing(card.factory());
    for (const auto& file : {folder.path() / "gone.mp3", folder.path() / "empty.mp3"}) {
      player.startTheme(file, SoundMode::Stereo);
      EXPECT_TRUE(soon([&] { return player.takeMissing(); })) << file;
    }
    for (const auto& file : {folder.path() / "noise.mp3", silent}) player.startTheme(file, SoundMode::Stereo);
    player.startTheme(theme, SoundMode::Stereo);
    EXPECT_TRUE(soon([&] { return card.sound.heard().size() > 20'000; }));
    const auto heard = card.sound.heard();
    EXPECT_NEAR(*std::ranges::max_element(heard), 32767 * 0.7 * 0.251, 300) << "12 dB below full";

    // An item takes the device, as its sound does on a thread of its own.
    const auto before = steadyClock().now();
    EXPECT_NO_THROW(shared({}));
    EXPECT_LT(steadyClock().now() - before, 120ms + 100ms);
    EXPECT_TRUE(soon([&] { return !card.open(); }));

    player.startTheme(brief, SoundMode::Stereo);
    EXPECT_TRUE(soon([&] { return card.open(); }));
    EXPECT_TRUE(soon([&] { return !card.open(); })) << "it plays once, and gives the device back";
    player.startTheme(theme, SoundMode::Stereo);
    EXPECT_TRUE(soon([&] { return card.open(); }));
  }
  EXPECT_TRUE(soon([&] { return !card.open(); })) << "nothing plays on";
}

}  // namespace
}  // namespace tavek
