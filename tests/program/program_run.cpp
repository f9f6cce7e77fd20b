#include "program/program_run.h"

#include <sstream>

namespace tavek {

std::filesystem::path ProgramTest::addTo(const std::string& name, const rig::Clip& clip) {
  std::filesystem::create_directories(at(name).parent_path());
  std::filesystem::copy_file(rig::makeClip(clip, TAVEK_TEST_MEDIA), at(name));
  return at(name);
}

void ProgramTest::addPicture(const std::string& name, const char* size, const char* words) {
  ASSERT_TRUE(rig::Program({"convert", "-size", size, words, at(name).string()}, {}).waitForEnd(20));
}

void ProgramTest::start(std::vector<std::string> arguments, const rig::Environment& changes) {
  rig::Environment environment = stage.environment();
  for (const auto& [name, value] : changes) environment[name] = value;
  arguments.insert(arguments.begin(), TAVEK_PROGRAM);
  program = std::make_unique<rig::Program>(arguments, environment);
}

bool ProgramTest::waitForNumber(int from, int to, double seconds) {
  return rig::waitUntil(seconds, [&] { return watch.number() >= from && watch.number() < to; }) &&
         stage.screen.focusWindow(5);
}

void ProgramTest::expectEnd(double seconds, bool silent) {
  ASSERT_TRUE(program->waitForEnd(seconds)) << "still running";
  EXPECT_EQ(program->status(), 0) << program->errors();
  if (!silent) return;
  EXPECT_EQ(program->errors(), "");
  std::istringstream lines(program->output());
  for (std::string line; std::getline(lines, line);)
    EXPECT_TRUE(line.starts_with("[RENDERER] ") || line.starts_with("Warning: Unable to set V-Sync: "))
        << line;
}

}  // namespace tavek
