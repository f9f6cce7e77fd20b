#pragma once

#include <memory>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/buffer.h>
#include <libswscale/swscale.h>
}

#if LIBAVCODEC_VERSION_MAJOR < 59 || LIBAVCODEC_VERSION_MAJOR > 61
#error "tavek is written for libavcodec 59, 60 and 61"
#endif

/// FFmpeg's objects under one owner each.
namespace tavek::ffmpeg {

struct FormatContextDeleter {
  void operator()(AVFormatContext* context) const { avformat_close_input(&context); }
};
struct IoContextDeleter {
  void operator()(AVIOContext* context) const { avio_closep(&context); }
};
struct BufferPoolDeleter {
  void operator()(AVBufferPool* pool) const { av_buffer_pool_uninit(&pool); }
};
struct CodecContextDeleter {
  void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
};
struct PacketDeleter {
  void operator()(AVPacket* packet) const { av_packet_free(&packet); }
};
struct FrameDeleter {
  void operator()(AVFrame* frame) const { av_frame_free(&frame); }
};
struct SwsContextDeleter {
  void operator()(SwsContext* context) const { sws_freeContext(context); }
};

using FormatContextPtr = std::unique_ptr<AVFormatContext, FormatContextDeleter>;
using IoContextPtr = std::unique_ptr<AVIOContext, IoContextDeleter>;
/// Its buffers may outlive it.
using BufferPoolPtr = std::unique_ptr<AVBufferPool, BufferPoolDeleter>;
using CodecContextPtr = std::unique_ptr<AVCodecContext, CodecContextDeleter>;
using PacketPtr = std::unique_ptr<AVPacket, PacketDeleter>;
using FramePtr = std::unique_ptr<AVFrame, FrameDeleter>;
using SwsContextPtr = std::unique_ptr<SwsContext, SwsContextDeleter>;

/// Empty ones; null when memory is short.
inline PacketPtr makePacket() {
  return PacketPtr(av_packet_alloc());
}
inline FramePtr makeFrame() {
  return FramePtr(av_frame_alloc());
}

}  // namespace tavek::ffmpeg
