#include "media/conversion.h"

#include <gtest/gtest.h>

namespace tavek {
namespace {

constexpr int size = 64;

/// All samples of a plane have the same value; those above 8 bits take two bytes.
ffmpeg::FramePtr makePicture(AVPixelFormat format, int luma, int chroma, int shift) {
  auto frame = ffmpeg::makeFrame();
  frame->format = format;
  frame->width = frame->height = size;
  EXPECT_EQ(av_frame_get_buffer(frame.get(), 0), 0);
  for (int plane = 0; plane < 3; ++plane) {
    const int value = (plane == 0 ? luma : chroma) << shift;
    const bool half = plane > 0 && frame->linesize[plane] < frame->linesize[0];
    const int bytes = frame->linesize[plane] * (half ? size / 2 : size);
    for (int i = 0; i < bytes; ++i) {
      frame->data[plane][i] = static_cast<std::uint8_t>(shift == 0 ? value : i % 2 == 0 ? value : value >> 8);
    }
  }
  return frame;
}

TEST(Conversion, AlwaysGivesLimitedRange) {
  struct Case {
    AVPixelFormat format;
    int luma, chroma, shift, lumaAfter, chromaAfter;
  };
  for (const Case& c : {Case{AV_PIX_FMT_YUV420P, 235, 100, 0, 235, 100},
                        {AV_PIX_FMT_YUVJ420P, 255, 128, 0, 235, 128},
                        {AV_PIX_FMT_YUVJ444P, 255, 0, 0, 235, 16},
                        {AV_PIX_FMT_YUV444P, 255, 64, 0, 255, 64},
                        {AV_PIX_FMT_YUV420P10LE, 99, 128, 2, 99, 128},
                        {AV_PIX_FMT_YUV444P10LE, 235, 150, 2, 235, 150}}) {
    const auto source = makePicture(c.format, c.luma, c.chroma, c.shift);
    const auto picture = makePicture(AV_PIX_FMT_YUV420P, 0, 0, 0);
    Conversion conversion(size, size, c.format, AV_PIX_FMT_YUV420P, SWS_FAST_BILINEAR);
    conversion.convert(source.get(), picture.get());
    EXPECT_NEAR(picture->data[0][(size - 1) * picture->linesize[0]], c.lumaAfter, 1) << c.format;
    EXPECT_NEAR(picture->data[2][(size / 2 - 1) * picture->linesize[2]], c.chromaAfter, 1) << c.format;
  }
}

std::string failure(AVPixelFormat source) try {
  Conversion(size, size, source, AV_PIX_FMT_YUV420P, SWS_FAST_BILINEAR);
  return {};
} catch (const std::runtime_error& error) {
  return error.what();
}

TEST(Conversion, KnowsItsSourceAndRefusesOthers) {
  Conversion conversion(size, size, AV_PIX_FMT_YUVJ420P, AV_PIX_FMT_YUV420P, SWS_FAST_BILINEAR);
  EXPECT_TRUE(conversion.fits(size, size, AV_PIX_FMT_YUVJ420P));
  EXPECT_FALSE(conversion.fits(size, size, AV_PIX_FMT_YUV420P));
  EXPECT_FALSE(conversion.fits(size, size + 2, AV_PIX_FMT_YUVJ420P));
  EXPECT_NO_THROW(conversion.convert(nullptr, nullptr));
  EXPECT_EQ(failure(AV_PIX_FMT_VAAPI), "Conversion: failed SwsContext for vaapi -> yuv420p");
  EXPECT_EQ(failure(AV_PIX_FMT_NONE), "Conversion: failed SwsContext for unknown -> yuv420p");
}

}  // namespace
}  // namespace tavek
