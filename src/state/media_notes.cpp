#include "state/media_notes.h"

#include <utility>
#include <vector>

#include "library/media_paths.h"

namespace tavek {
namespace {

bool hasScanNotes(const std::string& media) {
  const std::string room = normalizeRoomName(roomNameOfMedia(media));
  return room != "tv" && room != "video";
}

template <typename Values>
auto valueOf(const Values& values, const std::string& media) -> std::optional<typename Values::mapped_type> {
  const auto entry = values.find(media);
  return entry != values.end() ? std::optional(entry->second) : std::nullopt;
}

void setNote(std::unordered_map<std::string, std::string>& notes, const std::string& media,
             const std::string& text) {
  if (media.empty()) return;
  if (text.empty() || !hasScanNotes(media)) {
    notes.erase(media);
  } else {
    notes[media] = text;
  }
}

template <typename Values>
void moveEntry(Values& values, const std::string& old, const std::string& now) {
  auto entry = values.extract(old);
  if (entry) values.insert_or_assign(now, std::move(entry.mapped()));
}

template <typename Values>
void moveBelow(Values& values, const std::string& old, const std::string& now) {
  std::vector<std::string> moved;
  for (const auto& [media, value] : values) {
    if (inMovedFolder(media, old, now)) moved.push_back(media);
  }
  for (const std::string& media : moved) moveEntry(values, media, *inMovedFolder(media, old, now));
}

}  // namespace

std::optional<std::string> MediaNotes::scanNoteA(const std::string& media) const {
  return hasScanNotes(media) ? valueOf(notes_.hold()->scanNotesA, media) : std::nullopt;
}

std::optional<std::string> MediaNotes::scanNoteB(const std::string& media) const {
  return hasScanNotes(media) ? valueOf(notes_.hold()->scanNotesB, media) : std::nullopt;
}

void MediaNotes::setScanNoteA(const std::string& media, const std::string& text) {
  setNote(notes_.hold()->scanNotesA, media, text);
}

void MediaNotes::setScanNoteB(const std::string& media, const std::string& text) {
  setNote(notes_.hold()->scanNotesB, media, text);
}

std::optional<double> MediaNotes::audioParamA(const std::string& media) const {
  return valueOf(notes_.hold()->audioParamA, media);
}

std::optional<double> MediaNotes::audioParamB(const std::string& media) const {
  return valueOf(notes_.hold()->audioParamB, media);
}

void MediaNotes::setAudioParamA(const std::string& media, double value) {
  notes_.hold()->audioParamA[media] = value;
}

void MediaNotes::setAudioParamB(const std::string& media, double value) {
  notes_.hold()->audioParamB[media] = value;
}

std::optional<FrameSize> MediaNotes::frameSize(const std::string& media) const {
  return valueOf(notes_.hold()->frameSizes, media);
}

void MediaNotes::setFrameSize(const std::string& media, std::int32_t width, std::int32_t height) {
  if (width >= 1 && height >= 1) notes_.hold()->frameSizes[media] = {width, height};
}

void MediaNotes::rename(const std::string& old, const std::string& now) {
  const auto notes = notes_.hold();
  moveEntry(notes->scanNotesA, old, now);
  moveEntry(notes->scanNotesB, old, now);
  moveEntry(notes->audioParamA, old, now);
  moveEntry(notes->audioParamB, old, now);
  moveEntry(notes->frameSizes, old, now);
}

void MediaNotes::renameFolder(const std::string& old, const std::string& now) {
  const auto notes = notes_.hold();
  moveBelow(notes->scanNotesA, old, now);
  moveBelow(notes->scanNotesB, old, now);
  moveBelow(notes->audioParamA, old, now);
  moveBelow(notes->audioParamB, old, now);
  moveBelow(notes->frameSizes, old, now);
}

}  // namespace tavek
