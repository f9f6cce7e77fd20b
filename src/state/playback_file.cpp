#include "state/playback_file.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <fstream>
#include <system_error>

#include "library/media_paths.h"
#include "state/json_write.h"

namespace tavek {
namespace {

namespace fs = std::filesystem;

constexpr const char* fileName = "playback.json";

/// The keys that this program reads, older spellings included.
constexpr std::array<std::string_view, 9> knownKeys{"offset", "Offset", "boundary", "volume", "Volume",
                                                    "sound",  "Sound",  "watched",  "Watched"};

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

}  // namespace

PlaybackFile parsePlayback(const std::string& text) {
  PlaybackFile playback;
  playback.offset = wholeNumberOf(readFirst(readNumber, text, {"offset", "Offset"}));
  playback.boundary = wholeNumberOf(readNumber(text, "boundary"));
  playback.volume = readFirst(readNumber, text, {"volume", "Volume"});
  playback.sound = readFirst(readString, text, {"sound", "Sound"});
  playback.watched = readFirst(readBool, text, {"watched", "Watched"});
  playback.unknown = readMembers(text);
  std::erase_if(playback.unknown, [](const JsonMember& member) {
    return std::ranges::find(knownKeys, member.key) != knownKeys.end();
  });
  return playback;
}

std::vector<JsonMember> playbackMembers(const PlaybackFile& playback) {
  std::vector<JsonMember> members;
  if (playback.offset) members.push_back({"offset", std::to_string(*playback.offset)});
  if (playback.boundary) members.push_back({"boundary", std::to_string(*playback.boundary)});
  if (playback.volume) members.push_back({"volume", decimalText(*playback.volume)});
  if (playback.sound) members.push_back({"sound", quotedString(*playback.sound)});
  if (playback.watched) members.push_back({"watched", *playback.watched ? "true" : "false"});
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

PlaybackFile readPlayback(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  const std::string text = readWholeFile(stream);
  PlaybackFile playback = parsePlayback(text);
  if (!isOneObject(text)) writePlayback(file, playback);
  return playback;
}

void writePlayback(const fs::path& file, const PlaybackFile& playback) {
  const std::vector<JsonMember> members = playbackMembers(playback);
  if (!members.empty()) writeJsonAtomic(file, members);
}

}  // namespace tavek
