#include "viewing/item_rules.h"

#include <gtest/gtest.h>

namespace tavek {
namespace {

TEST(ItemRules, StoredPositions) {
  constexpr std::int64_t s = 1'000'000;
  const struct {
    bool avi;
    std::optional<std::int64_t> stored;
    std::int64_t duration;
    std::optional<std::int64_t> seek;
    bool drops;
  } resumes[] = {
      {false, {}, 100 * s, {}, false},
      {false, 0, 100 * s, {}, false},
      {false, -5, 100 * s, {}, false},
      {false, 60 * s, 100 * s, 60 * s, false},
      {false, 99 * s - 1, 100 * s, 99 * s - 1, false},
      {false, 99 * s, 100 * s, {}, true},
      {false, 60 * s, 0, {}, true},
      {true, 60 * s, 100 * s, {}, true},
      {true, {}, 100 * s, {}, false},
  };
  for (const auto& c : resumes) {
    const ResumeStep step = resumeStep(c.avi, c.stored, c.duration);
    EXPECT_EQ(step.seekUs, c.seek) << c.stored.value_or(-1) << " of " << c.duration;
    EXPECT_EQ(step.dropStored, c.drops) << c.stored.value_or(-1) << " of " << c.duration;
  }

  EXPECT_EQ(savedPositionUs(7, 9), 7);
  EXPECT_EQ(savedPositionUs(0, 9), 9);
  EXPECT_EQ(savedPositionUs(-1, -3), 0);

  EXPECT_TRUE(countsAsWatched(90 * s, 100 * s));
  EXPECT_FALSE(countsAsWatched(90 * s - 1, 100 * s));
  EXPECT_FALSE(countsAsWatched(90 * s, 0));

  EXPECT_EQ(endPositionUs(false, 91 * s, 100 * s), 91 * s);
  EXPECT_EQ(endPositionUs(false, 99 * s, 100 * s), 0);
  EXPECT_EQ(endPositionUs(false, 99 * s, 0), 99 * s);
  EXPECT_EQ(endPositionUs(true, 50 * s, 100 * s), std::nullopt);
}

TEST(ItemRules, BoundaryIsTwentyFourFrames) {
  for (const auto& [rate, us] :
       {std::pair{25.0, 960'000}, std::pair{23.976, 1'001'001}, std::pair{120.0, 250'000},
        std::pair{5.0, 1'500'000}, std::pair{0.0, 500'000}, std::pair{-1.0, 500'000}}) {
    EXPECT_EQ(boundaryForRate(rate), us) << rate;
  }
}

}  // namespace
}  // namespace tavek
