// Songs: how the keys and the end of one lead to another.
#include <cmath>

#include "program/program_run.h"

namespace tavek {
namespace {

class Music : public ProgramTest {
 protected:
  void addSong(const std::string& name, int pitch, double seconds, const std::string& tags) {
    std::filesystem::path path = stage.library.path() / "music/Band/Album" / name;
    std::filesystem::create_directories(path.parent_path());
    const std::string length = std::to_string(seconds);
    std::filesystem::copy_file(rig::makeFile("-f lavfi -i aevalsrc=0.5*sin(" + std::to_string(2 * pitch) +
                                                 "*PI*t):s=48000:d=" + length + " " + tags + " OUT",
                                             "flac", TAVEK_TEST_MEDIA),
                               path);
  }
  bool sounds(int pitch, double from, double to) const {
    const rig::Recording part = stage.sound.recording().between(from, to);
    return part.level() > -30 && std::abs(part.pitch() - pitch) < pitch * 0.05;
  }
  bool waitForPitch(int pitch, double seconds) const {
    return rig::waitUntil(seconds, [&] { return sounds(pitch, rig::now() - 0.15, rig::now() - 0.05); });
  }
  /// How long after a key a pitch is heard first; 9 if it is not.
  double delayOf(int pitch, double pressedAt) const {
    for (double delay = 0; delay < 2; delay += 0.005) {
      if (sounds(pitch, pressedAt + delay, pressedAt + delay + 0.02)) return delay;
    }
    return 9;
  }
};

TEST_F(Music, KeysAndTheEndOfASongLeadThroughTheAlbum) {
  // In the order of the tags, which is not that of the names.
  addSong("c.flac", 500, 20, "-metadata track=1");
  addSong("a.flac", 1000, 20, "-metadata track=2");
  addSong("d.flac", 2000, 20, "-metadata track=3");
  addSong("b.flac", 3000, 4, "-metadata track=4");
  addSong("e.flac", 4000, 3, "-metadata track=5");
  start({(stage.library.path() / "music/Band/Album/c.flac").string()});
  ASSERT_TRUE(waitForPitch(500, 10) && stage.screen.focusWindow(5));
  const struct {
    const char* key;
    int times;
    int pitch;
  } steps[] = {{"Up", 1, 500}, {"Down", 1, 1000}, {"Up", 1, 500}, {"Down", 2, 2000}, {"Down", 1, 3000}};
  for (const auto& [key, times, pitch] : steps) {
    SCOPED_TRACE(std::string(key) + " to " + std::to_string(pitch));
    rig::let(0.3);
    for (int i = 1; i < times; ++i) {
      stage.screen.press(key);
      rig::let(0.06);
    }
    const double pressedAt = rig::now();
    stage.screen.press(key);
    ASSERT_TRUE(waitForPitch(pitch, 5));
    rig::let(0.2);
    EXPECT_LE(delayOf(pitch, pressedAt), mild(0.25));
  }
  EXPECT_TRUE(waitForPitch(4000, 8)) << "the fifth follows by itself";
  expectEnd(10, false);
}

}  // namespace
}  // namespace tavek
