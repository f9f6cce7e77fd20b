#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "base/process_flags.h"
#include "media/handles.h"
#include "media/movie_info.h"

namespace tavek {

/// Whether a file without a stream of pictures can be opened.
enum class Pictures { Needed, Optional };

/// An open media file, of which at most one video and one audio stream are chosen. It is a file of the local
/// disk, and reaches no other: neither the network nor what a playlist in a film's clothes names. One thread
/// reads and seeks; what the constructor has found never changes and may be read from any.
class Demultiplexer {
 public:
  /// Throws ffmpeg::Error. The language decides between audio streams of equally many channels. Opening,
  /// reading and seeking end with a failure once `interrupt` is set, which has to outlive this.
  Demultiplexer(const std::string& path, std::optional<std::string> language, Pictures pictures,
                const Flag& interrupt);
  Demultiplexer(const Demultiplexer&) = delete;
  Demultiplexer& operator=(const Demultiplexer&) = delete;

  /// Packets of all streams come, into an empty packet. False at the end of the file and at an error alike.
  bool readPacket(AVPacket* packet);
  /// Goes to the key frame before the target, or as near as the container can; a negative target means 0.
  /// Also after the end of the file was met.
  bool seek(std::int64_t targetUs);

  /// Where a time stamp of a stream lies in the item: positions count from the file's first moment, which
  /// some recordings put at hours.
  std::int64_t positionUs(std::int64_t stamp, AVRational timeBase) const;

  /// Owned by this object; null without such a stream.
  const AVCodecParameters* videoParameters() const;
  const AVCodecParameters* audioParameters() const;
  /// The chosen streams; -1 without one.
  int videoStreamIndex() const { return videoIndex_; }
  int audioStreamIndex() const { return audioIndex_; }
  /// The pictures are a cover, of which there is one.
  bool pictureIsAttached() const;
  /// 0/1 without such a stream.
  AVRational videoTimeBase() const { return videoTimeBase_; }
  AVRational audioTimeBase() const { return audioTimeBase_; }
  /// 0 when it is not known.
  std::int64_t durationUs() const;
  MovieInfo movieInfo() const;
  /// By tagValue's rule, of the file and the sound that plays.
  std::string tag(const char* key) const;

 private:
  int findAudioStream() const;
  std::int64_t startTimeUs() const;

  ffmpeg::IoContextPtr file_;  ///< outlives what reads through it
  ffmpeg::FormatContextPtr context_;
  int videoIndex_ = -1;
  int audioIndex_ = -1;
  AVRational videoTimeBase_{0, 1};
  AVRational audioTimeBase_{0, 1};
  std::optional<std::string> preferredLanguage_;
};

}  // namespace tavek
