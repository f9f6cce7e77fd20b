// Films on the screen and in the ear.
#include <algorithm>
#include <cmath>

#include "program/program_run.h"

namespace tavek {
namespace {

using rig::Clip;
using rig::Line;
using rig::Recording;
using rig::Sight;

double median(std::vector<double> values) {
  if (values.empty()) return NAN;
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

TEST_F(ProgramTest, PlaysAFilmInTimeAndSaysNothing) {
  add("film.mkv", {.seconds = 10, .audio = "-c:a aac -b:a 128k"});
  start({"film.mkv"});
  expectEnd(25);

  const Recording sound = stage.sound.recording(program->startedAt() - 0.3);
  ASSERT_EQ(sound.onsets().size(), 1U) << "one tone without a gap";
  const double begin = sound.onsets().front();
  EXPECT_NEAR(sound.between(begin + 1, begin + 9).pitch(), 1000, 1);
  EXPECT_NEAR(sound.between(begin + 1, begin + 9).level(), -3, 0.5)
      << "the first sound sets the volume to full";
  EXPECT_GT(sound.between(begin + 9.8, begin + 9.9).level(), -4);
  EXPECT_LT(sound.between(begin + 10.2, sound.end()).level(), -60);

  const std::vector<Sight> sights = watch.sights();
  ASSERT_GE(sights.size(), sanitized ? 120U : 230U);
  std::vector<double> late;
  for (std::size_t i = 0; i < sights.size(); ++i) {
    EXPECT_TRUE(i == 0 || sights[i].number > sights[i - 1].number);
    if (sights[i].number > 48) late.push_back(sights[i].at - begin - sights[i].number / 24.0);
  }
  EXPECT_NEAR(median(late), 0, sanitized ? 5 : 0.045);
}

TEST_F(ProgramTest, SoundAndPictureAgree) {
  add("film.mkv", {.seconds = 40, .sound = rig::beeps});
  start({"film.mkv"});
  // Pairs each beep since then with the nearest flash.
  const auto lateness = [this](double since) {
    std::vector<double> late;
    for (const double beep : stage.sound.recording(since).onsets()) {
      std::vector<double> distances;
      for (const double flash : watch.flashes(since - 0.5)) distances.push_back(beep - flash);
      const auto nearer = [](double a, double b) { return std::abs(a) < std::abs(b); };
      const auto nearest = std::min_element(distances.begin(), distances.end(), nearer);
      if (nearest != distances.end() && std::abs(*nearest) < 0.5) late.push_back(std::abs(*nearest));
    }
    EXPECT_GE(late.size(), 3U);
    return late.empty() ? NAN : *std::max_element(late.begin(), late.end());
  };
  const auto expectAgreement = [&](const char* where) {
    const double since = rig::now() + 1.3;
    rig::let(5.3);
    EXPECT_NEAR(lateness(since), 0, mild(0.045)) << where;
  };
  ASSERT_TRUE(waitForNumber(48));
  expectAgreement("in the middle");
  stage.screen.press("XF86AudioPlay");
  rig::let(1);
  stage.screen.press("XF86AudioPlay");
  expectAgreement("after a pause");
  stage.screen.press("Right");
  expectAgreement("after a seek");
  stage.screen.closeWindow();
  expectEnd(3);
}

// Where a film's numbers are to be read, and so where its picture has to lie.
enum View { Full, PillarBox, LetterBox, Turned };
constexpr Line views[] = {
    rig::fullWidth, {{240, 40}, {1680, 40}}, {{0, 260}, {1920, 260}}, {{1880, 0}, {1880, 1080}}};

/// One kind of film of two seconds, and how it must look and sound; a pitch of 0 is silence.
struct Kind {
  const char* name;
  Clip clip;
  int pitch = 1000;
  View view = Full;
};

std::string tone(int pitch, int channel = 0, int channels = 1) {
  std::string result;
  for (int i = 0; i < channels; ++i) {
    result += i == 0 ? "" : "|";
    result += i == channel ? "0.5*sin(" + std::to_string(2 * pitch) + "*PI*t)" : "0";
  }
  return result;
}

std::vector<Kind> kinds() {
  const std::string x264 = "-c:v libx264 -preset ultrafast -g 24 -pix_fmt ";
  return {
      {"mono.mp4", {.rate = "25", .sound = tone(600), .soundRate = 44100, .audio = "-c:a aac"}, 600},
      {"stereo.mkv", {.rate = "24000/1001", .sound = tone(700, 1, 2)}, 700},
      {"five-one.mkv", {.rate = "50", .sound = tone(800, 2, 6)}, 800},
      {"seven-one.mkv", {.rate = "60", .sound = tone(900, 5, 8), .audio = "-c:a pcm_s24le"}, 900},
      {"narrow-samples.mkv", {.filters = "setsar=3/4"}, 1000, PillarBox},
      {"wide.mkv", {.height = 272}, 1000, LetterBox},
      {"portrait.mkv", {.width = 360, .height = 640}, 1000, Turned},
      {"ten-bit.mkv", {.video = x264 + "yuv420p10le"}},
      {"four-four-four.mkv", {.video = x264 + "yuv444p"}},
      {"full-range.mkv", {.video = "-c:v mjpeg -pix_fmt yuvj422p", .soundRate = 44100}},
      {"silent.mkv", {.sound = ""}, 0},
      {"old.avi", {.video = "-c:v mpeg4 -q:v 3", .audio = "-c:a libmp3lame", .container = "avi"}},
      {"uneven.mkv",  // twenty pictures in the first second, thirty in the other
       {.rate = "25",
        .filters = "setpts=if(lt(N\\,20)\\,N/20\\,1+(N-20)/30)/TB,settb=1/120",
        .video = x264 + "yuv420p -fps_mode passthrough -enc_time_base 1/120"}},
  };
}

class Kinds : public ProgramTest {
 protected:
  void addAll() {
    for (Kind& kind : all_) {
      kind.clip.seconds = 2;
      kind.clip.firstNumber = (1 + static_cast<int>(names_.size())) * 1000;
      add(kind.name, kind.clip);
      names_.push_back(kind.name);
    }
    addResized();
    names_.push_back("song.mp3");
    const std::string song =
        "-f lavfi -i sine=frequency=1100:duration=3 -f lavfi -i testsrc=duration=1:size=300x300 -map 0 -map "
        "1 "
        "-frames:v 1 -c:a libmp3lame -c:v mjpeg -disposition:v attached_pic OUT";
    std::filesystem::copy_file(rig::makeFile(song, "mp3", TAVEK_TEST_MEDIA), film("song.mp3"));
  }

  /// A film that goes from 16:9 to 4:3 after a second.
  void addResized() {
    names_.push_back("resized.ts");
    std::string list;
    for (const int part : {0, 1}) {
      const Clip half{.width = part == 0 ? 640 : 480,
                      .seconds = 1,
                      .firstNumber = resized + part * 100,
                      .audio = "-c:a mp2",
                      .container = "ts"};
      list += "file " + rig::makeClip(half, TAVEK_TEST_MEDIA).string() + "\n";
    }
    rig::writeText(film("parts.txt"), list);
    rig::Program join({"ffmpeg", "-v", "error", "-f", "concat", "-safe", "0", "-i", film("parts.txt"), "-c",
                       "copy", film("resized.ts")},
                      {});
    ASSERT_TRUE(join.waitForEnd(20));
  }

  void expectShown(const Kind& kind) const {
    SCOPED_TRACE(kind.name);
    const Clip& clip = kind.clip;
    const std::vector<Sight> sights =
        watches_[kind.view]->numbered(clip.firstNumber, clip.firstNumber + 1000);
    const auto pictures =
        static_cast<std::size_t>(std::stod(clip.rate) > 1000 ? 47 : 2 * std::stoi(clip.rate));
    ASSERT_GE(sights.size(), sanitized ? pictures / 3 : pictures * 3 / 4);
    const double from = sights.front().at;
    const double to = sights.back().at;
    // Software drawing may be too slow for the quick ones and the turned one, but it leaves none out.
    EXPECT_NEAR(to - from, 2, pictures > 60 || kind.view == Turned ? 6 : mild(1));
    EXPECT_GT(to - from, 1.65);
    const Recording sound = stage.sound.recording().between(from + 0.6, from + 1.4);
    if (kind.pitch == 0) {
      EXPECT_LT(sound.level(), -60);
    } else {
      EXPECT_NEAR(sound.pitch(), kind.pitch, 2);
    }
  }

  static constexpr int resized = 30000;
  std::vector<Kind> all_ = kinds();
  std::vector<std::string> names_;
  std::vector<std::unique_ptr<rig::Watch>> watches_;
};

TEST_F(Kinds, OfFilmsAllPlay) {
  addAll();
  for (const Line& view : views) {
    watches_.push_back(std::make_unique<rig::Watch>(stage.screen, view));
  }
  start(names_);
  expectEnd(double(names_.size()) * (sanitized ? 8 : 4));
  for (const Kind& kind : all_) expectShown(kind);

  const int second = all_.back().clip.firstNumber + 20;
  const std::vector<Sight> uneven = watch.numbered(second, second + 30);
  ASSERT_FALSE(uneven.empty());
  EXPECT_NEAR(uneven.back().at - uneven.front().at, 29 / 30.0, mild(0.25));

  EXPECT_GT(watch.numbered(resized, resized + 100).size(), 16U);
  EXPECT_GT(watches_[PillarBox]->numbered(resized + 100, resized + 200).size(), 16U)
      << "after the change of size";
  const double song = watches_[PillarBox]->sights().back().at + 1.5;
  EXPECT_NEAR(stage.sound.recording().between(song, song + 1).pitch(), 1100, 2) << "with a cover";
}

}  // namespace
}  // namespace tavek
