#include "library/media_paths.h"

#include <fstream>

#include <gtest/gtest.h>

#include "base/paths.h"
#include "support/media_root.h"

namespace tavek {
namespace {

namespace fs = std::filesystem;
using test::library;

void touch(const char* name) {
  fs::create_directories((library.path() / name).parent_path());
  std::ofstream(library.path() / name).flush();
}

TEST(MediaPaths, ClassifyFolders) {
  touch("shows/A/Season 1/s01e02 Pilot.mkv");
  touch("mixed/Show.S01E02.mkv");
  touch("mixed/S01E02 folder/S1E02 x.mkv");
  touch("mixed/S01x02.mkv");
  touch("mixed/4x3 1x01.mkv");
  touch("crossed/A/1x01.mkv");
  EXPECT_EQ(knownKind(mediaRoot() / "shows"), std::nullopt) << "only a walk can tell";
  Flag stop;
  stop = true;
  EXPECT_EQ(classifyFolder(mediaRoot() / "shows", stop), MediaKind::Movies);
  EXPECT_EQ(knownKind(mediaRoot() / "shows"), std::nullopt) << "a walk that was stopped tells nothing";
  std::string kinds;
  for (const char* folder : {"tv", "TV/", "/else/Series", "shows", "shows/./A/..", "VIDEOS", "Music", "Kids",
                             "mixed", "absent", "crossed"}) {
    kinds += std::to_string(static_cast<int>(classifyFolder(mediaRoot() / folder, {})));
  }
  EXPECT_EQ(kinds, "11111230001");
  EXPECT_EQ(knownKind(mediaRoot() / "shows"), MediaKind::Series);
  EXPECT_EQ(knownKind(mediaRoot() / "never/TV"), MediaKind::Series);
  EXPECT_EQ(classifyFolder("", {}), MediaKind::Movies);
  touch("absent/S01E01.mkv");
  EXPECT_EQ(classifyFolder(mediaRoot() / "absent", {}), MediaKind::Movies) << "the first answer is kept";
}

TEST(MediaPaths, ListRooms) {
  const auto names = [] {
    std::string result;
    for (const fs::path& room : listRoots({})) result += room.lexically_relative(mediaRoot()).string() + ' ';
    return result;
  };
  for (const auto& entry : fs::directory_iterator(library.path())) fs::remove_all(entry.path());
  touch("persist.json");
  touch(".hidden/film.mkv");
  EXPECT_EQ(names(), "movies tv video music ");
  touch("tv/x");
  touch("Zoo/x");
  fs::create_directory_symlink(library.path() / "tv", library.path() / "link");
  fs::create_symlink(library.path() / "nowhere", library.path() / "broken");
  EXPECT_EQ(names(), "Zoo link tv ");
}

TEST(MediaPaths, TellWhatLiesInside) {
  for (const char* inside : {"/m/tv/", "/m/tv", "/m/./tv//x", "/m/tv\\x"})
    EXPECT_TRUE(isInside(inside, "/m/tv")) << inside;
  for (const char* outside : {"/m/tv2", "/m/tv/../x", "/m", ""})
    EXPECT_FALSE(isInside(outside, "/m/tv")) << outside;
  EXPECT_FALSE(isInside("/m", ""));
}

TEST(MediaPaths, FindRoomsAndSeries) {
  const auto nameOf = [](const std::optional<fs::path>& path) {
    return path ? path->lexically_relative(mediaRoot()).string() : "-";
  };
  // The room, the series room, the depth in it, the series folder.
  for (const std::string line :
       {"= - - 0 -", "movies/a.mkv= movies - 0 -", "tv= tv tv 0 -", "tv/A/= tv tv 1 -", "tv/../x= x - 0 -",
        "tv/./A/Season 1= tv tv 2 tv/A", "tv/A/S 1/S01E01.mkv= tv tv 3 tv/A", "../tv/A/B= - - 0 -",
        "/else/tv/A/B= - - 0 -"}) {
    const std::string path = line.substr(0, line.find('='));
    const fs::path full = mediaRoot() / path;
    EXPECT_EQ(path + "= " + nameOf(roomRootOf(full)) + ' ' + nameOf(seriesRootOf(full)) + ' ' +
                  std::to_string(seriesDepth(full)) + ' ' + nameOf(seriesFolderOf(full)),
              line);
  }
  EXPECT_EQ(roomRootOf(""), std::nullopt);
  EXPECT_EQ(roomRootOf(mediaRoot().string() + "\\x"), std::nullopt);
}

TEST(MediaPaths, NameRooms) {
  std::string normal;
  for (const char* name : {"Movie", "tvshows", "Series", "Videos", "Kids", ""})
    normal += normalizeRoomName(name) + ' ';
  EXPECT_EQ(normal, "movies tv tv video kids  ");
  EXPECT_EQ(roomNameOfMedia((mediaRoot() / "Kids/a/b.mkv").string()), "kids");
  EXPECT_EQ(roomNameOfMedia("TV/a/b.mkv"), "tv");
  for (const char* elsewhere : {"/other/b.mkv", ""}) EXPECT_EQ(roomNameOfMedia(elsewhere), "movies");
  EXPECT_EQ(roomNameOfRoot("/") + roomLabelOf("/media/Kids", "x") + roomLabelOf("/", "Tv"), "movieskidstv");
}

}  // namespace
}  // namespace tavek
