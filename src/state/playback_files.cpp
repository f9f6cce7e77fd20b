#include "state/playback_files.h"

#include <algorithm>
#include <system_error>
#include <utility>

#include "base/file_write.h"
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
    if (edit.file == file) apply(view.playback, edit, nameBelow(view.folder, edit.media), true);
  }
  return view;
}

void PlaybackFiles::add(PlaybackEdit edit) {
  edit.file = playbackFileOf(edit.media);
  const auto memory = memory_.hold();
  edit.version = ++memory->version;
  auto& edits = memory->edits;
  // One write for what has come together; not across a rename, which has to find what came before.
  const auto same = std::find_if(edits.rbegin(), edits.rend(), [&](const PlaybackEdit& earlier) {
    return earlier.media == edit.media || !earlier.renamedTo.empty();
  });
  if (same == edits.rend() || !same->renamedTo.empty() || !edit.renamedTo.empty())
    return edits.push_back(std::move(edit));
  set(same->offset, edit.offset);
  set(same->boundary, edit.boundary);
  set(same->volume, edit.volume);
  set(same->watched, edit.watched);
  same->version = edit.version;
}

bool PlaybackFiles::save() {
  bool saved = true;
  for (const PlaybackEdit& edit : std::vector(memory_.hold()->edits)) {
    const bool done = edit.renamedTo.empty() ? store(edit) : move(edit.media, edit.renamedTo);
    if (done)
      std::erase_if(memory_.hold()->edits, [&](const PlaybackEdit& e) { return e.version == edit.version; });
    saved = saved && done;
  }
  return saved;
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

bool PlaybackFiles::move(const std::string& old, const std::string& now) {
  const fs::path from = playbackFileOf(old);
  const fs::path to = playbackFileOf(now);
  const SmallFile read = readSmallFile(from);
  if (read.found != FileFound::Read) return read.found == FileFound::Missing;
  PlaybackFile playback = parsePlayback(read.text);
  auto place = playback.positions.extract(nameBelow(from.parent_path(), old));
  if (from == to) {
    if (!place) return true;
    place.key() = nameBelow(to.parent_path(), now);
    playback.positions.insert(std::move(place));
    return replaceWith(from, read.text, playback);
  }
  if (!place && !playback.positions.empty()) return true;
  if (place) {
    const MediaPlace& own = place.mapped();
    return store({.media = now, .offset = own.offset, .boundary = own.boundary, .watched = own.watched}) &&
           replaceWith(from, read.text, playback);
  }
  std::error_code ignored;
  fs::create_directories(to.parent_path(), ignored);
  fs::rename(from, to, ignored);
  return true;
}

}  // namespace tavek
