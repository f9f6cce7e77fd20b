#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// What the file names of episodes tell, and the one name that each gets: "S01E02 - Title". Plain rules: any
/// bytes may be passed, each takes a time in proportion to their number, and every thread may call.
namespace tavek {

/// The episode's number and where its mark stands, from the first byte to behind the last.
struct EpisodeRef {
  std::int32_t episode = 0;
  std::size_t start = 0, end = 0;
  bool operator==(const EpisodeRef&) const = default;
};
/// "S01E02", else "1x02", else "Episode 2", "Ep2" or "E2" as a word, else one or two digits at the start.
std::optional<EpisodeRef> findEpisodeMark(std::string_view stem);
/// How many episodes a stem names: 2 for "S01E01E02", "S01E01-E02", "1x01-02" and "S01E01 S01E02". The same
/// one named twice counts once.
std::size_t episodeMarkCount(std::string_view stem);

/// Dots and underscores as blanks, and no dash at either end.
std::string cleanName(std::string_view text);
/// A title up to the first word that only tells how the file was made, such as "1080p".
std::string stripReleaseTags(std::string_view title);

/// The number of a folder "Season 2", from 1 on. The folder decides, whatever the names in it say.
std::optional<std::int32_t> seasonNumberOf(std::string_view folderName);
/// "S01E02".
std::string episodeTag(std::int32_t season, std::int32_t episode);

/// The stem that an episode gets; none if the file does not qualify. `tableTitle` is a service's title, in
/// which the words of releases are words; empty or none if there is none.
std::optional<std::string> episodeStem(std::string_view stem, std::string_view seasonFolder,
                                       std::string_view seriesTitle,
                                       std::optional<std::string_view> tableTitle);

}  // namespace tavek
