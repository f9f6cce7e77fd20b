#include "state/playback_file.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <system_error>

#include "library/file_types.h"
#include "library/media_paths.h"
#include "state/json_write.h"

namespace tavek {
namespace {

namespace fs = std::filesystem;

constexpr const char* fileName = "playback.json";

/// The keys that this program reads, older spellings included.
constexpr std::array<std::string_view, 9> knownKeys{"offset", "Offset", "boundary", "volume", "Volume",
                                                    "sound",  "Sound",  "watched",  "Watched"};
constexpr std::array<std::string_view, 3> placeKeys{"offset", "boundary", "watched"};
constexpr std::string_view positionsKey = "positions";

std::optional<std::int64_t> wholeNumberOf(const std::optional<double>& number) {
  return number ? std::optional(wholeNumber(*number)) : std::nullopt;
}

/// Six significant digits, with a point whatever the locale says.
std::string decimalText(double number) {
  std::array<char, 32> text{};
  const auto end =
      std::to_chars(text.data(), text.data() + text.size(), number, std::chars_format::general, 6).ptr;
  return {text.data(), end};
}

std::optional<std::int64_t> readMicroseconds(const std::string& text, std::string_view key) {
  return wholeNumberOf(readNumber(text, key));
}

std::map<std::string, MediaPlace> readPositions(const std::string& object) {
  std::map<std::string, MediaPlace> positions;
  for (const auto& [key, value] : readMembers(object)) {
    std::size_t start = 0;
    MediaPlace& place = positions[parseString('"' + key + '"', start).value_or("")];
    const std::string known = knownPart(value, placeKeys, place.unknown);
    place.offset = readMicroseconds(known, "offset");
    place.boundary = readMicroseconds(known, "boundary");
    place.watched = readBool(known, "watched");
  }
  return positions;
}

template <typename Values>
void addCommon(std::vector<JsonMember>& members, const Values& values) {
  if (values.offset) members.push_back({"offset", std::to_string(*values.offset)});
  if (values.boundary) members.push_back({"boundary", std::to_string(*values.boundary)});
}

template <typename Values>
void addWatched(std::vector<JsonMember>& members, const Values& values) {
  if (values.watched) members.push_back({"watched", *values.watched ? "true" : "false"});
}

std::string positionsText(const std::map<std::string, MediaPlace>& positions) {
  std::vector<JsonMember> places;
  for (const auto& [name, place] : positions) {
    std::vector<JsonMember> members;
    addCommon(members, place);
    addWatched(members, place);
    members.insert(members.end(), place.unknown.begin(), place.unknown.end());
    places.push_back({escapeString(name), compactObject(members)});
  }
  return compactObject(places);
}

}  // namespace

PlaybackFile parsePlayback(const std::string& whole) {
  PlaybackFile playback;
  const std::string text = knownPart(whole, knownKeys, playback.unknown);
  playback.offset = wholeNumberOf(readFirst(readNumber, text, {"offset", "Offset"}));
  playback.boundary = wholeNumberOf(readNumber(text, "boundary"));
  playback.volume = readFirst(readNumber, text, {"volume", "Volume"});
  playback.sound = readFirst(readString, text, {"sound", "Sound"});
  playback.watched = readFirst(readBool, text, {"watched", "Watched"});
  const auto positions = std::ranges::find(playback.unknown, positionsKey, &JsonMember::key);
  if (positions != playback.unknown.end() && positions->value.starts_with('{')) {
    playback.positions = readPositions(positions->value);
    playback.unknown.erase(positions);
  }
  return playback;
}

std::vector<JsonMember> playbackMembers(const PlaybackFile& playback) {
  std::vector<JsonMember> members;
  addCommon(members, playback);
  if (playback.volume) members.push_back({"volume", decimalText(*playback.volume)});
  if (playback.sound) members.push_back({"sound", quotedString(*playback.sound)});
  addWatched(members, playback);
  if (!playback.positions.empty())
    members.push_back({std::string(positionsKey), positionsText(playback.positions)});
  members.insert(members.end(), playback.unknown.begin(), playback.unknown.end());
  return members;
}

fs::path playbackFileOf(const std::string& media) {
  const fs::path path = fs::path(media).lexically_normal();
  const fs::path start = path.has_parent_path() ? path.parent_path() : ".";
  if (const auto room = roomRootOf(path)) {
    std::error_code ignored;
    for (fs::path folder = start; isInside(folder, *room); folder = folder.parent_path()) {
      if (fs::exists(folder / fileName, ignored)) return folder / fileName;
    }
  }
  return start / fileName;
}

bool servesOthers(const fs::path& folder, const std::string& media, const Flag& stop) {
  const fs::path own = fs::path(media).lexically_normal();
  const auto isOfItsKind = [audio = isAudioFile(own)](const fs::path& file) {
    return audio ? isAudioFile(file) : isVideoFile(file) && !isAudioFile(file);
  };
  const auto room = roomRootOf(own);
  const bool wholeTree = room && isInside(folder, *room);
  std::error_code error;
  fs::recursive_directory_iterator entry(folder, fs::directory_options::skip_permission_denied, error);
  for (; !error && entry != fs::recursive_directory_iterator(); entry.increment(error)) {
    if (stop) return true;
    std::error_code ignored;
    if (entry->is_directory(ignored)) {
      if (!wholeTree || fs::exists(entry->path() / fileName, ignored)) entry.disable_recursion_pending();
    } else if (isOfItsKind(entry->path()) && entry->path() != own) {
      return true;
    }
  }
  return false;
}

}  // namespace tavek
