#include "scan/tidy.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <iterator>
#include <string_view>
#include <system_error>

#include "base/text.h"
#include "library/episode_name.h"
#include "library/file_types.h"
#include "scan/film_folder.h"
#include "scan/tidy_moves.h"
#include "scan/tidy_rules.h"

namespace tavek {
namespace {

namespace fs = std::filesystem;
using namespace std::string_view_literals;

constexpr std::array filmRooms{"kids"sv, "movie"sv, "movies"sv};
constexpr std::array seriesRooms{"series"sv, "tv"sv};
constexpr std::size_t longestFileName = 255;
constexpr std::chrono::seconds longestSave{10};

/// Without a slash at its end, so that it is equal to the folder of what lies in it.
fs::path plainRoom(const fs::path& room) {
  return room.has_filename() ? room : room.parent_path();
}

template <typename Rooms>
bool isNamedAmong(const Rooms& rooms, const fs::path& room) {
  return std::ranges::find(rooms, toLower(plainRoom(room).filename().string())) != rooms.end();
}

/// One video and the name that it is to get.
struct Wish {
  const TidyContext& context;
  fs::path room;
  const fs::path& video;
  const std::string& stem;
  std::string nameWith(const std::string& ending) const { return stem + ending; }
  std::string name() const { return nameWith(video.extension().string()); }
  fs::path folder() const { return video.parent_path(); }
  void tell(const std::string& line) const {
    if (context.log) context.log(line);
  }
};

bool isBusy(const TidyContext& context, const fs::path& media) {
  return context.busy && context.busy(media);
}

/// Whatever the new name is for: the video may be touched, and the name can be had.
bool mayBeRenamed(const Wish& wish) {
  const fs::path inRoom = wish.video.lexically_relative(wish.room);
  const auto inDisc = [](const fs::path& name) { return isDiscFolder(name.string()); };
  std::error_code ignored;
  return !wish.context.stop && staysInside(inRoom.string()) && std::ranges::none_of(inRoom, inDisc) &&
         isFitName(wish.stem) && !isBonus(wish.stem) && wish.name().size() <= longestFileName &&
         isFilmName(wish.video.filename()) && !isBusy(wish.context, wish.video) &&
         isReallyInside(wish.room, wish.video) && fs::is_regular_file(wish.video, ignored) &&
         !logOf(wish.context, wish.room).wasTakenBack(wish.video);
}

/// A film, and no episode or extra that lies among films.
bool mayBeFilm(const Wish& wish) {
  const fs::path folders = wish.video.lexically_relative(wish.room).parent_path();
  const auto isExtras = [](const fs::path& name) { return isExtrasFolder(name.string()); };
  const auto isSeason = [](const fs::path& name) { return isSeasonFolder(name.string()); };
  // A season lies in a series; directly in the room it is a title that only begins like one.
  const auto below = folders.empty() ? folders.end() : std::next(folders.begin());
  return std::ranges::none_of(folders, isExtras) && std::none_of(below, folders.end(), isSeason) &&
         !isExtrasFolder(wish.stem) && !parseSeasonEpisode(wish.video.stem().string());
}

bool isNameTaken(const Wish& wish, const FolderContent& there, const fs::path& folder) {
  const std::string begin = wish.stem + ".";
  bool hasNamesake = false;
  for (auto file = there.files.lower_bound(begin); file != there.files.end() && file->starts_with(begin);
       ++file) {
    const fs::path name = *file;
    hasNamesake |= folder / name != wish.video && name.stem() == wish.stem && isFilmName(name);
  }
  const bool taken = hasNamesake || isTaken(folder / wish.name()) ||
                     logOf(wish.context, wish.room).wasVacated(folder / wish.name());
  if (taken) wish.tell("skip rename (target exists): " + (folder / wish.name()).string());
  return taken;
}

/// The video and what belongs to it, to the wanted name in that folder.
void addFiles(const Wish& wish, const FolderContent& content, const fs::path& folder, TidyMoves& moves) {
  const std::string stem = wish.video.stem().string();
  for (const std::string& ending : companionEndings(content, wish.video)) {
    const fs::path goal = folder / wish.nameWith(ending);
    if (!isTaken(goal) && goal.filename().string().size() <= longestFileName)
      moves.add(wish.folder() / (stem + ending), goal);
  }
  moves.add(wish.video, folder / wish.name());
}

fs::path renameInFolder(const Wish& wish, const FolderContent& content) {
  if (isNameTaken(wish, content, wish.folder())) return wish.video;
  TidyMoves moves(wish.context, wish.room);
  addFiles(wish, content, wish.folder(), moves);
  return moves.run() ? wish.folder() / wish.name() : wish.video;
}

/// With all that lies in it.
fs::path renameOwnFolder(const Wish& wish, const FolderContent& content) {
  const fs::path goal = wish.room / wish.stem;
  const bool named = wish.video.stem() == wish.stem;
  if (isTaken(goal) || logOf(wish.context, wish.room).wasVacated(goal) ||
      anyBelow(wish.folder(), [&](const fs::path& file) { return isBusy(wish.context, file); }))
    return wish.video;
  if (!named && isNameTaken(wish, content, wish.folder())) return wish.video;
  TidyMoves moves(wish.context, wish.room);
  if (!named) addFiles(wish, content, wish.folder(), moves);
  moves.addFolder(wish.folder(), goal);
  if (!moves.run()) return wish.video;
  if (!moves.folderMoved()) return wish.folder() / wish.name();
  removeEmpty(wish.room, wish.folder().parent_path());
  return goal / wish.name();
}

/// Into a folder of its own, out of one that is shared.
fs::path moveOut(const Wish& wish, const FolderContent& content) {
  const fs::path goal = wish.room / wish.stem;
  std::error_code ignored;
  if (isTaken(goal) && !fs::is_directory(fs::symlink_status(goal, ignored))) return wish.video;
  const FolderContent there = contentOf(goal);
  if (isNameTaken(wish, there, goal)) return wish.video;
  // Another film there would be hard to tell from this one.
  if (std::ranges::any_of(there.files, [](const std::string& file) { return isFilmName(file); }))
    return wish.video;
  TidyMoves moves(wish.context, wish.room);
  moves.makeFirst(goal);
  addFiles(wish, content, goal, moves);
  const bool moved = moves.run();
  if (moved && wish.folder() != wish.room) logOf(wish.context, wish.room).noteLeft(wish.folder());
  removeEmpty(wish.room, moved ? wish.folder() : goal);
  return moved ? goal / wish.name() : wish.video;
}

fs::path tidy(const Wish& wish) {
  const bool flat = wish.folder() == wish.room;
  const FolderContent& content = wish.context.folders.read(wish.folder());
  if (!isChosen(content, wish.video, flat)) return wish.video;
  if (!flat && logOf(wish.context, wish.room).wasLeft(wish.folder())) return wish.video;
  // Nothing may be saved under a name that is just going away.
  const auto still = wish.context.stored.playback.pauseWrites();
  if (wish.folder() == wish.room / wish.stem) return renameInFolder(wish, content);
  const bool deep = !flat && wish.folder().parent_path() != wish.room;
  // A link that leads up would lead elsewhere from another height.
  const bool bound = deep && anyBelow(wish.folder(), [](const fs::path& file) {
                       std::error_code ignored;
                       return fs::is_symlink(fs::symlink_status(file, ignored));
                     });
  if (!flat && !bound && isOwnFolder(wish.folder(), wish.video, wish.stem))
    return renameOwnFolder(wish, content);
  return moveOut(wish, content);
}

/// Where a renamed media file is after the renames of its folders that followed.
class Afterwards {
 public:
  Afterwards(const fs::path& room, const RenameHistory& history) : room_(room) {
    for (std::size_t i = history.settled; i < history.renames.size(); ++i) {
      if (!isVideoFile(history.renames[i].now))
        folders_[history.renames[i].old] = {i, history.renames[i].now};
    }
  }
  fs::path of(const fs::path& path, std::size_t index) const {
    // The crash may have come before the folder's turn.
    if (isTaken(room_ / path)) return path;
    for (fs::path folder = path.parent_path(); !folder.empty(); folder = folder.parent_path()) {
      const auto renamed = folders_.find(folder.string());
      if (renamed != folders_.end() && renamed->second.index > index)
        return of(renamed->second.now / path.lexically_relative(folder), renamed->second.index);
    }
    return path;
  }

 private:
  struct Renamed {
    std::size_t index = 0;
    fs::path now;
  };
  const fs::path& room_;
  std::map<std::string, Renamed> folders_;
};

void tellAgain(StoredUsers& users, const fs::path& room, const RenameHistory& history) {
  const Afterwards afterwards(room, history);
  for (std::size_t i = history.settled; i < history.renames.size(); ++i) {
    const auto& [time, oldName, newName] = history.renames[i];
    const fs::path last = room / afterwards.of(newName, i);
    if (isTaken(room / oldName) || !isReallyInside(room, last)) continue;
    std::error_code ignored;
    if (fs::is_directory(last, ignored))
      users.renameFolder(room / oldName, room / newName);
    else if (isVideoFile(newName))
      users.renameMedia((room / oldName).string(), (room / newName).string());
  }
}

}  // namespace

bool isTidiedFilmRoom(const fs::path& room) {
  return isNamedAmong(filmRooms, room);
}

bool isTidiedSeriesRoom(const fs::path& room) {
  return isNamedAmong(seriesRooms, room);
}

void settleRenames(const TidyContext& context, const fs::path& room) {
  const fs::path plain = plainRoom(room);
  const RenameHistory history = readRenames(plain);
  if (history.settled == history.renames.size()) return;
  // Those of this scan were told when they were done.
  if (!context.logs.contains(plain)) tellAgain(context.stored.users, plain, history);
  if (context.stored.playback.flush(longestSave)) logOf(context, plain).markSettled(context.scanTime);
}

fs::path tidyFilm(const TidyContext& context, const fs::path& room, const fs::path& video,
                  const std::string& wantedStem) {
  const Wish wish{context, plainRoom(room), video, wantedStem};
  if (video == wish.room / wantedStem / wish.name() || !mayBeRenamed(wish) || !mayBeFilm(wish)) return video;
  return tidy(wish);
}

fs::path renameEpisodeTo(const TidyContext& context, const fs::path& room, const fs::path& video,
                         const std::string& wantedStem) {
  const Wish wish{context, plainRoom(room), video, wantedStem};
  if (video.stem() == wantedStem || !mayBeRenamed(wish)) return video;
  const FolderContent& content = context.folders.read(wish.folder());
  if (!isChosen(content, video, true)) return video;
  const auto still = context.stored.playback.pauseWrites();
  fs::path now = renameInFolder(wish, content);
  if (now != video) wish.tell("renamed episode " + video.string() + " -> " + now.string());
  return now;
}

}  // namespace tavek
