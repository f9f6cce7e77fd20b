#include "display/settings/hue_form.h"

#include <gtest/gtest.h>

namespace tavek {
namespace {

const HueScan found{
    "", {{"1", "Sofa"}, {"2", ""}}, {{"a", "Dim", "1"}, {"b", "Lit", "1"}, {"c", "", "2"}, {"d", "All", ""}}};
const HueSettings stored{.bridge = "hue", .user = "me", .group = "1", .playScene = "a", .pauseScene = "d"};

/// A letter for each key: the arrows, Return (h: held), Tab (T: with shift), Back, x for Backspace. Text
/// stands in <>; ! is a scan that succeeds, 0 one that finds nothing, ? one that fails.
PageAct type(HueForm& form, std::string_view keys) {
  PageAct act = PageAct::Handled;
  for (; !keys.empty(); keys.remove_prefix(1)) {
    constexpr std::string_view letters = "durlehtTbx";
    constexpr SDL_Keycode codes[] = {SDLK_DOWN,   SDLK_UP,  SDLK_RIGHT, SDLK_LEFT,    SDLK_RETURN,
                                     SDLK_RETURN, SDLK_TAB, SDLK_TAB,   SDLK_AC_BACK, SDLK_BACKSPACE};
    const char key = keys.front();
    if (key == '<') {
      form.text(keys.substr(1, keys.find('>') - 1));
      keys.remove_prefix(keys.find('>'));
    } else if (key == '!' || key == '0' || key == '?') {
      form.takeScan(key == '!' ? found : HueScan{key == '?' ? "Failed" : "", {}, {}});
    } else {
      act = form.key({.key = codes[letters.find(key)], .repeat = key == 'h', .shift = key == 'T'});
    }
  }
  return act;
}

/// The focused row, what the rows from the group on show, the status, and the list with the marked option.
std::string shown(const HueForm& form) {
  std::string text = form.label(form.focusRow()) + ":";
  for (auto row = static_cast<std::size_t>(HueRow::Group); row < hueRows - 1; ++row)
    text += ' ' + form.value(static_cast<HueRow>(row));
  text += form.status();
  for (std::size_t i = 0; i < form.options().size(); ++i)
    text += (i == form.optionIndex() ? " *" : " ") + form.options()[i].label;
  return text;
}

TEST(HueForm, KeysAndScans) {
  const struct {
    const char* keys;
    const char* shows;
    PageAct act = PageAct::Handled;
    HueSettings settings = stored;
  } cases[] = {
      {"!ttTdd", "Group: Sofa Dim All None None"},
      {"!dddr", "Group: 2 Dim All None None"},
      {"!ddddr", "Play Scene: Sofa Lit All None None"},
      {"!dddrdr", "Play Scene: 2 c All None None"},
      {"!ddd<9>dre", "Play Scene: 19 Lit All None None (none) Dim *Lit c All"},
      {"!uuurr", "Play Alert: Sofa Dim All lselect None"},
      {"!uuurrr", "Play Alert: Sofa Dim All None None"},
      {"!dddeh", "Group: Sofa Dim All None None (none) *Sofa (1)  (2)"},
      {"!dddede", "Group: 2 Dim All None None"},
      {"!ddd<9>ee", "Group:  Dim All None None"},
      {"!dddd<9>ueue", "Group:  Dim All None None"},
      {"!ddded<7>ub", "Group: Sofa Dim All None None"},
      {"!ddddeue", "Play Scene: Sofa  All None None"},
      {"!ddddd<5>", "Pause Scene: Sofa Dim d5 None None"},
      {"!uu<5>x", "Pause Alert: Sofa Dim All None None"},
      {"!edddx", "Group: Sofa Dim All None None"},
      {"b", "Hue Lights: 1 a d None None", PageAct::ToAudio},
      {"!dddel", "Group: Sofa Dim All None None (none) *Sofa (1)  (2)", PageAct::PreviousTab},
      {"ue", "Save: 1 a d None None", PageAct::Close},
      {"ue", "Save:    None NoneBridge and User cannot be empty.", PageAct::Handled, {.user = "me"}},
      {"eue", "Save:    None NoneBridge and User cannot be empty.", PageAct::Handled, {.bridge = "hue"}},
      // What the bridge does not know is put right, but for what was changed since it was asked.
      {"!", "Hue Lights: Sofa Dim Dim None None", PageAct::Handled, {.group = "8", .playScene = "x"}},
      {"!", "Hue Lights: 2 c c None None", PageAct::Handled, {.group = "2", .playScene = "x"}},
      {"!", "Hue Lights:  Dim Lit None None", PageAct::Handled, {.playScene = "x", .pauseScene = "b"}},
      {"0", "Hue Lights:    None None"},
      {"?", "Hue Lights: 1 a d None NoneFailed"},
      {"ddd<9>!", "Group: 19 Dim All None None"},
      {"dddd<9>0", "Play Scene:  a9  None None"},
      {"ddde!", "Group: Sofa Dim All None None"},
  };
  for (const auto& row : cases) {
    HueForm form;
    form.open(row.settings);
    EXPECT_EQ(form.settings(), row.settings);
    EXPECT_EQ(type(form, row.keys), row.act) << row.keys;
    EXPECT_EQ(shown(form), row.shows) << row.keys;
  }
}

TEST(HueForm, TypedTextIsWholeCharacters) {
  HueForm form;
  form.open({});
  type(form, "d<h\u00fc\n\x7f\u0085\xffg\u00e9\U0001F4A1>");
  EXPECT_EQ(form.value(HueRow::Bridge), "h\u00fcg\u00e9\U0001F4A1");
  type(form, "xx");
  EXPECT_EQ(form.value(HueRow::Bridge), "h\u00fcg");
  type(form, "xxxxd<" + std::string(95, 'u') + "\u00e9v>");
  EXPECT_EQ(form.value(HueRow::Bridge), "(required)");
  EXPECT_EQ(form.value(HueRow::User), std::string(95, 'u') + 'v');
  EXPECT_TRUE(form.wantsText());
  for (const char* keys : {"de", "bddd", "uuuuuueu"}) {
    type(form, keys);
    EXPECT_FALSE(form.wantsText()) << keys;
  }
}

}  // namespace
}  // namespace tavek
