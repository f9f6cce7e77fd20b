#include "library/fan_art.h"

#include <fstream>

#include <gmock/gmock.h>

#include "base/paths.h"
#include "library/overview.h"
#include "support/media_root.h"

namespace tavek {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

void touch(const fs::path& file) {
  fs::create_directories(file.parent_path());
  std::ofstream(file) << "x";
}

std::vector<std::string> namesOf(const std::vector<Slide>& slides) {
  std::vector<std::string> names;
  for (const Slide& slide : slides) names.push_back(slide.name);
  return names;
}

TEST(FanArt, NameTellsTitleAndYear) {
  const struct {
    const char* file;
    const char* title;
    const char* year;
  } cases[] = {
      {"/m/Some Film (1982).fanart.jpg", "Some Film", "1982"},
      {"/m/Some Film (1982)/FanArt.PNG", "Some Film", "1982"},
      {"/m/Some Film ( 1982 ).FANART.jpeg", "Some Film", "1982"},
      {"/m/Some Film (19825).fanart.jpg", "Some Film (19825)", ""},
      {"/m/Some Film (abcd).fanart.jpg", "Some Film (abcd)", ""},
      {"/m/(1982).fanart.jpg", "(1982)", ""},
      {"/m/A(1982).fanart.jpg", "A", "1982"},
      {"/m/1982).fanart.jpg", "1982)", ""},
      {"/m/.fanart.jpg", "", ""},
      {"/m/  .fanart.jpg", "", ""},
      {"/m/poster.jpg", "", ""},
      {"/m/Some Film.fanart.gif", "", ""},
  };
  for (const auto& [file, title, year] : cases) {
    const TitleYear split = splitTitleYear(fanArtName(file));
    EXPECT_EQ(split.title, title) << file;
    EXPECT_EQ(split.year, year) << file;
  }
}

TEST(FanArt, SlidesFollowThePosters) {
  const std::vector<TitledSlide> slides = {{{"/m/Zeta.fanart.jpg", "Zeta"}, "zeta"},
                                           {{"/m/alpha.fanart.jpg", "alpha"}, "alpha"},
                                           {{"/m/b/Zeta 2.fanart.jpg", "Zeta 2"}, "zeta"},
                                           {{"/m/Beta (1982).fanart.jpg", "Beta (1982)"}, "beta 1982"}};
  const struct {
    std::vector<PosterTitle> posters;
    std::vector<std::string> names;
  } cases[] = {
      {{}, {"alpha", "Beta (1982)", "Zeta 2", "Zeta"}},
      {{{"/m/x.jpg", "unknown"}}, {"alpha", "Beta (1982)", "Zeta 2", "Zeta"}},
      {{{"/m/z.jpg", " zeta"}, {"/m/B.jpg", "beta (1982)"}}, {"Beta (1982)", "Zeta 2"}},
      {{{"/m/2.jpg", "zeta"}, {"/m/1.jpg", "zeta"}, {"/m/3.jpg", "zeta"}}, {"Zeta 2", "Zeta"}},
      {{{"/m/ALPHA.jpg", ""}}, {"alpha"}},
  };
  for (const auto& [posters, names] : cases)
    EXPECT_EQ(namesOf(orderSlides(slides, posters)), names) << posters.size();
}

TEST(FanArt, CountsWhereThereIsAFilmOrASeries) {
  const fs::path films = mediaRoot() / "movies";
  touch(films / "Some Film (1982)/Some Film.mkv");
  touch(films / "Some Film (1982)/fanart.jpg");
  touch(films / "Flat (2001).mkv");
  touch(films / "flat (2001).fanart.png");
  touch(films / "Gone.fanart.jpg");
  touch(films / "Other/deep/feature.mkv");
  touch(films / "Other/Other.fanart.jpg");
  const fs::path series = mediaRoot() / "tv";
  touch(series / "A Show/Season 1/A Show S01E01.mkv");
  touch(series / "A Show/fanart.jpg");
  touch(series / "Empty Show/fanart.jpg");
  const Flag run;
  EXPECT_THAT(namesOf(listSlides(films, {}, run)), ElementsAre("Some Film (1982)", "flat (2001)"));
  EXPECT_THAT(namesOf(listSlides(series, {}, run)), ElementsAre("A Show"));
  EXPECT_THAT(listSlides(series / "A Show", {}, run), IsEmpty()) << "only the room shows its series";
  EXPECT_THAT(listSlides(mediaRoot() / "nowhere", {}, run), IsEmpty());

  const auto filmOf = [&](const fs::path& picture) {
    return filmOfSlide({picture.string(), fanArtName(picture)}, run).value_or("none");
  };
  EXPECT_EQ(filmOf(films / "Some Film (1982)/fanart.jpg"), films / "Some Film (1982)/Some Film.mkv");
  EXPECT_EQ(filmOf(films / "flat (2001).fanart.png"), films / "Flat (2001).mkv");
  EXPECT_EQ(filmOf(films / "Other.fanart.jpg"), "none") << "no other film's size and story";
  touch(films / "Other/deep/Other.mkv");
  EXPECT_EQ(filmOf(films / "Other.fanart.jpg"), films / "Other/deep/Other.mkv");
  EXPECT_EQ(filmOf(series / "Empty Show/fanart.jpg"), "none");
}

TEST(Overview, IsReadFromWhatIsThere) {
  const struct {
    std::string_view text;
    const char* overview;
  } cases[] = {
      {R"({"title": "x", "overview": "A  cop\n\ttracks \"them\" \/ down.  "})",
       "A cop tracks \"them\" / down."},
      {R"("overview" : "caf\u00e9 \u0041\q\\")", "caf? A\\"},
      {R"("overview":"cut short \)", "cut short"},
      {R"("overview":"bad \u00)", "bad 00"},
      {R"("overview": " \n ")", "none"},
      {R"("overview": "")", "none"},
      {R"("overview")", "none"},
      {R"({"Overview": "x"})", "none"},
      {"", "none"},
  };
  for (const auto& [text, overview] : cases) EXPECT_EQ(overviewIn(text).value_or("none"), overview) << text;
  EXPECT_FALSE(readOverview(mediaRoot() / "missing.json"));
  EXPECT_FALSE(readOverview(mediaRoot()));
  const fs::path file = mediaRoot() / "metadata.json";
  std::ofstream(file) << "{\"overview\": \"" << std::string(3 << 20, 'a');
  EXPECT_LE(readOverview(file).value_or("").size(), std::size_t{1} << 20);
}

}  // namespace
}  // namespace tavek
