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

TEST(ReplaceFile, KeepsTheModeUnlessOneIsGiven) {
  const test::TempFolder temp;
  const fs::path file = temp.path() / "deep" / "file";
  const struct {
    const char* bytes;
    std::optional<mode_t> mode;
    mode_t wanted;
  } cases[] = {{"new", 0600, 0600}, {"kept", {}, 0600}, {"", 0640, 0640}, {"last", {}, 0640}};
  for (const auto& c : cases) {
    EXPECT_TRUE(replaceFile(file, c.bytes, c.mode));
    struct stat status {};
    stat(file.c_str(), &status);
    EXPECT_EQ(status.st_mode & 07777, c.wanted) << c.bytes;
    EXPECT_EQ(contentOf(file), c.bytes);
  }
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
