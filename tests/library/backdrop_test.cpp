#include "library/backdrop.h"

#include <fstream>

#include <gtest/gtest.h>

#include "base/paths.h"

namespace tavek {
namespace {

namespace fs = std::filesystem;

TEST(Backdrop, IsTheNearestOfTheFoldersAboveTheTrack) {
  const struct {
    const char* what;
    std::vector<const char*> files;  ///< below the room, each with a byte
    const char* found;               ///< for Artist/Album/1.mp3
  } cases[] = {
      {"none", {"Artist/Album/cover.jpg"}, ""},
      {"the nearer folder, in spite of its lesser name",
       {"Artist/Album/fanart.jpg", "Artist/backdrop.png"},
       "Artist/Album/fanart.jpg"},
      {"names go first",
       {"Artist/Album/background.jpg", "Artist/Album/backdrop.png"},
       "Artist/Album/backdrop.png"},
      {"then endings", {"Artist/Album/fanart.png", "Artist/Album/fanart.jpeg"}, "Artist/Album/fanart.jpeg"},
      {"the exact spelling",
       {"Artist/Album/BackDrop.JPG", "Artist/Album/fanart.png"},
       "Artist/Album/fanart.png"},
      {"then any", {"Artist/Album/BackDrop.JPG", "Artist/fanart.png"}, "Artist/Album/BackDrop.JPG"},
      {"up to the room", {"fanart.png"}, "fanart.png"},
      {"and not beyond", {"../fanart.png", "../music.jpg"}, ""},
      {"neither folders nor other pictures", {"Artist/Album/fanart.jpg/x", "Artist/Album/fanart.webp"}, ""},
  };
  for (const auto& c : cases) {
    for (const char* file : c.files) {
      fs::create_directories((musicRoot() / file).parent_path());
      std::ofstream(musicRoot() / file) << '.';
    }
    const fs::path track = musicRoot() / "Artist/Album/1.mp3";
    EXPECT_EQ(findBackdrop(track).value_or(""), *c.found == 0 ? fs::path() : musicRoot() / c.found) << c.what;
    EXPECT_FALSE(findBackdrop(mediaRoot() / "other/1.mp3")) << c.what;
    fs::remove_all(musicRoot());
    fs::remove(mediaRoot() / "fanart.png");
  }
  fs::create_directories(musicRoot());
  std::ofstream(musicRoot() / "fanart.jpg");
  EXPECT_FALSE(findBackdrop(musicRoot() / "1.mp3")) << "an empty file is no picture";
  fs::remove_all(musicRoot());
}

}  // namespace
}  // namespace tavek
