#include "scan/replies.h"

#include <gmock/gmock.h>

#include "scan/reply_text.h"
#include "support/table.h"

namespace tavek {
namespace {

TEST(Search, GivesAllResultsAndTheOneOfTheYear) {
  const std::string body = R"({"page":1,"results":[
    {"adult":false,"genre_ids":[1,2],"id":11,"original_title":"No","title":"A 6\" \"nail\" }","overview":"{[",
     "release_date":"2019-05-01","poster_path":"/p1.jpg","backdrop_path":null},
    {"adult":true,"video":false},
    {"id":12,"title":null,"release_date":"","poster_path":"/../p2.jpg","backdrop_path":"/b2.jpg"},
    {"belongs":{"id":5,"title":"Other"},"id":"13","title":"B","release_date":"1999-01-01"}],
    "other":[{"id":99}]})";
  const std::vector<MovieCandidate> all = readCandidates(body, SearchKind::Film);
  const MovieCandidate first{11, "A 6\" \"nail\" }", 2019, "/p1.jpg", {}}, last{13, "B", 1999, {}, {}};
  EXPECT_THAT(all, testing::ElementsAre(first, MovieCandidate{12, {}, {}, {}, "/b2.jpg"}, last));
  EXPECT_EQ(chooseCandidate(all, 1999), last);
  EXPECT_EQ(chooseCandidate(all, 1980), first);
  EXPECT_EQ(chooseCandidate(all, {}), first);
  EXPECT_EQ(chooseCandidate({}, 1999), MovieCandidate{});

  EXPECT_THAT(readCandidates(R"({"results":[{"id":3,"name":"S","title":"T","first_air_date":"2001-02"}]})",
                             SearchKind::Series),
              testing::ElementsAre(MovieCandidate{3, "S", 2001, {}, {}}));
  for (const char* none : {"", "<html>", R"({"status_code":7})", R"({"results":null,"a":[{"id":1}]})",
                           R"({"results":[{"id":1)", R"({"results":[{"id":0}]})"})
    EXPECT_THAT(readCandidates(none, SearchKind::Film), testing::IsEmpty()) << none;
}

TEST(Ids, AreThoseOfTheThingItself) {
  EXPECT_EQ(readIds(R"({"belongs_to_collection":{"id":5,"imdb_id":"tt5"},"genres":[{"id":6}],"id":603,
                        "imdb_id":"tt0133093"})"),
            (FilmIds{603, "tt0133093"}));
  EXPECT_EQ(readIds(R"({"genres":[{"id":6,"imdb_id":"tt5"}],"imdb_id":null})"), FilmIds{});
  EXPECT_EQ(readIds(R"({"id":-1,"imdb_id":"tt/../1"})"), FilmIds{});
  EXPECT_EQ(readTvdbNumber(R"({"id":1,"tvdb_id": 121361})"), 121361);
  EXPECT_EQ(readTvdbNumber(R"({"id":1,"tvdb_id":null,"x":7})"), std::nullopt);

  for (const auto& [text, id] : test::table(R"(
      121361 => 121361 ;; <tvshow><id>81189</id> => 81189 ;; <ID>  81189 </Id> => 81189 ;; <id>12</id><id>345</id> => 345
      <id>81189 => - ;; tvdb: 12 => - ;; tvdb: 12 TheTVDB=3456 => 3456 ;; {"tvdb_id" : "789"} => 789
      <tvdbid> 456 </tvdbid><id>123</id> => 456 ;; imdb 12345 => - ;; 9999999999999999999 => - ;; => -)"))
    EXPECT_EQ(readTvdbId(text).value_or("-"), id) << text;
  EXPECT_EQ(readTvdbId(" 12\n"), "12");
}

TEST(Art, IsEnglishOfItsKindAndSeason) {
  const std::string body = R"({"name":" Show \u00e9 ","tvdb_id":"1","tvposter":[
      {"id":"1","url":"https://a/00.jpg","lang":"00","likes":"9"},{"url":"https://a/en.png","lang":"en"},
      {"url":"","lang":"en"},{"url":"https://a/e n.jpg","lang":"en"},
      {"lang":"en","likes":[1,{"url":"https://a/in.jpg"}],"url":"https://a/EN.JPG"},
      {"url":"https://a/late.jpg","lang":"en"}],
    "tvtheme":[{"url":"https://a/theme","lang":"en"}], "clearlogo":{"a":[{"url":"https://a/l.png","lang":"en"}]},
    "seasonposter":[{"url":"https://a/all.jpg","lang":"en","season":"all"},
      {"url":"https://a/0.jpg","lang":"en","season":"0"},{"url":"https://a/3de.jpg","lang":"de","season":"3"},
      {"url":"https://a/3.jpg","lang":"en","season":" 03 "},{"url":"https://a/12.jpg","lang":"en","season":12},
      {"url":"https://a/4.jpg","lang":"en","season":4},{"url":"https://a/13.jpg","lang":"en"}]})";
  EXPECT_EQ(readSeriesName(body), "Show é");
  EXPECT_EQ(pickArt(body, "tvposter", ".jpg"), "https://a/EN.JPG");
  EXPECT_EQ(pickArt(body, "tvtheme", ".mp3"), std::nullopt);
  EXPECT_EQ(pickArt(body, "tvtheme", ""), "https://a/theme");
  EXPECT_EQ(pickArt(body, "clearlogo", ".png"), std::nullopt);
  EXPECT_TRUE(hasList(body, "tvtheme"));
  EXPECT_FALSE(hasList(body, "clearlogo"));
  for (const auto& [season, url] : {std::pair{3, "3"}, {4, "4"}, {12, "12"}, {1, ""}, {13, ""}})
    EXPECT_EQ(pickSeasonArt(body, "seasonposter", ".jpg", season).value_or("https://a/.jpg"),
              "https://a/" + std::string(url) + ".jpg");
}

TEST(Pictures, HavePlainPaths) {
  for (const char* good : {"/a.jpg", "/t/A-b_9.png"}) EXPECT_EQ(imagePath(good), good);
  for (const char* bad : {"", "/", "a.jpg", "/../a.jpg", "/a..jpg", "/a b.jpg", "/a?b.jpg", "/a\n.jpg",
                          "/é.jpg", "/a@b.jpg", "/a%2e.jpg"})
    EXPECT_EQ(imagePath(bad), std::nullopt) << bad;
  EXPECT_EQ(firstLogo(R"({"backdrops":[{"file_path":"/b.png"}],"logos":[{"file_path":"/a.svg"},
                          {"file_path":null},{"file_path":"/l.png"}]})"),
            "/l.png");
  EXPECT_EQ(firstLogo(R"({"logos":[],"posters":[{"file_path":"/p.jpg"}]})"), std::nullopt);
}

TEST(Episodes, ComeInPages) {
  const char* const body = R"({"status":"success","data":{"series":{"name":"Show","episodes":null},
      "episodes":[{"id":1,"name":"One","seasonNumber":1,"number":1,"nameTranslations":["eng"],"x":{"number":9}},
        {"name":"Old","seasonNumber":1,"number":2},{"name":"Two","episodeName":"2nd","season":"1",
         "episodeNumber":"2"},{"name":null,"seasonNumber":1,"number":3},{"name":"No","number":4},
        {"name":"Special","seasonNumber":0,"number":1}]},
      "links":{"prev":null,"self":"https://x/?page=0","next":"https://x/default?page=1","total_items":6}})";
  const EpisodePage page = readEpisodePage(body, 0);
  EXPECT_EQ(page.entries, (EpisodeTable{{{1, 1}, "One"}, {{1, 2}, "2nd"}, {{0, 1}, "Special"}}));
  EXPECT_EQ(page.next, 1);
  EXPECT_EQ(EpisodeHash()({2, 5}), 2630847827U);

  EXPECT_EQ(readEpisodePage(R"({"data":[{"name":"A","season":2,"number":7}]})", 2).entries.at({2, 7}), "A");
  // What comes after the page of this number.
  for (const auto& [reply, number, next] : test::table<3>(R"(
      {"links":{"next": 3}} => 2 => 3 ;; {"next":3} => 3 => - ;; {"next":-1} => 0 => - ;; {"links":{"next":null}} => 0 => -
      {"links":{"next":"https://x/?page=4&language=eng"}} => 3 => 4 ;; {"links":{"next":"https://x/?page=99999999999"}} => 3 => -
      {"links":{"next":"https://x/"}} => 3 => - ;; {"data":[]} => 0 => - ;; {"links":null} => 0 => -)")) {
    const auto found = readEpisodePage(reply, std::stoi(number)).next;
    EXPECT_EQ(found ? std::to_string(*found) : "-", next) << reply;
  }
}

TEST(Tokens, MayStandInAHeader) {
  EXPECT_EQ(readToken(R"({"status":"success","data":{"token":"a.b-c"}})"), "a.b-c");
  for (const char* bad : {"", R"({"token":""})", R"({"token":"a\r\nb"})", R"({"token":"a)"})
    EXPECT_EQ(readToken(bad), std::nullopt) << bad;
}

TEST(Replies, TakeTimeInProportionToTheirLength) {
  const auto start = std::chrono::steady_clock::now();
  for (const std::string part : {"{", "[", "\"results\":[{", "{\"id\":1},", "\"data\" ", "tvdb", "<id> 12",
                                 "{\"a\":", "\"links\":{", "\\\"", "\"name\":\"a\","}) {
    for (const char* before : {"", "{\"results\":[", "{\"data\":[", "{\"x\":\""}) {
      std::string body = before;
      while (body.size() < 4'000'000) body += part;
      readCandidates(body, SearchKind::Film);
      readEpisodePage(body, 0);
      pickSeasonArt(body, "data", ".jpg", 1);
      readIds(body);
      readTvdbId(body);
    }
  }
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(120));
}

}  // namespace
}  // namespace tavek
