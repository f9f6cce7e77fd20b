#include "player/reader.h"

#include <algorithm>
#include <iostream>
#include <utility>

#include "base/console.h"
#include "library/file_types.h"
#include "media/error.h"

namespace tavek {

Reader::Reader(const PlayItem& item, Exchange& exchange)
    : path_(item.path),
      seekDebug_(console::seekDebugWanted()),
      exchange_(exchange),
      file_(item.path, item.language, isAudioFile(item.path) ? Pictures::Optional : Pictures::Needed,
            exchange.closed()) {}

void Reader::run(Streams streams) {
  streams_ = streams;
  while (!exchange_.stopping()) {
    const auto request = atEnd_ ? exchange_.waitForRequest() : exchange_.takeRequest();
    if (request) {
      carryOut(*request);
    } else if (!atEnd_) {
      readOne();
    }
  }
}

void Reader::carryOut(const SeekRequest& request) {
  atEnd_ = false;
  const bool begins = round_ == 0 && request.positionUs == 0;
  round_ = request.round;
  if (begins) return;
  const std::int64_t duration = file_.durationUs();
  const std::int64_t target = duration >= 1 ? std::min(request.positionUs, duration - 1) : 0;
  if (seekDebug_) std::cout << "[RESUME] applying seek=" << target << "us path=" << path_ << std::endl;
  if (file_.seek(target)) return;
  exchange_.seekFailed = true;
  if (seekDebug_) {
    std::cerr << console::boldRed << "[RESUME] seek failed=" << target << "us path=" << path_
              << console::reset << std::endl;
  }
}

void Reader::readOne() {
  ffmpeg::PacketPtr packet = ffmpeg::makePacket();
  if (!packet) throw ffmpeg::Error("Failed to allocate AVPacket");
  if (!file_.readPacket(packet.get())) {
    atEnd_ = true;
    if (streams_.pictures >= 0) send(exchange_.picturePackets, nullptr);
    if (streams_.sound >= 0) send(exchange_.soundPackets, nullptr);
    return;
  }
  const int stream = packet->stream_index;
  if (stream == streams_.pictures) {
    send(exchange_.picturePackets, std::move(packet));
    // A decoder that waits for more would give the only picture when the file ends.
    if (streams_.pictureIsStill) send(exchange_.picturePackets, nullptr);
  } else if (stream == streams_.sound) {
    send(exchange_.soundPackets, std::move(packet));
  }
}

/// Refused only when the item is over.
void Reader::send(PacketQueue& queue, ffmpeg::PacketPtr packet) {
  Tagged<ffmpeg::PacketPtr> tagged{std::move(packet), round_};
  queue.push(tagged);
}

}  // namespace tavek
