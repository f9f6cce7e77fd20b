#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

/// How the shell is asked to run command-line tools.
namespace tavek {

/// The text as one argument of a shell command line, whatever bytes it holds.
std::string shellQuote(std::string_view text);

/// What to put first in a shell command line to run a tool: its quoted path in the folder TAVEK_TOOL_DIR, if
/// an executable of that name is there; else the first of the given places that exists; else the bare name,
/// which the shell looks for in PATH. The environment is read at each call.
std::string toolCommand(std::string_view name, std::initializer_list<std::string_view> places = {});

}  // namespace tavek
