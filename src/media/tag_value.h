#pragma once

#include <string>
#include <string_view>

struct AVDictionary;

namespace tavek {

/// A tag of a file, from its container or else from the stream: that of the very key, in any case, before one
/// that only begins with it, since "album" must not hit "album_artist". Blank ones count as missing; what
/// comes out is trimmed UTF-8 of one line, a kilobyte at most. Dictionaries may be null.
std::string tagValue(const AVDictionary* container, const AVDictionary* stream, const char* key);

/// Bytes that are no UTF-8 are read as Latin-1, as the oldest tags of MP3 are.
std::string utf8Of(std::string_view bytes);

}  // namespace tavek
