#pragma once

#include <string>

#include "media/demultiplexer.h"
#include "player/exchange.h"
#include "player/play.h"

namespace tavek {

/// Reads the file of an item and carries out its seeks, on a thread of its own. At the end of the file it
/// stays for the seeks that may still come.
class Reader {
 public:
  /// -1 stands for a stream that nobody decodes.
  struct Streams {
    int pictures = -1;
    int sound = -1;
    bool pictureIsStill = false;  ///< there is no other behind it
  };

  /// Opens the file; throws ffmpeg::Error.
  Reader(const PlayItem& item, Exchange& exchange);
  const Demultiplexer& file() const { return file_; }
  /// Until the item is over. Begins with the first request.
  void run(Streams streams);

 private:
  void carryOut(const SeekRequest& request);
  void readOne();
  void send(PacketQueue& queue, ffmpeg::PacketPtr packet);

  const std::string path_;
  const bool seekDebug_;  ///< TAVEK_SEEK_DEBUG is "1"
  Exchange& exchange_;
  Demultiplexer file_;
  Streams streams_;
  unsigned round_ = 0;
  bool atEnd_ = true;  ///< nothing to read, or not yet
};

}  // namespace tavek
