#include "base/file_write.h"

#include <fstream>
#include <sys/stat.h>

#include <gtest/gtest.h>

#include "support/temp_folder.h"

namespace tavek {
namespace {

namespace fs = std::filesystem;

std::string contentOf(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

void write(const fs::path& file, const char* text) {
  std::ofstream(file) << text;
}

TEST(ReplaceFile, KeepsModesAndLinks) {
  const test::TempFolder temp;
  const fs::path file = temp.path() / "deep" / "file";
  const fs::path link = temp.path() / "deep" / "link";
  const struct {
    const fs::path& path;
    const char* bytes;
    std::optional<mode_t> mode;
    mode_t wanted;
  } cases[] = {{file, "a longer text", 0600, 0600},
               {file, "kept", {}, 0600},
               {link, "", 0640, 0640},
               {link, "last", {}, 0640}};
  for (const auto& c : cases) {
    EXPECT_TRUE(replaceFile(c.path, c.bytes, c.mode));
    struct stat status {};
    stat(file.c_str(), &status);
    EXPECT_EQ(status.st_mode & 07777, c.wanted) << c.bytes;
    EXPECT_EQ(contentOf(file), c.bytes);
    if (!fs::exists(link)) fs::create_symlink("file", link);
    EXPECT_TRUE(fs::is_symlink(link)) << c.bytes;
  }
  for (const fs::path& none : {temp.path() / "deep", file / "below"})
    EXPECT_FALSE(replaceFile(none, "")) << none;
  EXPECT_EQ(std::distance(fs::directory_iterator(temp.path() / "deep"), {}), 2)
      << "no temporary file is left";
}

TEST(RenameNoReplace, NeverTakesAName) {
  const test::TempFolder temp;
  const auto at = [&](const char* name) { return temp.path() / name; };
  write(at("a"), "a");
  write(at("b"), "b");
  fs::create_symlink("nowhere", at("link"));
  EXPECT_FALSE(renameNoReplace(at("a"), at("b")));
  EXPECT_FALSE(renameNoReplace(at("a"), at("link")));
  EXPECT_FALSE(renameNoReplace(at("gone"), at("c")));
  EXPECT_EQ(contentOf(at("a")) + contentOf(at("b")), "ab");
  EXPECT_TRUE(renameNoReplace(at("a"), at("c")));
  EXPECT_FALSE(fs::exists(at("a")));
  EXPECT_EQ(contentOf(at("c")), "a");
}

}  // namespace
}  // namespace tavek
