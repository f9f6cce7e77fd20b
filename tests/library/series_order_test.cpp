#include "library/series_order.h"

#include <algorithm>
#include <random>

#include <gtest/gtest.h>

#include "library/poster_listing.h"
#include "support/table.h"
#include "support/temp_folder.h"

namespace tavek {
namespace {

SeriesOrder orderOf(const std::vector<std::string>& titles) {
  SeriesOrder order;
  for (const std::string& title : titles) order.add(title);
  order.build();
  return order;
}

TEST(SeriesOrder, FindsTitlesByTheirForms) {
  const SeriesOrder order =
      orderOf({"film", "part 2", "film", "", "chapter 2", "alien 3", "the sea", "战狼 2"});
  for (const auto& [title, sequence] : test::table(R"(
      film => 0 ;; film 1999 => 0 ;; film_1999 => 0 ;; volume 2 => 1 ;; chapter-2 => 2 ;; alien³ => -1 ;; ALIEN 3 => 3
      a sea => -1 ;; sea => 4 ;; xthe seax => 4 ;; 战狼 2 => 5 ;; 战狼 => 5 ;; 战狼 2 end => 5 ;; 狼 => -1
      something => -1 ;; => -1 ;; f => 0 ;; 7 => -1)"))
    EXPECT_EQ(std::to_string(order.sequenceOf(makeMatchKey(title)).value_or(-1)), sequence) << title;
}

/// The rule without its indices: each step over all entries in their order.
int sequenceByRule(const std::vector<std::string>& titles, const std::string& title) {
  const MatchKey wanted = makeMatchKey(title);
  const auto firstWhere = [&](const auto& matches) {
    const auto at = std::ranges::find_if(titles, [&](auto& each) { return matches(makeMatchKey(each)); });
    return at == titles.end() ? -1 : static_cast<int>(at - titles.begin());
  };
  const auto holds = [](const std::string& a, const std::string& b) {
    return !a.empty() && !b.empty() && (a.find(b) != std::string::npos || b.find(a) != std::string::npos);
  };
  const std::function<bool(const MatchKey&)> steps[] = {
      [&](const MatchKey& key) { return key.raw == wanted.raw; },
      [&](const MatchKey& key) { return key.alnum == wanted.alnum; },
      [&](const MatchKey& key) { return !wanted.digits.empty() && key.digits == wanted.digits; },
      [&](const MatchKey& key) {
        return key.alnum.starts_with(wanted.alnum) || wanted.alnum.starts_with(key.alnum);
      },
      [&](const MatchKey& key) { return holds(key.alpha, wanted.alpha); }};
  int found = -1;
  for (const auto& step : steps) found = found < 0 ? firstWhere(step) : found;
  return found;
}

TEST(SeriesOrder, FindsTheSameAsALookAtEachEntry) {
  std::mt19937 random(5);
  const auto title = [&] {
    std::string text;
    for (auto length = 1 + random() % 7; text.size() < length;) text += "abcc78"[random() % 6];
    return text;
  };
  for (int round = 0; round < 300; ++round) {
    std::vector<std::string> titles;
    for (int i = 0; i < 8; ++i)
      if (std::string next = title(); std::ranges::find(titles, next) == titles.end()) titles.push_back(next);
    const SeriesOrder order = orderOf(titles);
    for (int i = 0; i < 40; ++i) {
      const std::string wanted = title();
      ASSERT_EQ(order.sequenceOf(makeMatchKey(wanted)).value_or(-1), sequenceByRule(titles, wanted))
          << wanted << " in " << testing::PrintToString(titles);
    }
  }
}

TEST(SeriesOrder, OrdersAListingInSpiteOfDamage) {
  const test::TempFolder folder;
  for (const char* name : {"A", "B", "C", "Ü"})
    test::writeText(folder.path() / (name + std::string(".jpg")), "x");
  const std::string ignored = "series.json ignored (no order entries): ";
  const std::tuple<const char*, const char*, std::string> cases[] = {
      {R"({"order": ["B.jpg", "A.jpg"]})", "BACÜ", ""},
      {R"({"order": [1, {"x": "C"}, "/elsewhere/B.jpg", "\u00dc.jpg", "A)", "CBAÜ", ""},
      {R"(x "order" : "order" [ "\C.jpg", "C.png", "\/B" ] "A")", "CBAÜ", ""},
      {R"({"order": ["Ü.jpg"]})", "ÜABC", ""},
      {R"({"order": [1, 2]})", "ABCÜ", ignored},
      {R"({"sequence": ["B"]})", "ABCÜ", ignored},
      {"", "ABCÜ", ignored},
  };
  for (const auto& [text, order, said] : cases) {
    test::writeText(folder.path() / "series.json", text);
    testing::internal::CaptureStderr();
    std::string listed;
    for (const ListedPoster& poster : listPosters(folder.path(), {}).posters)
      listed += std::filesystem::path(poster.path).stem();
    EXPECT_EQ(listed, order) << text;
    const std::string words = testing::internal::GetCapturedStderr();
    EXPECT_TRUE(words.starts_with(said) && words.empty() == said.empty()) << words;
  }
  test::writeText(folder.path() / "inner/series.json", "of another program");
  testing::internal::CaptureStderr();
  listPosters(folder.path(), {});
  EXPECT_EQ(testing::internal::GetCapturedStderr().find("inner"), std::string::npos) << "nothing lies there";
  std::string many = R"({"order": [)";
  for (int i = 0; i < 300'000; ++i) many += "\"x\",";
  test::writeText(folder.path() / "series.json", many + "\"C\"]}");
  EXPECT_FALSE(readSeriesOrder(folder.path() / "series.json").sequenceOf(makeMatchKey("c")))
      << "a megabyte is enough";
}

/// Each of them stands for the folder, which must not be looked through for each.
TEST(SeriesOrder, TakesNoLongerForManyGenericNames) {
  const test::TempFolder folder;
  for (int i = 0; i < 3'000; ++i) test::writeText(folder.path() / (std::to_string(i) + ".jpg"), "");
  std::string text = R"({"order": [)";
  for (int i = 0; i < 10'000; ++i) text += "\"poster." + std::to_string(i) + "\",";
  test::writeText(folder.path() / "series.json", text);
  const auto start = std::chrono::steady_clock::now();
  EXPECT_FALSE(readSeriesOrder(folder.path() / "series.json").empty());
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
}

}  // namespace
}  // namespace tavek
