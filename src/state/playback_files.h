#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "base/guarded.h"
#include "state/playback_file.h"
#include "state/small_file.h"

namespace tavek {

/// What is to be kept of one media file.
struct PlaybackEdit {
  std::string media;
  std::optional<std::int64_t> offset = {};  ///< 0 leaves that of the whole folder alone
  std::optional<std::int64_t> boundary = {};
  std::optional<double> volume = {};
  std::optional<bool> watched = {};
  std::string renamedTo = {};  ///< the media file went there
  // Set by PlaybackFiles.
  std::filesystem::path file = {};  ///< in which it will be
  unsigned version = 0;             ///< tells a later edit of the same media file
};

/// The playback.json files and what has not got there yet. What was read is kept until the file's stamp
/// changes. Only looks are on the caller's thread; files are written, and folders walked, by `save`.
class PlaybackFiles {
 public:
  /// The file's content for this media file with the edits to come; `name` is its own in `positions`.
  struct View {
    PlaybackFile playback = {};
    std::filesystem::path folder = {};
    std::string name = {};
    bool damaged = false;  ///< an edit without a value repairs it
  };
  View look(const std::string& media);
  /// A rename takes along what is still to be written about the media file; the file has its new name
  /// already.
  void add(PlaybackEdit edit);
  /// A folder has a new name, with the playback.json in it.
  void renameFolder(const std::filesystem::path& old, const std::filesystem::path& now);
  /// Nothing is written as long as this is held: who renames files must not meet half of a save. Looks and
  /// edits do not wait for it.
  std::unique_lock<std::mutex> pause() { return std::unique_lock(saving_); }
  /// On the thread that saves. False where something has to be tried again.
  bool save();

 private:
  struct Cached {
    FileStamp stamp;
    PlaybackFile playback;
    bool damaged = false;
  };
  struct Memory {
    std::map<std::filesystem::path, Cached> files;
    std::vector<PlaybackEdit> edits;
    unsigned version = 0;
  };

  static void addRename(Memory& memory, PlaybackEdit edit);
  bool saveOne(unsigned version);
  bool store(const PlaybackEdit& edit);
  bool move(const std::string& old, const std::string& now);

  Guarded<Memory> memory_;
  std::mutex saving_;                      ///< held for each edit that is written
  std::set<std::filesystem::path> swept_;  ///< without leftovers; the saving thread's
};

}  // namespace tavek
