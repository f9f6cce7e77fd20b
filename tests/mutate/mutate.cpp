// mutate <count> <seed> <folder>: plays damaged clips, and fails if one crashes, hangs, or is neither played
// nor reported. That one is left in the folder.
#include <algorithm>
#include <cstdio>
#include <random>
#include <unistd.h>

#include "player/play.h"
#include "rig/media.h"
#include "rig/process.h"
#include "state/state_store.h"
#include "support/fake_device.h"
#include "support/turned_clock.h"
#include "support/wait.h"

extern "C" {
#include <libavutil/log.h>
}

namespace {

using namespace tavek;
using std::chrono::microseconds;
using std::chrono::seconds;
using Random = std::mt19937_64;
using SteadyClock = std::chrono::steady_clock;

/// An extension, and ffmpeg's words for what lies under it.
constexpr const char* kinds[][2] = {
    {"mkv", "-c:v libx264 -preset ultrafast -g 12 -c:a flac"},
    {"mp4", "-c:v libx264 -preset ultrafast -g 12 -c:a aac"},
    {"mov", "-c:v mjpeg -c:a pcm_s16le"},
    {"avi", "-c:v mpeg4 -g 12 -c:a libmp3lame"},
    {"ts", "-c:v mpeg2video -g 12 -c:a mp2"},
    {"mpg", "-c:v mpeg1video -g 12 -c:a mp2"},
    {"webm", "-c:v libvpx-vp9 -deadline realtime -cpu-used 8 -g 12 -c:a libopus"},
    {"ogv", "-c:v libtheora -g 12 -c:a libvorbis"},
    {"flv", "-c:v flv1 -g 12 -ar 44100 -c:a libmp3lame"},
    {"wmv", "-c:v wmv2 -g 12 -c:a wmav2"},
    {"flac", "-vn -c:a flac"},
    {"mp3", "-vn -c:a libmp3lame"},
    {"ogg", "-vn -c:a libvorbis"},
};

std::size_t below(std::size_t bound, Random& random) {
  return bound == 0 ? 0 : random() % bound;
}

void flip(std::string& bytes, Random& random) {
  for (std::size_t left = 1 + below(64, random); left > 0; --left)
    bytes[below(bytes.size(), random)] ^= static_cast<char>(1 << below(8, random));
}

void cut(std::string& bytes, Random& random) {
  const std::size_t at = below(bytes.size(), random);
  bytes.erase(at, below(2, random) == 0 ? std::string::npos : below(4096, random));
}

void swap(std::string& bytes, Random& random) {
  const std::size_t length = 1 + below(bytes.size() / 4, random);
  const auto block = [&] {
    return bytes.begin() + static_cast<std::ptrdiff_t>(below(bytes.size() - length, random));
  };
  const auto from = block();
  std::swap_ranges(from, from + static_cast<std::ptrdiff_t>(length), block());
}

void zero(std::string& bytes, Random& random) {
  const std::size_t at = below(bytes.size(), random);
  const std::size_t length = std::min(1 + below(4096, random), bytes.size() - at);
  bytes.replace(at, length, length, '\0');
}

/// Sizes, counts and times beyond all measure, where containers keep theirs.
void boast(std::string& bytes, Random& random) {
  constexpr std::array<std::uint32_t, 5> values{0, 1, 0x7fffffff, 0x80000000, 0xffffffff};
  const std::size_t span = std::min<std::size_t>(bytes.size(), 2048);
  for (std::size_t left = 1 + below(4, random); left > 0; --left) {
    const std::size_t start = below(2, random) == 0 ? 0 : bytes.size() - span;
    const std::uint32_t value = values[below(values.size(), random)];
    for (std::size_t i = 0, at = start + below(span, random); i < 4 && at < bytes.size(); ++i, ++at)
      bytes[at] = static_cast<char>(value >> (8 * i));
  }
}

constexpr std::array damages{flip, cut, swap, zero, boast};

fs::path makeMutant(std::uint64_t number, const fs::path& folder) {
  Random random(number);
  const auto& [extension, codecs] = kinds[below(std::size(kinds), random)];
  const std::string words =
      std::string("-f lavfi -i testsrc=s=64x48:r=24:d=2 -f lavfi -i sine=d=2 ") + codecs + " OUT";
  std::string bytes = test::readText(rig::makeFile(words, extension, TAVEK_TEST_MEDIA));
  damages[below(damages.size(), random)](bytes, random);
  fs::path path = folder / (std::to_string(number) + "." + extension);
  test::writeText(path, bytes);
  return path;
}

enum class Outcome { Played, Reported, Cut, Nothing, Hung };

/// Plays a while, goes to the middle, and on to the end. What damaged times stretch is cut off.
Outcome played(Play& play, test::FakeSound& card, const Clock& clock) {
  const auto giveUp = SteadyClock::now() + seconds(20);
  if (!test::waitUntil(20, [&] { return play.opening() != Play::Opening::Underway; })) return Outcome::Hung;
  if (play.opening() == Play::Opening::Failed) return Outcome::Reported;

  play.start(0);
  bool shown = false, sought = false;
  const auto begun = clock.now();
  const auto heardOrSeen = [&](Outcome outcome) {
    return shown || !card.heard().empty() ? outcome : Outcome::Nothing;
  };
  while (clock.now() - begun < seconds(60)) {
    if (SteadyClock::now() > giveUp) return Outcome::Hung;
    const Play::Turn turn = play.nextTurn();
    if (turn == Play::Turn::Ended) return play.error() ? Outcome::Reported : heardOrSeen(Outcome::Played);
    if (turn == Play::Turn::Picture) {
      shown = true;
      play.presented();
    }
    if (sought || clock.now() - begun < seconds(1)) continue;
    play.requestSeek(500'000);
    sought = true;
  }
  return heardOrSeen(Outcome::Cut);
}

Outcome watch(const std::string& path) {
  static StateStore store{""};
  static const Stored stored = store.parts();
  test::TurnedClock clock{microseconds(200)};
  test::FakeSound card{clock};
  Outcome outcome;
  {
    Play play({path, {}, SoundMode::Stereo}, {clock, stored, card.factory()});
    outcome = played(play, card, clock);
  }
  return card.end() ? outcome : Outcome::Hung;
}

}  // namespace

int main(int count, char** words) {
  if (count != 4) return std::fputs("usage: mutate <count> <seed> <folder>\n", stderr), 2;
  av_log_set_level(AV_LOG_QUIET);
  // No line is lost when a clip brings the program down.
  setvbuf(stdout, nullptr, _IOLBF, 0);
  const fs::path folder = words[3];
  fs::create_directories(folder);
  const std::uint64_t first = std::stoull(words[2]);
  std::array<int, 5> outcomes{};
  for (std::uint64_t number = first; number < first + std::stoull(words[1]); ++number) {
    const fs::path mutant = makeMutant(number, folder);
    // Whatever no longer answers at all ends here, with its clip in the folder.
    alarm(60);
    const double begun = rig::now();
    const Outcome outcome = watch(mutant.string());
    ++outcomes[static_cast<std::size_t>(outcome)];
    if (outcome == Outcome::Nothing || outcome == Outcome::Hung)
      std::printf("%s: %s after %.1f s\n", mutant.c_str(),
                  outcome == Outcome::Hung ? "hangs" : "shows nothing", rig::now() - begun);
    else
      fs::remove(mutant);
  }
  std::printf("%d played, %d reported, %d cut off, %d showed nothing, %d hung\n", outcomes[0], outcomes[1],
              outcomes[2], outcomes[3], outcomes[4]);
  return outcomes[3] + outcomes[4] == 0 ? 0 : 1;
}
