#include "state/state_store.h"

#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>

#include <gmock/gmock.h>

#include "base/file_write.h"
#include "base/paths.h"
#include "state/playback_file.h"
#include "state/texts.h"
#include "support/media_root.h"

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
  StateStoreTest() {
    for (const auto& entry : fs::directory_iterator(mediaRoot())) fs::remove_all(entry.path());
    put("persist.json", R"({"users":{"Ann":{"mode":"tv","later":1},"Bob":{}},"later":2})");
  }
  /// What another run finds.
  static StoredState saved() { return stateOf(get("persist.json")); }
  StateStore store{stateFile()};
  StoredSettings& settings = store.parts().settings;
  StoredUsers& users = store.parts().users;
  FolderPlayback& playback = store.parts().playback;
  MediaNotes& notes = store.parts().notes;
};
using StateThreads = StateStoreTest;

TEST_F(StateStoreTest, KeepsPermissionsAndLinks) {
  put("a/b/file", "a longer text");
  fs::permissions(in("a/b/file"), fs::perms::owner_read);
  fs::create_symlink("b/file", in("a/link"));
  EXPECT_TRUE(replaceFile(in("a/link"), "new") && get("a/b/file") == "new" && fs::is_symlink(in("a/link")));
  EXPECT_EQ(fs::status(in("a/b/file")).permissions(), fs::perms::owner_read);
  for (const char* none : {"a/b", "a/b/file/c"}) EXPECT_FALSE(replaceFile(in(none), ""));
  EXPECT_EQ(std::distance(fs::directory_iterator(in("a")), {}), 2) << "no temporary file is left";
}

TEST_F(StateStoreTest, KeepsTheOldBytesOnAFullDisk) {
  signal(SIGXFSZ, SIG_IGN);
  rlimit limit{};
  getrlimit(RLIMIT_FSIZE, &limit);
  const rlimit full{10, limit.rlim_max};
  // Beside the second one there is no room for the name of a temporary file.
  for (const std::string& name : {std::string("a/file"), "a/" + std::string(250, 'x')}) {
    EXPECT_TRUE(replaceFile(in(name), "the old"));
    setrlimit(RLIMIT_FSIZE, &full);
    EXPECT_FALSE(replaceFile(in(name), std::string(100000, 'n')));
    setrlimit(RLIMIT_FSIZE, &limit);
    EXPECT_EQ(get(name), "the old");
    EXPECT_TRUE(replaceFile(in(name), "new") && get(name) == "new");
  }
  EXPECT_EQ(std::distance(fs::directory_iterator(in("a")), {}), 2);
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
    readPlayback(in("playback.json"));
    EXPECT_EQ(get("playback.json"), repaired);
  }
  put("playback.json", R"({"sound":"stereo","later": {} })");
  for (const int boundary : {500000, 0}) playback.setPlaybackBoundary(in("a"), boundary);
  playback.setPlaybackVolume("b", -3.5);
  users.setPosition(in("a"), 1234567, "");
  users.markWatched(in("a"), true, "");
  EXPECT_EQ(get("playback.json"), R"({"offset":1234567,"boundary":500000,"volume":-3.5,"sound":"stereo",)"
                                  R"("watched":true,"later":{}})");
  EXPECT_EQ(*playback.playbackVolume("c") + double(*playback.playbackBoundary(in("c"))), 499996.5);
}

TEST_F(StateStoreTest, ResumesByUserThenByFolder) {
  const auto& [first, second] = std::pair(in("movies/F/1.mkv"), in("movies/F/2.mkv"));
  users.setPosition(second, 7, "");
  EXPECT_EQ(users.resumePosition(first), 7) << "of the folder";
  users.setPosition(second, 0, "");
  EXPECT_EQ(users.resumePosition(second), 0);
  EXPECT_EQ(users.resumePosition(in("movies/F/../F/2.mkv")), 7) << "the text differs";
  users.setPosition("/else/a.mkv", 0, "Bob");
  users.setActiveUser("Bob");
  EXPECT_EQ(users.resumePosition(second), 7);
  users.setPlaying(second, "");
  EXPECT_EQ(users.resumePosition(second), 0) << "the position stays, and it was of the same room";
  users.clearPlaying(in("Movies"));
  EXPECT_FALSE(saved().profiles["Bob"].movies.playing || saved().profiles["Bob"].movies.seek);
}

TEST_F(StateStoreTest, KnowsWhatWasWatched) {
  const std::string old = in("tv/Show/e.mkv");
  users.markWatched(old, true, "Ann");
  users.markWatched(in("tv/b.mkv"), true, "Cid");
  EXPECT_TRUE(users.isWatched(old) && !users.isWatched(in("tv/./Show/e.mkv")));
  for (const auto& [folder, watched] : table("tv/./Show/ => 1 ;; tv => 1 ;; tv/Sho => 0 ;; movies => 0"))
    EXPECT_EQ(users.hasWatchedBelow(in(folder)), watched == "1") << folder;
  EXPECT_THAT(users.users(), ElementsAre("Ann", "Bob", "Cid"));
  users.renameMedia(old, in("tv/new"));
  EXPECT_THAT(saved().profiles["Ann"].tv.watched, ElementsAre(in("tv/new")));
  users.markWatched(in("tv/new"), false, "");
  EXPECT_TRUE(saved().profiles["Ann"].tv.watched.empty());
}

TEST_F(StateStoreTest, LetsWhatIsKnownFollowARename) {
  notes.setScanNoteA(in("movies/a"), "tt1");
  notes.setScanNoteB(in("tv/a"), "1");
  for (const int width : {4, 0}) notes.setFrameSize(in("movies/a"), width, 3);
  playback.setPlaybackVolume(in("movies/a"), 2);
  users.renameMedia(in("movies/a"), in("movies/A/a"));
  EXPECT_EQ(get("movies/playback.json"), R"({"volume":2})") << "it serves the new path too";
  put("kids/A/playback.json", "{}");
  users.renameMedia(in("movies/A/a"), in("kids/A/a"));
  EXPECT_EQ(get("kids/A/playback.json") + get("movies/playback.json"), R"({"volume":2})");
  EXPECT_EQ(*notes.scanNoteA(in("kids/A/a")) + notes.scanNoteB(in("tv/a")).value_or(""), "tt1");
  EXPECT_TRUE(notes.frameSize(in("kids/A/a"))->width == 4 && !notes.frameSize(in("movies/a")));
}

TEST_F(StateStoreTest, ChangesUsers) {
  users.addUser("Cid");
  for (const auto& [old, now] : table("Ann => Dan ;; Dan => Cid ;; Zoe => Y ;; Bob =>"))
    users.renameUser(old, now);
  EXPECT_THAT(users.users(), ElementsAre("Dan", "Bob", "Cid"));
  EXPECT_EQ(users.activeUser() + *users.userMode("Dan"), "Dantv");
  EXPECT_THAT(get("persist.json"), HasSubstr("\n\t\t\t\"later\": 1\n"));
  for (const char* name : {"Zoe", "Bob", "Dan"}) users.removeUser(name);
  users.removeUser("Cid");
  EXPECT_EQ(users.activeUser() + saved().userNames[1], "AlexMaria");
  for (int i = 0; i < 18; ++i) settings.pushWifiHistory(std::to_string(i == 17 ? 5 : i));
  const std::vector<std::string> history = saved().wifiHistory;
  EXPECT_EQ(history.at(0) + history.at(1) + history.back() + std::to_string(history.size()), "516116");
  EXPECT_THAT(get("persist.json"), HasSubstr("],\n\n\t\"later\": 2\n}"));
}

TEST_F(StateStoreTest, SavesWhenThereIsSomethingToSay) {
  fs::create_directories(in("kids"));
  put("persist.json", "");
  users.addUser("Ann");
  store.holdWrites(true);
  settings.setTmdbScan(5, "");
  EXPECT_EQ(get("persist.json"), "");
  users.setPlaying(in("movies/a"), "");
  settings.setSoundMode(7);
  EXPECT_TRUE(saved().profiles["Alex"].movies.playing == in("movies/a") && !saved().soundMode);
  store.holdWrites(false);
  EXPECT_EQ(saved().soundMode, 0);
  users.ensureRooms({in("New"), in("Series")});
  EXPECT_EQ(saved().profiles["Maria"].otherRooms.size(), 2U) << "kids was there at the start";
  fs::remove(stateFile());
  fs::create_directories(stateFile());
  settings.setFanartScan(6);
  fs::remove(stateFile());
  for (const bool held : {true, false}) store.holdWrites(held);
  EXPECT_EQ(saved().fanartScanEpoch, 6) << "a save that failed is made up for";
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
  EXPECT_THAT(get("persist.json"), AllOf(HasSubstr("\"user\": \"Zoe\""), HasSubstr("\"seek\": 3")));
  put("persist.json", R"({"users":{"Cut":{}, )");
  users.resumeTarget(in("tv"));
  EXPECT_THAT(users.users(), ElementsAre("Zoe")) << "nobody is lost to a damaged file";
}

TEST_F(StateThreads, SaveSideBySide) {
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

TEST_F(StateStoreTest, SurvivesBeingKilled) {
  const std::string tabs[] = {std::string(9000, 'a'), std::string(50000, 'b')};
  settings.setSettingsTab(tabs[1]);
  for (int round = 0; round < 60; ++round) {
    const std::string before = get("persist.json");
    const pid_t child = fork();
    for (int i = 0; child == 0; i = 1 - i) settings.setSettingsTab(tabs[i]);
    while (get("persist.json") == before) std::this_thread::yield();
    std::this_thread::sleep_for(std::chrono::microseconds(round * 150));
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    ASSERT_TRUE(saved().settingsTab == tabs[0] || saved().settingsTab == tabs[1]) << round;
    ASSERT_EQ(stateText(saved()), get("persist.json"));
  }
}

}  // namespace
}  // namespace tavek
