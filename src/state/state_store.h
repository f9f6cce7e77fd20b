#pragma once

#include <cstdint>
#include <filesystem>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "state/stored_state.h"

namespace tavek {

struct FrameSize {
  std::int32_t width = 0;
  std::int32_t height = 0;
};

/// All that the program remembers: the shared state file, read at the first call, and the playback.json files
/// beside the media. Every thread may call every operation. One mutex guards all members and is held while
/// files are read and written, so a slow disk delays the others.
/// A change is saved at once, unless the writes are held. Nothing throws and nothing is reported: a save that
/// fails leaves the old file, and the next one tries again.
/// A user that is empty stands for the active one; a media path is the text by which Play knows the item.
class StateStore {
 public:
  static StateStore& instance();
  explicit StateStore(std::filesystem::path file);
  StateStore(const StateStore&) = delete;
  StateStore& operator=(const StateStore&) = delete;

  /// Puts off saves while something moves on the screen, but for those of what plays and what was watched.
  void holdWrites(bool held);

  std::optional<std::int64_t> tmdbScanEpoch();
  std::optional<std::string> tmdbScanLabel();
  std::optional<std::int64_t> fanartScanEpoch();
  std::optional<std::int32_t> soundMode();
  std::optional<std::string> settingsTab();
  /// In seconds since 1970; an empty label leaves the old one.
  void setTmdbScan(std::int64_t epoch, const std::string& label);
  void setFanartScan(std::int64_t epoch);
  void setSoundMode(std::int32_t mode);
  /// An empty text clears it.
  void setSettingsTab(const std::string& text);

  std::vector<std::string> users();
  std::string activeUser();
  void setActiveUser(const std::string& name);
  void addUser(const std::string& name);
  void renameUser(const std::string& old, const std::string& now);
  /// The last one gives way to the two of a fresh store.
  void removeUser(const std::string& name);
  std::optional<std::string> userMode(const std::string& name);
  void setUserMode(const std::string& name, const std::string& mode);
  /// Gives every user a block for each of these room folders.
  void ensureRooms(const std::vector<std::filesystem::path>& folders);

  std::vector<std::string> wifiHistory();
  void pushWifiHistory(const std::string& ssid);

  // For this run only. The notes are the IMDb and the TMDB id of a film; series and home videos have none.
  std::optional<std::string> scanNoteA(const std::string& media);
  std::optional<std::string> scanNoteB(const std::string& media);
  void setScanNoteA(const std::string& media, const std::string& text);
  void setScanNoteB(const std::string& media, const std::string& text);
  /// Treble and bass gain in dB.
  std::optional<double> audioParamA(const std::string& media);
  std::optional<double> audioParamB(const std::string& media);
  void setAudioParamA(const std::string& media, double value);
  void setAudioParamB(const std::string& media, double value);
  std::optional<FrameSize> frameSize(const std::string& media);
  void setFrameSize(const std::string& media, std::int32_t width, std::int32_t height);

  // Per folder of media: microseconds, and gain in dB.
  std::optional<std::int64_t> playbackBoundary(const std::string& media);
  void setPlaybackBoundary(const std::string& media, std::int64_t boundary);
  std::optional<double> playbackVolume(const std::string& media);
  void setPlaybackVolume(const std::string& media, double volume);

  // Per user and room; positions in microseconds.
  /// The active user's own position, else the one that any user left in the folder.
  std::optional<std::int64_t> resumePosition(const std::string& media);
  void setPlaying(const std::string& media, const std::string& user);
  void setPosition(const std::string& media, std::int64_t position, const std::string& user);
  void clearPlaying(const std::filesystem::path& roomFolder);
  bool isWatched(const std::string& media);
  bool hasWatchedBelow(const std::filesystem::path& folder);
  void markWatched(const std::string& media, bool flag, const std::string& user);
  /// What to start when a room opens, if it can be read; otherwise the reason goes to stderr. Reads the users
  /// anew from the file.
  std::optional<std::filesystem::path> resumeTarget(const std::filesystem::path& roomFolder);
  /// Everything that is kept about a media file follows it to its new path.
  void renameMedia(const std::string& old, const std::string& now);

 private:
  template <typename Value>
  using ByMedia = std::unordered_map<std::string, Value>;

  /// Locks, and loads at the first call. All below expect the lock to be held.
  std::unique_lock<std::mutex> enter();
  void load();
  std::string readStateFile() const;
  bool addRooms(const std::vector<std::filesystem::path>& folders);
  void write(bool force);
  bool isUser(const std::string& name) const;
  std::string activeName() const;
  std::string userOrActive(const std::string& user) const;
  UserProfile profileOf(const std::string& name) const;
  void saveProfile(const std::string& name, UserProfile profile);
  const RoomState& activeRoom(std::string_view room) const;
  /// Changes the block of a media file's room and saves it.
  template <typename Change>
  void changeRoom(const std::string& media, const std::string& user, Change change);
  void rereadUsers();

  const std::filesystem::path file_;
  std::mutex mutex_;
  bool loaded_ = false;
  bool writesHeld_ = false;
  bool writePending_ = false;  ///< a save was put off or has failed
  StoredState state_;
  ByMedia<std::string> scanNotesA_;
  ByMedia<std::string> scanNotesB_;
  ByMedia<double> audioParamA_;
  ByMedia<double> audioParamB_;
  ByMedia<FrameSize> frameSizes_;
};

}  // namespace tavek
