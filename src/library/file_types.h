#pragma once

#include <filesystem>
#include <set>
#include <string>
#include <string_view>

/// What a file is, told by its name, mostly by its extension alone, in any case. May be called from every
/// thread.
namespace tavek {

bool isAudioFile(const std::filesystem::path& path);
/// Also true for the audio files that FFmpeg can open: ask isAudioFile first where the difference counts.
bool isVideoFile(const std::filesystem::path& path);
/// The same by the extension alone, in lower case with its dot.
bool isVideoExtension(std::string_view extension);

/// Whether the stem of a video tells that it only goes with another: a theme, a sample, a trailer.
bool isExtra(std::string_view stem);
/// A video that is no extra.
bool isFilm(const std::filesystem::path& path);

/// A regular file that is not empty. False for everything else, also for what can't be looked at.
bool isUsableFile(const std::filesystem::path& file);

/// Every piece of FFmpeg's comma-separated extension lists, as it is spelled there.
std::set<std::string> demuxerExtensions();
/// The fixed video extensions and those of the demuxers, in lower case with a dot, without still images.
std::set<std::string, std::less<>> completeVideoExtensions(const std::set<std::string>& fromDemuxers);

}  // namespace tavek
