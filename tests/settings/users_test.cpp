// The users' page: what keys, text and clicks do to it and to what is stored.
#include <string>
#include <string_view>

#include <gmock/gmock.h>

#include "display/settings/users_page.h"
#include "state/state_store.h"
#include "state/texts.h"
#include "support/media_root.h"
#include "support/offscreen.h"

namespace tavek {
namespace {

using testing::ElementsAre;

constexpr KeyPlace backspaceKey{0, 13};
KeyPress keyOf(char letter) {
  constexpr std::string_view letters = "LRUDEeKXQtTBq";
  constexpr SDL_Keycode codes[] = {SDLK_LEFT,   SDLK_RIGHT,     SDLK_UP,     SDLK_DOWN,   SDLK_RETURN,
                                   SDLK_RETURN, SDLK_KP_ENTER,  SDLK_DELETE, SDLK_ESCAPE, SDLK_TAB,
                                   SDLK_TAB,    SDLK_BACKSPACE, SDLK_q};
  return {codes[letters.find(letter)], true, letter == 'e', letter == 'T'};
}

/// Alex and Maria, whom a fresh store has, and two more.
class UsersTest : public testing::Test {
 protected:
  UsersTest() {
    for (const char* name : {"Иван", "Zoë"}) users.addUser(name);
  }
  /// From the name field, with the first user selected.
  void press(const std::string& letters) {
    form.openUsersTab();
    form.usersKeyDown(keyOf('D'));
    form.openUsersTab();
    for (const char letter : letters) consumed = form.usersKeyDown(keyOf(letter));
  }
  /// Where the form stands, and whether it knew the last key.
  std::string where() const {
    constexpr const char* areas[] = {"field", "neutral", "list", "keys"};
    std::string text = areas[static_cast<std::size_t>(form.usersFocus())] + std::string(" ");
    text += std::to_string(form.selectedUser()) + (form.userRowButtonFocus() ? "!" : "");
    const KeyPlace& cursor = form.keyboard().cursor();
    if (form.keyboard().wanted())
      text += " " + std::to_string(cursor.row) + "," + std::to_string(cursor.column);
    if (form.renameIndex()) text += " rename";
    if (form.deleteDialog()) text += form.deleteDialog()->deleteChosen ? " delete?" : " cancel?";
    return text + (form.wantsText() ? " text" : "") + (consumed ? "" : " unknown");
  }

  const test::TempFolder folder;
  StateStore store{folder.path() / "persist.json"};
  StoredUsers& users = store.parts().users;
  int changes = 0;
  bool consumed = true;
  UsersForm form{users, [this] { ++changes; }};
};

TEST_F(UsersTest, EachKeyHasItsMeaningInEachPlace) {
  for (const auto& [letters, expected] : test::table(R"(
      E => field 0 text ;; L => field 0 text unknown ;; Q => field 0 text unknown ;; B => field 0 text unknown
      U => neutral 0 ;; UL => neutral 0 unknown ;; UR => neutral 0 unknown ;; UE => neutral 0
      UU => field 0 text ;; UD => list 0 ;; D => list 0 ;; DU => neutral 0 ;; DDDD => list 3
      DDDDRD => list 0 ;; DDDRU => list 1 ;; DDRUU => neutral 0 ;; DDR => list 1! ;; DDRL => list 1
      DDB => list 1 unknown ;; DDt => list 1 unknown ;; DDe => list 1
      R => keys 0 0,0 text ;; RE => list 0 ;; RL => list 0 ;; RU => field 0 text ;; RRDRL => keys 0 1,1 text
      RDDDDU => keys 0 3,0 text ;; RDDDDD => list 0 ;; RB => keys 0 0,0 text unknown
      DDE => keys 1 0,0 rename text ;; DDED => keys 1 1,0 rename text ;; DDEL => list 1
      DDEU => field 1 text ;; DDKK => list 1
      X => field 0! delete? ;; UX => neutral 0! delete? ;; RX => keys 0! 0,0 delete? ;; DDRK => list 1! delete?
      DDREe => list 1! delete? ;; DDREL => list 1! cancel? ;; DDRELR => list 1! delete?
      DDRET => list 1! cancel? ;; DDRETt => list 1! delete? ;; DDREDUq => list 1! delete?
      DDREB => list 1! delete? unknown ;; DDREQ => list 1 ;; DDRELE => list 1 ;; DDEXQ => keys 1 0,0 rename text)")) {
    press(letters);
    EXPECT_EQ(where(), expected) << letters;
  }
  EXPECT_EQ(users.users().size(), 4U);
}

TEST_F(UsersTest, TakesWholeCharactersUpToSixteenBytes) {
  const struct {
    const char *typed, *field, *shorter;  // by one character
  } rows[] = {{"aBC1d", "Abc1d", "Abc1"},
              {"éA", "éa", "é"},
              {"\t\x1B\x7F\u0085x y", "X y", "X "},
              {"a\xFF\xC3(\xE7\x8E", "A(", "A"},
              {"123456789012345é6€7", "1234567890123456", "123456789012345"},
              {"王王王王王王王", "王王王王王", "王王王王"},
              {"🎬🎬🎬🎬🎬", "🎬🎬🎬🎬", "🎬🎬🎬"}};
  for (const auto& row : rows) {
    press("");
    form.typeText(row.typed);
    EXPECT_EQ(form.field(), row.field);
    form.clickNameField();
    form.clickKeyboard(backspaceKey);
    EXPECT_EQ(form.field(), row.shorter);
  }
  press("R");
  // Backspace, Caps, a, s, Shift, d, Space, Tab, Caps, 1, a
  for (const KeyPlace& key :
       {backspaceKey, {2, 0}, {2, 1}, {2, 2}, {3, 0}, {2, 3}, {4, 0}, {1, 0}, {2, 0}, {0, 1}, {2, 1}})
    form.clickKeyboard(key);
  EXPECT_EQ(form.field(), "AsD 1a") << "shift holds for one character, a digit too";
}

TEST_F(UsersTest, StoresANameThatNobodyHas) {
  users.addUser("Someone imported!");
  users.setActiveUser("Maria");
  const struct {
    const char* letters;  // to the name
    int backspaces;
    const char *typed, *status, *where;
  } rows[] = {{"R", 0, "  ", "Name cannot be empty.", "keys 0 1,14 text"},
              {"R", 0, "  aLEX ", "User already exists.", "list 0"},
              {"R", 0, "ИВАН", "User already exists.", "list 2"},
              {"R", 0, "zoe\u0308", "User already exists.", "list 3"},
              {"DE", 0, " ", "Name unchanged.", "list 0"},
              {"DE", 4, "", "Name cannot be empty.", "keys 0 1,14 rename text"},
              {"DDE", 5, "ZOË", "User already exists.", "list 3"},
              {"DDDDDE", 0, "x", "Name cannot exceed 16 characters.", "keys 4 1,14 rename text"},
              {"DDDDDE", 1, "x", "Renamed \"Someone imported!\" to \"Someone imported\"", "list 4"},
              {"DDE", 5, "王", "Renamed \"Maria\" to \"王\"", "list 1"},
              {"R", 0, "maria", "Added \"Maria\"", "keys 5 text"},
              {"R", 0, "../\"\\", "Added \"../\"\\\"", "keys 6 text"}};
  for (const auto& row : rows) {
    press(row.letters);
    for (int i = 0; i < row.backspaces; ++i) form.clickKeyboard(backspaceKey);
    form.typeText(row.typed);
    form.clickKeyboard(KeyPlace{1, 14});
    EXPECT_EQ(form.usersStatus(), row.status) << row.typed;
    EXPECT_EQ(where(), row.where) << row.status;
  }
  EXPECT_EQ(changes, 4);
  store.flush(std::chrono::seconds(5));
  StateStore later{folder.path() / "persist.json"};
  EXPECT_EQ(later.parts().users.activeUser(), "王");
  EXPECT_THAT(later.parts().users.users(),
              ElementsAre("Alex", "王", "Иван", "Zoë", "Someone imported", "Maria", "../\"\\"));
}

TEST_F(UsersTest, DeletesTheUserThatItAsksAbout) {
  press("DDREE");
  form.advance(1000);
  form.advance(5999);
  EXPECT_EQ(form.usersStatus(), "Deleted \"Maria\"");
  form.advance(6000);
  EXPECT_EQ(form.usersStatus(), "");
  press("DDEXE");
  EXPECT_EQ(where(), "list 1") << "the row that was edited is another user's";
  press("DDXEX");
  EXPECT_EQ(form.usersStatus(), "At least one user required.");
  EXPECT_EQ(where(), "list 0");
  EXPECT_THAT(users.users(), ElementsAre("Alex"));
  EXPECT_EQ(changes, 3);
}

TEST(UsersLayoutTest, ShowsTheSelectedUserAboveTheKeyboard) {
  const struct {
    SDL_Point window;
    double animation;
    std::size_t selected, first, rows;  // of twenty users
  } cases[] = {{{1280, 720}, 0, 6, 0, 12},  {{1280, 720}, 0, 7, 1, 12}, {{1280, 720}, 0, 19, 8, 12},
               {{1280, 720}, 1, 19, 15, 5}, {{640, 360}, 0, 10, 8, 4},  {{640, 360}, 0.5, 10, 9, 2},
               {{640, 360}, 1, 10, 10, 1},  {{360, 640}, 1, 0, 0, 3},   {{1080, 1920}, 1, 19, 0, 20}};
  for (const auto& [window, animation, selected, first, rows] : cases) {
    const UsersLayout layout = layoutUsers(window, 60, animation, 20, selected);
    EXPECT_EQ(std::pair(layout.firstRow, layout.rows.size()), std::pair(first, rows)) << selected;
    EXPECT_EQ(layout.userAt(layout.rows.back().y), first + rows - 1);
    EXPECT_EQ(layout.userAt(layout.list.y + 44 * static_cast<int>(rows)), std::nullopt);
    EXPECT_LT(layout.list.y + layout.list.h, layout.keyboard.panel.y);
  }
}

TEST_F(UsersTest, PageIsClickedWhereItIsDrawn) {
  for (const SDL_Point window : {SDL_Point{640, 360}, SDL_Point{360, 640}}) {
    const test::Offscreen screen(window.x, window.y);
    const UsersLayout layout = layoutUsers(window, 60, 1, 4, 0);
    UsersPage page(users, [] {});
    page.open();
    Uint64 now = 0;
    const auto clickAt = [&](const SDL_Rect& rect) { return page.click({rect.x + 1, rect.y + 1}, now); };
    const auto drawnAt = [&](const SDL_Rect& rect) {
      for (const Uint64 ms : {1, 500}) page.advance(now += ms);
      page.draw({screen.renderer(), screen.font(), window.x, window.y, now}, 60, true);
      return screen.pixel(rect.x + 1, rect.y + 1);
    };
    EXPECT_FALSE(clickAt(layout.nameField)) << "nothing is there yet";
    EXPECT_EQ(drawnAt(layout.nameField), theme::black);
    EXPECT_FALSE(clickAt({0, 100, 0, 0}));
    EXPECT_TRUE(clickAt(layout.nameField));
    EXPECT_EQ(drawnAt(layout.keyboard.keys[0][0]), theme::accent);
    EXPECT_TRUE(clickAt(layout.keyboard.keys[1][13]));
    EXPECT_NE(drawnAt(layout.keyboard.keys[0][0]), theme::accent);
    EXPECT_EQ(drawnAt(layout.keyboard.keys[1][13]), theme::accent);

    const std::size_t before = users.users().size();
    const DeleteDialogLayout dialog = layoutDeleteDialog(window);
    for (const SDL_Rect& button : {dialog.cancel, dialog.remove}) {
      EXPECT_TRUE(clickAt(deleteButtonOf(layout.rows[0])));
      EXPECT_EQ(drawnAt(dialog.remove), rgba(48, 176, 96));
      EXPECT_TRUE(clickAt({0, 0, 0, 0})) << "the question comes first";
      EXPECT_EQ(users.users().size(), before);
      EXPECT_TRUE(clickAt(button));
      drawnAt(button);
    }
    EXPECT_EQ(users.users().size(), before - 1);
  }
}

}  // namespace
}  // namespace tavek
