#include "bench/listening.h"

#include <algorithm>
#include <cstdlib>
#include <stdexcept>

namespace tavek::bench {
namespace {

namespace fs = std::filesystem;

void addTone(const fs::path& file, int pitch, int seconds) {
  rig::addTone(file, pitch, seconds, TAVEK_BENCH_MEDIA);
}

void addEpisode(const fs::path& file) {
  if (fs::exists(file)) return;
  fs::create_directories(file.parent_path());
  fs::copy_file(rig::makeClip({.width = 320, .height = 180, .seconds = 60, .sound = ""}, TAVEK_BENCH_MEDIA),
                file);
}

/// The longest silence between two times.
double longestSilence(const rig::Stage& stage, double from, double to) {
  long longest = 0;
  long run = 0;
  for (const std::int16_t sample : stage.sound.recording().between(from, to).samples) {
    run = std::abs(sample) < 200 ? run + 1 : 0;
    longest = std::max(longest, run);
  }
  return double(longest) / rig::recordRate;
}

void await(const rig::Stage& stage, int pitch) {
  if (!stage.sound.waitForPitch(pitch, 10))
    throw std::runtime_error("a tone of " + std::to_string(pitch) + " Hz does not come");
}

}  // namespace

void hearSongs(rig::Stage& stage, const Player& player, const std::string& folder, Listening& heard) {
  const fs::path album = fs::path(folder) / "music/Band/Album";
  const int pitches[] = {500, 1000, 2000, 3000, 1500, 2500};
  for (int i = 0; i < 6; ++i) {
    addTone(album / (std::to_string(i + 1) + ".flac"), pitches[i], i < 3 ? 30 : 3);
  }
  rig::Environment environment = stage.environment();
  environment["TAVEK_MEDIA_ROOT"] = folder;
  std::vector<std::string> command = player.command;
  command.push_back((album / "1.flac").string());
  rig::Program program(command, environment);
  await(stage, 500);
  stage.screen.focusWindow(5);
  for (int i = 1; i < 4; ++i) {
    rig::let(1);
    const double pressed = rig::now();
    stage.screen.press("Down");
    await(stage, pitches[i]);
    heard.nextTrack.push_back(stage.sound.delayOf(pitches[i], pressed) * 1000);
  }
  for (int i = 4; i < 6; ++i) {
    await(stage, pitches[i]);
    rig::let(0.3);
    heard.gap.push_back(longestSilence(stage, rig::now() - 1.5, rig::now() - 0.1) * 1000);
  }
  program.waitForEnd(10);
}

void hearThemes(rig::Stage& stage, const Player& player, const std::string& folder, Listening& heard) {
  const fs::path tv = fs::path(folder) / "tv";
  for (const auto& [show, pitch] : {std::pair{"A", 1000}, std::pair{"B", 2000}}) {
    addTone(tv / show / "theme.mp3", pitch, 20);
    addEpisode(tv / show / "Season 1/S01E01 One.mkv");
    rig::Program poster({"convert", "-size", "200x300", "gradient:", (tv / show / "poster.jpg").string()},
                        {});
    poster.waitForEnd(20);
  }
  fs::remove(fs::path(folder) / "persist.json");
  rig::Environment environment = stage.environment();
  environment["TAVEK_MEDIA_ROOT"] = folder;
  rig::Program program(player.command, environment);
  rig::let(2);
  stage.screen.focusWindow(5);
  // To the room of the shows, whose first episode has no sound of its own.
  stage.screen.press("Down");
  stage.screen.press("Return");
  rig::let(3);
  double pressed = rig::now();
  stage.screen.press("Return");
  await(stage, 1000);
  rig::let(0.5);
  heard.theme.push_back(stage.sound.delayOf(1000, pressed) * 1000);
  for (const auto& [key, pitch] : {std::pair{"Right", 2000}, {"Left", 1000}, {"Right", 2000}}) {
    pressed = rig::now();
    stage.screen.press(key);
    await(stage, pitch);
    rig::let(0.5);
    heard.theme.push_back(stage.sound.delayOf(pitch, pressed) * 1000);
    heard.silence.push_back(stage.sound.delayOfSilence(pressed) * 1000);
  }
  program.signal(SIGTERM);
  program.waitForEnd(5);
}

}  // namespace tavek::bench
