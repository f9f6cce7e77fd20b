#include "scan/names.h"

#include <gtest/gtest.h>

#include "scan/episode_stem.h"
#include "support/table.h"

namespace tavek {
namespace {

using test::table;

std::string shown(const ParsedName& name) {
  return name.title + "/" + (name.year ? std::to_string(*name.year) : "-");
}

std::string repeated(std::string_view text, std::size_t count) {
  std::string all;
  while (count-- > 0) all += text;
  return all;
}

TEST(FilmNames, TellTitlesAndYearsInTheOrderOfTheSearch) {
  for (const auto& [name, readings] : table(R"(
      The.Matrix.1999.1080p => The Matrix/1999 ;; Alien [1979] => Alien/1979 ;; _Alien__(1979)_ => Alien/1979
      1917.2019 => 1917 2019/1917, 1917/2019 ;; 2012 => 2012/2012, 2012/- ;; Film 119990 => Film 1/1999
      2012 (2009) => 2012 (2009)/2012, 2012/2009 ;; Heat => Heat/- ;; ... =>
      Blade Runner 2049 (2017) => Blade Runner/2049, Blade Runner 2049/2017
      2001.A.Space.Odyssey.1080p => 2001 A Space Odyssey 1080p/2001, 2001 A Space Odyssey/-
      Some.Film.1080p.WEB.x264 => Some Film 1080p WEB x264/-, Some Film/-)")) {
    std::string all;
    for (const ParsedName& each : searchNames(name)) all += (all.empty() ? "" : ", ") + shown(each);
    EXPECT_EQ(all, readings) << name;
    EXPECT_TRUE(all.empty() || (all + ',').starts_with(shown(parseTitleAndYear(name)) + ',')) << name;
  }
}

TEST(FilmNames, StayInTheirFolder) {
  for (const auto& [title, name] : table(R"(
      Alien => Alien ;; Face/Off: [x] "y"*<z>?| => Face Off: x y z ;; a\b => ab ;; .. => video ;; => video
      . ./../etc/passwd => etc passwd ;; ...And Justice => And Justice ;; 東京 🎬 => 東京 🎬)"))
    EXPECT_EQ(buildMediaName(title, 1979), name + " (1979)") << title;
  EXPECT_EQ(buildMediaName("a\nb\tc\1d\x7F\x65\xC2\x85\x66", {}), "a b c d e f");
  for (const auto& [letter, count] : {std::pair("a", 173U), {"東", 57U}, {"\x80", 170U}})
    EXPECT_EQ(buildMediaName(repeated(letter, 300), 1979), repeated(letter, count) + " (1979)") << letter;
  EXPECT_EQ(buildMediaName(".", {}), "video");
  EXPECT_EQ(buildMediaName(repeated("\xC3\xA9", 100), {}), repeated("\xC3\xA9", 90));
}

TEST(FilmNames, AreRenamedOnlyAfterTheSameFilm) {
  // What is looked for, what was found; 0 for no year.
  for (const auto& [wanted, wantedYear, title, year, plausible] : table<5>(R"(
      The Matrix => 1999 => Matrix => 1999 => 1 ;; Matrix => 1999 => The Matrix Reloaded => 1999 => 0
      matrix => 1999 => The Matrix => 2000 => 1 ;; matrix => 1999 => The Matrix => 2001 => 0
      Spider Man => 2002 => Spider-Man => 2002 => 1 ;; Wonder Woman => 1984 => Wonder Woman 1984 => 2020 => 0
      Heat => 0 => Heat => 1995 => 1 ;; Heat => 1995 => Heat => 0 => 1 ;; The => 1995 => A => 1995 => 0
      Léon The Professional => 1994 => Léon: The Professional => 1994 => 1 ;; ? => 1994 => ! => 1994 => 0
      東京 => 1953 => 東京物語 => 1953 => 0 ;; Heat => 2147483647 => Heat => -2147483648 => 0)")) {
    const auto yearOf = [](const std::string& text) {
      return text == "0" ? std::nullopt : std::optional(std::stoi(text));
    };
    EXPECT_EQ(plausibleMatch({wanted, yearOf(wantedYear)}, title, yearOf(year)), plausible == "1") << title;
  }
}

TEST(EpisodeMarks, AreFoundAndCounted) {
  // The number, and from where to where its mark stands; then how many episodes there are.
  for (const auto& [stem, expected] : table(R"(
      Show.S01E02.Pilot => 2 5-11 1 ;; 2x05 Name => 5 0-4 1 ;; Episode 7 => 7 0-9 1 ;; Show ep07 => 7 5-9 1
      Show-e3 => 3 5-7 1 ;; Pie3 Escape 4 => 0 ;; 12 - Title => 12 0-2 1 ;; 123 - Title => 0 ;; 00 - Title => 0
      Show 1920x1080 e4 => 4 15-17 1 ;; Show E4 5.1x264 => 4 5-7 1 ;; s1e99999999999 => 0 ;; 1x02 S03E04 => 4 5-11 2
      S01E01E02 => 1 0-6 2 ;; S01E01-E02 => 1 0-6 2 ;; S01E01 & Episode 2 => 1 0-6 2 ;; S01E01E02E03 => 1 0-6 3
      1x01-02 => 1 0-4 2 ;; 01-02 Title => 1 0-2 2 ;; S01E01 S01E02 => 1 0-6 2 ;; S01E01 Title 1x02 => 1 0-6 2
      S01E07 - Episode 07 => 7 0-6 1 ;; S01E07 - Episode 07 S01E08 => 7 0-6 2 ;; S01E01-1080p => 1 0-6 1
      S01E01 - 24 Hours => 1 0-6 1)")) {
    const auto mark = findEpisodeMark(stem);
    const std::string place = !mark ? ""
                                    : std::to_string(mark->episode) + ' ' + std::to_string(mark->start) +
                                          '-' + std::to_string(mark->end) + ' ';
    EXPECT_EQ(place + std::to_string(episodeMarkCount(stem)), expected) << stem;
  }
  EXPECT_EQ(findEpisodeMark(" 12 - Title"), (EpisodeRef{12, 1, 3}));
  EXPECT_FALSE(findEpisodeMark(""));
}

TEST(EpisodeStems, AreMadeOfNumberAndTitle) {
  const std::string many = repeated("a", 171);
  // The folder is "Season 1" if none is told, and "-" stands for no title of a service, or no stem.
  for (const auto& [stem, where, told, wanted] : table<4>(R"(
      show.s01e02 => => - => S01E02 - show ;; My.Show.s01e02 => => - => S01E02 - Episode 02
      Show.S01E02.Pilot.1080p => => - => S01E02 - Pilot ;; 2x05 Name => season2 => - => S02E05 - Name
      Episode 7 => SEASON 03 extra => - => S03E07 - Episode 07 ;; S02E05 => => - => S01E05 - Episode 05
      S10E100 => Season 10 => Last? => S10E100 - Last ;; S01E02 - Old => => The Web => S01E02 - The Web
      S01E02 - The Web => => - => S01E02 - The Web ;; S01E02 - The Web 720p WEB => => - => S01E02 - The
      S01E02.Title.h.264 => => - => S01E02 - Title ;; S01E02.Title.H 265-x => => - => S01E02 - Title
      S01E02.Title.(HDR10+).x => => - => S01E02 - Title ;; S01E02 Title*h264 => => - => S01E02 - Title
      S01E02 WEB => => => S01E02 - Episode 02 ;; S01E02 Пилот => => - => S01E02 - Пилот
      S01E02 => => My Show => S01E02 - Episode 02 ;; S01E02 => => AC/DC => S01E02 - AC DC
      S01E02 => => ?? => S01E02 - video ;; S01E01E02 => => Both => - ;; S01E02 => Specials => - => -
      S01E02 => Season 0 => - => - ;; S01E02 => Season => - => - ;; S01E02 => Season 99999999999 => - => -
      Making of => => - => - ;; S01E02 )" + repeated("a", 250) +
                                                          "=> => - => S01E02 - " + many)) {
    const std::string folder = where.empty() ? "Season 1" : where;
    const auto title = told == "-" ? std::nullopt : std::optional<std::string_view>(told);
    EXPECT_EQ(episodeStem(stem, folder, "My.Show", title).value_or("-"), wanted) << stem << " in " << folder;
    EXPECT_EQ(episodeStem(wanted, folder, "My.Show", {}).value_or("-"), wanted) << "again";
  }
}

TEST(Names, TakeTimeInProportionToTheirLength) {
  const auto start = std::chrono::steady_clock::now();
  for (const char* part :
       {"s1", "1x", "e", "ep ", "1", " ", "s1e", "2001", "e1", "S01E01", "web ", "\x80", "1-"}) {
    const std::string name = repeated(part, 500'000);
    searchNames(name);
    episodeMarkCount(name);
    EXPECT_LE(buildMediaName(name, 1).size(), 180U);
    EXPECT_LE(episodeStem(name, "Season 1", name, name).value_or("").size(), 180U);
  }
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(30));
}

}  // namespace
}  // namespace tavek
