#include "media/codec.h"

#include <cstdlib>
#include <iostream>
#include <mutex>
#include <string_view>
#include <thread>
#include <utility>

#include "base/process_flags.h"
#include "media/decoder_choice.h"
#include "media/error.h"

namespace tavek {
namespace {

// The place that the viewer's error line names; it stays the same when the code moves.
constexpr const char* errorPlace = "video/codec";
constexpr int parametersLine = 87;

/// Keeps FFmpeg quiet while a decoder is tried that the box may lack. The level belongs to the whole process:
/// the lock keeps a second attempt from taking the lowered level for the one to restore.
class QuietLog {
 public:
  QuietLog() : lock_(levelLock), level_(av_log_get_level()) { av_log_set_level(AV_LOG_QUIET); }
  ~QuietLog() { av_log_set_level(level_); }
  QuietLog(const QuietLog&) = delete;
  QuietLog& operator=(const QuietLog&) = delete;

 private:
  inline static std::mutex levelLock;
  std::lock_guard<std::mutex> lock_;
  int level_;
};

void setThreading(AVCodecContext& context, int capabilities) {
  const int frame = (capabilities & AV_CODEC_CAP_FRAME_THREADS) != 0 ? FF_THREAD_FRAME : 0;
  const int slice = (capabilities & AV_CODEC_CAP_SLICE_THREADS) != 0 ? FF_THREAD_SLICE : 0;
  if ((frame | slice) == 0) return;
  context.thread_count = static_cast<int>(std::thread::hardware_concurrency());
  context.thread_type = frame | slice;
}

/// Null when the decoder is of another codec or does not open.
ffmpeg::CodecContextPtr tryOpen(const AVCodec& decoder, const AVCodecParameters& parameters) {
  if (decoder.id != parameters.codec_id) return nullptr;
  ffmpeg::CodecContextPtr context(avcodec_alloc_context3(&decoder));
  if (!context) throw ffmpeg::Error("Couldn't allocate codec context");
  const int result = avcodec_parameters_to_context(context.get(), &parameters);
  if (result < 0) {
    throw ffmpeg::Error(result, "avcodec_parameters_to_context(ctx.get(), codecParameters)", errorPlace,
                        parametersLine);
  }
  setThreading(*context, decoder.capabilities);
  context->flags2 |= AV_CODEC_FLAG2_FAST;
  context->skip_loop_filter = AVDISCARD_NONREF;
  context->skip_idct = AVDISCARD_NONE;
  context->skip_frame = AVDISCARD_DEFAULT;
  if (avcodec_open2(context.get(), &decoder, nullptr) != 0) return nullptr;
  return context;
}

bool softwareHevcAllowed() {
  const char* value = std::getenv("TAVEK_SOFTWARE_HEVC");
  return value != nullptr && std::string_view(value) == "1";
}

ffmpeg::CodecContextPtr openSoftwareDecoder(const AVCodecParameters& parameters) {
  // The box cannot decode HEVC in software at the speed of a film; a faster machine may say that it can.
  if (parameters.codec_id == AV_CODEC_ID_HEVC && !softwareHevcAllowed())
    throw ffmpeg::Error("No HEVC hardware decoder");
  const AVCodec* decoder = avcodec_find_decoder(parameters.codec_id);
  if (decoder == nullptr) throw ffmpeg::Error("Unsupported codec");
  auto context = tryOpen(*decoder, parameters);
  if (!context) throw ffmpeg::Error("Failed to open decoder");
  return context;
}

ffmpeg::CodecContextPtr openDecoder(const AVCodecParameters& parameters) {
  const auto attempt = [&](const char* name) {
    DecoderAttempt result;
    if (const AVCodec* decoder = avcodec_find_decoder_by_name(name)) {
      const QuietLog quiet;
      result = {true, tryOpen(*decoder, parameters)};
    }
    return result;
  };
  auto context =
      openHardwareDecoder(std::getenv("PLAY_HW_DECODER"), hardwareDecodersFor(parameters.codec_id), attempt);
  return context ? std::move(context) : openSoftwareDecoder(parameters);
}

Decoded outcomeOf(int result) {
  if (result == AVERROR(EAGAIN) || result == AVERROR_EOF) return Decoded::NotNow;
  if (result == AVERROR_INVALIDDATA) return Decoded::Damaged;
  ffmpeg::throwIfNegative(result);
  return Decoded::Done;
}

}  // namespace

Codec::Codec(const AVCodecParameters* parameters) {
  if (parameters == nullptr) throw ffmpeg::Error("Null codec parameters");
  context_ = openDecoder(*parameters);
  if (debugEnabled) {
    const char* name = context_->codec->name;
    std::cerr << "[CODEC] opened decoder=" << (name != nullptr ? name : "unknown")
              << " codec=" << avcodec_get_name(context_->codec_id) << " w=" << width() << " h=" << height()
              << std::endl;
  }
}

Decoded Codec::sendPacket(const AVPacket* packet) {
  return outcomeOf(avcodec_send_packet(context_.get(), packet));
}

Decoded Codec::receiveFrame(AVFrame* frame) {
  return outcomeOf(avcodec_receive_frame(context_.get(), frame));
}

void Codec::flush() {
  avcodec_flush_buffers(context_.get());
}

}  // namespace tavek
