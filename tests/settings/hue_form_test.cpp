#include "display/settings/hue_form.h"

#include <gtest/gtest.h>

namespace tavek {
namespace {

/// d, u, r, l: directions; e: Enter; b: backspace; x: back; t, T: tab, with shift.
PageAct press(HueForm& form, const std::string& keys) {
  const auto keyOf = [](char c) -> SDL_Keycode {
    switch (c) {
      case 'd':
        return SDLK_DOWN;
      case 'u':
        return SDLK_UP;
      case 'r':
        return SDLK_RIGHT;
      case 'l':
        return SDLK_LEFT;
      case 'e':
        return SDLK_RETURN;
      case 'b':
        return SDLK_BACKSPACE;
      case 'x':
        return SDLK_AC_BACK;
      default:
        return SDLK_TAB;
    }
  };
  PageAct act = PageAct::Unhandled;
  for (const char c : keys) act = form.key({.key = keyOf(c), .shift = c == 'T'});
  return act;
}

HueForm formOf(const HueSettings& settings) {
  HueForm form;
  form.open(settings);
  form.takeScan({"", {{"1", "Sofa"}, {"2", ""}}, {{"a", "Dim", "1"}, {"b", "Bright", "1"}, {"c", "", "2"}}});
  return form;
}

const HueSettings paired{.bridge = "b", .user = "u", .group = "1", .playScene = "a", .pauseScene = "b"};

TEST(HueForm, KeysStepChooseAndSave) {
  using enum PageAct;
  const struct {
    const char* keys;
    PageAct act;
    HueRow row;
    const char *group, *play, *alert;
    const char* status = "";
  } rows[] = {
      {"l", PreviousTab, HueRow::Enabled, "1", "a", ""},
      {"x", ToAudio, HueRow::Enabled, "1", "a", ""},
      {"u", Handled, HueRow::Save, "1", "a", ""},
      {"tT", Handled, HueRow::Enabled, "1", "a", ""},
      {"ue", Close, HueRow::Save, "1", "a", ""},
      {"dbue", Handled, HueRow::Enabled, "1", "a", ""},
      {"dbuue", Handled, HueRow::Save, "1", "a", "", "Bridge and User cannot be empty."},
      {"dddr", Handled, HueRow::Group, "2", "a", ""},
      {"dddrr", Handled, HueRow::Group, "1", "a", ""},
      {"ddddr", Handled, HueRow::PlayScene, "1", "b", ""},
      {"ddddrr", Handled, HueRow::PlayScene, "1", "a", ""},
      {"dddrdr", Handled, HueRow::PlayScene, "2", "c", ""},
      {"uuur", Handled, HueRow::PlayAlert, "1", "a", "select"},
      {"uuurrr", Handled, HueRow::PlayAlert, "1", "a", ""},
      {"dddede", Handled, HueRow::Group, "2", "a", ""},
      {"dddeue", Handled, HueRow::Group, "", "a", ""},
      {"dddeux", Handled, HueRow::Group, "1", "a", ""},
      {"dddel", PreviousTab, HueRow::Group, "1", "a", ""},
  };
  for (const auto& row : rows) {
    HueForm form = formOf(paired);
    EXPECT_EQ(press(form, row.keys), row.act) << row.keys;
    EXPECT_EQ(form.focusRow(), row.row) << row.keys;
    const HueSettings settings = form.settings();
    EXPECT_EQ(settings.group.value_or(""), row.group) << row.keys;
    EXPECT_EQ(settings.playScene.value_or(""), row.play) << row.keys;
    EXPECT_EQ(settings.playAlert.value_or(""), row.alert) << row.keys;
    EXPECT_EQ(form.status(), row.status) << row.keys;
  }
}

TEST(HueForm, TakesTextOnlyWhereItIsTyped) {
  HueForm form = formOf(paired);
  form.text("no");
  press(form, "d");
  EXPECT_TRUE(form.wantsText());
  form.text("\xC3\xA9\x01\xFF\n1");
  EXPECT_EQ(form.value(HueRow::Bridge), "bé1");
  press(form, "bb");
  EXPECT_EQ(form.value(HueRow::Bridge), "b");
  form.text(std::string(200, 'x'));
  EXPECT_EQ(form.value(HueRow::Bridge).size(), 96U);
  press(form, "dde");
  form.text("no");
  EXPECT_TRUE(form.listOpen() && !form.wantsText());
  EXPECT_EQ(form.value(HueRow::Group), "Sofa");
}

TEST(HueForm, FollowsTheBridgeButNotOverWhatWasTyped) {
  HueForm form = formOf({.bridge = "b", .user = "u", .group = "9", .playScene = "gone", .pauseScene = ""});
  EXPECT_EQ(form.settings().group, "1");
  EXPECT_EQ(form.settings().playScene, "a");
  form = formOf({.bridge = "b", .user = "u"});
  EXPECT_EQ(form.settings().group, std::nullopt);
  form.open(paired);
  press(form, "ddd");
  form.text("7");
  form.takeScan({"", {{"5", ""}}, {}});
  EXPECT_EQ(form.settings().group, "17");
  EXPECT_EQ(form.settings().playScene, std::nullopt);
  form.takeScan({"Failed to load groups from bridge."});
  EXPECT_EQ(form.settings().group, "17");
}

}  // namespace
}  // namespace tavek
