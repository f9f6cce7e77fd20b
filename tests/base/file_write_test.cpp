#include "base/file_write.h"

#include <gtest/gtest.h>

#include "support/temp_folder.h"

namespace tavek {
namespace {

using namespace test;

TEST(ReplaceFile, KeepsModesAndLinks) {
  const TempFolder temp;
  const fs::path folder = temp.path() / "deep";
  const std::tuple<const char*, const char*, std::optional<mode_t>, mode_t> cases[] = {
      {"file", "longer", 0600, 0600},
      {"file", "kept", {}, 0600},
      {"link", "", 0640, 0640},
      {"link", "last", {}, 0640}};
  for (const auto& [name, bytes, mode, wanted] : cases) {
    EXPECT_TRUE(replaceFile(folder / name, bytes, mode));
    EXPECT_EQ(static_cast<mode_t>(fs::status(folder / "file").permissions()), wanted) << bytes;
    EXPECT_EQ(readText(folder / "file"), bytes);
    if (!fs::exists(folder / "link")) fs::create_symlink("file", folder / "link");
    EXPECT_TRUE(fs::is_symlink(folder / "link")) << bytes;
  }
  for (const char* none : {"", "file/below"}) EXPECT_FALSE(replaceFile(folder / none, "")) << none;
  EXPECT_EQ(std::distance(fs::directory_iterator(folder), {}), 2) << "no temporary file is left";
}

TEST(RenameNoReplace, NeverTakesAName) {
  const TempFolder temp;
  const auto at = [&](const char* name) { return temp.path() / name; };
  writeText(at("a"), "a");
  writeText(at("b"), "b");
  fs::create_symlink("nowhere", at("link"));
  for (const char* taken : {"b", "link"}) EXPECT_FALSE(renameNoReplace(at("a"), at(taken))) << taken;
  EXPECT_FALSE(renameNoReplace(at("gone"), at("c")));
  EXPECT_EQ(readText(at("a")) + readText(at("b")), "ab");
  EXPECT_TRUE(renameNoReplace(at("a"), at("c")));
  EXPECT_FALSE(fs::exists(at("a")));
  EXPECT_EQ(readText(at("c")), "a");
}

}  // namespace
}  // namespace tavek
