#pragma once

#include <filesystem>
#include <string_view>

/// What of a name decides whether a video is tidied, and what belongs to it. Plain rules on names; nothing
/// here looks at the disk.
namespace tavek {

/// A name that a file or folder may get: it stays in its folder, is not hidden, and no file system refuses
/// it.
bool isFitName(std::string_view stem);

/// A folder of extras, trailers or the like, which go with a film but are none.
bool isExtrasFolder(std::string_view name);
/// A video that only goes with another, by its stem.
bool isBonus(std::string_view stem);
/// Sound or subtitles in a file of their own, which FFmpeg opens like a video.
bool isSoundTrack(const std::filesystem::path& name);
/// What no name may be changed in: the folders of a disc.
bool isDiscFolder(std::string_view name);
/// One stem is another part of the film that the other one is of: "Film CD1" and "Film CD2".
bool areParts(std::string_view a, std::string_view b);

/// What of a file's name follows the stem of the video that it belongs to, ".en.srt" or "-thumb.jpg": a
/// subtitle, a note, or a picture. Empty if it is none of these.
std::string_view companionEnding(std::string_view name, std::string_view stem);

/// Two stems tell one title, whatever their years, their case, and what follows the year.
bool haveOneTitle(std::string_view a, std::string_view b);

}  // namespace tavek
