#include "media/tag_value.h"

#include <algorithm>
#include <cstdint>

#include "base/text.h"

extern "C" {
#include <libavutil/avstring.h>
#include <libavutil/dict.h>
}

namespace tavek {
namespace {

constexpr std::size_t longestTag = 1024;

bool isUtf8(std::string_view text) {
  const auto* at = reinterpret_cast<const std::uint8_t*>(text.data());
  const std::uint8_t* end = at + text.size();
  std::int32_t code = 0;
  while (at < end) {
    if (av_utf8_decode(&code, &at, end, 0) < 0) return false;
  }
  return true;
}

/// A character that is cut in two would spoil the whole text.
void cutToLength(std::string& text) {
  if (text.size() <= longestTag) return;
  std::size_t end = longestTag;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;
  text.resize(end);
}

/// Control characters count as blanks, also those that lie above ASCII, U+0080 to U+009F.
void blankControls(std::string& text) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    if (byte < ' ' || byte == 0x7F) text[i] = ' ';
    if (byte == 0xC2 && i + 1 < text.size() && static_cast<unsigned char>(text[i + 1]) < 0xA0)
      text.replace(i, 2, " ");
  }
}

std::string oneLine(std::string_view value) {
  std::string text = utf8Of(value);
  cutToLength(text);
  blankControls(text);
  return trim(text);
}

std::string find(const AVDictionary* tags, const char* key, int flags) {
  const AVDictionaryEntry* entry = nullptr;
  while ((entry = av_dict_get(tags, key, entry, flags)) != nullptr) {
    if (std::string text = oneLine(entry->value); !text.empty()) return text;
  }
  return {};
}

}  // namespace

std::string utf8Of(std::string_view bytes) {
  if (isUtf8(bytes)) return std::string(bytes);
  std::string text;
  for (const char c : bytes) {
    const auto code = static_cast<unsigned char>(c);
    if (code < 0x80) {
      text += c;
    } else {
      text += static_cast<char>(0xC0 | code >> 6);
      text += static_cast<char>(0x80 | (code & 0x3F));
    }
  }
  return text;
}

std::string tagValue(const AVDictionary* container, const AVDictionary* stream, const char* key) {
  for (const int flags : {0, AV_DICT_IGNORE_SUFFIX}) {
    for (const AVDictionary* tags : {container, stream}) {
      if (std::string text = find(tags, key, flags); !text.empty()) return text;
    }
  }
  return {};
}

}  // namespace tavek
