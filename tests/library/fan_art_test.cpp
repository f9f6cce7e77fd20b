#include "library/fan_art.h"

#include <gtest/gtest.h>

#include "base/paths.h"
#include "library/media_paths.h"
#include "library/overview.h"
#include "support/temp_folder.h"

namespace tavek {
namespace {

namespace fs = std::filesystem;

std::string namesOf(const std::vector<Slide>& slides, const fs::path& root) {
  std::string names;
  for (const Slide& slide : slides)
    names += slide.path.lexically_relative(root).string() + "=" + slide.name + " ";
  return names;
}

TEST(FanArt, IsThatOfWhatIsThere) {
  const test::TempFolder folder;
  const fs::path movies = folder.path() / "movies";
  for (const char* file :
       {"B (1982)/B.mkv", "B (1982)/fanart.jpg", "A/A.mkv", "A/A.fanart.PNG", "A/poster.jpg", "C.mkv",
        "C.FanArt.jpeg", "Gone/fanart.jpg", "Gone.fanart.jpg", "A/.fanart.jpg", "A/fanart.webp",
        "D/fanart.jpg/x", "Брат 2/Брат 2.mkv", "Брат 2/fanart.jpg"})
    test::writeText(movies / file, "x");
  EXPECT_EQ(namesOf(listSlides(movies, {}, {}), movies),
            "A/A.fanart.PNG=A C.FanArt.jpeg=C B (1982)/fanart.jpg=B (1982) Брат 2/fanart.jpg=Брат 2 ");
  const std::vector<PosterTitle> posters{
      {"c", "/x/2.jpg"}, {"b (1982)", "/x/1.jpg"}, {"none", "/x/0.jpg"}, {"c", "/x/3.jpg"}, {"", "/x/A.jpg"}};
  EXPECT_EQ(namesOf(listSlides(movies, posters, {}), movies),
            "B (1982)/fanart.jpg=B (1982) C.FanArt.jpeg=C A/A.fanart.PNG=A ");
  EXPECT_EQ(listSlides(movies, {{"none", "/x/0.jpg"}}, {}).size(), 4U) << "as without posters";
  EXPECT_TRUE(listSlides(movies / "nowhere", {}, {}).empty());
  EXPECT_EQ(videoOfSlide({movies / "A/A.fanart.PNG", "A"}, {}), movies / "A/A.mkv");
  EXPECT_EQ(videoOfSlide({movies / "Gone/fanart.jpg", "Gone"}, {}), std::nullopt);
}

TEST(FanArt, OfAShowNeedsAnyEpisode) {
  for (const char* file : {"Show/Season 1/S01E01.mkv", "Show/fanart.jpg", "Empty/fanart.jpg"})
    test::writeText(tvRoot() / file, "x");
  EXPECT_EQ(namesOf(listSlides(tvRoot(), {}, {}), tvRoot()), "Show/fanart.jpg=Show ");
  fs::remove_all(tvRoot());
}

TEST(Overview, IsReadOverItsEscapes) {
  const std::pair<const char*, const char*> cases[] = {
      {R"({"overview": "Plain."})", "Plain."},
      {R"({"x":"overview","overview" : "a \"b\" \\ c\/d"})", R"(a "b" \ c/d)"},
      {R"({"overview": " two\n\n lines\t\r "})", "two lines"},
      {R"({"overview": "A\u0041\u00e9\u12\q"})", "AA??"},
      {R"({"overview": "not closed)", "not closed"},
      {R"({"overview": "   "})", ""},
      {R"({"overview": null})", ""},
      {R"({"title": "x"})", ""},
      {"\"overview\":\"\\", ""},
      {"", ""},
  };
  for (const auto& [text, overview] : cases) EXPECT_EQ(overviewIn(text).value_or(""), overview) << text;
}

}  // namespace
}  // namespace tavek
