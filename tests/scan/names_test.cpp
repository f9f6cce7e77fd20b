#include "scan/names.h"

#include <chrono>

#include <gtest/gtest.h>

#include "scan/episode_stem.h"

namespace tavek {
namespace {

std::string shown(const ParsedName& name) {
  return name.title + "/" + (name.year ? std::to_string(*name.year) : "-");
}

std::string repeated(std::string_view text, std::size_t count) {
  std::string all;
  while (count-- > 0) all += text;
  return all;
}

TEST(FilmNames, TellTitlesAndYearsInTheOrderOfTheSearch) {
  const struct {
    const char* name;
    std::vector<std::string> readings;
  } rows[] = {
      {"The.Matrix.1999.1080p", {"The Matrix/1999"}},
      {"Alien [1979]", {"Alien/1979"}},
      {"_Alien__(1979)_", {"Alien/1979"}},
      {"1917.2019", {"1917 2019/1917", "1917/2019"}},
      {"2012", {"2012/2012", "2012/-"}},
      {"2012 (2009)", {"2012 (2009)/2012", "2012/2009"}},
      {"Blade Runner 2049 (2017)", {"Blade Runner/2049", "Blade Runner 2049/2017"}},
      {"2001.A.Space.Odyssey.1080p", {"2001 A Space Odyssey 1080p/2001", "2001 A Space Odyssey/-"}},
      {"Some.Film.1080p.WEB.x264", {"Some Film 1080p WEB x264/-", "Some Film/-"}},
      {"Film 119990", {"Film 1/1999"}},
      {"Heat", {"Heat/-"}},
      {"...", {}},
  };
  for (const auto& [name, readings] : rows) {
    std::vector<std::string> all;
    for (const ParsedName& each : searchNames(name)) all.push_back(shown(each));
    EXPECT_EQ(all, readings) << name;
    if (!readings.empty()) {
      EXPECT_EQ(shown(parseTitleAndYear(name)), readings.front());
    }
  }
}

TEST(FilmNames, StayInTheirFolder) {
  const struct {
    std::string title, name;
  } rows[] = {
      {"Alien", "Alien (1979)"},
      {"Face/Off: [x] \"y\"*<z>?|", "Face Off: x y z (1979)"},
      {"a\\b", "ab (1979)"},
      {"..", "video (1979)"},
      {". ./../etc/passwd", "etc passwd (1979)"},
      {"", "video (1979)"},
      {"...And Justice", "And Justice (1979)"},
      {"a\nb\tc\x01"
       "d\x7F"
       "e\xC2\x85"
       "f",
       "a b c d e f (1979)"},
      {"東京 \xF0\x9F\x8E\xAC", "東京 \xF0\x9F\x8E\xAC (1979)"},
      {repeated("a", 300), repeated("a", 173) + " (1979)"},
      {repeated("東", 100), repeated("東", 57) + " (1979)"},
      {repeated("\x80", 300), repeated("\x80", 170) + " (1979)"},
  };
  for (const auto& [title, name] : rows) EXPECT_EQ(buildMediaName(title, 1979), name) << title;
  EXPECT_EQ(buildMediaName(".", {}), "video");
  EXPECT_EQ(buildMediaName(repeated("\xC3\xA9", 100), {}), repeated("\xC3\xA9", 90));
}

TEST(FilmNames, AreRenamedOnlyAfterTheSameFilm) {
  const struct {
    ParsedName wanted;
    const char* title;
    std::optional<std::int32_t> year;
    bool plausible;
  } rows[] = {
      {{"The Matrix", 1999}, "Matrix", 1999, true},
      {{"matrix", 1999}, "The Matrix", 2000, true},
      {{"matrix", 1999}, "The Matrix", 2001, false},
      {{"Matrix", 1999}, "The Matrix Reloaded", 1999, false},
      {{"Spider Man", 2002}, "Spider-Man", 2002, true},
      {{"Wonder Woman", 1984}, "Wonder Woman 1984", 2020, false},
      {{"Heat", {}}, "Heat", 1995, true},
      {{"Heat", 1995}, "Heat", {}, true},
      {{"The", 1995}, "A", 1995, false},
      {{"Léon The Professional", 1994}, "Léon: The Professional", 1994, true},
      {{"東京", 1953}, "東京物語", 1953, false},
      {{"?", 1994}, "!", 1994, false},
      {{"Heat", 2147483647}, "Heat", -2147483647 - 1, false},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(plausibleMatch(row.wanted, row.title, row.year), row.plausible)
        << row.wanted.title << " " << row.title;
  }
}

TEST(EpisodeMarks, AreFoundAndCounted) {
  const struct {
    const char* stem;
    std::optional<EpisodeRef> mark;
    std::size_t count;
  } rows[] = {
      {"Show.S01E02.Pilot", EpisodeRef{2, 5, 11}, 1},
      {"2x05 Name", EpisodeRef{5, 0, 4}, 1},
      {"Episode 7", EpisodeRef{7, 0, 9}, 1},
      {"Show ep07", EpisodeRef{7, 5, 9}, 1},
      {"Show-e3", EpisodeRef{3, 5, 7}, 1},
      {"Pie3 Escape 4", {}, 0},
      {" 12 - Title", EpisodeRef{12, 1, 3}, 1},
      {"123 - Title", {}, 0},
      {"00 - Title", {}, 0},
      {"Show 1920x1080 e4", EpisodeRef{4, 15, 17}, 1},
      {"Show E4 5.1x264", EpisodeRef{4, 5, 7}, 1},
      {"s1e99999999999", {}, 0},
      {"1x02 S03E04", EpisodeRef{4, 5, 11}, 2},
      {"S01E01E02", EpisodeRef{1, 0, 6}, 2},
      {"S01E01-E02", EpisodeRef{1, 0, 6}, 2},
      {"S01E01 & Episode 2", EpisodeRef{1, 0, 6}, 2},
      {"S01E01E02E03", EpisodeRef{1, 0, 6}, 3},
      {"1x01-02", EpisodeRef{1, 0, 4}, 2},
      {"01-02 Title", EpisodeRef{1, 0, 2}, 2},
      {"S01E01 S01E02", EpisodeRef{1, 0, 6}, 2},
      {"S01E01 Title 1x02", EpisodeRef{1, 0, 6}, 2},
      {"S01E07 - Episode 07", EpisodeRef{7, 0, 6}, 1},
      {"S01E07 - Episode 07 S01E08", EpisodeRef{7, 0, 6}, 2},
      {"S01E01-1080p", EpisodeRef{1, 0, 6}, 1},
      {"S01E01 - 24 Hours", EpisodeRef{1, 0, 6}, 1},
      {"", {}, 0},
  };
  for (const auto& [stem, mark, count] : rows) {
    EXPECT_EQ(findEpisodeMark(stem), mark) << stem;
    EXPECT_EQ(episodeMarkCount(stem), count) << stem;
  }
}

TEST(EpisodeStems, AreMadeOfNumberAndTitle) {
  const struct {
    std::string stem;
    const char* folder;
    std::optional<std::string_view> table;
    std::optional<std::string> wanted;
  } rows[] = {
      {"show.s01e02", "Season 1", {}, "S01E02 - show"},
      {"My.Show.s01e02", "Season 1", {}, "S01E02 - Episode 02"},
      {"Show.S01E02.Pilot.1080p", "Season 1", {}, "S01E02 - Pilot"},
      {"2x05 Name", "season2", {}, "S02E05 - Name"},
      {"Episode 7", "SEASON 03 extra", {}, "S03E07 - Episode 07"},
      {"S02E05", "Season 1", {}, "S01E05 - Episode 05"},
      {"S10E100", "Season 10", "Last?", "S10E100 - Last"},
      {"S01E02 - Old", "Season 1", "The Web", "S01E02 - The Web"},
      {"S01E02 - The Web", "Season 1", {}, "S01E02 - The Web"},
      {"S01E02 - The Web 720p WEB", "Season 1", {}, "S01E02 - The"},
      {"S01E02.Title.h.264", "Season 1", {}, "S01E02 - Title"},
      {"S01E02.Title.H 265-x", "Season 1", {}, "S01E02 - Title"},
      {"S01E02.Title.(HDR10+).x", "Season 1", {}, "S01E02 - Title"},
      {"S01E02 WEB", "Season 1", "", "S01E02 - Episode 02"},
      {"S01E02 Пилот", "Season 1", {}, "S01E02 - Пилот"},
      {"S01E02", "Season 1", "My Show", "S01E02 - Episode 02"},
      {"S01E02", "Season 1", "AC/DC", "S01E02 - AC DC"},
      {"S01E02", "Season 1", "??", "S01E02 - video"},
      {"S01E02 " + repeated("a", 250), "Season 1", {}, "S01E02 - " + repeated("a", 171)},
      {"S01E01E02", "Season 1", "Both", {}},
      {"S01E02", "Specials", {}, {}},
      {"S01E02", "Season 0", {}, {}},
      {"S01E02", "Season", {}, {}},
      {"S01E02", "Season 99999999999", {}, {}},
      {"Making of", "Season 1", {}, {}},
  };
  for (const auto& [stem, folder, table, wanted] : rows) {
    EXPECT_EQ(episodeStem(stem, folder, "My.Show", table), wanted) << stem << " in " << folder;
    if (wanted) {
      EXPECT_EQ(episodeStem(*wanted, folder, "My.Show", {}), wanted) << "again: " << *wanted;
    }
  }
}

TEST(Names, TakeTimeInProportionToTheirLength) {
  const std::size_t many = 500'000;
  const auto start = std::chrono::steady_clock::now();
  for (const char* part :
       {"s1", "1x", "e", "ep ", "1", " ", "s1e", "2001", "e1", "S01E01", "web ", "\x80", "1-"}) {
    const std::string name = repeated(part, many);
    searchNames(name);
    episodeMarkCount(name);
    const auto stem = episodeStem(name, "Season 1", name, name);
    EXPECT_LE(buildMediaName(name, 1).size(), 180U);
    if (stem) {
      EXPECT_LE(stem->size(), 180U);
    }
  }
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(30));
}

}  // namespace
}  // namespace tavek
