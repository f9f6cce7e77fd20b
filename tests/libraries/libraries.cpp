// libraries [count [seed]]: small random libraries with random wanted names, honest and hostile. Their films
// and episodes are renamed, and at a random step the program is killed, or the system refuses to go on; then
// all is renamed again, and again until nothing changes, and then taken back. Fails if a file is lost,
// changed, merged or moved out of its room, if marks do not follow, if the renames never come to rest, or if
// the undo does not give back what was there.
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <random>
#include <ranges>
#include <set>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "base/paths.h"
#include "library/file_types.h"
#include "scan/tidy.h"
#include "scan/undo_renames.h"
#include "state/json_write.h"
#include "state/state_store.h"
#include "state/stored_state.h"
#include "support/media_root.h"
#include "support/table.h"

namespace {

enum class Fault { None, Kill, Refuse };

/// What befalls the thread that renames: it changes so many things, and then no more, or for once.
struct Fate {
  Fault fault = Fault::None;
  long stepsLeft = 0;
};
thread_local Fate fate;

/// Before each change of the disk. True where it is to fail.
bool strikes() {
  if (fate.fault == Fault::None || --fate.stepsLeft > 0) return false;
  if (fate.fault == Fault::Kill) _exit(0);
  fate.fault = Fault::None;
  return true;
}

template <typename... Arguments>
int callOrFail(int error, long number, Arguments... arguments) {
  if (!strikes()) return static_cast<int>(syscall(number, arguments...));
  errno = error;
  return -1;
}

}  // namespace

// Stand before the system's.
extern "C" {
int renameat2(int oldFolder, const char* old, int nowFolder, const char* now, unsigned flags) noexcept {
  return callOrFail(EACCES, SYS_renameat2, oldFolder, old, nowFolder, now, flags);
}
int mkdir(const char* path, mode_t mode) noexcept {
  return callOrFail(ENOSPC, SYS_mkdirat, AT_FDCWD, path, mode);
}
int rmdir(const char* path) noexcept {
  return callOrFail(EBUSY, SYS_unlinkat, AT_FDCWD, path, AT_REMOVEDIR);
}
int fdatasync(int file) {
  return callOrFail(EIO, SYS_fdatasync, file);
}
ssize_t write(int file, const void* bytes, size_t size) {
  // Half of it gets there.
  if (fate.fault != Fault::None && fate.stepsLeft == 1)
    size = static_cast<size_t>(syscall(SYS_write, file, bytes, size / 2));
  return strikes() ? static_cast<ssize_t>(size) : static_cast<ssize_t>(syscall(SYS_write, file, bytes, size));
}
}

namespace {

using namespace tavek;

/// The files and links below a folder, and what they hold. Each file of a library holds something of its own.
using Files = std::map<std::string, std::string>;

Files filesBelow(const fs::path& folder) {
  Files files;
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    const std::string name = entry.path().lexically_relative(folder).string();
    if (entry.is_symlink())
      files[name] = "-> " + fs::read_symlink(entry.path()).string();
    else if (entry.is_regular_file() && entry.path().filename() != renameLogName)
      files[name] = test::readText(entry.path());
  }
  return files;
}

std::multiset<std::string> contentsOf(const Files& files) {
  const auto contents = std::views::values(files);
  return {contents.begin(), contents.end()};
}

class Library {
 public:
  explicit Library(std::uint64_t seed) : random_(seed) {
    for (const auto& entry : fs::directory_iterator(mediaRoot())) fs::remove_all(entry.path());
    series_ = oneIn(3);
    room_ = mediaRoot() / (series_ ? "tv" : oneIn(2) ? "movies" : "kids");
    for (const char* other : {"outside", "music"}) test::writeText(mediaRoot() / other / "film.mkv", other);
    for (int i = between(1, 10); i > 0; --i) addVideo();
    if (oneIn(4)) link("../outside", pick(folders) + "lnk");
    if (oneIn(4)) link("../music/film.mkv", "film.mkv");
    remember();
    start_ = filesBelow(room_);
  }

  /// Empty if all is well. Each step is a process of its own, which another that was killed leaves no thread.
  std::string check() {
    const Fate first{oneIn(3) ? Fault::Refuse : Fault::Kill, between(1, 40)};
    std::string complaint = inChild([&] { return scan(100, first); });
    if (complaint.empty()) complaint = findLost();
    if (complaint.empty()) complaint = inChild([&] { return scanUntilNothingChanges(); });
    if (complaint.empty()) complaint = findLost() + findWrongMarks();
    for (const Fate& with : {Fate{Fault::Kill, between(1, 40)}, Fate{}})
      if (complaint.empty()) complaint = inChild([&] { return takeBack(with); });
    if (complaint.empty() && filesBelow(room_) != start_)
      complaint = "the undo does not give back what was there";
    return complaint.empty() ? findWrongMarks() : complaint;
  }

 private:
  static inline const auto
      stems = test::split(
          "Alien|alien|Alien.1979|Alien CD1|Alien CD2|Up|S01E01|e2|\xc4x|a\nb|Up-trailer|Heat (1995)"),
      endings = test::split(".mkv|.avi|.MKV"),
      beside = test::split(".srt|.en.srt|.nfo|-thumb.jpg|.poster.jpg|.jpg|.x.srt|.de.mka"),
      folders = test::split("|||Alien/|Alien (1979)/|Box/|Box/in/|Up (2009)/|Extras/|.hidden/|x/VIDEO_TS/"),
      names = test::split(
          "Alien (1979)|Alien (1979)|alien (1979)|Up (2009)|Box|S01E01 - "
          "One|e2|..|../out|/tmp/x||.x|a/b|Extras|Trailer|\xc4y|Heat (1995)|Alien|x");

  int between(int least, int most) { return std::uniform_int_distribution(least, most)(random_); }
  bool oneIn(int times) { return between(1, times) == 1; }
  std::string pick(const std::vector<std::string>& table) {
    return table[static_cast<std::size_t>(between(0, static_cast<int>(table.size()) - 1))];
  }

  void add(const std::string& name) {
    if (!fs::exists(room_ / name))
      test::writeText(room_ / name,
                      std::to_string(++files_) + std::string(static_cast<std::size_t>(between(1, 9)), '.'));
  }
  void addVideo() {
    const std::string stem =
        (series_ ? (oneIn(3) ? "Show/" : "Show/Season 1/") : pick(folders)) + pick(stems);
    add(stem + pick(endings));
    for (int i = between(0, 3); i > 0; --i) add(stem + pick(beside));
  }
  void link(const std::string& target, const std::string& name) {
    std::error_code ignored;
    fs::create_directories((room_ / name).parent_path());
    fs::create_symlink(target, room_ / name, ignored);
  }

  /// Each user has seen some of the files.
  void remember() {
    std::vector<JsonMember> users;
    for (const char* user : {"Ann", "Bob"}) {
      std::string list;
      for (const auto& [name, content] : filesBelow(room_)) {
        if (!isVideoFile(name) || content.starts_with('-') || !oneIn(2)) continue;
        seen_[user].insert(content);
        list += (list.empty() ? "" : ",") + quotedString((room_ / name).string());
      }
      const std::string room = room_.filename().string();
      users.push_back({user, "{\"" + room + "\":{\"watched\":[" + list + "]}}"});
    }
    test::writeText(stateFile(), compactObject({{"user", "\"Ann\""}, {"users", compactObject(users)}}));
  }

  template <typename Work>
  static std::string inChild(Work work) {
    int ends[2];
    if (pipe(ends) != 0) return "no pipe";
    const pid_t child = fork();
    if (child == 0) {
      const std::string complaint = work();
      fate = {};
      ::write(ends[1], complaint.data(), complaint.size());
      _exit(0);
    }
    close(ends[1]);
    std::string complaint;
    for (char byte = 0; read(ends[0], &byte, 1) == 1;) complaint += byte;
    close(ends[0]);
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? complaint : "crashed";
  }

  /// What a scan would do: the wanted name depends on nothing but the film.
  std::string scan(std::int64_t time, const Fate& with) const {
    StateStore store(stateFile());
    const Flag stop;
    const TidyContext context{.stored = store.parts(), .stop = stop, .scanTime = time};
    fate = with;
    settleRenames(context, room_);
    for (const auto& [name, content] : filesBelow(room_)) {
      const fs::path video = room_ / name;
      if (!isVideoFile(video) || !fs::exists(video)) continue;
      const std::string wanted = names[std::hash<std::string>{}(content) % names.size()];
      const fs::path now = (series_ ? renameEpisodeTo : tidyFilm)(context, room_, video, wanted);
      if (!fs::exists(fs::symlink_status(now))) return "it tells of " + now.string() + ", which is not there";
    }
    settleRenames(context, room_);
    return {};
  }

  std::string scanUntilNothingChanges() const {
    std::int64_t time = 200;
    for (Files before; before != filesBelow(room_); time += 100) {
      if (time > 2000) return "the renames never come to rest";
      before = filesBelow(room_);
      if (std::string complaint = scan(time, {}); !complaint.empty()) return complaint;
    }
    return {};
  }

  std::string takeBack(const Fate& with) const {
    StateStore store(stateFile());
    const Flag stop;
    fate = with;
    while (!undoRenames(room_, store.parts(), stop).lines.empty()) continue;
    return {};
  }

  std::string findLost() const {
    if (contentsOf(filesBelow(room_)) != contentsOf(start_)) return "a file is lost or changed";
    for (const std::string other : {"outside", "music"})
      if (filesBelow(mediaRoot() / other) != Files{{"film.mkv", other}}) return other + " was changed";
    return {};
  }

  std::string findWrongMarks() const {
    bool ignored = false;
    const StoredState state = readStoredState(test::readText(stateFile()), ignored);
    const Files files = filesBelow(room_);
    for (const auto& [user, contents] : seen_) {
      std::set<std::string> found;
      for (const std::string& media :
           roomStateOf(state.profiles.at(user), room_.filename().string()).watched) {
        const auto file = files.find(fs::path(media).lexically_relative(room_).string());
        found.insert(file != files.end() ? file->second : media);
      }
      if (found != contents) return "a mark of " + user + " was left behind";
    }
    return {};
  }

  std::mt19937_64 random_;
  bool series_ = false;
  int files_ = 0;
  fs::path room_;
  Files start_;
  std::map<std::string, std::set<std::string>> seen_;
};

}  // namespace

int main(int argc, char** argv) {
  const long count = argc > 1 ? std::atol(argv[1]) : 1000;
  const std::uint64_t seed = argc > 2 ? std::strtoull(argv[2], nullptr, 10) : 1;
  int failures = 0;
  for (std::uint64_t own = seed; own < seed + static_cast<std::uint64_t>(count) && failures < 10; ++own) {
    const std::string complaint = Library(own).check();
    if (complaint.empty()) continue;
    std::printf("seed %ju: %s\n", std::uintmax_t{own}, complaint.c_str());
    ++failures;
  }
  std::printf("%ld libraries from seed %ju: %s\n", count, std::uintmax_t{seed},
              failures == 0 ? "good" : "BAD");
  return failures == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
