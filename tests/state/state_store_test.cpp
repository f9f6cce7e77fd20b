#include "state/state_store.h"

#include <atomic>
#include <functional>
#include <random>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <thread>
#include <tuple>

#include <gmock/gmock.h>

#include "base/paths.h"
#include "state/playback_file.h"
#include "state/texts.h"
#include "support/media_root.h"

namespace {

const std::thread::id mainThread = std::this_thread::get_id();
int syncsOnMainThread = 0;

}  // namespace

/// Stands before the system's, to see who calls it.
extern "C" int fsync(int descriptor) {
  if (std::this_thread::get_id() == mainThread) ++syncsOnMainThread;
  return static_cast<int>(syscall(SYS_fsync, descriptor));
}

namespace tavek {
namespace {

namespace fs = std::filesystem;
using namespace test;
using testing::ElementsAre;
using testing::HasSubstr;

std::string in(const std::string& path) {
  return (mediaRoot() / path).string();
}

void put(const std::string& name, const std::string& text) {
  fs::create_directories((mediaRoot() / name).parent_path());
  std::ofstream(mediaRoot() / name) << text;
}

std::string get(const std::string& name) {
  return contentOf(in(name));
}

/// A store over a library that holds two users and nothing else.
class StateStoreTest : public testing::Test {
 protected:
  static fs::path freshFile() {
    for (const auto& entry : fs::directory_iterator(mediaRoot())) fs::remove_all(entry.path());
    put("persist.json", R"({"users":{"Ann":{"mode":"tv","later":1},"Bob":{}},"later":2})");
    return stateFile();
  }
  void TearDown() override {
    store.flush();
    EXPECT_EQ(std::exchange(syncsOnMainThread, 0), 0) << "a disk may take its time";
  }
  /// What another run finds.
  StoredState saved() { return stateOf(kept("persist.json")); }
  /// What a file holds once everything is saved.
  std::string kept(const std::string& name) {
    store.flush(std::chrono::seconds(5));
    return get(name);
  }
  StateStore store{freshFile()};
  StoredSettings& settings = store.parts().settings;
  StoredUsers& users = store.parts().users;
  FolderPlayback& playback = store.parts().playback;
  MediaNotes& notes = store.parts().notes;
};

/// There is no room for the name of a temporary file beside the last one.
TEST_F(StateStoreTest, AFullDiskTakesNothingAway) {
  signal(SIGXFSZ, SIG_IGN);
  rlimit limit{};
  getrlimit(RLIMIT_FSIZE, &limit);
  const rlimit full{10, limit.rlim_max};
  const std::pair<std::string, std::string> files[] = {{"first/persist.json", ""},
                                                       {"persist.json", "{\"later\": 1}"},
                                                       {std::string(250, 'x'), "{\"later\": 1}"}};
  for (const auto& [name, old] : files) {
    if (!old.empty()) put(name, old);
    StateStore own{in(name)};
    own.parts().settings.setFanartScan(7);
    setrlimit(RLIMIT_FSIZE, &full);
    EXPECT_FALSE(own.flush(std::chrono::seconds(5))) << name;
    setrlimit(RLIMIT_FSIZE, &limit);
    EXPECT_EQ(get(name), old);
    EXPECT_EQ(fs::exists(in(name)), !old.empty()) << "no empty file is left: " << name;
    EXPECT_TRUE(own.flush(std::chrono::seconds(5))) << name;
    EXPECT_EQ(stateOf(get(name)).fanartScanEpoch, 7) << name;
  }
}

TEST_F(StateStoreTest, ReplacesTheFileAndNeverWritesIntoIt) {
  const std::string before = get("persist.json");
  fs::create_hard_link(stateFile(), in("the old file"));
  settings.setFanartScan(7);
  EXPECT_EQ(saved().fanartScanEpoch, 7);
  EXPECT_EQ(get("the old file"), before) << "who is killed in the middle leaves the old one or the new one";
}

TEST_F(StateStoreTest, FindsThePlaybackFile) {
  for (const char* file : {"playback.json", "tv/A/playback.json", "tv/A/S2/playback.json"}) put(file, "{}");
  for (const auto& [media, folder] : table("tv/A/S1/e => tv/A ;; tv/A/S2/e => tv/A/S2 ;; tv/e => tv ;;"
                                           "tv/A/x/../../B/S/e => tv/B/S ;; e => . ;; /else/e => /else"))
    EXPECT_EQ(playbackFileOf(in(media)), fs::path(in(folder + "/playback.json")).lexically_normal());
  EXPECT_EQ(playbackFileOf("e.mkv"), "./playback.json");
}

TEST_F(StateStoreTest, KeepsThePlaybackFileInOrder) {
  for (const auto& [text, repaired] : table(R"(
      {"offset":5}{"offset":7} => {"offset":5} ;; {"offset":5 => {"offset":5} ;; x => x ;; {"Offset" : 5} => {"Offset" : 5}
      {"Volume":-3.14159265,"Sound":"\"\r\\","x":[1, 2],"y":1 => {"volume":-3.14159,"sound":"\"\r\\","x":[1, 2]})")) {
    put("playback.json", text);
    playback.playbackVolume(in("a"));
    EXPECT_EQ(kept("playback.json"), repaired);
  }
  put("playback.json", R"({"sound":"stereo","later": {} })");
  for (const int boundary : {500000, 0}) playback.setPlaybackBoundary(in("a"), boundary);
  playback.setPlaybackVolume("b", -3.5);
  users.setPosition(in("a"), 1234567, "");
  users.markWatched(in("a"), true, "");
  EXPECT_EQ(kept("playback.json"), R"({"offset":1234567,"boundary":500000,"volume":-3.5,"sound":"stereo",)"
                                   R"("watched":true,"later":{}})");
  EXPECT_EQ(playback.playbackVolume("c"), -3.5);
  EXPECT_EQ(playback.playbackBoundary(in("c")), 500000);
}

TEST_F(StateStoreTest, ResumesByUserThenByNameThenByFolder) {
  const auto& [first, second, alone] =
      std::tuple(in("tv/S/1.mkv"), in("tv/S/Season 2/1.mkv"), in("movies/F/1.mkv"));
  for (const char* name :
       {"tv/S/1.mkv", "tv/S/Season 2/1.mkv", "tv/S/a.jpg", "movies/F/1.mkv", "movies/F/theme.mp3"})
    put(name, "x");
  put("tv/S/playback.json", R"({"offset":3,"boundary":4})");
  EXPECT_EQ(users.resumePosition(first), std::nullopt) << "of one of them, and nobody knows which";
  EXPECT_EQ(playback.playbackBoundary(first), std::nullopt);
  users.setPosition(first, 7, "");
  for (const bool saves : {false, true}) {
    if (saves) {
      EXPECT_EQ(kept("tv/S/playback.json"),
                R"({"offset":7,"boundary":4,"positions":{"1.mkv":{"offset":7}}})");
    }
    EXPECT_EQ(users.resumePosition(second), std::nullopt) << saves;
  }
  users.setPosition(second, 8, "");
  playback.setPlaybackBoundary(second, 9);
  EXPECT_EQ(users.resumePosition(first), 7) << "by its name, since the user has moved on";
  users.setPosition(first, 0, "");
  EXPECT_EQ(kept("tv/S/playback.json"), R"({"offset":8,"boundary":9,"positions":{"1.mkv":{"offset":0},)"
                                        R"("Season 2/1.mkv":{"offset":8,"boundary":9}}})");
  EXPECT_EQ(playback.playbackBoundary(first), std::nullopt);
  users.renameMedia(second, in("tv/S/Season 2/2.mkv"));
  EXPECT_THAT(kept("tv/S/playback.json"), HasSubstr(R"("Season 2/2.mkv":{"offset":8)"));

  users.setPosition(alone, 5, "");
  users.setActiveUser("Bob");
  EXPECT_EQ(users.resumePosition(alone), 5) << "of the folder";
  EXPECT_EQ(kept("movies/F/playback.json"), R"({"offset":5})");
  EXPECT_EQ(users.resumePosition(in("movies/F/../F/1.mkv")), 5);
  put("movies/F/2.mkv", "x");
  EXPECT_EQ(users.resumePosition(in("movies/F/2.mkv")), std::nullopt) << "there are two now";
}

TEST_F(StateStoreTest, LetsWhatIsKnownFollowARename) {
  const std::string old = in("movies/a"), moved = in("movies/A/a"), away = in("kids/A/a");
  users.markWatched(old, true, "Ann");
  users.setPosition(old, 7, "Ann");
  notes.setScanNoteA(old, "tt1");
  notes.setScanNoteB(in("tv/a"), "1");
  for (const int width : {4, 0}) notes.setFrameSize(old, width, 3);
  playback.setPlaybackVolume(old, 2);
  users.renameMedia(old, moved);
  const std::string folder = R"({"offset":7,"volume":2,"watched":true})";
  EXPECT_EQ(kept("movies/playback.json") + kept("movies/A/playback.json"), folder) << "the file has moved";
  EXPECT_THAT(saved().profiles["Ann"].movies.watched, ElementsAre(moved));
  EXPECT_EQ(saved().profiles["Ann"].movies.playing, moved);
  put("kids/A/playback.json", "{}");
  users.renameMedia(moved, away);
  EXPECT_EQ(kept("kids/A/playback.json") + kept("movies/A/playback.json"), folder);
  EXPECT_EQ(*notes.scanNoteA(away) + notes.scanNoteB(in("tv/a")).value_or(""), "tt1");
  EXPECT_TRUE(notes.frameSize(away)->width == 4 && !notes.frameSize(old));
}

TEST_F(StateStoreTest, LeavesWhatOthersNeedAndLosesNothingUnknown) {
  put("movies/Box/b.mkv", "x");
  put("movies/A/A.mkv", "x");
  put("movies/Box/playback.json", R"({"offset":9,"volume":2,"later":1})");
  users.renameMedia(in("movies/Box/a.mkv"), in("movies/A/A.mkv"));
  EXPECT_EQ(kept("movies/Box/playback.json"), R"({"offset":9,"volume":2,"later":1})");
  EXPECT_EQ(kept("movies/A/playback.json"), R"({"volume":2,"later":1})") << "the place may be of the other";

  put("movies/B/B.mkv", "x");
  put("movies/Box/playback.json", R"({"positions":{"a.mkv":{"offset":4,"new":5},"b.mkv":{"offset":6}}})");
  users.renameMedia(in("movies/Box/a.mkv"), in("movies/B/B.mkv"));
  EXPECT_EQ(kept("movies/Box/playback.json"), R"({"positions":{"b.mkv":{"offset":6}}})");
  EXPECT_EQ(kept("movies/B/playback.json"), R"({"positions":{"B.mkv":{"offset":4,"new":5}}})");
}

TEST_F(StateStoreTest, FollowsAFolderWithWhatIsNotSavedYet) {
  put("movies/old/a.mkv", "x");
  put("movies/old/b.mkv", "x");
  put("movies/old/playback.json", R"({"volume":2,"positions":{"a.mkv":{"offset":4}}})");
  users.markWatched(in("movies/old/b.mkv"), true, "Bob");
  users.markWatched(in("movies/older/c.mkv"), true, "Bob");
  kept("persist.json");
  {
    const auto still = playback.pauseWrites();
    users.setPosition(in("movies/old/a.mkv"), 7, "Ann");
    fs::rename(in("movies/old/a.mkv"), in("movies/old/A.mkv"));
    users.renameMedia(in("movies/old/a.mkv"), in("movies/old/A.mkv"));
    EXPECT_EQ(playback.position(in("movies/old/A.mkv")), 7);
    fs::rename(in("movies/old"), in("movies/A"));
    users.renameFolder(in("movies/old"), in("movies/A"));
  }
  EXPECT_THAT(kept("movies/A/playback.json"),
              HasSubstr(R"("positions":{"A.mkv":{"offset":7},"b.mkv":{"watched":true}}})"));
  EXPECT_FALSE(fs::exists(in("movies/old")));
  EXPECT_EQ(saved().profiles["Ann"].movies.playing, in("movies/A/A.mkv"));
  EXPECT_THAT(saved().profiles["Bob"].movies.watched,
              ElementsAre(in("movies/A/b.mkv"), in("movies/older/c.mkv")));
}

TEST_F(StateStoreTest, KnowsWhatPlaysAndWhatWasWatched) {
  const std::string episode = in("tv/Show/e.mkv");
  users.setPosition(episode, 7, "");
  users.setPlaying(episode, "");
  EXPECT_EQ(users.resumePosition(episode), 7);
  users.setPlaying(in("tv/next.mkv"), "");
  EXPECT_EQ(users.resumePosition(in("tv/next.mkv")), 0) << "what takes the room starts anew";
  users.clearPlaying(in("TV"));
  EXPECT_EQ(saved().profiles["Ann"].tv, RoomState());
  users.markWatched(episode, true, "Ann");
  users.markWatched(in("tv/b.mkv"), true, "Cid");
  EXPECT_TRUE(users.isWatched(episode) && !users.isWatched(in("tv/./Show/e.mkv")));
  for (const auto& [folder, watched] : table("tv/./Show/ => 1 ;; tv => 1 ;; tv/Sho => 0 ;; movies => 0"))
    EXPECT_EQ(users.hasWatchedBelow(in(folder)), watched == "1") << folder;
  EXPECT_THAT(users.users(), ElementsAre("Ann", "Bob", "Cid"));
  users.markWatched(episode, false, "");
  EXPECT_TRUE(saved().profiles["Ann"].tv.watched.empty());
}

TEST_F(StateStoreTest, ChangesUsers) {
  users.addUser("Cid");
  for (const auto& [old, now] : table("Ann => Dan ;; Dan => Cid ;; Zoe => Y ;; Bob =>"))
    users.renameUser(old, now);
  EXPECT_THAT(users.users(), ElementsAre("Dan", "Bob", "Cid"));
  EXPECT_EQ(users.activeUser() + *users.userMode("Dan"), "Dantv");
  users.setPosition(in("tv/a"), 3, "Ann");
  EXPECT_EQ(saved().profiles["Dan"].tv.seek, 3) << "of an item that was started before the rename";
  EXPECT_THAT(kept("persist.json"), HasSubstr("\n\t\t\t\"later\": 1\n"));
  for (const char* name : {"Zoe", "Bob", "Dan"}) users.removeUser(name);
  for (const char* gone : {"Dan", "Ann"}) users.setPosition(in("tv/a"), 4, gone);
  EXPECT_THAT(users.users(), ElementsAre("Cid")) << "an item that still plays brings nobody back";
  users.removeUser("Cid");
  EXPECT_EQ(users.activeUser() + saved().userNames[1], "AlexMaria");
  for (int i = 0; i < 18; ++i) settings.pushWifiHistory(std::to_string(i == 17 ? 5 : i));
  const std::vector<std::string> history = saved().wifiHistory;
  EXPECT_EQ(history.at(0) + history.at(1) + history.back() + std::to_string(history.size()), "516116");
  EXPECT_THAT(kept("persist.json"), HasSubstr("],\n\n\t\"later\": 2\n}"));
}

TEST_F(StateStoreTest, SavesWhenThereIsSomethingToSay) {
  put("persist.json", "");
  StateStore empty{stateFile()};
  empty.parts().users.addUser("Ann");
  EXPECT_TRUE(empty.flush());
  EXPECT_EQ(get("persist.json"), "") << "nothing yet";

  store.holdWrites(true);
  settings.setTmdbScan(5, "");
  std::this_thread::sleep_for(std::chrono::milliseconds(400));
  EXPECT_EQ(get("persist.json"), "");
  users.setPlaying(in("movies/a"), "");
  for (int i = 0; i < 500 && get("persist.json").empty(); ++i)
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  EXPECT_THAT(get("persist.json"), HasSubstr(in("movies/a"))) << "what plays is not held";
  settings.setSoundMode(7);
  EXPECT_EQ(saved().soundMode, 0) << "the end does not wait";
  users.ensureRooms({in("New"), in("Series")});
  EXPECT_EQ(saved().profiles["Bob"].otherRooms.size(), 1U);
}

/// Files in the place of the state file that must not be replaced, with what tells them from one that was.
TEST_F(StateStoreTest, LeavesAloneWhatItCannotRead) {
  const std::pair<const char*, std::function<void()>> obstacles[] = {
      {"a pipe", [] { mkfifo(stateFile().c_str(), 0600); }},
      {"a link to nowhere", [] { fs::create_symlink("away/persist.json", stateFile()); }},
      {"a link in a circle", [] { fs::create_symlink("persist.json", stateFile()); }},
      {"a folder", [] { fs::create_directory(stateFile()); }}};
  for (const auto& [what, put_] : obstacles) {
    fs::remove_all(stateFile());
    put_();
    const auto type = fs::symlink_status(stateFile()).type();
    StateStore started{stateFile()};
    started.parts().users.setActiveUser("Cid");
    EXPECT_FALSE(started.flush(std::chrono::seconds(2))) << what;
    EXPECT_EQ(fs::symlink_status(stateFile()).type(), type) << what;
    EXPECT_FALSE(fs::exists(in("away"))) << what;
    fs::remove_all(stateFile());
    put("persist.json", R"({"users":{"Ann":{},"Bob":{}}})");
    EXPECT_TRUE(started.flush(std::chrono::seconds(2))) << what;
    EXPECT_THAT(stateOf(get("persist.json")).userNames, ElementsAre("Ann", "Bob", "Cid")) << what;
  }
}

TEST_F(StateStoreTest, TakesInADiskThatComesLate) {
  const std::string text = kept("persist.json");
  fs::remove(stateFile());
  StateStore early{stateFile()};
  early.parts().users.ensureRooms({in("music")});
  early.parts().users.setActiveUser("Alex");
  early.parts().users.setUserMode("Alex", "tv");
  for (const bool savedBefore : {false, true}) {
    EXPECT_TRUE(!savedBefore || early.flush(std::chrono::seconds(2)));
    put("other.json", text);
    fs::rename(in("other.json"), stateFile());
    early.parts().settings.setSoundMode(1 + savedBefore);
    EXPECT_TRUE(early.flush(std::chrono::seconds(2)));
    const StoredState now = stateOf(get("persist.json"));
    EXPECT_THAT(now.userNames, ElementsAre("Ann", "Bob", "Alex")) << savedBefore;
    EXPECT_EQ(now.activeUser, "Alex");
    EXPECT_EQ(now.unknown, (std::vector<JsonMember>{{"later", "2"}}));
    EXPECT_EQ(now.profiles.at("Ann").unknown, (std::vector<JsonMember>{{"later", "1"}}));
  }
}

TEST_F(StateStoreTest, TwoProgramsLoseNothing) {
  StateStore second{stateFile()};
  const Stored other = second.parts();
  users.markWatched(in("tv/1"), true, "Ann");
  users.setPosition(in("tv/1"), 5, "Ann");
  other.users.markWatched(in("tv/2"), true, "Ann");
  other.users.setPosition(in("kids/x"), 6, "Ann");
  other.users.addUser("Cid");
  other.settings.pushWifiHistory("home");
  settings.pushWifiHistory("garden");
  store.flush();
  second.flush();
  users.renameUser("Ann", "Dan");
  users.removeUser("Bob");
  other.users.markWatched(in("tv/1"), false, "Ann");
  other.users.markWatched(in("tv/3"), true, "Ann");
  other.settings.setFanartScan(9);
  second.flush();
  StoredState now = saved();
  EXPECT_THAT(now.userNames, ElementsAre("Dan", "Cid"));
  EXPECT_THAT(now.profiles["Dan"].tv.watched, testing::IsSupersetOf({in("tv/2"), in("tv/3")}));
  EXPECT_EQ(now.profiles["Dan"].tv.seek, 5);
  EXPECT_EQ(now.profiles["Dan"].otherRooms["kids"].seek, 6);
  EXPECT_THAT(now.wifiHistory, testing::UnorderedElementsAre("home", "garden"));
  EXPECT_EQ(now.fanartScanEpoch, 9);

  const FileLock third(in("persist.json.lock"));
  settings.setFanartScan(10);
  EXPECT_FALSE(store.flush()) << "somebody else writes";
  EXPECT_EQ(stateOf(get("persist.json")).fanartScanEpoch, 9);
}

/// Every path that a damaged text still holds is in the saved file, or in the copy beside it.
TEST_F(StateStoreTest, KeepsACopyOfADamagedText) {
  users.markWatched(in("movies/Film (1999)/Film.mkv"), true, "Ann");
  users.setPosition(in("kids/Other.mkv"), 1234567, "Bob");
  users.setUserMode("Bob", "kids");
  const std::string whole = kept("persist.json");
  std::mt19937 random(1);
  int copies = 0;
  for (int round = 0; round < 300; ++round) {
    std::string text = whole;
    text[random() % text.size()] ^= static_cast<char>(1U << random() % 8);
    fs::remove(in("persist.json.damaged"));
    put("persist.json", text);
    StateStore started{stateFile()};
    started.parts().settings.setFanartScan(1);
    ASSERT_TRUE(started.flush(std::chrono::seconds(5)));
    const std::string copy = get("persist.json.damaged");
    ASSERT_TRUE(copy.empty() || copy == text) << text;
    copies += !copy.empty();
    started.parts().settings.setFanartScan(2);
    started.flush(std::chrono::seconds(5));
    ASSERT_EQ(get("persist.json.damaged"), copy) << "only before the first save";
    const std::string all = get("persist.json") + copy;
    for (const char* piece : {"Film (1999)/Film.mkv\"", "kids/Other.mkv\"", "\"kids\"", "\"tv\""}) {
      ASSERT_TRUE(text.find(piece) == std::string::npos || all.find(piece) != std::string::npos) << text;
    }
  }
  EXPECT_GT(copies, 20);
}

TEST_F(StateStoreTest, RemovesWhatDeadWritersLeft) {
  for (const char* name : {"persist.json.tmp.1.2", "persist.json.tmp.3.4", "movies/playback.json.tmp.5.6"})
    put(name, "x");
  const auto longAgo = fs::file_time_type::clock::now() - std::chrono::minutes(2);
  for (const char* name : {"persist.json.tmp.1.2", "movies/playback.json.tmp.5.6"})
    fs::last_write_time(in(name), longAgo);
  users.setPosition(in("movies/a"), 5, "");
  store.flush();
  EXPECT_FALSE(fs::exists(in("persist.json.tmp.1.2")) || fs::exists(in("movies/playback.json.tmp.5.6")));
  EXPECT_TRUE(fs::exists(in("persist.json.tmp.3.4"))) << "somebody may be at it";
}

TEST(SaveThread, GathersRequestsAndIsLeftWhileItsDiskStalls) {
  using namespace std::chrono_literals;
  static std::atomic<int> count = 0;
  static std::atomic<bool> stalls = false;
  {
    SaveThread saves([] {
      ++count;
      while (stalls) std::this_thread::sleep_for(1ms);
      return true;
    });
    EXPECT_TRUE(saves.flush(5s)) << "with nothing to do";
    for (int i = 0; i < 20; ++i) saves.request(Save::Always);
    EXPECT_TRUE(saves.flush(5s));
    EXPECT_EQ(count, 1);
    stalls = true;
    saves.request(Save::Always);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(saves.flush(100ms));
    EXPECT_LT(std::chrono::steady_clock::now() - start, 2s);
  }
  stalls = false;
}

TEST_F(StateStoreTest, PicksWhatToResume) {
  put("movies/a", "x");
  const auto target = [&](const std::string& playing) {
    users.setPlaying(playing, "");
    testing::internal::CaptureStderr();
    const std::string found = users.resumeTarget(in("Movies")).value_or("").string();
    return found + testing::internal::GetCapturedStderr() + '|' + *saved().profiles["Ann"].movies.playing;
  };
  EXPECT_EQ(target("movies/x/../a"), in("movies/a") + "|movies/x/../a");
  EXPECT_EQ(target(in("movies/x/../a")), in("movies/a|") + in("movies/a"));
  const std::string said =
      "\033[1m\033[38;2;255;0;0m[Resume] Failed to open persisted file for user \"Ann\": \"";
  EXPECT_THAT(target(in("movies/\"c\\")), HasSubstr(said + in("movies/\\\"c\\\\\" (missing)\033[0m\n")));
  EXPECT_THAT(target(in("movies")), HasSubstr("(not a regular file)"));
  EXPECT_THAT(target(in("movies/" + std::string(300, 'x'))), HasSubstr("(filesystem error)"));
  put("persist.json", R"({"users":{"Zoe":{"movies":{"playing":"movies/a","offset":3}}}})");
  users.resumeTarget(in("tv"));
  EXPECT_THAT(users.users(), ElementsAre("Zoe", "Ann")) << "Ann, since she played something in this run";
  EXPECT_EQ(saved().profiles["Zoe"].movies.seek, 3);
  put("persist.json", R"({"users":{"Cut":{}, )");
  users.resumeTarget(in("tv"));
  EXPECT_THAT(users.users(), ElementsAre("Cut", "Zoe", "Ann")) << "nobody is lost to a damaged file";
}

TEST_F(StateStoreTest, ThreadsSaveSideBySide) {
  const auto save = [&](const char* user) {
    for (int i = 0; i < 20; ++i) users.markWatched(in("tv/" + std::to_string(i)), true, user);
  };
  {
    const std::jthread ann(save, "Ann");
    const std::jthread bob(save, "Bob");
    for (int i = 0; i < 20; ++i) EXPECT_TRUE(users.users().size() == 2 && !users.isWatched(in("tv/x")));
  }
  EXPECT_EQ(saved().profiles["Ann"].tv.watched.size() + saved().profiles["Bob"].tv.watched.size(), 40U);
}

}  // namespace
}  // namespace tavek
