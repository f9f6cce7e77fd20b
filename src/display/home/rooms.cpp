#include "display/home/rooms.h"

#include <algorithm>
#include <array>
#include <functional>
#include <optional>
#include <utility>

#include "base/paths.h"
#include "base/text.h"
#include "library/media_paths.h"

namespace tavek {
namespace {

namespace fs = std::filesystem;
using Folders = std::vector<fs::path>;

std::optional<std::size_t> firstRoom(const Folders& rooms, const std::function<bool(const fs::path&)>& fits) {
  const auto found = std::ranges::find_if(rooms, fits);
  if (found == rooms.end()) return {};
  return static_cast<std::size_t>(found - rooms.begin());
}

std::optional<std::size_t> roomNamed(const Folders& rooms, const std::string& name) {
  return firstRoom(rooms, [&](const fs::path& room) { return roomNameOfRoot(room) == name; });
}

std::optional<std::size_t> roomOfKind(const Folders& rooms, MediaKind kind) {
  return firstRoom(rooms, [&](const fs::path& room) { return knownKind(room) == kind; });
}

constexpr std::array<std::pair<const char*, MediaKind>, 4> kindHints{{{"tv", MediaKind::Series},
                                                                      {"video", MediaKind::Videos},
                                                                      {"music", MediaKind::Music},
                                                                      {"movies", MediaKind::Movies}}};

std::optional<std::size_t> roomHinted(const Folders& rooms, const std::string& hint) {
  if (hint.empty()) return {};
  const fs::path relative = fs::path(hint).lexically_normal().lexically_relative(mediaRoot());
  if (!relative.empty() && *relative.begin() != "..")
    return roomNamed(rooms, toLower(relative.begin()->string()));
  const std::string name = toLower(hint);
  const fs::path folder = (fs::path(hint) / "").lexically_normal();
  const auto same = firstRoom(rooms, [&](const fs::path& room) {
    return room / "" == folder || normalizeRoomName(roomNameOfRoot(room)) == name;
  });
  if (same) return same;
  const auto kind = std::ranges::find(kindHints, name, &std::pair<const char*, MediaKind>::first);
  return kind != kindHints.end() ? roomOfKind(rooms, kind->second) : std::nullopt;
}

}  // namespace

std::string roomLabel(const fs::path& room) {
  const std::string name = room.filename().string();
  if (name.empty()) return "library";
  const std::string lower = toLower(name);
  if (lower == "series" || lower == "tv") return "tv";
  return lower == "movies" || lower == "music" ? lower : name;
}

std::size_t roomFor(const Folders& rooms, const std::string& hint, std::size_t current) {
  if (const auto hinted = roomHinted(rooms, hint)) return *hinted;
  if (current < rooms.size()) return current;
  if (const auto room = roomNamed(rooms, "movies")) return *room;
  if (const auto room = roomOfKind(rooms, MediaKind::Movies)) return *room;
  return roomNamed(rooms, "video").value_or(0);
}

void Rooms::reload(std::function<void()> before) {
  if (listing_.running()) return;
  listing_.start([before = std::move(before)](JobSide<Listing>& side) {
    before();
    Folders rooms = listRoots(side.stop());
    side.post({rooms, false});
    // A room without a telling name has to be walked. The answers are kept, so that asking for them later
    // does not touch the disk.
    for (const fs::path& room : rooms) classifyFolder(room, side.stop());
    side.post({std::move(rooms), true});
  });
}

bool Rooms::poll() {
  auto listing = listing_.take();
  if (listing) take(std::move(*listing));
  return listing.has_value();
}

void Rooms::take(Listing listing) {
  changed_ = listing.folders != folders_ || (listing.kindsKnown && !kindsKnown_);
  if (!changed_) return;
  kindsKnown_ = listing.kindsKnown;
  const fs::path selected = index_ < folders_.size() ? folders_[index_] : fs::path();
  folders_ = std::move(listing.folders);
  const auto same = std::ranges::find(folders_, selected);
  index_ = static_cast<std::size_t>(same - folders_.begin());
  if (index_ >= folders_.size()) index_ = roomFor(folders_, "", index_);
  labels_.clear();
  for (const fs::path& folder : folders_) labels_.push_back(roomLabel(folder));
  if (labels_.empty()) labels_.emplace_back("library");
}

fs::path Rooms::current() const {
  return index_ < folders_.size() ? folders_[index_] : mediaRoot() / "movies";
}

}  // namespace tavek
