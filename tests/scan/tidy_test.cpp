#include "scan/tidy.h"

#include <unistd.h>

#include <gmock/gmock.h>

#include "base/paths.h"
#include "scan/tidy_rules.h"
#include "scan/undo_renames.h"
#include "state/state_store.h"
#include "support/media_root.h"
#include "support/table.h"

namespace tavek {
namespace {

using namespace test;
using testing::ElementsAre;
using testing::HasSubstr;

/// Files with what they hold, and folders; the log aside.
using Tree = std::map<std::string, std::string>;

Tree treeOf(const fs::path& room) {
  Tree tree;
  for (const auto& entry : fs::recursive_directory_iterator(room)) {
    const std::string name = entry.path().lexically_relative(room).string();
    if (name == renameLogName) continue;
    if (entry.is_symlink())
      tree[name] = "to " + fs::read_symlink(entry.path()).string();
    else
      tree[name] = entry.is_directory() ? "folder" : readText(entry.path());
  }
  return tree;
}

struct TidyTest : testing::Test {
  static fs::path freshFile() {
    for (const auto& entry : fs::directory_iterator(mediaRoot())) fs::remove_all(entry.path());
    writeText(stateFile(), R"({"users":{"Ann":{},"Bob":{}}})");
    return stateFile();
  }
  /// Each holds its own name, and as many bytes more as are told.
  void put(const std::string& name, std::size_t more = 0) const {
    writeText(room / name, name + std::string(more, '.'));
  }
  /// A bar stands between the names.
  void putAll(const std::string& names) const {
    for (const std::string& name : split(names)) put(name);
  }
  std::string at(const std::string& name) const { return (room / name).string(); }
  std::string tidyOne(const std::string& name, const std::string& wanted) const {
    const bool film = isTidiedFilmRoom(room);
    const auto now = film ? tidyFilm(context, room, room / name, wanted)
                          : renameEpisodeTo(context, room, room / name, wanted);
    return now.lexically_relative(room).string();
  }
  void restart(std::int64_t time) {
    context.logs.clear();
    context.scanTime = time;
  }
  UndoReport undo() {
    UndoReport report = undoRenames(room, store.parts(), stop);
    store.flush(std::chrono::seconds(5));
    return report;
  }

  Flag stop;
  fs::path room = mediaRoot() / "movies";
  std::string playing;
  std::vector<std::string> lines;
  StateStore store{freshFile()};
  TidyContext context{.stored = store.parts(),
                      .stop = stop,
                      .busy = [&](const fs::path& media) { return media == playing; },
                      .scanTime = 100,
                      .log = [&](const std::string& line) { lines.push_back(line); }};
};

TEST_F(TidyTest, PutsAMessyRoomInOrderOnceAndBack) {
  const std::string nfd = "Ame\xcc\x81lie", nfc = "Am\xc3\xa9lie", latin = "\xc4lien";
  putAll(
      "Alien.1979.1080p.en.srt|Alien.1979.1080p.pt-BR.forced.srt|Alien.1979.1080p.nfo|"
      "Alien.1979.1080p-thumb.jpg|Alien.1979.1080p.poster.jpg|Alien.1979.1080p.Extra.jpg|"
      "Alien.1979.1080p.avi|aliens/aliens.srt|aliens/poster.jpg|aliens/Extras/making of.mkv|"
      "aliens/aliens-trailer.mkv|aliens/.hidden.mkv|Box/Down.mkv|Box/Up.de.srt|Box/Down.srt|Box/poster.jpg|"
      "deep/er/Heat.1995.mkv|deep/er/poster.jpg|Long CD1.avi|Long CD2.avi|1917.2019.mkv|2012.mkv|"
      "solaris.mkv|Taken.mkv|Taken/other.txt|Taken/Taken.avi|Same.mkv|same.mkv|ships/VIDEO_TS/a.vob|"
      "Show S01E02.mkv|Trailers/x.mkv|sample.mkv|Paw/Season 1/one.mkv|Season of/w.mkv|.secret/y.mkv|🎬.mkv|" +
      nfd + ".mkv|" + latin + ".mkv|" + latin + ".srt");
  put("Alien.1979.1080p.mkv", 50);
  put("aliens/aliens.mkv", 9);
  put("Box/Up.mkv", 5);
  fs::create_symlink("../outside", room / "linked");
  writeText(mediaRoot() / "outside/film.mkv", "outside");
  fs::create_symlink("2012.mkv", room / "link.mkv");
  // "-" stands for the place where it is.
  std::vector<std::array<std::string, 3>> films = table<3>(R"(
      Alien.1979.1080p.avi => Alien (1979) => - ;; Alien.1979.1080p.mkv => Alien (1979) => Alien (1979)/Alien (1979).mkv
      aliens/aliens.mkv => Aliens (1986) => Aliens (1986)/Aliens (1986).mkv ;; Box/Down.mkv => Down (2001) => -
      Box/Up.mkv => Up (2009) => Up (2009)/Up (2009).mkv ;; 2012.mkv => 2012 => 2012/2012.mkv
      deep/er/Heat.1995.mkv => Heat (1995) => Heat (1995)/Heat (1995).mkv ;; Long CD1.avi => Long (1990) => -
      Long CD2.avi => Long (1990) => - ;; 1917.2019.mkv => 1917 (2019) => 1917 (2019)/1917 (2019).mkv
      solaris.mkv => Солярис (1972) => Солярис (1972)/Солярис (1972).mkv ;; Taken.mkv => Taken => -
      Same.mkv => same => same/same.mkv ;; same.mkv => Same => Same/Same.mkv ;; ships/VIDEO_TS/a.vob => Ships => -
      Show S01E02.mkv => Show => - ;; Paw/Season 1/one.mkv => One (2001) => - ;; Trailers/x.mkv => X (1999) => -
      Season of/w.mkv => Season of (2011) => Season of (2011)/Season of (2011).mkv ;; sample.mkv => Sample (2000) => -
      .secret/y.mkv => Y => - ;; 🎬.mkv => Emoji => Emoji/Emoji.mkv ;; linked/film.mkv => Film => - ;; link.mkv => Link => -)");
  films.push_back({nfd + ".mkv", nfc, nfc + "/" + nfc + ".mkv"});
  films.push_back({latin + ".mkv", "Latin", "Latin/Latin.mkv"});
  for (auto& [film, wanted, goal] : films) {
    if (goal == "-") goal = film;
  }

  const Tree before = treeOf(room);
  for (const auto& [film, wanted, goal] : films) EXPECT_EQ(tidyOne(film, wanted), goal);
  const Tree after = treeOf(room);
  for (const char* ending : {".en.srt", ".pt-BR.forced.srt", ".nfo", "-thumb.jpg", ".poster.jpg"})
    EXPECT_EQ(after.at(std::string("Alien (1979)/Alien (1979)") + ending),
              std::string("Alien.1979.1080p") + ending);
  for (const char* name :
       {"Alien.1979.1080p.Extra.jpg", "Aliens (1986)/Aliens (1986).srt", "Aliens (1986)/poster.jpg",
        "Aliens (1986)/Extras/making of.mkv", "Aliens (1986)/aliens-trailer.mkv", "Aliens (1986)/.hidden.mkv",
        "Up (2009)/Up (2009).de.srt", "Box/Down.srt", "Box/poster.jpg", "Heat (1995)/poster.jpg",
        "Latin/Latin.srt"})
    EXPECT_TRUE(after.contains(name)) << name;
  EXPECT_FALSE(after.contains("deep") || after.contains("aliens"));

  restart(200);
  for (const auto& [film, wanted, goal] : films) EXPECT_EQ(tidyOne(goal, wanted), goal);
  EXPECT_EQ(treeOf(room), after);

  const UndoReport report = undo();
  EXPECT_EQ(report.skipped, 0U) << testing::PrintToString(report.lines);
  EXPECT_EQ(treeOf(room), before);
  restart(300);
  for (const auto& [film, wanted, goal] : films) tidyOne(film, wanted);
  EXPECT_EQ(treeOf(room), before) << "what was taken back stays so";
  EXPECT_EQ(readText(mediaRoot() / "outside/film.mkv"), "outside");
}

TEST_F(TidyTest, LeavesWhatMustNotBeTouched) {
  // Extras would hide it, as would a trailer; and a file and a link stand in the way of its folder.
  auto names = split("|..|.Film|../Film|Fi/lm|Fi\nlm|Trailer|Extras|File|Link");
  names.insert(names.end(), {std::string("Fi\0lm", 5), std::string(181, 'a')});
  for (const std::string& wanted : names) {
    put("film.mkv");
    put("File");
    std::error_code ignored;
    fs::create_directory_symlink("..", room / "Link", ignored);
    EXPECT_EQ(tidyOne("film.mkv", wanted), "film.mkv") << wanted;
  }
  EXPECT_EQ(tidyOne("film.mkv", std::string(180, 'a')).size(), 365U);
  EXPECT_EQ(tidyOne("gone.mkv", "Gone"), "gone.mkv");

  putAll("plays/plays.mkv|plays/plays-trailer.mkv");
  playing = at("plays/plays-trailer.mkv");
  EXPECT_EQ(tidyOne("plays/plays.mkv", "Plays (2001)"), "plays/plays.mkv");
  put("plays.mkv");
  playing = at("plays.mkv");
  EXPECT_EQ(tidyOne("plays.mkv", "Plays (2002)"), "plays.mkv");
  playing.clear();
  stop = true;
  EXPECT_EQ(tidyOne("plays.mkv", "Plays (2002)"), "plays.mkv");
}

TEST_F(TidyTest, RenamesNothingThatItCannotLog) {
  putAll("film.mkv|film.srt");
  const Tree before = treeOf(room);
  fs::create_directory(room / renameLogName);
  EXPECT_EQ(tidyOne("film.mkv", "Film"), "film.mkv") << "no log can be made";
  fs::remove(room / renameLogName);
  fs::create_symlink("../elsewhere", room / renameLogName);
  EXPECT_EQ(tidyOne("film.mkv", "Film"), "film.mkv") << "a link instead of a log";
  fs::remove(room / renameLogName);
  writeText(room / renameLogName, "{\"broken\n");
  onFullDisk(40, [&] { EXPECT_EQ(tidyOne("film.mkv", "Film"), "film.mkv"); });
  EXPECT_EQ(treeOf(room), before);
  EXPECT_EQ(readText(room / renameLogName), "{\"broken\n");
  EXPECT_FALSE(fs::exists(mediaRoot() / "elsewhere"));
  EXPECT_EQ(tidyOne("film.mkv", "Film"), "Film/Film.mkv");
}

TEST_F(TidyTest, LeavesAClosedFolderAsItIs) {
  putAll("film/film.mkv|film/film.srt");
  const Tree before = treeOf(room);
  fs::permissions(mediaRoot(), fs::perms::all);
  fs::permissions(room, fs::perms::all);
  fs::permissions(room / "film", fs::perms(0555));
  const bool root = geteuid() == 0;
  ASSERT_EQ(root ? seteuid(65534) : 0, 0);
  const std::string now = tidyOne("film/film.mkv", "Film (2001)");
  ASSERT_EQ(root ? seteuid(0) : 0, 0);
  EXPECT_EQ(now, "film/film.mkv");
  EXPECT_EQ(treeOf(room), before);
  EXPECT_THAT(lines, testing::Not(testing::IsEmpty()));
}

TEST_F(TidyTest, TakesWhatIsRememberedAlong) {
  StoredUsers& users = store.parts().users;
  for (const bool flat : {false, true}) {
    const std::string old = flat ? "b.mkv" : "b/b.mkv", now = "B (2001)/B (2001).mkv";
    put(old);
    if (flat) {
      put("c.mkv");
      writeText(room / "playback.json", R"({"positions":{"b.mkv":{"offset":6},"c.mkv":{"offset":8}}})");
    }
    for (const char* user : {"Ann", "Bob"}) {
      users.setPosition(at(old), 7, user);
      users.markWatched(at(old), true, user);
    }
    store.flush(std::chrono::seconds(5));
    ASSERT_EQ(tidyOne(old, "B (2001)"), now);
    for (const bool back : {false, true}) {
      EXPECT_EQ(back ? undo().skipped : 0, 0U);
      store.flush(std::chrono::seconds(5));
      const std::string place = at(back ? old : now);
      StateStore again(stateFile());
      for (const char* user : {"Ann", "Bob"}) {
        again.parts().users.setActiveUser(user);
        EXPECT_EQ(again.parts().users.resumeTarget(room), fs::path(place)) << user << flat << back;
        EXPECT_TRUE(again.parts().users.isWatched(place)) << user << flat << back;
      }
      EXPECT_EQ(again.parts().playback.position(place), 7) << flat << back;
      EXPECT_EQ(flat ? again.parts().playback.position(at("c.mkv")) : 8, 8);
    }
    fs::remove_all(room);
  }
}

TEST_F(TidyTest, MakesUpForACrash) {
  StoredUsers& users = store.parts().users;
  putAll("heat/heat.mkv|heat/heat.en.srt");
  users.setPosition(at("heat/heat.mkv"), 7, "Ann");
  store.flush(std::chrono::seconds(5));
  // Logged and done on the disk, and then the power went.
  writeText(room / renameLogName, R"({"time":50,"old":"heat/heat.mkv","new":"heat/Heat.mkv"}
{"time":50,"old":"heat","new":"Heat"}
{"time":50,"old":"c.mkv","new":"C/)");
  fs::rename(room / "heat/heat.mkv", room / "heat/Heat.mkv");
  fs::rename(room / "heat", room / "Heat");
  settleRenames(context, room);
  users.setActiveUser("Ann");
  EXPECT_EQ(users.resumePosition(at("Heat/Heat.mkv")), 7);
  const std::string settled = readText(room / renameLogName);
  settleRenames(context, room);
  EXPECT_EQ(readText(room / renameLogName), settled) << "once is enough";
  EXPECT_EQ(undo().undone, 2U) << "the cut line does not spoil the next one";
  EXPECT_EQ(users.resumePosition(at("heat/heat.mkv")), 7);
  // Only what belongs to the film had moved.
  putAll("Up (2009)/Up (2009).srt|up.mkv|up.nfo");
  EXPECT_EQ(tidyOne("up.mkv", "Up (2009)"), "Up (2009)/Up (2009).mkv");
  EXPECT_TRUE(fs::exists(room / "Up (2009)/Up (2009).nfo"));
}

TEST_F(TidyTest, GivesEpisodesTheirNames) {
  room = mediaRoot() / "tv";
  const std::string season = "Show/Season 1/";
  for (const char* name : {"e1.mkv", "e1-thumb.jpg", "e1.en.srt", "e10.mkv", "e10.srt", "tvshow.nfo",
                           "e2.mkv", "e3.mkv", "S01E03 - Three.mp4"})
    put(season + name);
  put(season + "e2.avi", 30);
  EXPECT_EQ(tidyOne(season + "e1.mkv", "S01E01 - One"), season + "S01E01 - One.mkv");
  EXPECT_EQ(tidyOne(season + "e2.mkv", "S01E02 - Two"), season + "e2.mkv") << "the smaller of two";
  EXPECT_EQ(tidyOne(season + "e2.avi", "S01E02 - Two"), season + "S01E02 - Two.avi");
  EXPECT_EQ(tidyOne(season + "e3.mkv", "S01E03 - Three"), season + "e3.mkv");
  EXPECT_THAT(lines, testing::Contains(HasSubstr("skip rename (target exists): ")));
  std::vector<std::string> names;
  for (const auto& [name, text] : treeOf(room / season)) names.push_back(name);
  EXPECT_THAT(names, ElementsAre("S01E01 - One-thumb.jpg", "S01E01 - One.en.srt", "S01E01 - One.mkv",
                                 "S01E02 - Two.avi", "S01E03 - Three.mp4", "e10.mkv", "e10.srt", "e2.mkv",
                                 "e3.mkv", "tvshow.nfo"));
}

TEST_F(TidyTest, TakesScansBackOneByOneAsFarAsTheyFit) {
  EXPECT_FALSE(undo().found);
  putAll("a.mkv|b.mkv|c.mkv");
  tidyOne("a.mkv", "A");
  restart(200);
  tidyOne("b.mkv", "B");
  tidyOne("c.mkv", "C");
  put("b.mkv", 3);
  UndoReport report = undo();
  EXPECT_EQ(report.undone, 1U);
  EXPECT_THAT(report.lines, ElementsAre("C/C.mkv -> c.mkv", "skipped B/B.mkv: there is another b.mkv"));
  report = undo();
  EXPECT_THAT(report.lines, ElementsAre("A/A.mkv -> a.mkv"));
  report = undo();
  EXPECT_TRUE(report.found && report.lines.empty());
}

TEST_F(TidyTest, TrustsNoLog) {
  put("in/film.mkv");
  writeText(mediaRoot() / "outside/film.mkv", "outside");
  fs::create_symlink("../outside", room / "link");
  std::string log;
  for (const auto& [old, now] : table(R"(
      /tmp/film.mkv => in/film.mkv ;; ../film.mkv => in/film.mkv ;; in/../../x.mkv => in/film.mkv ;; => in/film.mkv
      taken.mkv => ../outside/film.mkv ;; taken.mkv => link/film.mkv ;; link/x.mkv => in/film.mkv
      .x.mkv => in/film.mkv ;; taken.log => )" +
                                      std::string(renameLogName)))
    log += R"({"time":1,"old":")" + old + R"(","new":")" + now + "\"}\n";
  log += R"({"time":1,"old":")" + std::string(1 << 20, 'x') + "\"}\n{\"time\":1}\n[1]\n\0\n{";
  writeText(room / renameLogName, log);
  const auto files = [&] { return std::pair(treeOf(room), treeOf(mediaRoot() / "outside")); };
  const auto before = files();
  EXPECT_EQ(undo().undone, 0U);
  EXPECT_EQ(files(), before);
  EXPECT_EQ(readText(room / renameLogName), log);
}

TEST(TidyRules, TellsWhatBelongsToAVideo) {
  for (const auto& [name, ending] : table(R"(
      Alien.srt => .srt ;; Alien.eng.SRT => .eng.SRT ;; Alien.zh-Hans.sdh.ass => .zh-Hans.sdh.ass ;; Alien =>
      Alien-fanart1.jpg => -fanart1.jpg ;; Alien.de.mka => .de.mka ;; Alien.3.srt => .3.srt ;; Alien.mkv =>
      Alien.Resurrection.srt => ;; Alien 3.srt => ;; Aliens.srt => ;; Alien..srt => ;; Alien.x.nfo =>)"))
    EXPECT_EQ(companionEnding(name, "Alien"), ending) << name;
  for (const auto& [a, b] : table("Film CD1 => Film CD2 ;; film.part.1 => film.part.2 ;;"
                                  "Film (2001) disc9 => Film (2001) disc10"))
    EXPECT_TRUE(areParts(a, b)) << a;
  for (const auto& [a, b] :
       table("Film 1 => Film 2 ;; It Part 1 (1990) => It Part 2 (1991) ;; ABCD1 => ABCD2"))
    EXPECT_FALSE(areParts(a, b)) << a;
  for (const char* stem : {"Alien-short", "Alien.sample", "Theme"}) EXPECT_TRUE(isBonus(stem)) << stem;
  for (const char* stem : {"The.Big.Short", "Trailer Park (2001)", "The Interview"})
    EXPECT_FALSE(isBonus(stem)) << stem;
}

}  // namespace
}  // namespace tavek
