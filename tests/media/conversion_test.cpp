#include "media/conversion.h"

#include <gmock/gmock.h>

#include "media/colour.h"

extern "C" {
#include <libavutil/pixdesc.h>
}

namespace tavek {
namespace {

using enum PictureColours;

constexpr AVColorRange untold = AVCOL_RANGE_UNSPECIFIED, limited = AVCOL_RANGE_MPEG, full = AVCOL_RANGE_JPEG;
constexpr AVColorSpace untoldMatrix = AVCOL_SPC_UNSPECIFIED;
constexpr auto pq = AVCOL_TRC_SMPTE2084, hlg = AVCOL_TRC_ARIB_STD_B67;

/// One colour all over; samples above 8 bits take two bytes.
ffmpeg::FramePtr makePicture(AVPixelFormat format, std::array<int, 3> colour, int size = 64) {
  auto frame = ffmpeg::makeFrame();
  frame->format = format;
  frame->width = frame->height = size;
  EXPECT_EQ(av_frame_get_buffer(frame.get(), 0), 0);
  const int shift = av_pix_fmt_desc_get(format)->comp[0].depth - 8;
  for (std::size_t plane = 0; plane < 3; ++plane) {
    const int value = colour[plane] << shift;
    const bool half = plane > 0 && frame->linesize[plane] < frame->linesize[0];
    const int bytes = frame->linesize[plane] * (half ? size / 2 : size);
    for (int i = 0; i < bytes; ++i)
      frame->data[plane][i] = static_cast<std::uint8_t>(shift == 0 ? value : i % 2 == 0 ? value : value >> 8);
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
    AVColorSpace matrix;
    AVColorRange range;
    std::array<int, 3> before, after;
    PictureColours colours;
    AVColorTransferCharacteristic curve = AVCOL_TRC_UNSPECIFIED;
  } cases[] = {
      {"as it is", AV_PIX_FMT_YUV420P, AVCOL_SPC_SMPTE170M, limited, {235, 100, 90}, {235, 100, 90}, Bt601},
      {"4:4:4", AV_PIX_FMT_YUV444P, AVCOL_SPC_SMPTE170M, limited, {81, 90, 240}, {81, 90, 240}, Bt601},
      {"full format", AV_PIX_FMT_YUVJ444P, AVCOL_SPC_SMPTE170M, untold, {255, 0, 128}, {235, 16, 128}, Bt601},
      {"full tag", AV_PIX_FMT_YUV420P, AVCOL_SPC_BT709, full, {255, 128, 128}, {235, 128, 128}, Bt709},
      {"ten bits", AV_PIX_FMT_YUV420P10, AVCOL_SPC_BT709, limited, {99, 128, 128}, {99, 128, 128}, Bt709},
      // Pure red, (255, 0, 0), in each matrix.
      {"BT.2020", AV_PIX_FMT_YUV420P10, AVCOL_SPC_BT2020_NCL, limited, {74, 97, 240}, {63, 102, 240}, Bt709},
      {"240M", AV_PIX_FMT_YUV420P, AVCOL_SPC_SMPTE240M, limited, {62, 102, 240}, {63, 102, 240}, Bt709},
      // Light of 100 cd/m2, which is half of what a screen gives, and of 1000 and more, which is all.
      {"PQ", AV_PIX_FMT_YUV420P10, untoldMatrix, limited, {127, 128, 128}, {181, 128, 128}, Bt601, pq},
      {"PQ white", AV_PIX_FMT_YUV420P10, untoldMatrix, limited, {181, 138, 118}, {235, 153, 103}, Bt601, pq},
      {"PQ glare", AV_PIX_FMT_YUV420P10, untoldMatrix, limited, {235, 200, 40}, {235, 240, 16}, Bt601, pq},
      {"HLG", AV_PIX_FMT_YUV420P10, untoldMatrix, limited, {127, 128, 128}, {127, 128, 128}, Bt601, hlg},
  };
  for (const auto& c : cases) {
    const auto source = makePicture(c.format, c.before);
    source->colorspace = c.matrix;
    source->color_range = c.range;
    source->color_trc = c.curve;
    Conversion conversion(*source, SWS_FAST_BILINEAR);
    const auto picture = conversion.convert(*source);
    for (std::size_t plane = 0; plane < 3; ++plane)
      EXPECT_NEAR(colourOf(*picture)[plane], c.after[plane], 2) << c.what << ", plane " << plane;
    EXPECT_EQ(screenColoursOf(*picture), c.colours) << c.what;
  }
}

TEST(Conversion, TakesBuffersFromItsPoolAgain) {
  const auto source = makePicture(AV_PIX_FMT_YUVJ420P, {1, 2, 3});
  auto conversion = std::make_unique<Conversion>(*source, SWS_FAST_BILINEAR);
  const auto* buffer = conversion->convert(*source)->data[0];
  const auto second = conversion->convert(*source);
  EXPECT_EQ(second->data[0], buffer);
  conversion.reset();
  EXPECT_EQ(second->data[0][0], 17) << "a picture outlives its conversion";
}

TEST(Conversion, KnowsItsSourceAndRefusesOthers) {
  const auto source = makePicture(AV_PIX_FMT_YUVJ420P, {0, 0, 0});
  const Conversion conversion(*source, SWS_FAST_BILINEAR);
  EXPECT_TRUE(conversion.fits(*source));
  EXPECT_FALSE(conversion.fits(*makePicture(AV_PIX_FMT_YUV420P, {0, 0, 0})));
  EXPECT_FALSE(conversion.fits(*makePicture(AV_PIX_FMT_YUVJ420P, {0, 0, 0}, 66)));
  source->colorspace = AVCOL_SPC_BT2020_NCL;
  EXPECT_FALSE(conversion.fits(*source));
  for (const AVPixelFormat none : {AV_PIX_FMT_VAAPI, AV_PIX_FMT_UYYVYY411, AV_PIX_FMT_NONE}) {
    source->format = none;
    EXPECT_THROW(Conversion(*source, SWS_FAST_BILINEAR), std::runtime_error) << none;
  }
  source->format = AV_PIX_FMT_YUV444P;
  source->width = 0;
  EXPECT_THAT(
      [&] { Conversion(*source, SWS_FAST_BILINEAR); },
      testing::ThrowsMessage<std::runtime_error>("Conversion: failed SwsContext for yuv444p -> yuv420p"));
}

TEST(Colour, IsSaidByTheFrameOrByItsHeight) {
  using Shown = std::optional<PictureColours>;
  const std::tuple<AVPixelFormat, int, AVColorSpace, AVColorRange, Shown> cases[] = {
      {AV_PIX_FMT_YUV420P, 576, AVCOL_SPC_UNSPECIFIED, untold, Bt601},
      {AV_PIX_FMT_YUV420P, 577, AVCOL_SPC_UNSPECIFIED, untold, Bt709},
      {AV_PIX_FMT_YUV420P, 1080, AVCOL_SPC_BT470BG, limited, Bt601},
      {AV_PIX_FMT_YUV420P, 480, AVCOL_SPC_BT709, limited, Bt709},
      {AV_PIX_FMT_YUVJ420P, 480, AVCOL_SPC_UNSPECIFIED, untold, Bt601Full},
      {AV_PIX_FMT_YUV420P, 1080, AVCOL_SPC_BT709, full, {}},
      {AV_PIX_FMT_YUV420P, 2160, AVCOL_SPC_BT2020_NCL, limited, {}},
  };
  for (const auto& [format, height, matrix, range, shown] : cases) {
    const auto frame = ffmpeg::makeFrame();
    frame->format = format;
    frame->height = height;
    frame->colorspace = matrix;
    frame->color_range = range;
    EXPECT_EQ(screenColoursOf(*frame), shown) << format << " " << height << " " << matrix;
  }
}

}  // namespace
}  // namespace tavek
