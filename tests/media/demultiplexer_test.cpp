#include "media/demultiplexer.h"

#include <gtest/gtest.h>

#include "media/codec.h"
#include "media/error.h"
#include "support/temp_folder.h"

namespace tavek {

class MovieFile : public testing::Test {
 protected:
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
  static std::string failure(const std::string& path) try {
    Demultiplexer demuxer(path, {});
    return {};
  } catch (const ffmpeg::Error& error) {
    return error.what();
  }

  test::TempFolder folder_;
  ffmpeg::PacketPtr packet_ = ffmpeg::makePacket();
};

TEST_F(MovieFile, FailsToOpenWithItsReason) {
  EXPECT_EQ(failure("none.mkv"), "FFmpeg: No such file or directory [expr: ret] @ video/demultiplex:68");
  EXPECT_EQ(failure(make("song.mp3", "-f lavfi -i sine=d=0.2")),
            "FFmpeg: No video stream found in input file");
}

TEST_F(MovieFile, TellsOfItsStreams) {
  const Demultiplexer demuxer(makeMovie(), "en");
  EXPECT_EQ(demuxer.audioStreamIndex(), 2);
  EXPECT_EQ(av_cmp_q(demuxer.audioTimeBase(), {1, 1000}), 0);
  const MovieInfo info = demuxer.movieInfo();
  EXPECT_EQ(info.containerName + ", " + info.containerLongName, "matroska,webm, Matroska / WebM");
  EXPECT_EQ(info.videoCodecName + ", " + info.audioCodecName, "mpeg4, flac");
  EXPECT_DOUBLE_EQ(info.videoFramesPerSecond, 10);
  EXPECT_EQ(info.audioSampleRate, 44100);
  EXPECT_NEAR(static_cast<double>(info.durationUs), 2e6, 5e4);
  const Demultiplexer silent(make("silent.avi", "-f lavfi -i testsrc=d=0.2 -c:v mpeg4"), "en");
  EXPECT_EQ(silent.audioParameters(), nullptr);
  EXPECT_EQ(silent.movieInfo().audioCodecName, "");
}

TEST_F(MovieFile, SeeksToTheKeyFrameBefore) {
  Demultiplexer demuxer(makeMovie(), {});
  const auto nextPictureMs = [&] {
    do {
      av_packet_unref(packet_.get());
      if (!demuxer.readPacket(packet_.get())) return std::int64_t{-1};
    } while (packet_->stream_index != demuxer.videoStreamIndex());
    return packet_->pts;
  };
  EXPECT_TRUE(demuxer.seek(1'500'000));
  EXPECT_EQ(nextPictureMs(), 1000);
  EXPECT_TRUE(demuxer.seek(-5'000'000));
  EXPECT_EQ(nextPictureMs(), 0);
}

TEST_F(MovieFile, GivesEveryPictureToItsCodec) {
  Demultiplexer demuxer(makeMovie(), {});
  Codec codec(demuxer.videoParameters());
  EXPECT_EQ(codec.width() * 1000 + codec.height(), 64048);
  const auto frame = ffmpeg::makeFrame();
  int pictures = 0;
  for (; demuxer.readPacket(packet_.get()); av_packet_unref(packet_.get())) {
    if (packet_->stream_index != demuxer.videoStreamIndex()) continue;
    EXPECT_TRUE(codec.sendPacket(packet_.get()));
    while (codec.receiveFrame(frame.get())) ++pictures;
  }
  EXPECT_TRUE(codec.sendPacket(nullptr));
  while (codec.receiveFrame(frame.get())) ++pictures;
  EXPECT_EQ(pictures, 20);
  EXPECT_EQ(codec.pixelFormat(), AV_PIX_FMT_YUV420P);
  EXPECT_FALSE(codec.sendPacket(nullptr));
  codec.flush();
  EXPECT_TRUE(codec.sendPacket(nullptr));
}

}  // namespace tavek
