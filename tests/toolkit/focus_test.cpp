#include "display/toolkit/focus.h"

#include <gtest/gtest.h>

namespace tavek {
namespace {

TEST(Focus, FollowsFromTheFactsInTheirOrder) {
  const MediaKind music = MediaKind::Music;
  const MediaKind series = MediaKind::Series;
  const struct {
    const char* name;
    FocusFacts facts;
  } cases[] = {
      {"Movie", {}},
      {"Seek", {.seekFocus = true}},
      {"Home", {.homeMode = true, .seekFocus = true}},
      {"UsersTab", {.homeMode = true, .chooserOpen = true, .stripShown = true}},
      {"Movie", {.chooserOpen = true}},
      {"HueTab", {.settings = FocusName::HueTab, .homeMode = true, .stripShown = true}},
      {"Screensaver", {.saverActive = true, .settings = FocusName::Settings}},
      {"Poster", {.stripShown = true, .stripAny = true, .seekFocus = true}},
      {"Movie", {.stripAny = true}},
      {"Tv", {.roomKind = series, .stripShown = true}},
      {"Music", {.roomKind = music, .audioItem = true}},
      {"Movie", {.roomKind = music}},
      {"Movie", {.audioItem = true}},
      {"Poster", {.roomKind = music, .audioItem = true, .stripAny = true}},
  };
  for (const auto& c : cases) EXPECT_STREQ(focusText(focusOf(c.facts)), c.name) << "case " << &c - cases;
  EXPECT_STREQ(focusText(static_cast<FocusName>(99)), "Unknown");
}

}  // namespace
}  // namespace tavek
