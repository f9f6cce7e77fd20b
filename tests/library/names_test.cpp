#include <gtest/gtest.h>

#include "library/episode_name.h"
#include "library/titles.h"

namespace tavek {
namespace {

/// "text = expected" lines, the form of the tables here.
std::pair<std::string, std::string> row(const std::string& line) {
  const std::size_t middle = line.find(" = ");
  return {line.substr(0, middle), line.substr(middle + 3)};
}

TEST(Titles, KeepWhatTheyAreMadeOf) {
  for (const char* line :
       {" A  b\tC-d ! = a  b cd", "Ocean’s – 11 = oceans  11", "Café (2001) = café (2001)",
        "CAFE\u0301 (2001) = café (2001)", "ÄRGER! = ärger!", " 战狼 2 = 战狼 2", "БРАТ 2 = брат 2",
        "9½ = 9½", "… = …", "! = ", "\xc4RGER 2 = \xc4rger 2", "A\xff\xf0\x9f = a\xff\xf0\x9f"}) {
    const auto [text, title] = row(line);
    EXPECT_EQ(normalizeTitle(text), title) << text;
  }
  for (const char* line :
       {"/m/Movie.POSTER.jpg = movieposter", "/m/Movie.poster.jpg = movie",
        "/m/The Film (1999)/COVER.JPG = the film 1999", "/m/A Film/Front.poster.png = a film",
        "/m/A Film/.poster.jpg = poster", "poster.jpg = "}) {
    const auto [path, key] = row(line);
    EXPECT_EQ(posterKeyOf(path), key) << path;
  }
}

TEST(Titles, BeginWithALetterOfTheBar) {
  for (const char* line : {"a film = A", "Äh = A", "A\u0308h = A", "Été = E", "ßa = S", "Łódź = L", "Øre = O",
                           "œuvre = O", "Ｚ = Z", "7 = 7", "«…'(über) = U", "A 战 = A", "战 A = -",
                           "Брат = -", "\xc4h = -", "! = -", " = -"}) {
    const auto [title, letter] = row(line);
    EXPECT_EQ(letterOf(title) != 0 ? std::string(1, letterOf(title)) : "-", letter) << title;
  }
}

TEST(EpisodeName, ReadsSeasonAndEpisode) {
  for (const char* line : {"S02E05 = 2 5", "Show.s1e10 = 1 10", "Sea S03E04 = 3 4", "S1S2E3 = 2 3",
                           "S00E01 = 0 1", "S1E99999999999999999999 = 1 2147483647", "1x01 = 1 1",
                           "Show - 12X103.b = 12 103", "1920x1080 2x05 = 2 5", "3x04 S01E02 = 1 2"}) {
    const auto [text, numbers] = row(line);
    const auto found = parseSeasonEpisode(text).value_or(SeasonEpisode{-1, -1});
    EXPECT_EQ(std::to_string(found.season) + ' ' + std::to_string(found.episode), numbers) << text;
  }
  for (const char* none :
       {"S03", "S03E", "SE1", "S1 E2", "4x3", "1920x1080", "a1x01", "1x01a", "é1x01", "1x2345", ""})
    EXPECT_FALSE(parseSeasonEpisode(none)) << none;
}

TEST(EpisodeName, OrdersTracks) {
  constexpr const char* order[] = {"2 Song.flac", "07 Song.flac", "10.mp3", "99999999999.mp3", "0 zero.mp3",
                                   "00 x.mp3",    "a.mp3",        "B.mp3",  "Intro.flac"};
  for (const auto& a : order) {
    for (const auto& b : order) EXPECT_EQ(trackLess(a, b), &a < &b) << a << " < " << b;
  }
  EXPECT_FALSE(trackLess("1 a.mp3", "01 b.mp3") || trackLess("01 b.mp3", "1 a.mp3"));
}

TEST(EpisodeName, GivesTheLabelsParts) {
  for (const char* line :
       {"S02E05 Pilot = S02|E05|Pilot|2 05", "Show.s10e1._-  The End-thumb = S10|E1|The End|10 1",
        "2x05 - Two = 2|05|Two|2 05", "007 12X3.Three = 12|3|Three|12 3", "1x2 S00E04 = S00|E04||00 04",
        "Pilot = ||| ", " = ||| "}) {
    const auto [stem, expected] = row(line);
    const auto& [season, episode, title] = episodeLabelOf(stem);
    const std::string shown = shownSeason(season) + ' ' + shownEpisode(episode);
    EXPECT_EQ(season + '|' + episode + '|' + title + '|' + shown, expected) << stem;
  }
  for (const char* line :
       {" Specials  = 0", "S02 = 2", "Season 10 = 10", "Show SEASON03 x = 3", "Seasons, season   5 = 5",
        "Season = ", "Staffel 02 = 2", "SAISON 1 = 1", "Temporada 3 = 3", "stagione1 = 1", "СЕЗОН 2 = 2",
        "Series 4 = 4", "Extras = ", " = "}) {
    const auto [name, season] = row(line);
    EXPECT_EQ(seasonOfFolder(name), season) << name;
  }
  for (const char* name : {"SEASON", "Seasons", "s1", "specials", "Staffel 2", "Saison 1", "Temporada 3",
                           "Stagione 1", "Сезон 2", "Series 4"})
    EXPECT_TRUE(isSeasonFolder(name)) << name;
  for (const char* name : {"Staffel", "Series", "The Series 4", "Special Features", "Sp1x", "Extras 1", ""})
    EXPECT_FALSE(isSeasonFolder(name)) << name;
}

}  // namespace
}  // namespace tavek
