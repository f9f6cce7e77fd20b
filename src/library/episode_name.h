#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

/// What the names of episodes, seasons and tracks tell.
namespace tavek {

struct SeasonEpisode {
  int season = 0;
  int episode = 0;
};

/// The first S<digits>E<digits> in the text, else the first word such as "1x01" (two digits for the episode
/// at least, so that no 4x3 or 1920x1080 counts), in any case. A number too big for the type is its greatest
/// value.
std::optional<SeasonEpisode> parseSeasonEpisode(std::string_view text);

/// Whether a file's stem begins as those of series do by custom: "S01E02", "1x02".
bool beginsWithEpisodeTag(std::string_view stem);

/// The order of a folder's tracks: by the number that begins the name, those without one after them by name.
bool trackLess(const std::filesystem::path& a, const std::filesystem::path& b);

/// The parts of an episode's file name that labels show; empty where the name does not tell.
struct EpisodeLabel {
  std::string season;   ///< "S02" of "S02E05 Pilot", "2" of "2x05 Pilot"
  std::string episode;  ///< "E05", "05"
  std::string title;    ///< "Pilot"
};

/// Reads the stem of an episode or of its still.
EpisodeLabel episodeLabelOf(std::string_view stem);
/// A season tag as it is shown: without its S, and without leading zeros as long as a digit above 0 follows.
std::string shownSeason(std::string_view tag);
/// An episode tag as it is shown: without its E.
std::string shownEpisode(std::string_view tag);

/// The season to show for a season folder, "0" for specials; empty when the name tells none.
std::string seasonOfFolder(std::string_view name);
/// Whether a folder is that of a season or of specials, by its name.
bool isSeasonFolder(std::string_view name);

}  // namespace tavek
