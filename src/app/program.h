#pragma once

namespace tavek {

/// The whole life of the process on the main thread; gives its exit status.
int runProgram(int argc, const char* const* argv);

}  // namespace tavek
