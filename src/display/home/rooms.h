#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "base/background_job.h"

namespace tavek {

/// As the home screen names a room: its folder's name, or "library" for a path without one.
std::string roomLabel(const std::filesystem::path& room);

/// The room that a stored hint means: a path, or the name by which the state files know a room. Without such
/// a room `current` stays, if there is one of that number; else the films come first, then the videos.
std::size_t roomFor(const std::vector<std::filesystem::path>& rooms, const std::string& hint,
                    std::size_t current);

/// The rooms of the library, and the selected one. Main thread only.
class Rooms {
 public:
  /// Has the library read anew in the background, after what else is to be done there, and then each room's
  /// kind found out.
  void reload(std::function<void()> before);
  bool reading() const { return listing_.running() || listing_.waiting() > 0; }
  /// True once for each list that has come, one before the kinds are known and one after; the selected room
  /// stays selected if it is still there.
  bool poll();
  /// The last one told something new.
  bool changed() const { return changed_; }
  /// Selects the room that the hint means.
  void choose(const std::string& hint) { index_ = roomFor(folders_, hint, index_); }
  void select(std::size_t index) { index_ = index; }

  const std::vector<std::filesystem::path>& folders() const { return folders_; }
  std::size_t index() const { return index_; }
  /// The selected room; the place of the films if there is none, whether it exists or not.
  std::filesystem::path current() const;
  /// One for each room; a single one stands for a library without any.
  const std::vector<std::string>& labels() const { return labels_; }

 private:
  struct Listing {
    std::vector<std::filesystem::path> folders;
    bool kindsKnown = false;
  };
  void take(Listing listing);

  BackgroundJob<Listing> listing_;
  std::vector<std::filesystem::path> folders_;
  bool kindsKnown_ = false;
  bool changed_ = false;
  std::vector<std::string> labels_{"library"};
  std::size_t index_ = 0;
};

}  // namespace tavek
