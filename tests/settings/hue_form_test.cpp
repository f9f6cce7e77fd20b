#include "display/settings/hue_form.h"

#include <gtest/gtest.h>

namespace tavek {
namespace {

const HueScan found{
    "", {{"1", "Sofa"}, {"2", ""}}, {{"a", "Dim", "1"}, {"b", "Lit", "1"}, {"c", "", "2"}, {"d", "All", ""}}};
const HueSettings stored{.bridge = "hue", .user = "me", .group = "1", .playScene = "a", .pauseScene = "d"};

/// A letter for each key: the arrows, Return (again: held), Tab (with shift), Back, and x for Backspace; text
/// stands in <>.
PageAct type(HueForm& form, std::string_view keys) {
  PageAct act = PageAct::Handled;
  while (!keys.empty()) {
    if (keys.front() == '<') {
      form.text(keys.substr(1, keys.find('>') - 1));
      keys.remove_prefix(keys.find('>') + 1);
      continue;
    }
    constexpr std::string_view letters = "durlehtTbx";
    constexpr SDL_Keycode codes[] = {SDLK_DOWN,   SDLK_UP,  SDLK_RIGHT, SDLK_LEFT,    SDLK_RETURN,
                                     SDLK_RETURN, SDLK_TAB, SDLK_TAB,   SDLK_AC_BACK, SDLK_BACKSPACE};
    const char key = keys.front();
    act = form.key({.key = codes[letters.find(key)], .repeat = key == 'h', .shift = key == 'T'});
    keys.remove_prefix(1);
  }
  return act;
}

/// The focused row, what the rows from the group on show, and the list with the marked option.
std::string shown(const HueForm& form) {
  std::string text = form.label(form.focusRow()) + ":";
  for (auto row = static_cast<std::size_t>(HueRow::Group); row < hueRows - 1; ++row)
    text += ' ' + form.value(static_cast<HueRow>(row));
  for (std::size_t i = 0; i < form.options().size(); ++i)
    text += (i == form.optionIndex() ? " *" : " ") + form.options()[i].label;
  return text;
}

TEST(HueForm, Keys) {
  const struct {
    const char* keys;
    const char* shows;
    PageAct act = PageAct::Handled;
  } cases[] = {
      {"ddd", "Group: Sofa Dim All None None"},
      {"ttT", "Bridge IP: Sofa Dim All None None"},
      {"u", "Save: Sofa Dim All None None"},
      {"ud", "Hue Lights: Sofa Dim All None None"},
      {"dddr", "Group: 2 Dim All None None"},
      {"dddrr", "Group: Sofa Dim All None None"},
      {"ddddr", "Play Scene: Sofa Lit All None None"},
      {"ddddrr", "Play Scene: Sofa Dim All None None"},
      {"dddddr", "Pause Scene: Sofa Dim Lit None None"},
      {"dddrdr", "Play Scene: 2 c All None None"},
      {"ddd<9>dr", "Play Scene: 19 Lit All None None"},
      {"ddd<9>dre", "Play Scene: 19 Lit All None None (none) Dim *Lit c All"},
      {"uur", "Pause Alert: Sofa Dim All None select"},
      {"uuurrr", "Play Alert: Sofa Dim All None None"},
      {"uuurr", "Play Alert: Sofa Dim All lselect None"},
      {"uuue", "Play Alert: Sofa Dim All None None"},
      {"ddde", "Group: Sofa Dim All None None (none) *Sofa (1)  (2)"},
      {"dddeh", "Group: Sofa Dim All None None (none) *Sofa (1)  (2)"},
      {"dddeddt", "Group: Sofa Dim All None None *(none) Sofa (1)  (2)"},
      {"dddede", "Group: 2 Dim All None None"},
      {"ddd<9>edue", "Group:  Dim All None None"},
      {"dddd<9>ueue", "Group:  Dim All None None"},
      {"dddedx", "Group: Sofa Dim All None None"},
      {"dddedb", "Group: Sofa Dim All None None"},
      {"ddded<7>ub", "Group: Sofa Dim All None None"},
      {"ddddeue", "Play Scene: Sofa  All None None"},
      {"dddddeue", "Pause Scene: Sofa Dim Lit None None"},
      {"ddddd<0>", "Pause Scene: Sofa Dim d0 None None"},
      {"uu<0>x", "Pause Alert: Sofa Dim All None None"},
      {"edd<no>x", "Hue User: Sofa Dim All None None"},
      {"b", "Hue Lights: Sofa Dim All None None", PageAct::ToAudio},
      {"l", "Hue Lights: Sofa Dim All None None", PageAct::PreviousTab},
      {"dddel", "Group: Sofa Dim All None None (none) *Sofa (1)  (2)", PageAct::PreviousTab},
      {"ue", "Save: Sofa Dim All None None", PageAct::Close},
      {"uh", "Save: Sofa Dim All None None"},
  };
  for (const auto& row : cases) {
    HueForm form;
    form.open(stored);
    form.takeScan(found);
    EXPECT_EQ(type(form, row.keys), row.act) << row.keys;
    EXPECT_EQ(shown(form), row.shows) << row.keys;
  }
}

TEST(HueForm, TypedTextIsWholeCharacters) {
  HueForm form;
  form.open({});
  EXPECT_FALSE(form.wantsText());
  type(form, "d<h\u00fc\n\x7f\u0085\xffg\u00e9\U0001F4A1>");
  EXPECT_EQ(form.value(HueRow::Bridge), "h\u00fcg\u00e9\U0001F4A1");
  type(form, "xx");
  EXPECT_EQ(form.value(HueRow::Bridge), "h\u00fcg");
  type(form, "xxxx");
  EXPECT_EQ(form.value(HueRow::Bridge), "(required)");
  type(form, "d<" + std::string(95, 'u') + "\u00e9v>");
  EXPECT_EQ(form.value(HueRow::User), std::string(95, 'u') + 'v');
  EXPECT_TRUE(form.wantsText());
  for (const char* keys : {"de", "bddd", "uuuuuueu"}) {
    type(form, keys);
    EXPECT_FALSE(form.wantsText()) << keys;
  }
}

TEST(HueForm, OnlyAWholeRecordIsSaved) {
  HueForm form;
  for (const HueSettings& partial :
       {HueSettings{.user = "me"}, HueSettings{.bridge = "hue", .enabled = false}}) {
    form.open(partial);
    EXPECT_EQ(type(form, "ue"), PageAct::Handled);
    EXPECT_EQ(form.status(), "Bridge and User cannot be empty.");
  }
  form.open(stored);
  EXPECT_EQ(form.settings(), stored);
  type(form, "exddd");
  EXPECT_FALSE(form.settings().enabled);
}

TEST(HueForm, AScanFixesWhatTheBridgeDoesNotKnow) {
  const HueScan bare{"", {}, {}}, failed{"Failed", {}, {}};
  const struct {
    const char* name;
    HueSettings settings;
    const char* meanwhile;
    HueScan scan;
    const char* shows;
  } cases[] = {
      {"all known, in another group too", stored, "", found, "Hue Lights: Sofa Dim All None None"},
      {"unknown group and scenes",
       {.group = "8", .playScene = "x"},
       "",
       found,
       "Hue Lights: Sofa Dim Dim None None"},
      {"the group's first", {.group = "2", .playScene = "x"}, "", found, "Hue Lights: 2 c c None None"},
      {"no group", {.playScene = "x", .pauseScene = "b"}, "", found, "Hue Lights:  Dim Lit None None"},
      {"a bridge without any", stored, "", bare, "Hue Lights:    None None"},
      {"a failure", stored, "", failed, "Hue Lights: 1 a d None None"},
      {"a group was typed", stored, "ddd<9>", found, "Group: 19 Dim All None None"},
      {"a scene was typed", stored, "dddd<9>", found, "Play Scene: Sofa a9 All None None"},
      {"a scene was typed, for none", stored, "dddd<9>", bare, "Play Scene:  a9  None None"},
      {"a list is open", stored, "ddde", found, "Group: Sofa Dim All None None"},
  };
  for (const auto& row : cases) {
    HueForm form;
    form.open(row.settings);
    form.say("Scanning");
    type(form, row.meanwhile);
    form.takeScan(row.scan);
    EXPECT_EQ(shown(form), row.shows) << row.name;
    EXPECT_EQ(form.status(), row.scan.failure) << row.name;
  }
}

}  // namespace
}  // namespace tavek
