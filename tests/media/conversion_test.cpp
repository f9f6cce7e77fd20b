#include "media/conversion.h"

#include <array>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include "media/colour.h"

namespace tavek {
namespace {

/// One colour all over; samples above 8 bits take two bytes.
ffmpeg::FramePtr makePicture(AVPixelFormat format, std::array<int, 3> colour, int shift = 0, int size = 64) {
  auto frame = ffmpeg::makeFrame();
  frame->format = format;
  frame->width = frame->height = size;
  EXPECT_EQ(av_frame_get_buffer(frame.get(), 0), 0);
  for (std::size_t plane = 0; plane < 3; ++plane) {
    const int value = colour[plane] << shift;
    const bool half = plane > 0 && frame->linesize[plane] < frame->linesize[0];
    const int bytes = frame->linesize[plane] * (half ? size / 2 : size);
    for (int i = 0; i < bytes; ++i) {
      frame->data[plane][i] = static_cast<std::uint8_t>(shift == 0 ? value : i % 2 == 0 ? value : value >> 8);
    }
  }
  return frame;
}

/// Its last sample in each plane.
std::array<int, 3> colourOf(const AVFrame& picture) {
  const int rows = picture.height;
  return {picture.data[0][(rows - 1) * picture.linesize[0]],
          picture.data[1][(rows / 2 - 1) * picture.linesize[1]],
          picture.data[2][(rows / 2 - 1) * picture.linesize[2]]};
}

TEST(Conversion, GivesLimitedRangeInAMatrixThatScreensKnow) {
  const struct {
    const char* what;
    AVPixelFormat format;
    int shift;
    AVColorSpace matrix;
    AVColorRange range;
    std::array<int, 3> before, after;
    PictureColours colours;
  } cases[] = {
      {"as it is",
       AV_PIX_FMT_YUV420P,
       0,
       AVCOL_SPC_SMPTE170M,
       AVCOL_RANGE_MPEG,
       {235, 100, 90},
       {235, 100, 90},
       PictureColours::Bt601},
      {"4:4:4",
       AV_PIX_FMT_YUV444P,
       0,
       AVCOL_SPC_SMPTE170M,
       AVCOL_RANGE_MPEG,
       {81, 90, 240},
       {81, 90, 240},
       PictureColours::Bt601},
      {"full range by its format",
       AV_PIX_FMT_YUVJ444P,
       0,
       AVCOL_SPC_SMPTE170M,
       AVCOL_RANGE_UNSPECIFIED,
       {255, 0, 128},
       {235, 16, 128},
       PictureColours::Bt601},
      {"full range by its tag",
       AV_PIX_FMT_YUV420P,
       0,
       AVCOL_SPC_BT709,
       AVCOL_RANGE_JPEG,
       {255, 128, 128},
       {235, 128, 128},
       PictureColours::Bt709},
      {"ten bits",
       AV_PIX_FMT_YUV420P10LE,
       2,
       AVCOL_SPC_BT709,
       AVCOL_RANGE_MPEG,
       {99, 128, 128},
       {99, 128, 128},
       PictureColours::Bt709},
      // Pure red, (255, 0, 0), in each matrix.
      {"BT.2020",
       AV_PIX_FMT_YUV420P10LE,
       2,
       AVCOL_SPC_BT2020_NCL,
       AVCOL_RANGE_MPEG,
       {74, 97, 240},
       {63, 102, 240},
       PictureColours::Bt709},
      {"SMPTE 240M",
       AV_PIX_FMT_YUV420P,
       0,
       AVCOL_SPC_SMPTE240M,
       AVCOL_RANGE_MPEG,
       {62, 102, 240},
       {63, 102, 240},
       PictureColours::Bt709},
  };
  for (const auto& c : cases) {
    const auto source = makePicture(c.format, c.before, c.shift);
    source->colorspace = c.matrix;
    source->color_range = c.range;
    Conversion conversion(*source, SWS_FAST_BILINEAR);
    const auto picture = conversion.convert(*source);
    for (std::size_t plane = 0; plane < 3; ++plane) {
      EXPECT_NEAR(colourOf(*picture)[plane], c.after[plane], 2) << c.what << ", plane " << plane;
    }
    EXPECT_EQ(screenColoursOf(*picture), c.colours) << c.what;
  }
}

TEST(Conversion, TakesBuffersFromItsPoolAgain) {
  const auto source = makePicture(AV_PIX_FMT_YUVJ420P, {1, 2, 3});
  auto conversion = std::make_unique<Conversion>(*source, SWS_FAST_BILINEAR);
  auto first = conversion->convert(*source);
  const auto* buffer = first->data[0];
  first.reset();
  auto second = conversion->convert(*source);
  EXPECT_EQ(second->data[0], buffer);
  conversion.reset();
  EXPECT_EQ(second->data[0][0], 17) << "a picture outlives its conversion";
}

std::string failure(int format, int size = 64) try {
  const auto source = ffmpeg::makeFrame();
  source->format = format;
  source->width = source->height = size;
  const Conversion conversion(*source, SWS_FAST_BILINEAR);
  return {};
} catch (const std::runtime_error& error) {
  return error.what();
}

TEST(Conversion, KnowsItsSourceAndRefusesOthers) {
  const auto source = makePicture(AV_PIX_FMT_YUVJ420P, {0, 0, 0});
  const Conversion conversion(*source, SWS_FAST_BILINEAR);
  EXPECT_TRUE(conversion.fits(*source));
  EXPECT_FALSE(conversion.fits(*makePicture(AV_PIX_FMT_YUV420P, {0, 0, 0})));
  EXPECT_FALSE(conversion.fits(*makePicture(AV_PIX_FMT_YUVJ420P, {0, 0, 0}, 0, 66)));
  source->colorspace = AVCOL_SPC_BT2020_NCL;
  EXPECT_FALSE(conversion.fits(*source));
  EXPECT_EQ(failure(AV_PIX_FMT_VAAPI), "Conversion: failed SwsContext for vaapi -> yuv420p");
  EXPECT_EQ(failure(AV_PIX_FMT_UYYVYY411), "Conversion: failed SwsContext for uyyvyy411 -> yuv420p");
  EXPECT_EQ(failure(AV_PIX_FMT_NONE), "Conversion: failed SwsContext for unknown -> yuv420p");
  EXPECT_EQ(failure(AV_PIX_FMT_YUV444P, 0), "Conversion: failed SwsContext for yuv444p -> yuv420p");
}

TEST(Colour, IsSaidByTheFrameOrByItsHeight) {
  const struct {
    AVPixelFormat format;
    int height;
    AVColorSpace matrix;
    AVColorRange range;
    std::optional<PictureColours> shown;
  } cases[] = {
      {AV_PIX_FMT_YUV420P, 576, AVCOL_SPC_UNSPECIFIED, AVCOL_RANGE_UNSPECIFIED, PictureColours::Bt601},
      {AV_PIX_FMT_YUV420P, 577, AVCOL_SPC_UNSPECIFIED, AVCOL_RANGE_UNSPECIFIED, PictureColours::Bt709},
      {AV_PIX_FMT_YUV420P, 1080, AVCOL_SPC_BT470BG, AVCOL_RANGE_MPEG, PictureColours::Bt601},
      {AV_PIX_FMT_YUV420P, 480, AVCOL_SPC_BT709, AVCOL_RANGE_MPEG, PictureColours::Bt709},
      {AV_PIX_FMT_YUVJ420P, 480, AVCOL_SPC_UNSPECIFIED, AVCOL_RANGE_UNSPECIFIED, PictureColours::Bt601Full},
      {AV_PIX_FMT_YUV420P, 1080, AVCOL_SPC_BT709, AVCOL_RANGE_JPEG, {}},
      {AV_PIX_FMT_YUV420P, 2160, AVCOL_SPC_BT2020_NCL, AVCOL_RANGE_MPEG, {}},
  };
  for (const auto& c : cases) {
    const auto frame = ffmpeg::makeFrame();
    frame->format = c.format;
    frame->height = c.height;
    frame->colorspace = c.matrix;
    frame->color_range = c.range;
    EXPECT_EQ(screenColoursOf(*frame), c.shown) << c.format << " " << c.height << " " << c.matrix;
  }
}

}  // namespace
}  // namespace tavek
