#include "library/album.h"

#include <thread>

#include <gtest/gtest.h>

#include "library/track_info.h"
#include "support/table.h"
#include "support/temp_folder.h"

namespace tavek {
namespace {

const Flag never;

struct AlbumTest : testing::Test {
  fs::path make(const std::string& name, const std::string& tags, const char* seconds = "0.1") const {
    const fs::path path = folder_.path() / name;
    fs::create_directories(path.parent_path());
    const std::string command =
        "ffmpeg -nostdin -y -loglevel error -f lavfi -i sine=d=" + std::string(seconds) +
        " -map_metadata -1 -fflags +bitexact " + tags + " '" + path.string() + "'";
    EXPECT_EQ(std::system(command.c_str()), 0) << command;
    return path;
  }
  std::string namesOf(const std::vector<AlbumTrack>& tracks) const {
    std::string names;
    for (const AlbumTrack& track : tracks) names += track.path.filename().string() + "=" + track.title + " ";
    return names;
  }
  test::TempFolder folder_;
};

TEST_F(AlbumTest, TagsAreReadByTheirVeryNameFirst) {
  // What is told: title/artist/album/track/year/genre.
  const std::array<const char*, 3> cases[] = {
      {"a.flac",
       "-metadata TRACKTOTAL=9 -metadata track=03/12 -metadata album_artist=All -metadata album=Sky "
       "-metadata title=' Sun ' -metadata artist=Ann -metadata date=2004-05-12 -metadata genre=Pop",
       "Sun/Ann/Sky/03/2004/Pop"},
      {"b.mp3", "-metadata album_artist=All -metadata album=Sky -metadata title='  '", "/All/Sky///"},
      {"c.ogg", "-metadata composer=Bob -metadata tracknumber=7 -metadata year=199912", "/Bob//7/1999/"},
      {"d.m4a", "-metadata title=雨 -metadata date=12-05-2004", "雨////12/"},
      {"e.opus", "-metadata 'title=two\nlines'", "two lines/////"},
      {"f.flac", "-metadata albumsort=Later", "//Later///"},
      {"g.wav", "", "/////"},
  };
  for (const auto& [file, tags, told] : cases) {
    const auto info = trackInfo(make(file, tags));
    ASSERT_TRUE(info) << file;
    const auto& [title, artist, album, track, year, genre, length] = *info;
    EXPECT_EQ(title + '/' + artist + '/' + album + '/' + track + '/' + year + '/' + genre, told) << file;
  }
  std::string oldest = test::readText(make("h.mp3", "-id3v2_version 0")), tag = "TAG\xC9toile\x92s";
  tag.resize(128);
  test::writeText(folder_.path() / "h.mp3", oldest + tag);
  EXPECT_EQ(trackInfo(folder_.path() / "h.mp3")->title, "Étoile s");
  std::string rain;
  while (rain.size() < 1023) rain += "雨";
  EXPECT_EQ(trackInfo(make("i.flac", "-metadata title=" + rain + rain))->title, rain)
      << "no character is cut in two";
}

TEST_F(AlbumTest, FilesAreKnownUntilTheyChange) {
  const fs::path song = make("1.flac", "-metadata title=Old");
  EXPECT_FALSE(knownTrackInfo(song));
  EXPECT_EQ(trackInfo(song)->title, "Old");
  EXPECT_EQ(knownTrackInfo(folder_.path() / "./1.flac")->title, "Old");
  make("1.flac", "-metadata title=Newer", "0.3");
  EXPECT_EQ(trackInfo(song)->title, "Newer");
  for (const char* broken : {"", "no music", "fLaC\xFF\xFF\xFF"}) {
    test::writeText(song, broken);
    EXPECT_EQ(trackInfo(song).value_or(TrackInfo()).title, "") << broken;
  }
  EXPECT_FALSE(trackInfo("/none.mp3"));
}

TEST_F(AlbumTest, TracksStandByNumberThenByName) {
  make("x.flac", "-metadata track=10 -metadata title=Ten");
  for (const char* plain : {"2 Song.mp3", "b.mp3", "A.mp3"}) make(plain, "");
  make("0 zero.mp3", "-metadata track=0");
  make("disc 2 - 10.mp3", "-metadata track=10");
  const fs::path huge = make("c.mp3", "-metadata track=99999999999");
  test::writeText(folder_.path() / "7 broken.ogg", "none");
  test::writeText(folder_.path() / "cover.jpg", "none");
  fs::create_directory(folder_.path() / "1.mp3");
  const char* const order =
      "2 Song.mp3=2 Song 7 broken.ogg=7 broken disc 2 - 10.mp3=disc 2 - 10 x.flac=Ten c.mp3=c "
      "0 zero.mp3=0 zero A.mp3=A b.mp3=b ";
  EXPECT_EQ(namesOf(albumTracks(huge, TagReading::Read, never)), order);
  EXPECT_EQ(namesOf(albumTracks(huge, TagReading::Known, never)), order) << "now they are known";
  for (const auto& [from, step, to] : test::table<3>(R"(
      x.flac => 1 => c.mp3 ;; x.flac => -2 => 7 broken.ogg ;; 2 Song.mp3 => -1 => ;; b.mp3 => 1 =>
      gone.mp3 => 1 => ;; b.mp3 => 0 => ;; b.mp3 => -99 =>)")) {
    const auto next = neighbourTrack(folder_.path() / from, std::stoi(step), never);
    EXPECT_EQ(next.value_or("").filename(), to) << from << " and " << step;
  }
}

TEST_F(AlbumTest, PicturesAreFoundBesideAndAbove) {
  const fs::path album = folder_.path() / "Artist/Album", track = album / "1.mp3";
  const auto cover = [&] {
    CoverCache cache;
    return findAlbumCover(cache, track).value_or("").filename();
  };
  EXPECT_EQ(cover(), "");
  test::writeText(album / "cover.jpg", "");
  test::writeText(album / "COVER.JPG", "x");
  test::writeText(album / "folder.jpg", "x");
  EXPECT_EQ(cover(), "folder.jpg") << "an empty one, and another spelling, do not count";
  test::writeText(album / "cover.png", "x");
  EXPECT_EQ(cover(), "cover.png");
  test::writeText(album / "logo.png", "x");
  EXPECT_FALSE(findAlbumLogo(track));
  test::writeText(folder_.path() / "Artist/logo.png", "x");
  EXPECT_EQ(findAlbumLogo(track), folder_.path() / "Artist/logo.png");
}

TEST_F(AlbumTest, ThreadsShareWhatIsKnown) {
  for (int i = 0; i < 8; ++i) make(std::to_string(i) + ".flac", "-metadata title=t" + std::to_string(i));
  std::vector<std::jthread> threads;
  for (int thread = 0; thread < 10; ++thread) {
    threads.emplace_back([&] {
      for (int i = 0; i < 40; ++i) {
        const int number = i % 8;
        const fs::path song = folder_.path() / (std::to_string(number) + ".flac");
        EXPECT_EQ(trackInfo(song)->title, "t" + std::to_string(number));
        EXPECT_TRUE(knownTrackInfo(song));
      }
    });
  }
}

TEST(TrackInfo, DurationsAreWrittenWithHoursOnlyFromOneHourOn) {
  for (const auto& [seconds, text] :
       {std::pair{0, ""}, {187, "03:07"}, {3787, "1:03:07"}, {36'000, "10:00:00"}})
    EXPECT_EQ(durationText(seconds * 1'000'000LL), text);
}

}  // namespace
}  // namespace tavek
