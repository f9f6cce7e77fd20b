#pragma once

#include <chrono>
#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "base/process_flags.h"

/// The one way of running a command-line tool: no shell, a process group of its own, no inherited
/// descriptors, and an end that is certain.
namespace tavek {

/// The path of a tool: in the folder TAVEK_TOOL_DIR, if an executable of that name is there; else the first
/// of the given places that exists; else the bare name, which is looked for in PATH. Reads the environment at
/// each call.
std::string toolPath(std::string_view name, std::initializer_list<std::string_view> places = {});

struct ToolCall {
  std::vector<std::string> arguments;  ///< the first is the tool
  std::string input = {};              ///< what it reads from its standard input; else that is empty
  std::chrono::milliseconds deadline{60'000};
  std::size_t outputLimit = 1 << 20;  ///< bytes; what goes beyond is dropped
};

enum class ToolEnd {
  Exited,
  NotStarted,  ///< there is no such tool, or no process for it
  Killed,      ///< at its deadline, by `stop`, or by a signal of somebody's
};

struct ToolResult {
  ToolEnd end = ToolEnd::NotStarted;
  int status = -1;     ///< of a tool that exited
  std::string output;  ///< its standard output; the error output goes nowhere
  bool succeeded() const { return end == ToolEnd::Exited && status == 0; }
};

/// Waits for the tool, on a thread that may wait. Once `stop` is set, or at the deadline, the whole process
/// group is killed within 50 ms.
ToolResult runTool(const ToolCall& call, const Flag& stop);

}  // namespace tavek
