// Compares the program with ffplay on the same clips, screen and sink, and prints a table.
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <stdexcept>

#include "bench/library_maker.h"
#include "bench/listening.h"
#include "bench/measure.h"

namespace tavek::bench {
namespace {

constexpr const char* help =
    "tavek_bench: the program against ffplay, side by side on a screen and a sink of their own\n"
    "  --runs N           runs of each row, of which the median counts (default 3)\n"
    "  --only A,B         only these rows: film24 film60 film4k seek software home songs themes\n"
    "  --players A,B      only these players: tavek ffplay\n"
    "  --program PATH     the program to measure (default: the one of this build)\n"
    "The clips are made on the first run, which takes minutes. Nothing else should run on the machine.\n";

struct Options {
  int runs = 3;
  std::string only = "film24,film60,film4k,seek,software,home,songs,themes";
  std::string players = "tavek,ffplay";
  std::string program = TAVEK_PROGRAM;
};

struct Measure {
  const char* name;
  double Playing::*value;
  int decimals;
};

constexpr Measure measures[] = {
    {"CPU s per played s", &Playing::cpuPerSecond, 2},
    {"pictures shown, %", &Playing::shownPercent, 1},
    {"exec to first picture, ms", &Playing::firstPicture, 0},
    {"exec to first sound, ms", &Playing::firstSound, 0},
    {"sound late, median, ms", &Playing::soundMedian, 1},
    {"sound late, least, ms", &Playing::soundEarliest, 1},
    {"sound late, most, ms", &Playing::soundLatest, 1},
    {"peak memory, MB", &Playing::peakMegabytes, 0},
};

// The goals, by row and measure.
const std::map<std::string, std::string> goals = {
    {"film24 CPU s per played s", "<= 0.75 of ffplay"},
    {"film60 CPU s per played s", "<= 0.95 of ffplay"},
    {"film4k CPU s per played s", "<= 0.90 of ffplay"},
    {"film24 pictures shown, %", "100"},
    {"film60 pictures shown, %", ">= ffplay"},
    {"film4k pictures shown, %", ">= ffplay"},
    {"film24 exec to first picture, ms", "<= 0.50 of ffplay"},
    {"film24 exec to first sound, ms", "<= 1.00 of ffplay"},
    {"film24 sound late, median, ms", "-20 to 20"},
    {"film24 sound late, least, ms", ">= -45"},
    {"film24 sound late, most, ms", "<= 60"},
    {"seek key to new picture, ms", "<= 130"},
    {"seek key to even pictures, ms", "<= 200"},
    {"home exec to home screen, ms", "<= 300"},
    {"software CPU s per played s", "<= 2.10 of decoding"},
    {"songs key to next track, ms", "<= 250"},
    {"songs gap in an album, ms", "<= 30"},
    {"themes key to theme, ms", "<= 400"},
    {"themes key to silence, ms", "<= 120"},
};

bool lists(const std::string& list, const std::string& word) {
  return ("," + list + ",").find("," + word + ",") != std::string::npos;
}

Film makeFilm(const std::string& name, int width, int height, int rate, double seconds, int megabits) {
  Film film{name, {}, rate};
  rig::Clip& clip = film.clip;
  clip.width = width;
  clip.height = height;
  clip.rate = std::to_string(rate);
  clip.seconds = seconds;
  clip.backdrop = "testsrc2=size=" + std::to_string(width) + "x" + std::to_string(height) +
                  ":rate=" + clip.rate + ",noise=alls=6:allf=t";
  const std::string bits = std::to_string(megabits) + "M";
  const std::string keys = std::to_string(10 * rate);
  clip.video = "-c:v libx264 -preset veryfast -b:v " + bits + " -maxrate " + bits + " -bufsize " + bits +
               " -g " + keys + " -keyint_min " + keys + " -sc_threshold 0 -pix_fmt yuv420p";
  clip.sound = rig::beeps;
  clip.audio = "-c:a aac -b:a 192k -ac 2";
  return film;
}

std::string prepare(const Film& film) {
  std::fprintf(stderr, "clip %s\n", film.name.c_str());
  return rig::makeClip(film.clip, TAVEK_BENCH_MEDIA);
}

using Values = std::map<std::string, std::vector<double>>;  // by player

std::string number(double value, int decimals) {
  if (std::isnan(value)) return "-";
  char text[32];
  std::snprintf(text, sizeof text, "%.*f", decimals, value);
  return text;
}

void printLine(const std::string& row, const std::string& measure, const std::string& tavek,
               const std::string& other, const std::string& ratio, const std::string& goal) {
  std::printf("| %-8s | %-25s | %8s | %8s | %6s | %-19s |\n", row.c_str(), measure.c_str(), tavek.c_str(),
              other.c_str(), ratio.c_str(), goal.c_str());
  std::fflush(stdout);
}

void printMedians(const std::string& row, const std::string& measure, Values& values, int decimals,
                  const std::string& other = "ffplay") {
  const double own = median(values["tavek"]);
  const double theirs = median(values[other]);
  const auto goal = goals.find(row + " " + measure);
  printLine(row, measure, number(own, decimals), number(theirs, decimals), number(own / theirs, 2),
            goal == goals.end() ? "" : goal->second);
}

class Bench {
 public:
  explicit Bench(const Options& options) : options_(options) {
    const std::vector<Player> known = {{"tavek", {options.program}, {}},
                                       {"ffplay",
                                        {"ffplay", "-v", "quiet", "-nostats", "-autoexit", "-noborder",
                                         "-left", "0", "-top", "0", "-x", "1920", "-y", "1080"},
                                        {{"SDL_RENDER_DRIVER", "opengles2"}}}};
    for (const Player& player : known) {
      if (lists(options.players, player.name)) players_.push_back(player);
    }
  }

  void run() {
    const Film films[] = {makeFilm("film24", 1920, 1080, 24, 20, 8),
                          makeFilm("film60", 1920, 1080, 60, 20, 12),
                          makeFilm("film4k", 3840, 2160, 24, 20, 20)};
    printLine("row", "measure", "tavek", "other", "ratio", "goal");
    printLine("---", "---", "---:", "---:", "---:", "---");
    for (const Film& film : films) {
      if (wants(film.name)) runFilm(film);
    }
    if (wants("seek")) runSeek(makeFilm("seek", 1920, 1080, 24, 60, 8));
    if (wants("software")) runSoftware(films[0]);
    if (wants("home")) runHome();
    if (wants("songs")) runSongs();
    if (wants("themes")) runThemes();
  }

 private:
  bool wants(const std::string& row) const { return lists(options_.only, row); }

  template <typename Action>
  void eachRun(const std::string& row, Action action) {
    for (int run = 0; run < options_.runs; ++run) {
      for (const Player& player : players_) {
        std::fprintf(stderr, "%s, %s, run %d of %d\n", row.c_str(), player.name.c_str(), run + 1,
                     options_.runs);
        action(player);
      }
    }
  }

  void runFilm(const Film& film) {
    const std::string file = prepare(film);
    Values values[std::size(measures)];
    eachRun(film.name, [&](const Player& player) {
      const Playing playing = playFilm(stage_, player, film, file);
      for (std::size_t i = 0; i < std::size(measures); ++i) {
        values[i][player.name].push_back(playing.*measures[i].value);
      }
    });
    for (std::size_t i = 0; i < std::size(measures); ++i) {
      printMedians(film.name, measures[i].name, values[i], measures[i].decimals);
    }
    values[0]["decoding"] = floors(film, file);
    printMedians(film.name, "CPU against decoding", values[0], 2, "decoding");
  }

  void runSeek(const Film& film) {
    const std::string file = prepare(film);
    Values picture;
    Values even;
    eachRun(film.name, [&](const Player& player) {
      for (const Seeking& seeking : seekInFilm(stage_, player, film, file)) {
        picture[player.name].push_back(seeking.firstPicture);
        even[player.name].push_back(seeking.evenly);
      }
    });
    printMedians("seek", "key to new picture, ms", picture, 0);
    printMedians("seek", "key to even pictures, ms", even, 0);
  }

  void runSoftware(const Film& film) {
    const std::string file = prepare(film);
    Values values;
    eachRun("software", [&](Player player) {
      player.environment["SDL_RENDER_DRIVER"] = "software";
      values[player.name].push_back(playFilm(stage_, player, film, file).cpuPerSecond);
    });
    values["decoding"] = floors(film, file);
    printMedians("software", "CPU s per played s", values, 2, "decoding");
    printMedians("software", "CPU against ffplay", values, 2);
  }

  void runHome() {
    const std::string library = TAVEK_BENCH_MEDIA "/library";
    makeLibrary(library);
    std::vector<double> home, user, strip;
    for (int run = 0; run < options_.runs; ++run) {
      const Browsing browsing = browse(stage_, own(), library);
      home.push_back(browsing.firstHome);
      user.push_back(browsing.userKey);
      strip.push_back(browsing.stripKey);
    }
    printOwn("home", "exec to home screen, ms", home);
    printOwn("home", "key to user, ms", user);
    printOwn("home", "key to poster, ms", strip);
  }

  void runSongs() {
    Listening heard;
    for (int run = 0; run < options_.runs; ++run) hearSongs(stage_, own(), TAVEK_BENCH_MEDIA "/heard", heard);
    printOwn("songs", "key to next track, ms", heard.nextTrack);
    printOwn("songs", "gap in an album, ms", heard.gap);
  }

  void runThemes() {
    Listening heard;
    for (int run = 0; run < options_.runs; ++run)
      hearThemes(stage_, own(), TAVEK_BENCH_MEDIA "/heard", heard);
    printOwn("themes", "key to theme, ms", heard.theme);
    printOwn("themes", "key to silence, ms", heard.silence);
  }

  Player own() const { return {"tavek", {options_.program}, {}}; }

  static void printOwn(const std::string& row, const std::string& measure,
                       const std::vector<double>& values) {
    Values own{{"tavek", values}};
    printMedians(row, measure, own, 0);
  }

  std::vector<double> floors(const Film& film, const std::string& file) const {
    std::vector<double> result;
    for (int run = 0; run < options_.runs; ++run) result.push_back(decodingFloor(file, film.clip.seconds));
    return result;
  }

  const Options options_;
  std::vector<Player> players_;
  rig::Stage stage_;
};

Options readOptions(const std::vector<std::string>& words) {
  Options options;
  for (std::size_t i = 0; i < words.size(); i += 2) {
    if (words[i] == "--help" || i + 1 == words.size()) {
      std::printf("%s", help);
      std::exit(words[i] == "--help" ? 0 : 1);
    }
    const std::string& value = words[i + 1];
    if (words[i] == "--runs") options.runs = std::stoi(value);
    if (words[i] == "--only") options.only = value;
    if (words[i] == "--players") options.players = value;
    if (words[i] == "--program") options.program = value;
  }
  return options;
}

}  // namespace
}  // namespace tavek::bench

int main(int count, char** words) {
  try {
    tavek::bench::Bench(tavek::bench::readOptions({words + 1, words + count})).run();
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
