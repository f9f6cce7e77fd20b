#include <gtest/gtest.h>

#include "base/text.h"
#include "library/episode_name.h"
#include "library/file_types.h"
#include "library/match_key.h"
#include "library/titles.h"
#include "support/media_root.h"
#include "support/table.h"

namespace tavek {
namespace {

/// A bar stands between the rows; a row is "question = answer" or "question & its second part = answer".
template <typename Answer>
void expectAll(const std::string& rows, Answer answer) {
  for (const std::string& row : test::split(rows)) {
    const std::size_t middle = row.find(" = ");
    const std::size_t end = std::min(row.find(" & "), middle);
    const std::string second = end < middle ? row.substr(end + 3, middle - end - 3) : "";
    EXPECT_EQ(answer(row.substr(0, end), second), row.substr(middle + 3)) << row;
  }
}

TEST(FileTypes, AreToldByTheName) {
  expectAll(
      "a.FLAC = audio video film|a.mp3 = audio video film|a.alac = audio|a.MKV = video film|"
      "/b/a.rmvb = video film|a theme.mkv = video film|trailers.mkv = video film|resample.mp4 = video film|"
      "theme.mp3 = audio video|Sample.MKV = video|trailer.mp4 = video|a-Sample.avi = video|"
      "a-trailer.mov = video|a.jpg = |a.WebP = |a.SRT = |a.nfo = |a.mkv.zip = |mkv = |.mkv = | = |a. = |"
      "/x.mkv/a = ",
      [](auto file, auto) {
        return trim(std::string(isAudioFile(file) ? "audio " : "") + (isVideoFile(file) ? "video " : "") +
                    (isFilm(file) ? "film" : ""));
      });
  const auto complete = completeVideoExtensions({"JPG", "Odd", ".dot"});
  EXPECT_TRUE(complete.contains(".odd") && complete.contains(".dot"));
  EXPECT_EQ(complete.size(), 25u + 2u);
  const auto listed = demuxerExtensions();
  EXPECT_TRUE(listed.contains("mka") && listed.contains("mp3") && !listed.contains(""));
}

TEST(Titles, KeepWhatTheyAreMadeOf) {
  expectAll(
      " A  b\tC-d ! = a  b cd|Ocean’s – 11 = oceans  11|Café (2001) = café (2001)|"
      "CAFE\u0301 (2001) = café (2001)|ÄRGER! = ärger!| 战狼 2 = 战狼 2|БРАТ 2 = брат 2|9½ = 9½|… = …|! = |"
      "\xc4RGER 2 = \xc4rger 2|A\xff\xf0\x9f = a\xff\xf0\x9f",
      [](auto text, auto) { return normalizeTitle(text); });
  expectAll(
      "/m/Movie.POSTER.jpg = movieposter|/m/Movie.poster.jpg = movie|"
      "/m/The Film (1999)/COVER.JPG = the film 1999|/m/A Film/Front.poster.png = a film|"
      "/m/A Film/.poster.jpg = poster|poster.jpg = ",
      [](auto path, auto) { return posterKeyOf(path); });
}

TEST(Titles, BeginWithALetterOfTheBar) {
  expectAll(
      "a film = A|Äh = A|A\u0308h = A|Été = E|ßa = S|Łódź = L|Øre = O|œuvre = O|Ｚ = Z|7 = 7|«…'(über) = U|"
      "A 战 = A|战 A = -|Брат = -|\xc4h = -|! = -| = -",
      [](auto title, auto) { return letterOf(title) != 0 ? std::string(1, letterOf(title)) : "-"; });
}

TEST(EpisodeName, ReadsSeasonAndEpisode) {
  expectAll(
      "S02E05 = 2 5|Show.s1e10 = 1 10|Sea S03E04 = 3 4|S1S2E3 = 2 3|S00E01 = 0 1|"
      "S1E99999999999999999999 = 1 2147483647|1x01 = 1 1|Show - 12X103.b = 12 103|1920x1080 2x05 = 2 5|"
      "3x04 S01E02 = 1 2|S03 = -|S03E = -|SE1 = -|S1 E2 = -|4x3 = -|1920x1080 = -|a1x01 = -|1x01a = -|"
      "é1x01 = -|1x2345 = -| = -",
      [](auto text, auto) {
        const auto found = parseSeasonEpisode(text);
        return found ? std::to_string(found->season) + ' ' + std::to_string(found->episode) : "-";
      });
}

TEST(EpisodeName, GivesTheLabelsParts) {
  expectAll(
      "S02E05 Pilot = S02/E05/Pilot/2 05|Show.s10e1._-  The End-thumb = S10/E1/The End/10 1|"
      "2x05 - Two = 2/05/Two/2 05|007 12X3.Three = 12/3/Three/12 3|1x2 S00E04 = S00/E04//00 04|"
      "Pilot = /// | = /// ",
      [](auto stem, auto) {
        const auto& [season, episode, title] = episodeLabelOf(stem);
        return season + '/' + episode + '/' + title + '/' + shownSeason(season) + ' ' + shownEpisode(episode);
      });
  expectAll(
      " Specials  = 0|S02 = 2|Season 10 = 10|Show SEASON03 x = 3|Seasons, season   5 = 5|Season = |"
      "Staffel 02 = 2|SAISON 1 = 1|Temporada 3 = 3|stagione1 = 1|СЕЗОН 2 = 2|Series 4 = 4|"
      "2. Staffel = 2|1 сезон = 1|1ª temporada = 1|2 Fast = |Extras = | = ",
      [](auto name, auto) { return seasonOfFolder(name); });
  for (const char* name : {"SEASON", "Seasons", "s1", "specials", "Staffel 2", "Saison 1", "Temporada 3",
                           "Stagione 1", "Сезон 2", "Series 4"})
    EXPECT_TRUE(isSeasonFolder(name)) << name;
  for (const char* name : {"Staffel", "Series", "The Series 4", "Special Features", "Sp1x", "Extras 1", ""})
    EXPECT_FALSE(isSeasonFolder(name)) << name;
}

TEST(Match, MakesTitles) {
  expectAll(
      "film & Film (1982) = film 1982|film & The Film  1982  = film 1982|映 & 映 ( 0007 ) = 映 0007|"
      "film & Film ( = film|film & Film [1982] = film|film & Film (1982) HD = film|"
      "film & Other (1982) = film|film & Film (1982 = film|1984 & 1984 (1984) = 1984 1984",
      [](auto name, auto folder) { return titleKeyOf(name, std::filesystem::path("/m") / folder); });
  expectAll(
      "Film (2021) = Film|Film [ 2021 ] = Film|Film{2199} = Film| Film_2021  = Film|Film. - ,2021 = Film|"
      "Film1800 = Film|1984 = |Flat 237 = Flat 237|Film (1700) = Film (1700)|Film 2021) = Film 2021)|"
      "2200 = 2200|99  = 99|) = )| = ",
      [](auto text, auto) { return stripYear(text); });
  expectAll(
      "movies/A Film (1982)/A Film.jpg = a film 1982|movies/Film.POSTER.jpg = film|"
      "movies/x.Poster/front.jpg = x|movies/É (1982)/e\u0301.png = é 1982|"
      "movies/x (2001)/.poster.jpg = x (2001)|tv/Show/poster.jpg = show|tv/Show/S 2/COVER.poster.jpg = s 2",
      [](auto path, auto) { return posterTitleKey(test::library.path() / path); });
}

TEST(Match, ComparesKeysAndNames) {
  const MatchKey key = makeMatchKey("under 2049: (Film)");
  EXPECT_EQ(key.raw + '|' + key.alnum + '|' + key.alpha + '|' + key.digits,
            "under 2049: (Film)|under2049film|underfilm|2049");
  // 2 for one title, 1 for a generous reading, 0 for two titles.
  expectAll(
      "some film & some film part iv = 1|the film & film = 1|2012 & title 2012 = 1|Ö! & ö! = 2|"
      "film 2 & part 2 = 1|l'été & lt = 0|1917 2012 & 2012 = 0|映 & 画 = 0| & film = 0| &  = 0|a 1 & b 2 = 0|"
      "star trek & star trek discovery = 1|star trek & star-trek = 2|! & ! = 2|战狼 2 & брат 2 = 0|"
      "战狼 & 战狼 2 = 1|战狼 2 & film 2 = 0|café & cafe\u0301 = 2|ÄRGER & ärger = 2|été & ete = 0|"
      "film & film été = 1|\xff a & \xff A = 2|\xff 2 & \xfe 2 = 0",
      [](auto a, auto b) {
        const KeyMatch match = matchKeys(makeMatchKey(a), makeMatchKey(b));
        EXPECT_EQ(match, matchKeys(makeMatchKey(b), makeMatchKey(a))) << a << " & " << b;
        return std::to_string(static_cast<int>(match));
      });
  expectAll(
      " & 01 = 10|01 & 1 = 10|1 & 1.a = 10|1.a & 01.b = 10|01.b & ep 2 = 10|ep 2 & ep 002b = 10|"
      "ep 002b & ep 10 = 10|ep 10 & ep 10 2 = 10|ep 10 2 & ep 10 18446744073709551617 = 10|"
      "ep 10 18446744073709551617 & ep 10a = 10|ep 10a & é = 10|a & a = 00",
      [](auto a, auto b) { return std::to_string(lessNatural(a, b)) + std::to_string(lessNatural(b, a)); });
}

TEST(Match, AnswersQueries) {
  expectAll(
      "a film 1982 & a f = 11|a film 1982 & afil = 11|a film 1982 & 1982 = 11|a film 1982 & film = 00|"
      "ärger 2 & ä = 11|ärger 2 & arg = 11|über & b = 00|брат 2 & бр = 11|брат 2 & 2 = 00|"
      "café 2001 & café = 11|a film & a film 1982 = 11|2012 & 20 = 01|9 lives & lives = 01|a film &  = 00|"
      "s01e02 pilot & big = 11|s01e02 pilot & bigs = 11|s01e02 pilot & s01e0 = 11|"
      "s01e02 pilot & pilot = 00|s01e02 pilot & s01 = 00|s01e02 pilot & big 1x02 = 00",
      [episode = test::library.path() / "tv/Big Show/S1/S01E02 Pilot.mkv"](auto title, auto query) {
        const MatchKey key = makeMatchKey(title);
        const bool series = title.starts_with("s0");
        return std::to_string(matchesQuery(key, episode, series, query, true)) +
               std::to_string(matchesQuery(key, episode, series, query, false));
      });
  const std::filesystem::path dotted = test::library.path() / "tv/Mr. Robot/S1/S01E01.mkv";
  for (const char* query : {"mr. robot", "mrrobot"})
    EXPECT_TRUE(matchesQuery(makeMatchKey("s01e01"), dotted, true, query, false)) << query;
}

}  // namespace
}  // namespace tavek
