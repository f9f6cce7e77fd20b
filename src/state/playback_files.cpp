#include "state/playback_files.h"

#include <algorithm>
#include <system_error>
#include <utility>

#include "base/file_write.h"
#include "library/media_paths.h"
#include "state/json_write.h"

namespace tavek {
namespace {

namespace fs = std::filesystem;

std::string nameBelow(const fs::path& folder, const std::string& media) {
  return fs::path(media).lexically_normal().lexically_relative(folder.lexically_normal()).string();
}

template <typename Value>
void set(std::optional<Value>& value, const std::optional<Value>& to) {
  if (to) value = to;
}

bool isOfOneMedium(const PlaybackEdit& edit) {
  return edit.offset || edit.boundary || edit.watched;
}

/// What belongs to one media file is kept by its name too where others share the folder.
void apply(PlaybackFile& playback, const PlaybackEdit& edit, const std::string& name, bool shared) {
  if (edit.offset.value_or(0) > 0) playback.offset = edit.offset;
  set(playback.boundary, edit.boundary);
  set(playback.volume, edit.volume);
  set(playback.watched, edit.watched);
  if (!shared || !isOfOneMedium(edit)) return;
  MediaPlace& place = playback.positions[name];
  set(place.offset, edit.offset);
  set(place.boundary, edit.boundary);
  set(place.watched, edit.watched);
}

void rename(PlaybackFile& playback, const std::string& old, const std::string& now) {
  auto place = playback.positions.extract(old);
  if (place) playback.positions.insert_or_assign(now, std::move(place.mapped()));
}

/// What stands for the whole folder, of its only media file.
MediaPlace ownPlace(const PlaybackFile& playback) {
  return {playback.offset, playback.boundary, playback.watched, {}};
}

void addPlace(PlaybackFile& target, const MediaPlace& place, const std::string& name, bool crowded) {
  // What only a newer program understands of one media file needs its name.
  if (crowded || !place.unknown.empty()) {
    target.positions[name] = place;
    return;
  }
  if (place.offset.value_or(0) > 0) target.offset = place.offset;
  set(target.boundary, place.boundary);
  set(target.watched, place.watched);
}

/// What counts for all media of a folder.
void addShared(PlaybackFile& target, const PlaybackFile& playback) {
  set(target.volume, playback.volume);
  set(target.sound, playback.sound);
  if (!playback.unknown.empty()) target.unknown = playback.unknown;
}

/// `old` is what the file holds.
bool replaceWith(const fs::path& file, const std::string& old, const PlaybackFile& playback) {
  const std::vector<JsonMember> members = playbackMembers(playback);
  const std::string text = compactObject(members);
  return members.empty() || text == old || replaceFile(file, text);
}

}  // namespace

PlaybackFiles::View PlaybackFiles::look(const std::string& media) {
  const fs::path file = playbackFileOf(media);
  std::optional<FileStamp> known;
  {
    const auto memory = memory_.hold();
    const auto cached = memory->files.find(file);
    if (cached != memory->files.end()) known = cached->second.stamp;
  }
  const SmallFile read = readSmallFile(file, known);
  View view{.folder = file.parent_path(), .name = nameBelow(file.parent_path(), media)};
  const auto memory = memory_.hold();
  if (read.found == FileFound::Read)
    memory->files[file] = {read.stamp, parsePlayback(read.text), !isOneObject(read.text)};
  if (read.found == FileFound::Read || read.found == FileFound::Same) {
    const Cached& cached = memory->files[file];
    view.playback = cached.playback;
    view.damaged = cached.damaged;
  }
  for (const PlaybackEdit& edit : memory->edits) {
    if (edit.file != file) continue;
    if (edit.renamedTo.empty())
      apply(view.playback, edit, nameBelow(view.folder, edit.media), true);
    else
      rename(view.playback, nameBelow(view.folder, edit.media), nameBelow(view.folder, edit.renamedTo));
  }
  return view;
}

void PlaybackFiles::add(PlaybackEdit edit) {
  // A file that is no longer where it was tells by its new name which playback.json is to be looked at.
  edit.file = playbackFileOf(edit.renamedTo.empty() ? edit.media : edit.renamedTo);
  const auto memory = memory_.hold();
  edit.version = ++memory->version;
  auto& edits = memory->edits;
  if (!edit.renamedTo.empty()) return addRename(*memory, std::move(edit));
  // One write for what has come together; not across a rename, which has to find what came before.
  const auto same = std::find_if(edits.rbegin(), edits.rend(), [&](const PlaybackEdit& earlier) {
    return earlier.media == edit.media || !earlier.renamedTo.empty();
  });
  if (same == edits.rend() || !same->renamedTo.empty()) return edits.push_back(std::move(edit));
  set(same->offset, edit.offset);
  set(same->boundary, edit.boundary);
  set(same->volume, edit.volume);
  set(same->watched, edit.watched);
  same->version = edit.version;
}

/// What is still to be written about the old name is newer than what the disk has of it, so it goes behind
/// the rename, and to where the media file is now.
void PlaybackFiles::addRename(Memory& memory, PlaybackEdit edit) {
  auto& edits = memory.edits;
  const auto waiting = std::stable_partition(edits.begin(), edits.end(), [&](const PlaybackEdit& earlier) {
    return earlier.media != edit.media || !earlier.renamedTo.empty();
  });
  for (auto follows = waiting; follows != edits.end(); ++follows) {
    follows->media = edit.renamedTo;
    follows->file = edit.file;
    follows->version = ++memory.version;
  }
  edits.insert(waiting, std::move(edit));
}

void PlaybackFiles::renameFolder(const fs::path& old, const fs::path& now) {
  const std::string from = old.string();
  const std::string to = now.string();
  const auto memory = memory_.hold();
  for (PlaybackEdit& edit : memory->edits) {
    edit.media = inMovedFolder(edit.media, from, to).value_or(edit.media);
    edit.renamedTo = inMovedFolder(edit.renamedTo, from, to).value_or(edit.renamedTo);
    edit.file = inMovedFolder(edit.file.string(), from, to).value_or(edit.file.string());
  }
}

bool PlaybackFiles::save() {
  std::vector<unsigned> versions;
  {
    const auto memory = memory_.hold();
    for (const PlaybackEdit& edit : memory->edits) versions.push_back(edit.version);
  }
  bool saved = true;
  for (const unsigned version : versions) saved = saveOne(version) && saved;
  return saved;
}

/// The edit as it is now: a rename may have changed it since.
bool PlaybackFiles::saveOne(unsigned version) {
  const std::lock_guard alone(saving_);
  const auto isIt = [&](const PlaybackEdit& edit) { return edit.version == version; };
  std::optional<PlaybackEdit> edit;
  {
    const auto memory = memory_.hold();
    const auto found = std::ranges::find_if(memory->edits, isIt);
    if (found != memory->edits.end()) edit = *found;
  }
  if (!edit) return true;
  const bool done = edit->renamedTo.empty() ? store(*edit) : move(edit->media, edit->renamedTo);
  if (done) std::erase_if(memory_.hold()->edits, isIt);
  return done;
}

bool PlaybackFiles::store(const PlaybackEdit& edit) {
  const fs::path file = playbackFileOf(edit.media);
  const SmallFile read = readSmallFile(file);
  if (read.found == FileFound::Unreadable) return false;
  PlaybackFile playback = parsePlayback(read.text);
  const Flag never;
  const bool shared = isOfOneMedium(edit) &&
                      (!playback.positions.empty() || servesOthers(file.parent_path(), edit.media, never));
  apply(playback, edit, nameBelow(file.parent_path(), edit.media), shared);
  if (swept_.insert(file).second) removeLeftovers(file);
  return replaceWith(file, read.text, playback);
}

/// The media file is at its new place already. Where both places are served by one playback.json only the
/// name in it changes. Else the file's own place goes to the new folder with what counts for all in the old
/// one, which keeps that as long as others need it.
bool PlaybackFiles::move(const std::string& old, const std::string& now) {
  const fs::path from = playbackFileOf(old);
  const fs::path to = playbackFileOf(now);
  const SmallFile read = readSmallFile(from);
  if (read.found != FileFound::Read) return read.found == FileFound::Missing;
  PlaybackFile playback = parsePlayback(read.text);
  const std::string oldName = nameBelow(from.parent_path(), old);
  if (from == to) {
    rename(playback, oldName, nameBelow(to.parent_path(), now));
    return replaceWith(from, read.text, playback);
  }
  const Flag never;
  const SmallFile there = readSmallFile(to);
  if (there.found == FileFound::Unreadable) return false;
  PlaybackFile target = parsePlayback(there.text);
  const bool crowded = !target.positions.empty() || servesOthers(to.parent_path(), now, never);
  const std::string name = nameBelow(to.parent_path(), now);
  auto place = playback.positions.extract(oldName);
  const bool whole = !place && playback.positions.empty() && !servesOthers(from.parent_path(), old, never);
  if (whole && !crowded && there.found == FileFound::Missing && renameNoReplace(from, to)) return true;
  if (whole) addPlace(target, ownPlace(playback), name, crowded);
  if (place) addPlace(target, place.mapped(), name, crowded);
  if (whole || there.found == FileFound::Missing) addShared(target, playback);
  if (!replaceWith(to, there.text, target)) return false;
  std::error_code ignored;
  if (whole) fs::remove(from, ignored);
  return !place || replaceWith(from, read.text, playback);
}

}  // namespace tavek
