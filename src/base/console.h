#pragma once

#include <string_view>

/// The console's colours, as escape sequences: a colour goes right before its text and the reset right after
/// it, in the same stream. Lines are written in place with std::endl; there is no logging layer.
namespace tavek::console {

inline constexpr const char* reset = "\033[0m";

inline constexpr const char* black = "\033[38;2;0;0;0m";
inline constexpr const char* grey = "\033[38;2;128;128;128m";
inline constexpr const char* white = "\033[38;2;255;255;255m";
inline constexpr const char* red = "\033[38;2;255;0;0m";
inline constexpr const char* green = "\033[38;2;0;255;0m";
inline constexpr const char* yellow = "\033[38;2;255;255;0m";
inline constexpr const char* blue = "\033[38;2;0;0;255m";
inline constexpr const char* magenta = "\033[38;2;255;0;255m";
inline constexpr const char* cyan = "\033[38;2;0;255;255m";
inline constexpr const char* orange = "\033[38;2;255;128;0m";

inline constexpr const char* boldBlack = "\033[1m\033[38;2;0;0;0m";
inline constexpr const char* boldGrey = "\033[1m\033[38;2;128;128;128m";
inline constexpr const char* boldWhite = "\033[1m\033[38;2;255;255;255m";
inline constexpr const char* boldRed = "\033[1m\033[38;2;255;0;0m";
inline constexpr const char* boldGreen = "\033[1m\033[38;2;0;255;0m";
inline constexpr const char* boldYellow = "\033[1m\033[38;2;255;255;0m";
inline constexpr const char* boldBlue = "\033[1m\033[38;2;0;0;255m";
inline constexpr const char* boldMagenta = "\033[1m\033[38;2;255;0;255m";
inline constexpr const char* boldCyan = "\033[1m\033[38;2;0;255;255m";
inline constexpr const char* boldOrange = "\033[1m\033[38;2;255;128;0m";

/// TAVEK_SEEK_DEBUG is "1": what a resume does to a file is told.
bool seekDebugWanted();

/// One line of the TMDB scanner on stdout; the caller has tested tmdbConsoleEnabled.
void logTmdb(std::string_view text);
/// One line of the fan-art scanner on stdout; the caller has tested fanartConsoleEnabled.
void logFanart(std::string_view text);

}  // namespace tavek::console
