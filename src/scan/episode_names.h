#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// What the names of episodes tell, and what an episode is to be called. Any bytes; plain rules on texts.
namespace tavek {

/// An episode's number in a name, and the bytes of the mark that tells it.
struct EpisodeRef {
  std::int32_t episode = 0;
  std::size_t start = 0, end = 0;
};
/// "S01E02", else "1x02", else "Episode 2", "ep2" or "e2" at a word's beginning, else one or two digits that
/// the name begins with.
std::optional<EpisodeRef> findEpisodeMark(std::string_view stem);
/// The name tells of more than one episode: "S01E01E02", "1x01-02", "S01E01 S01E02".
bool hasSeveralMarks(std::string_view stem);

/// "Season 2", "season02 extra"; none for 0 and for any other folder.
std::optional<std::int32_t> seasonNumberOf(std::string_view folderName);

/// Without underscores, dots and dashes at its ends, and with blanks for those within.
std::string cleanName(std::string_view text);
/// Without the first word that tells of a release, as "1080p" and "WEB-DL", and all behind it.
std::string stripReleaseTags(std::string_view title);

/// "S01E02".
std::string episodeMark(std::int32_t season, std::int32_t episode);
/// "S01E02 - Pilot": with the title that a service tells, else what the file's name says, else "Episode 02".
std::string episodeStem(std::string_view stem, std::int32_t season, const EpisodeRef& mark,
                        std::string_view seriesTitle, std::optional<std::string_view> serviceTitle);

}  // namespace tavek
