#pragma once

#include <filesystem>
#include <string>

/// The fixed places of the program. Each can be moved by the environment, so that a test runs the real
/// program against its own library, fonts and devices; the environment is read once, at the first call.
namespace tavek {

/// The library, /media; TAVEK_MEDIA_ROOT.
const std::filesystem::path& mediaRoot();
const std::filesystem::path& tvRoot();
const std::filesystem::path& videoRoot();
const std::filesystem::path& musicRoot();
/// The shared state file inside the library.
const std::filesystem::path& stateFile();
/// The folder of the Lato faces; TAVEK_FONT_DIR, else /usr/share/fonts/ttf, else Debian's folder.
const std::filesystem::path& fontFolder();
/// What ALSA tells of its cards, /proc/asound; TAVEK_PROC_ASOUND.
const std::filesystem::path& alsaProcFolder();
/// The home folder of the process's user, with the device files in it; TAVEK_HOME. Empty if the system knows
/// none.
const std::filesystem::path& homeFolder();
/// The system's settings, /etc; TAVEK_ETC.
const std::filesystem::path& etcFolder();

/// Where the web services answer, without a slash at the end.
const std::string& tmdbApiBase();    ///< TAVEK_TMDB_API
const std::string& tmdbImageBase();  ///< TAVEK_TMDB_IMAGES
const std::string& fanartApiBase();  ///< TAVEK_FANART_API
const std::string& tvdbApiBase();    ///< TAVEK_TVDB_API

}  // namespace tavek
