#include "media/codec.h"

#include <gmock/gmock.h>

#include "base/process_flags.h"
#include "media/decoder_choice.h"
#include "media/error.h"

namespace tavek {
namespace {

using testing::StartsWith;

/// What a codec of these parameters does: its error and all that is printed.
std::string opened(AVCodecID id, const char* ownDecoder) {
  setenv("PLAY_HW_DECODER", ownDecoder, 1);
  AVCodecParameters parameters{};
  parameters.codec_id = id;
  parameters.codec_type = avcodec_get_type(id);
  debugEnabled = true;
  testing::internal::CaptureStderr();
  try {
    const Codec codec(&parameters);
  } catch (const ffmpeg::Error& failure) {
    return failure.what() + testing::internal::GetCapturedStderr();
  }
  return testing::internal::GetCapturedStderr();
}

// No test machine has the decoders of the box, so what is seen here is the road without them.
TEST(Codec, FallsBackToSoftwareInSilenceButForHevc) {
  av_log_set_level(AV_LOG_INFO);
  // The own decoder, and how the outcome begins.
  const std::tuple<AVCodecID, const char*, const char*> cases[] = {
      {AV_CODEC_ID_H264, "", "[CODEC] opened decoder=h264 codec=h264 w=0 h=0\n"},
      {AV_CODEC_ID_HEVC, "", "FFmpeg: No HEVC hardware decoder"},
      {AV_CODEC_ID_NONE, "", "FFmpeg: Unsupported codec"},
      {AV_CODEC_ID_PCM_S16LE, "", "FFmpeg: Failed to open decoder"},
      {AV_CODEC_ID_MP3, "mp3", "[CODEC] opened decoder=mp3 "},
      {AV_CODEC_ID_MP3, "flac", "[CODEC] opened decoder=mp3float "},
      {AV_CODEC_ID_MP3, "no such", "[CODEC] opened decoder=mp3float "},
  };
  for (const auto& [id, own, outcome] : cases) EXPECT_THAT(opened(id, own), StartsWith(outcome)) << own;
  setenv("TAVEK_SOFTWARE_HEVC", "1", 1);
  EXPECT_EQ(opened(AV_CODEC_ID_HEVC, ""), "[CODEC] opened decoder=hevc codec=hevc w=0 h=0\n");
  unsetenv("TAVEK_SOFTWARE_HEVC");
  EXPECT_EQ(av_log_get_level(), AV_LOG_INFO);
  EXPECT_THROW(Codec(nullptr), ffmpeg::Error);
}

TEST(DecoderChoice, LetsTheListWinOverTheOwnDecoder) {
  // Of the own decoder 0 and the list of 1 and 2: A is absent, F fails, O opens; then who is held.
  for (const std::string_view line : {"OAA0", "OFA-", "OAF-", "OAO2", "AFO2", "OOO1", "AAA-"}) {
    const auto attempt = [&](const char* name) {
      const char outcome = line[static_cast<std::size_t>(*name - '0')];
      ffmpeg::CodecContextPtr context(outcome == 'O' ? avcodec_alloc_context3(nullptr) : nullptr);
      if (context) context->width = *name;
      return DecoderAttempt{outcome != 'A', std::move(context)};
    };
    const auto held = openHardwareDecoder("0", std::array{"1", "2"}, attempt);
    EXPECT_EQ(held ? held->width : '-', line[3]) << line;
  }
}

}  // namespace
}  // namespace tavek
