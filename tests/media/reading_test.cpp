#include <sys/stat.h>

#include <gmock/gmock.h>

#include "base/process_flags.h"
#include "media/codec.h"
#include "media/decoder_choice.h"
#include "media/demultiplexer.h"
#include "media/error.h"
#include "media/stream_choice.h"
#include "support/temp_folder.h"

namespace tavek {
namespace {

const Flag never;

struct MovieFile : testing::Test {
  std::string make(const std::string& name, const std::string& arguments) const {
    const std::string path = (folder_.path() / name).string();
    EXPECT_EQ(std::system(("ffmpeg -nostdin -loglevel error " + arguments + " " + path).c_str()), 0);
    return path;
  }
  /// Two seconds of 64x48 at 10 fps with a key frame each second, stereo in English, 5.1 in French.
  std::string makeMovie() const {
    return make(
        "film.mkv",
        "-f lavfi -i testsrc=s=64x48:r=10:d=2 -f lavfi -i sine=d=2 -map 0 -map 1 -map 1 -c:v mpeg4 -g 10 "
        "-c:a flac -ac:a:0 2 -ac:a:1 6 -metadata:s:a:0 language=eng -metadata:s:a:1 language=fra");
  }
  /// Stands for a movie that can be opened with an empty text.
  static std::string failure(const std::string& path, Pictures pictures = Pictures::Needed) try {
    Demultiplexer demuxer(path, {}, pictures, never);
    return {};
  } catch (const ffmpeg::Error& error) {
    return error.what();
  }

  test::TempFolder folder_;
  ffmpeg::PacketPtr packet_ = ffmpeg::makePacket();
};

/// Neither does it reach another file, nor a pipe.
TEST_F(MovieFile, FailsToOpenWithItsReason) {
  const std::string segment = make("segment.ts", "-f lavfi -i testsrc=s=64x48:r=10:d=1 -c:v mpeg2video");
  const std::string song = make("song.mp3", "-f lavfi -i sine=d=0.2");
  const auto write = [&](const char* name, const std::string& text) {
    test::writeText(folder_.path() / name, text);
    return (folder_.path() / name).string();
  };
  const std::string pipe = (folder_.path() / "pipe.mkv").string();
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  const std::pair<std::string, const char*> cases[] = {
      {segment, ""},
      {song, "FFmpeg: No video stream found in input file"},
      {"none.mkv", "FFmpeg: No such file or directory [expr: ret] @ video/demultiplex:68"},
      {pipe, "FFmpeg: Invalid argument [expr: ret] @ video/demultiplex:68"},
      {"concat:" + segment, "FFmpeg: No such file"},
      {write("list.mkv", "#EXTM3U\n#EXT-X-TARGETDURATION:1\n#EXTINF:1,\n" + segment + "\n"),
       "FFmpeg: Invalid data found"},
      {write("script.mkv", "ffconcat version 1.0\nfile segment.ts\n"), "FFmpeg: Invalid data found"},
  };
  for (const auto& [path, reason] : cases) {
    EXPECT_THAT(failure(path), testing::StartsWith(reason)) << path;
    EXPECT_EQ(failure(path).empty(), *reason == '\0') << path;
  }
  EXPECT_EQ(failure(song, Pictures::Optional), "");
}

TEST_F(MovieFile, EndsWhenItIsInterrupted) {
  Flag interrupt;
  Demultiplexer demuxer(makeMovie(), {}, Pictures::Needed, interrupt);
  interrupt = true;
  int packets = 0;
  for (; demuxer.readPacket(packet_.get()); ++packets) av_packet_unref(packet_.get());
  EXPECT_LT(packets, 60) << "what was read ahead may still come";
}

/// Positions count from the first moment of the file, and seeking counts so too.
TEST_F(MovieFile, CountsFromItsFirstMoment) {
  const std::pair<const char*, const char*> files[] = {
      {"late.ts", "-f lavfi -i testsrc=s=64x48:r=10:d=4 -c:v mpeg2video -g 10 -output_ts_offset 5000"},
      {"song.mp3", "-f lavfi -i sine=d=4"},
      {"film.mp4", "-f lavfi -i testsrc=s=64x48:r=10:d=4 -c:v mpeg4 -g 10"},
  };
  for (const auto& [name, arguments] : files) {
    Demultiplexer demuxer(make(name, arguments), {}, Pictures::Optional, never);
    const bool song = demuxer.videoStreamIndex() < 0;
    const AVRational timeBase = song ? demuxer.audioTimeBase() : demuxer.videoTimeBase();
    const auto nextMs = [&] {
      av_packet_unref(packet_.get());
      return demuxer.readPacket(packet_.get()) ? demuxer.positionUs(packet_->pts, timeBase) / 1000 : -1;
    };
    EXPECT_NEAR(static_cast<double>(nextMs()), 0, 60) << name;
    while (nextMs() >= 0) {
    }
    // The end of the file is no reason not to go back.
    for (const int targetMs : {2500, 0, 3900, -5000}) {
      EXPECT_TRUE(demuxer.seek(targetMs * 1000)) << name;
      const auto found = static_cast<double>(nextMs());
      EXPECT_GE(found, targetMs - 1100) << name << " to " << targetMs;
      // A stream without an index is found to a picture.
      EXPECT_LE(found, targetMs <= 0 ? 60 : targetMs + 110) << name << " to " << targetMs;
      EXPECT_TRUE(!song || found > targetMs - 100) << "the time stamps start anew";
    }
  }
}

/// One scrambled packet is told apart from a failure, and the decoder goes on behind it.
TEST_F(MovieFile, TellsADamagedPacket) {
  Demultiplexer demuxer(make("song.flac", "-f lavfi -i sine=d=1"), {}, Pictures::Optional, never);
  Codec codec(demuxer.audioParameters());
  const auto frame = ffmpeg::makeFrame();
  int frames = 0, damaged = 0;
  for (int number = 0; demuxer.readPacket(packet_.get()); av_packet_unref(packet_.get())) {
    if (++number == 3) std::fill_n(packet_->data, packet_->size, std::uint8_t{0x5A});
    damaged += codec.sendPacket(packet_.get()) == Decoded::Damaged ? 1 : 0;
    for (Decoded outcome{}; (outcome = codec.receiveFrame(frame.get())) != Decoded::NotNow;)
      (outcome == Decoded::Done ? frames : damaged) += 1;
  }
  EXPECT_EQ(damaged, 1);
  EXPECT_GE(frames, 8);
}

TEST_F(MovieFile, TellsOfItsStreams) {
  const Demultiplexer demuxer(makeMovie(), "en", Pictures::Needed, never);
  EXPECT_EQ(demuxer.audioStreamIndex(), 2);
  EXPECT_EQ(av_cmp_q(demuxer.audioTimeBase(), {1, 1000}), 0);
  const MovieInfo info = demuxer.movieInfo();
  EXPECT_EQ(info.containerName + ", " + info.containerLongName, "matroska,webm, Matroska / WebM");
  EXPECT_EQ(info.videoCodecName + ", " + info.audioCodecName, "mpeg4, flac");
  EXPECT_DOUBLE_EQ(info.videoFramesPerSecond, 10);
  EXPECT_EQ(info.audioSampleRate, 44100);
  EXPECT_NEAR(static_cast<double>(info.durationUs), 2e6, 5e4);
  EXPECT_FALSE(demuxer.pictureIsAttached());
  const std::string cover = make("cover.jpg", "-f lavfi -i testsrc=s=64x48 -frames:v 1");
  const std::string song =
      make("covered.mp3", "-f lavfi -i sine=d=0.5 -i " + cover + " -map 0 -map 1 -c:v copy");
  EXPECT_TRUE(Demultiplexer(song, {}, Pictures::Needed, never).pictureIsAttached());
  const Demultiplexer silent(make("silent.avi", "-f lavfi -i testsrc=d=0.2 -c:v mpeg4"), "en",
                             Pictures::Needed, never);
  EXPECT_EQ(silent.audioParameters(), nullptr);
  EXPECT_EQ(silent.movieInfo().audioCodecName, "");
}

TEST(AudioChoice, PutsChannelsBeforeLanguage) {
  const std::pair<std::vector<AudioStream>, std::optional<std::size_t>> cases[] = {
      {{}, {}},
      {{{2, "eng"}, {6, "fra"}, {6, "ENG"}}, 2},
      {{{2, "eng"}, {6, "fra"}}, 1},
      {{{2, "deu"}, {2, {}}, {2, "fra"}}, 0},
      {{{2, {}}, {2, "eng"}, {2, "en"}}, 1},
      {{{-3, {}}, {0, "e"}}, 1}};
  for (const auto& [streams, chosen] : cases) EXPECT_EQ(chooseAudioStream(streams, "en"), chosen) << &chosen;
  EXPECT_EQ(chooseAudioStream(cases[4].first, {}), 0u);
  EXPECT_EQ(chooseAudioStream(cases[3].first, ""), 0u);
}

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
