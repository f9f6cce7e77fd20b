#include "base/file_write.h"

#include <fstream>
#include <tuple>

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
  const fs::path folder = temp.path() / "deep";
  const std::tuple<const char*, const char*, std::optional<mode_t>, mode_t> cases[] = {
      {"file", "a longer text", 0600, 0600},
      {"file", "kept", {}, 0600},
      {"link", "", 0640, 0640},
      {"link", "last", {}, 0640}};
  for (const auto& [name, bytes, mode, wanted] : cases) {
    EXPECT_TRUE(replaceFile(folder / name, bytes, mode));
    EXPECT_EQ(static_cast<mode_t>(fs::status(folder / "file").permissions()), wanted) << bytes;
    EXPECT_EQ(contentOf(folder / "file"), bytes);
    if (!fs::exists(folder / "link")) fs::create_symlink("file", folder / "link");
    EXPECT_TRUE(fs::is_symlink(folder / "link")) << bytes;
  }
  for (const char* none : {"", "file/below"}) EXPECT_FALSE(replaceFile(folder / none, "")) << none;
  EXPECT_EQ(std::distance(fs::directory_iterator(folder), {}), 2) << "no temporary file is left";
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
