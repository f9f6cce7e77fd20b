#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>

#include "base/guarded.h"

namespace tavek {

struct FrameSize {
  std::int32_t width = 0;
  std::int32_t height = 0;
};

/// What is known of media files for this run only, by their paths.
class MediaNotes {
 public:
  /// The notes are the IMDb and the TMDB id of a film; series and home videos have none.
  std::optional<std::string> scanNoteA(const std::string& media) const;
  std::optional<std::string> scanNoteB(const std::string& media) const;
  void setScanNoteA(const std::string& media, const std::string& text);
  void setScanNoteB(const std::string& media, const std::string& text);
  /// Treble and bass gain in dB.
  std::optional<double> audioParamA(const std::string& media) const;
  std::optional<double> audioParamB(const std::string& media) const;
  void setAudioParamA(const std::string& media, double value);
  void setAudioParamB(const std::string& media, double value);
  std::optional<FrameSize> frameSize(const std::string& media) const;
  void setFrameSize(const std::string& media, std::int32_t width, std::int32_t height);

  /// The notes follow a media file to its new path.
  void rename(const std::string& old, const std::string& now);
  void renameFolder(const std::string& old, const std::string& now);

 private:
  template <typename Value>
  using ByMedia = std::unordered_map<std::string, Value>;
  struct Notes {
    ByMedia<std::string> scanNotesA;
    ByMedia<std::string> scanNotesB;
    ByMedia<double> audioParamA;
    ByMedia<double> audioParamB;
    ByMedia<FrameSize> frameSizes;
  };
  Guarded<Notes> notes_;
};

}  // namespace tavek
