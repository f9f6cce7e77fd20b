#pragma once

#include <filesystem>
#include <fstream>

#include "rig/media.h"

/// A small library of made-up media, and a tool that can be slow.
namespace tavek::test {

struct Medium {
  const char* path;
  const char* words;
};

inline constexpr const char* film =
    "-f lavfi -i testsrc=s=32x18:r=24:d=12 -f lavfi -i sine=d=12 -c:v ffv1 -g 12 -c:a flac OUT";
inline constexpr const char* song = "-f lavfi -i sine=d=4 -c:a flac OUT";

/// Two of the films are silent. None is longer than twelve seconds.
inline constexpr Medium media[] = {
    {"Movies/Alpha (2001)/Alpha (2001).mkv", film},
    {"Movies/Брат (1997)/Брат (1997).mkv", "-f lavfi -i testsrc=s=32x18:r=24:d=2 -c:v ffv1 OUT"},
    {"Movies/Old (1950)/Old (1950).avi", "-f lavfi -i testsrc=s=32x18:r=24:d=6 -c:v mpeg4 OUT"},
    {"TV/Show/Season 1/Show S01E01.mkv", film},
    {"TV/Show/Season 1/Show S01E02.mkv", film},
    {"Music/Tides/01 Ebb.flac", song},
    {"Music/Tides/02 Flow.flac", song},
};
inline constexpr std::int64_t longestUs = 12'500'000;

inline void makeLibrary(const std::filesystem::path& root) {
  namespace fs = std::filesystem;
  for (const Medium& medium : media) {
    const fs::path path = root / medium.path;
    fs::create_directories(path.parent_path());
    // Without an image a film is not in the strip.
    const fs::path poster =
        rig::makeFile("-f lavfi -i color=red:s=20x30 -frames:v 1 OUT", "jpg", TAVEK_TEST_MEDIA);
    fs::copy(poster, path.parent_path() / "poster.jpg", fs::copy_options::skip_existing);
    fs::copy(rig::makeFile(medium.words, path.extension().string().substr(1), TAVEK_TEST_MEDIA), path);
  }
  fs::create_directories(root / "Movies/Broken (2000)");
  std::ofstream(root / "Movies/Broken (2000)/Broken (2000).mkv") << "no film";
}

/// An ffmpeg that takes its time, and never cuts a still.
inline void makeSlowTool(const std::filesystem::path& folder) {
  namespace fs = std::filesystem;
  std::ofstream(folder / "ffmpeg") << "#!/bin/sh\nsleep 20\n";
  fs::permissions(folder / "ffmpeg", fs::perms::owner_all);
}

}  // namespace tavek::test
