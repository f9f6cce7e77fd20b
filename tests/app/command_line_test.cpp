
#include <gmock/gmock.h>

#include "app/informational.h"
#include "app/options.h"
#include "base/process_flags.h"
#include "support/table.h"

namespace tavek {
namespace {

using namespace test;
using testing::StartsWith;

/// Language, driver, numbers of orientation and sound mode, one digit per switch, then words and paths.
std::string describe(const FirstPass& pass) {
  const auto& [language, driver, orientation, sound, tmdb, fanart, list, undo, switches, words, paths] =
      pass.options;
  const auto& [debug, bluetooth, seek, detail, focus, keys] = switches;
  std::ostringstream text;
  text << *language << '|' << driver.value_or("-") << '|' << static_cast<int>(orientation)
       << static_cast<int>(sound) << '|' << list << debug << bluetooth << seek << detail << focus << keys;
  if (undo) text << " undo:" << *undo;
  for (const std::string& word : words) text << ' ' << word;
  for (const std::string& path : paths) text << ' ' << path;
  return pass.error + text.str();
}

TEST(Options, TakeValuesSwitchesAndPaths) {
  for (const auto& [line, result] : table(R"(
      film.mkv,/a/b.MP4,notes.doc,,c/d.avi => en|-|02|0000000 /media/movies/film.mkv /a/b.MP4 /media/movies/c/d.avi
      --orientation,portrait,--language,de,--sound,stereo,--driver,list => de|list|21|0000000
      --undo-renames=,a.mkv => No room given whose renames are to be undoneen|-|02|0000000
      --bogus,--debugger,--,--sounds=x => en|-|02|0000000 --bogus --debugger -- --sounds=x
      --debug,--sound,loud,--movie-detail => Invalid sound mode: louden|-|02|0100000 ;; => en|-|02|0000000
      --orientation=90,--language=fr,--sound=auto,--driver=x11 => fr|x11|40|0000000
      --undo-renames => No room given whose renames are to be undoneen|-|02|0000000
      --language=,--language,,--orientation=270,--orientation=0 => en|-|32|0000000
      --language,--debug,--orientation => --debug|-|02|0000000 --orientation
      --orientation,--help => Invalid orientation: --helpen|-|02|0000000
      --movie-detail,--focus-mode,--show-keycodes => en|-|02|0000111
      --undo-renames,movies,--debug => en|-|02|0100000 undo:movies
      --debug,--bluetooth-debug,--seek-debug => en|-|02|0111000 ;; --sound=stereo,--driver => en|-|01|1000000
      --driver,-x,a.mkv => en|-|02|1000000 /media/movies/a.mkv ;; --driver=,--sound => en|-|02|1000000 --sound
      --sound=Auto => Invalid sound mode: Autoen|-|02|0000000
      --driver=list,--language => en|-|02|1000000 --language)"))
    EXPECT_EQ(describe(parseArguments(split(line, ','))), result) << line;
}

TEST(Options, AnswerTheFirstInformationalWord) {
  // The answer's number, then a digit each for the two scans and the debug switch.
  for (const auto& [words, answer] : table(R"(
      --bogus --codecs --help => 4000 ;; --git --tmdb-scan => 2000 ;; --tmdb-scan-debug => 0101
      --fanart-scan --tmdb-scan => 0110 ;; --fanart-scan-debug => 0011)")) {
    LaunchOptions options;
    options.dashWords = split(words, ' ');
    std::ostringstream text;
    text << static_cast<int>(readDashWords(options)) << options.forceTmdbScan << options.forceFanartScan
         << options.switches.debug;
    EXPECT_EQ(text.str(), answer) << words;
  }
}

/// The whole line: exit status, "-" to go on, and what both streams got.
std::string run(std::vector<const char*> arguments) {
  arguments.insert(arguments.begin(), "tavek");
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  const auto status = readCommandLine(static_cast<int>(arguments.size()), arguments.data()).exitStatus;
  const std::string out = testing::internal::GetCapturedStdout();
  return (status ? std::to_string(*status) : "-") + out + testing::internal::GetCapturedStderr();
}

TEST(CommandLine, EndsWithAStatusOrGoesOn) {
  EXPECT_EQ(run({"--sound", "loud"}), "1Invalid sound mode: loud\n");
  EXPECT_THAT(run({"--driver", "--help", "--bogus"}), StartsWith("0\n\033[1m\033[38;2;255;128;0mTAVEK "));
  EXPECT_EQ(run({"--bogus", "--seek-debug", "--fanart-scan-debug"}), "-");
  EXPECT_TRUE(debugEnabled && !movieDetailEnabled);
  EXPECT_STREQ(std::getenv("TAVEK_SEEK_DEBUG"), "1");
  setenv("SDL_VIDEODRIVER", "dummy", 1);
  EXPECT_THAT(run({"--driver"}), StartsWith("0Current video driver: \033[1m\033[38;2;0;255;0mdummy\033[0m\n"
                                            "Available drivers: "));
  setenv("SDL_VIDEODRIVER", "no such driver", 1);
  EXPECT_THAT(run({"--driver="}), StartsWith("1SDL_Init failed: "));
}

TEST(Decoders, ArePrintedByTypeInColumns) {
  const auto printed = [](const DecoderSummary& decoders) {
    std::ostringstream out;
    printDecoders(out, decoders);
    std::string text = out.str();
    for (std::size_t at = 0; (at = text.find('\033')) != std::string::npos;)
      text.erase(at, text.find('m', at) - at + 1);
    return text;
  };
  EXPECT_EQ(printed({{AVMEDIA_TYPE_UNKNOWN, {1, {"odd"}}},
                     {AVMEDIA_TYPE_VIDEO, {123456789, {"v1", "v2"}}},
                     {AVMEDIA_TYPE_DATA, {1, {}}},
                     {AVMEDIA_TYPE_SUBTITLE, {1, {"s"}}}}),
            "Decoder summary:\nType         Count    Sample decoders\nvideo        12345678\n  - v1\n  - v2\n"
            "subtitle     1       \n  - s\ndata         1       \nunknown      1       \n  - odd\n\n");
  EXPECT_EQ(printed({}), "No decoders found.\n");
}

}  // namespace
}  // namespace tavek
