#include <gtest/gtest.h>

#include "base/process_flags.h"
#include "display/strip/strip.h"
#include "display/toolkit/image_file.h"
#include "state/state_store.h"
#include "support/media_root.h"
#include "support/offscreen.h"

namespace tavek {
namespace {

struct PostersTest : testing::Test {
  PostersTest() {
    for (const auto& entry : fs::directory_iterator(test::library.path())) fs::remove_all(entry.path());
  }
  ~PostersTest() override { posters.clear(); }

  static fs::path at(const std::string& name) { return test::library.path() / name; }
  static void write(const std::string& name, const std::string& bytes = "x") {
    test::writeText(at(name), bytes);
  }
  static void addFilm(const std::string& name) {
    write("movies/" + name + ".mkv");
    write("movies/" + name + ".png", test::png(200, 300));
  }
  /// Opens a folder and takes its tiles until no more come.
  void load(const std::string& folder) {
    posters.openPosterFolder(screen.renderer(), at(folder));
    while (!posters.posterListComplete()) take();
    take();
  }
  void take() { posters.takePendingPosters(screen.renderer(), 240, 99); }
  /// "name:width" of each poster, with * for a watched one and > for the selected one.
  std::string shown() const {
    std::string text;
    for (int number = 0; const Poster& poster : posters.list())
      text += (number++ == posters.selectedPoster() ? ">" : "") +
              poster.path.lexically_relative(at("")).string() + ":" + std::to_string(poster.width) +
              (poster.watched ? "* " : " ");
    return text;
  }

  test::Offscreen screen;
  StateStore store{at("persist.json")};
  Posters posters{store.parts().users};
};

TEST_F(PostersTest, OnlyPicturesThatCanBeShownComeIntoTheList) {
  const std::string good = test::png(400, 600);
  std::string liar = good;
  liar.replace(16, 8, std::string("\0\2\0\0\0\2\0\0", 8));  // 131,072 pixels each way
  addFilm("b");
  const std::pair<std::string, std::string> others[] = {{"cut", good.substr(0, good.size() / 2)},
                                                        {"empty", ""},
                                                        {"liar", liar},
                                                        {"wide", test::png(1000, 100)}};
  for (const auto& [name, picture] : others) {
    write("movies/" + name + ".mkv");
    write("movies/" + name + ".png", picture);
  }
  load("movies");
  EXPECT_EQ(shown(), ">movies/b.png:160 movies/wide.png:2400 ");
  const SurfacePtr fitted = fittedToHeight(loadImage(at("movies/b.png")), 100);
  EXPECT_TRUE(fitted && fitted->w == 66 && fitted->h == 100);
}

TEST_F(PostersTest, FoldersOfSeriesHaveTilesWithoutPictures) {
  write("tv/Show B/S01/S01E01.mkv");
  write("tv/Show A/Season 2/S02E01 x.mkv", "no film");
  write("tv/Show A/poster.jpg", "no picture");
  load("tv");
  EXPECT_EQ(shown(), ">tv/Show A/poster.jpg:160 tv/Show B/poster.jpg:160 ");
  store.parts().users.markWatched(at("tv/Show B/S01/S01E01.mkv").string(), true, "");
  posters.refreshWatchedBits();
  EXPECT_EQ(shown(), ">tv/Show A/poster.jpg:160 tv/Show B/poster.jpg:160* ");
  load("tv/Show A");
  EXPECT_EQ(shown(), ">tv/Show A/Season 2/poster.jpg:160 ");
  EXPECT_TRUE(fs::exists(at("tv/Show A/Season 2/playback.json")));
  load("tv/Show A/Season 2");
  EXPECT_EQ(shown(), ">tv/Show A/Season 2/S02E01 x.mkv:160 ");
  fs::remove_all(at("tv"));
  posters.openPosterFolder(screen.renderer(), at("tv"));
  EXPECT_EQ(posters.list().size(), 2U) << "a folder that was loaded before comes back at once";
}

TEST_F(PostersTest, SelectionGoesToTheFilmThatPlaysOrIsNamed) {
  for (const char* name : {"alien", "aliens", "brazil"}) addFilm(name);
  posters.selectPosterFor(at("movies/aliens.mkv"));
  load("movies");
  EXPECT_EQ(shown(), "movies/alien.png:160 >movies/aliens.png:160 movies/brazil.png:160 ");
  posters.selectPosterFor(at("movies/elsewhere/Brazil (1985).mkv"));
  EXPECT_EQ(posters.selectedPoster(), 2) << "by its name";
  EXPECT_TRUE(posters.selectPosterByVoice("Alien!"));
  EXPECT_EQ(posters.selectedPoster(), 0);
  EXPECT_FALSE(posters.selectPosterByVoice("zardoz"));
}

/// The name itself goes before a longer one that begins with it, in whatever order they come.
TEST_F(PostersTest, TheVeryNameIsSelected) {
  const std::vector<std::string> names{"Star Trek", "Star Trek Discovery", "Брат 2"};
  for (const std::string& name : names) addFilm(name);
  const auto selected = [this] {
    return posters.list()[static_cast<std::size_t>(posters.selectedPoster())].path.stem();
  };
  for (const bool loadedBefore : {false, true}) {
    for (const std::string& name : names) {
      if (!loadedBefore) posters.clear();
      posters.selectPosterFor(at("elsewhere/" + name + ".mkv"));
      load("movies");
      EXPECT_EQ(selected(), name) << loadedBefore;
    }
  }
  // Other scripts stand behind the last letter.
  for (const auto& [text, name] : {std::pair{"s", 1U}, {"star trek d", 1U}, {"z", 2U}}) {
    posters.jumpToTyped(text);
    EXPECT_EQ(selected(), names[name]) << text;
  }
}

TEST_F(PostersTest, WhatStillLoadsStaysInItsFolder) {
  for (int i = 0; i < 60; ++i) addFilm("film " + std::to_string(i));
  write("kids/a.mkv");
  write("kids/a.png", test::png(200, 300));
  posters.openPosterFolder(screen.renderer(), at("movies"));
  while (posters.list().empty()) take();
  load("kids");
  EXPECT_EQ(shown(), ">kids/a.png:160 ");
  load("nowhere");
  EXPECT_EQ(shown(), "");
}

TEST_F(PostersTest, WhatAScanChangesIsListedAnewAroundTheSelection) {
  for (const char* name : {"alien", "brazil", "casablanca"}) addFilm(name);
  load("movies");
  posters.selectPoster(1);
  const SDL_Texture* const brazil = posters.list()[1].texture.get();
  addFilm("akira");
  fs::remove(at("movies/alien.png"));
  write("movies/casablanca.png", test::png(400, 300));
  posters.folderChanged(at("movies"));
  const std::string before = shown();
  for (int i = 0; i < 500 && shown() == before; ++i) {
    posters.followChange(screen.renderer(), 240, 1);
    SDL_Delay(10);
  }
  EXPECT_EQ(shown(), "movies/akira.png:160 >movies/brazil.png:160 movies/casablanca.png:320 ");
  EXPECT_EQ(posters.list()[1].texture.get(), brazil) << "what has not changed is not read again";
  load("kids");
  addFilm("zardoz");
  posters.folderChanged(at("movies"));
  load("movies");
  EXPECT_EQ(posters.list().size(), 4U) << "what was kept of it is no longer so";
}

TEST_F(PostersTest, TheStripStaysWhereItIsOnItsWayOutAndLettersRepeat) {
  for (const char* name : {"alien", "brazil", "casablanca"}) addFilm(name);
  Strip strip(store.parts());
  strip.openPosterFolder(screen.renderer(), at("movies"), 0);
  while (!strip.posters().posterListComplete() || strip.posters().list().size() < 3)
    strip.posters().takePendingPosters(screen.renderer(), 240, 99);
  const auto selected = [&] { return strip.selectedPoster()->path.stem(); };
  strip.show(at("movies/alien.mkv"), false, 1000);
  strip.hide(2000);
  strip.show(at("movies/brazil.mkv"), false, 2060);
  EXPECT_EQ(selected(), "alien");
  strip.endSlide(screen.renderer(), {}, false, 2200);
  strip.show(at("movies/brazil.mkv"), false, 3000);
  EXPECT_EQ(selected(), "brazil");

  const FocusFacts facts{.stripShown = true, .stripAny = true};
  EXPECT_FALSE(strip.repeats(facts)) << "it has just jumped by itself";
  strip.move(Direction::Up, facts, 3200);
  EXPECT_TRUE(strip.repeats(facts));
  strip.move(Direction::Right, facts, 3300);
  EXPECT_EQ(selected(), "casablanca");
  strip.destroyTextures();
}

}  // namespace
}  // namespace tavek
