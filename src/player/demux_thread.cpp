#include <algorithm>
#include <iostream>

#include "base/console.h"
#include "media/error.h"
#include "player/pipeline.h"
#include "player/playback_timer.h"

namespace tavek {

void Pipeline::demuxThread() {
  while (!stopping()) {
    std::optional<SeekRequest> request;
    {
      const std::lock_guard held(seekLock_);
      request = std::exchange(seekRequest_, std::nullopt);
    }
    if (request) {
      readRound_ = request->round;
      applySeek(request->positionUs);
    } else if (seekComes()) {
      sleepMilliseconds(1);
    } else if (this->held()) {
      sleepMilliseconds(10);
    } else if (!readOne()) {
      return;
    }
  }
  video_.packets.close();
  audio_.packets.close();
}

bool Pipeline::readOne() {
  Tagged<ffmpeg::PacketPtr> packet{ffmpeg::makePacket(), readRound_};
  if (!packet.item) throw ffmpeg::Error("Failed to allocate AVPacket");
  if (!demux_.readPacket(packet.item.get())) {
    // The end of what a seek is about to leave is no end.
    if (seekComes()) return true;
    video_.packets.finish();
    audio_.packets.finish();
    return false;
  }
  if (packet.item->stream_index == video_.index) return video_.packets.push(packet);
  if (packet.item->stream_index == audio_.index) return audio_.packets.push(packet);
  return true;
}

void Pipeline::applySeek(std::int64_t positionUs) {
  const std::int64_t duration = demux_.durationUs();
  const std::int64_t target = duration >= 1 ? std::min(positionUs, duration - 1) : 0;
  if (seekDebug_) std::cout << "[RESUME] applying seek=" << target << "us path=" << path_ << std::endl;
  clearQueues();
  flush(video_);
  flush(audio_);
  if (demux_.seek(target)) {
    // The pictures of a film start at the key frame before, at their own pace until sound is heard again.
    // Black pictures have nothing to go by but the clock.
    audioClock_.set(audioOnly() ? target : 0);
    return;
  }
  // The item plays on from wherever the file stands; what was kept leads nowhere.
  audioClock_.set(0);
  if (seekDebug_) {
    std::cerr << console::boldRed << "[RESUME] seek failed=" << target << "us path=" << path_
              << console::reset << std::endl;
  }
  stored_.users.setPosition(path_, 0, "");
}

}  // namespace tavek
