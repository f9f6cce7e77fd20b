#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "media/handles.h"
#include "media/movie_info.h"

namespace tavek {

/// An open media file, of which one video and at most one audio stream are chosen. In an audio file the video
/// stream is the cover picture; a file without one cannot be opened.
/// One thread reads and seeks; what the constructor has found never changes and may be read from any.
class Demultiplexer {
 public:
  /// Throws ffmpeg::Error. The language decides between audio streams of equally many channels.
  Demultiplexer(const std::string& path, std::optional<std::string> language);
  Demultiplexer(const Demultiplexer&) = delete;
  Demultiplexer& operator=(const Demultiplexer&) = delete;

  /// Packets of all streams come, into an empty packet. False at the end of the file and at an error alike.
  bool readPacket(AVPacket* packet);
  /// Goes to the key frame before the target, or as near as the container can; a negative target means 0.
  bool seek(std::int64_t targetUs);

  /// Owned by this object; null without such a stream.
  const AVCodecParameters* videoParameters() const;
  const AVCodecParameters* audioParameters() const;
  int videoStreamIndex() const { return videoIndex_; }
  /// -1 without audio.
  int audioStreamIndex() const { return audioIndex_; }
  AVRational videoTimeBase() const { return videoTimeBase_; }
  /// 0/1 without audio.
  AVRational audioTimeBase() const { return audioTimeBase_; }
  /// 0 when it is not known.
  std::int64_t durationUs() const;
  MovieInfo movieInfo() const;

 private:
  int findAudioStream() const;

  ffmpeg::FormatContextPtr context_;
  int videoIndex_ = -1;
  int audioIndex_ = -1;
  AVRational videoTimeBase_{0, 1};
  AVRational audioTimeBase_{0, 1};
  std::optional<std::string> preferredLanguage_;
};

}  // namespace tavek
