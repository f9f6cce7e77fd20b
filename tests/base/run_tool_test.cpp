#include "base/run_tool.h"

#include <csignal>
#include <fcntl.h>
#include <thread>
#include <unistd.h>

#include <gtest/gtest.h>

#include "support/temp_folder.h"

namespace tavek {
namespace {

using std::chrono::milliseconds;
using SystemClock = std::chrono::steady_clock;

const Flag never;

ToolCall shell(std::string script) {
  return {.arguments = {"/bin/sh", "-c", std::move(script)}};
}

TEST(RunTool, GivesTheFirstTwelveBytesThatTheToolSaysAndHowItEnded) {
  using enum ToolEnd;
  const std::tuple<const char*, const char*, ToolEnd, int, const char*> cases[] = {
      {"printf 'a b\\n'; exit 3", "", Exited, 3, "a b\n"},
      {"cat", "", Exited, 0, ""},
      {"cat", "it's \"given\"", Exited, 0, "it's \"given\""},
      {"exit 0", "nobody reads this", Exited, 0, ""},
      {"echo lost >&2; exec >&-; sleep 0.1; exit 4", "", Exited, 4, ""},
      {"printf 'twelve bytes'; head -c 3000000 /dev/zero", "", Exited, 0, "twelve bytes"},
      {"kill -SEGV $$", "", Killed, -1, ""},
  };
  for (const auto& [script, input, end, status, output] : cases) {
    ToolCall call = shell(script);
    call.input = input;
    call.outputLimit = 12;
    const ToolResult result = runTool(call, never);
    EXPECT_TRUE(result.end == end && result.status == status) << script << ": " << result.status;
    EXPECT_EQ(result.output, output) << script;
  }
  EXPECT_EQ(runTool({.arguments = {"/no/such/tool"}}, never).end, ToolEnd::NotStarted);
  EXPECT_EQ(runTool({}, never).end, ToolEnd::NotStarted);
}

/// The tool ignores all but SIGKILL, and so does the process that it has started.
TEST(RunTool, EndsAtItsDeadlineAndWhenItIsStopped) {
  const test::TempFolder temp;
  const std::string mark = temp.path() / "alive";
  const std::string stubborn = "trap '' TERM INT HUP; (sleep 0.6; touch " + mark + ") & sleep 60";
  for (const bool byFlag : {false, true}) {
    ToolCall call = shell(stubborn);
    call.deadline = milliseconds(byFlag ? 60'000 : 150);
    Flag stop;
    const std::jthread stopper([&] { std::this_thread::sleep_for(milliseconds(150)), stop = byFlag; });
    const auto start = SystemClock::now();
    EXPECT_EQ(runTool(call, stop).end, ToolEnd::Killed) << byFlag;
    EXPECT_LT(SystemClock::now() - start, milliseconds(500)) << byFlag;
  }
  std::this_thread::sleep_for(milliseconds(800));
  EXPECT_FALSE(fs::exists(mark));
}

TEST(RunTool, InheritsNeitherDescriptorsNorIgnoredSignals) {
  const test::TempFolder temp;
  const int kept = open((temp.path() / "kept").c_str(), O_RDWR | O_CREAT, 0600);
  ASSERT_GE(kept, 3);
  std::signal(SIGPIPE, SIG_IGN);
  // ls opens one for the folder; a tool that writes into a closed pipe has to end by it.
  const ToolResult result =
      runTool(shell("ls /proc/self/fd | wc -l; ps -o pgid= $$; kill -PIPE $$; echo deaf"), never);
  close(kept);
  EXPECT_TRUE(result.output.starts_with("4\n")) << result.output;
  EXPECT_EQ(result.output.find(std::to_string(getpgrp()) + "\n"), std::string::npos) << result.output;
  EXPECT_EQ(result.output.find("deaf"), std::string::npos);
}

TEST(ToolPath, LooksInTheGivenFolderFirst) {
  const test::TempFolder temp;
  for (const char* name : {"plain", "tool"}) test::writeText(temp.path() / name, "");
  fs::permissions(temp.path() / "tool", fs::perms::owner_all);
  setenv("TAVEK_TOOL_DIR", temp.path().c_str(), 1);
  EXPECT_EQ(toolPath("tool", {"/bin/sh"}), (temp.path() / "tool").string());
  EXPECT_EQ(toolPath("plain", {"/absent", "/bin/sh"}), "/bin/sh");
  EXPECT_EQ(toolPath("plain", {"/absent"}), "plain");
  unsetenv("TAVEK_TOOL_DIR");
}

}  // namespace
}  // namespace tavek
