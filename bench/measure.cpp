#include "bench/measure.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>
#include <signal.h>
#include <stdexcept>

namespace tavek::bench {
namespace {

using rig::now;
using rig::Sight;

constexpr double notSeen = std::numeric_limits<double>::quiet_NaN();

std::unique_ptr<rig::Program> start(const rig::Stage& stage, const Player& player, const std::string& file) {
  rig::Environment environment = stage.environment();
  for (const auto& [name, value] : player.environment) environment[name] = value;
  // Each run starts at the beginning of the film.
  std::filesystem::remove(std::filesystem::path(file).parent_path() / "playback.json");
  std::filesystem::remove(stage.library.path() / "persist.json");
  std::vector<std::string> command = player.command;
  command.push_back(file);
  return std::make_unique<rig::Program>(command, environment);
}

// Beeps and flashes belong together when they are nearest to each other.
std::vector<double> soundLateness(const std::vector<double>& beeps, const std::vector<double>& flashes) {
  std::vector<double> result;
  for (const double beep : beeps) {
    double best = 0.5;
    for (const double flash : flashes) best = std::abs(beep - flash) < std::abs(best) ? beep - flash : best;
    if (best != 0.5) result.push_back(best * 1000);
  }
  return result;
}

// From there on, for the most part of a second, no picture is left out or comes half a picture early or late.
double evenFrom(const std::vector<Sight>& sights, int picturesPerSecond) {
  std::size_t first = 0;
  for (std::size_t i = 1; i < sights.size(); ++i) {
    const double interval = (sights[i].at - sights[i - 1].at) * picturesPerSecond;
    if (interval < 0.5 || interval > 1.5 || sights[i].number != sights[i - 1].number + 1) first = i;
    if (sights[i].at - sights[first].at > 0.9) return sights[first].at;
  }
  return notSeen;
}

}  // namespace

double median(std::vector<double> values) {
  std::erase_if(values, [](double value) { return std::isnan(value); });
  if (values.empty()) return notSeen;
  std::sort(values.begin(), values.end());
  const std::size_t middle = values.size() / 2;
  return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

Playing playFilm(const rig::Stage& stage, const Player& player, const Film& film, const std::string& file) {
  const rig::Watch watch(stage.screen);
  const std::unique_ptr<rig::Program> program = start(stage, player, file);
  const double begin = program->startedAt();
  if (!program->waitForEnd(film.clip.seconds * 3)) throw std::runtime_error(player.name + " does not end");
  const std::vector<Sight> sights = watch.sights(begin);
  const std::vector<double> beeps = stage.sound.recording(begin - 0.3).onsets();
  std::set<int> numbers;
  for (const Sight& sight : sights) numbers.insert(sight.number);

  Playing result;
  result.cpuPerSecond = program->cpuSeconds() / film.clip.seconds;
  result.shownPercent = 100 * double(numbers.size()) / (film.clip.seconds * film.picturesPerSecond);
  result.firstPicture = sights.empty() ? notSeen : (sights.front().at - begin) * 1000;
  result.firstSound = beeps.empty() ? notSeen : (beeps.front() - begin) * 1000;
  result.peakMegabytes = double(program->peakKilobytes()) / 1024;
  const auto late = soundLateness(stage.sound.recording(begin + 3.5).onsets(), watch.flashes(begin + 3));
  result.soundMedian = median(late);
  result.soundEarliest = late.empty() ? notSeen : *std::min_element(late.begin(), late.end());
  result.soundLatest = late.empty() ? notSeen : *std::max_element(late.begin(), late.end());
  return result;
}

std::vector<Seeking> seekInFilm(rig::Stage& stage, const Player& player, const Film& film,
                                const std::string& file) {
  const rig::Watch watch(stage.screen);
  const std::unique_ptr<rig::Program> program = start(stage, player, file);
  if (!rig::waitUntil(20, [&] { return watch.number() >= 2 * film.picturesPerSecond; }) ||
      !stage.screen.focusWindow(5)) {
    throw std::runtime_error(player.name + " shows no picture");
  }
  std::vector<Seeking> result;
  for (int press = 0; press < 4; ++press) {
    const int before = watch.number();
    const double pressed = now();
    stage.screen.press("Right");
    const bool jumped =
        rig::waitUntil(5, [&] { return watch.number() > before + 2 * film.picturesPerSecond; });
    // Long enough that the next press is again an even playback's first.
    rig::let(3);
    std::vector<Sight> sights = watch.sights(pressed);
    std::erase_if(sights,
                  [&](const Sight& sight) { return sight.number < before + 2 * film.picturesPerSecond; });
    result.push_back({jumped ? (sights.front().at - pressed) * 1000 : notSeen,
                      jumped ? (evenFrom(sights, film.picturesPerSecond) - pressed) * 1000 : notSeen});
  }
  return result;
}

Browsing browse(rig::Stage& stage, const Player& player, const std::string& library) {
  rig::Environment environment = stage.environment();
  environment["TAVEK_MEDIA_ROOT"] = library;
  std::filesystem::remove(std::filesystem::path(library) / "persist.json");
  rig::Program program(player.command, environment);
  const auto pixels = [&](int y) {
    std::uint64_t sum = 0;
    for (int x = 0; x < 1920; x += 7) sum = sum * 31 + stage.screen.pixel(x, y);
    return sum;
  };
  const auto untilChanged = [&](int row, double since, const auto& action) {
    const std::uint64_t before = pixels(row);
    action();
    return rig::waitUntil(5, [&] { return pixels(row) != before; }) ? (now() - since) * 1000 : notSeen;
  };
  Browsing result;
  result.firstHome = untilChanged(540, program.startedAt(), [] {});
  rig::let(1);
  stage.screen.focusWindow(5);
  const auto keyTime = [&](const char* key, int row) {
    std::vector<double> times;
    for (int i = 0; i < 9; ++i) {
      times.push_back(untilChanged(row, now(), [&] { stage.screen.press(key); }));
      rig::let(0.4);
    }
    return median(times);
  };
  result.userKey = untilChanged(540, now(), [&] { stage.screen.press("Right"); });
  stage.screen.press("Return");
  rig::let(2);
  stage.screen.press("Return");
  rig::let(2);
  result.stripKey = keyTime("Right", 800);
  program.signal(SIGTERM);
  program.waitForEnd(5);
  return result;
}

double decodingFloor(const std::string& file, double seconds) {
  rig::Program ffmpeg({"ffmpeg", "-v", "error", "-nostdin", "-i", file, "-f", "null", "-"}, {});
  if (!ffmpeg.waitForEnd(600)) throw std::runtime_error("decoding does not end");
  return ffmpeg.cpuSeconds() / seconds;
}

}  // namespace tavek::bench
