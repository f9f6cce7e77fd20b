#pragma once

#include <filesystem>
#include <string>
#include <string_view>

/// The forms of a title in which posters, videos and what the viewer asks for are compared. Nothing but names
/// ties a poster to a video: every test is a plain yes or no.
/// Every function may be called from every thread. posterTitleKey and matchKeyOf look at the disk for images
/// of a generic name; errors there count as "no video".
namespace tavek {

/// A title in four forms, all empty for no title.
struct MatchKey {
  std::string raw;     ///< the title as given, by convention folded
  std::string alnum;   ///< its ASCII letters, in lower case, and digits
  std::string alpha;   ///< its letters
  std::string digits;  ///< its digits
  /// The other forms lose letters of the title: two titles are compared by `raw` alone. For what is typed the
  /// forms are those of baseLetters.
  bool whole = false;
};

MatchKey makeMatchKey(std::string_view text);

/// A folded name with the year of its folder: "some film" in "Some Film (1982)" is "some film 1982".
std::string titleKeyOf(std::string_view name, const std::filesystem::path& folder);
/// The title of an image, or of anything else that stands in a list, folded.
std::string posterTitleKey(const std::filesystem::path& path);
MatchKey matchKeyOf(const std::filesystem::path& path);

/// The steps of posterTitleKey on plain names, for a caller that has walked the folder already.
/// What an image's own stem tells; empty for a generic one.
std::string titleOfStem(std::string_view stem);
/// What its folder tells: the title of the first video in it, or, if that is empty, the folder's own name.
std::string titleOfFolder(std::string_view folderName, std::string_view firstVideoStem);
/// titleKeyOf, with the folder's name trimmed and folded.
std::string titleWithYear(std::string_view name, std::string_view folderName);

/// Exactly four digits, 1800 to 2199.
bool isYear(std::string_view text);
/// Without a year at the end, bare or in brackets, and without white space at both ends.
std::string stripYear(std::string_view text);

enum class KeyMatch {
  None,
  Generous,  ///< a beginning, the same digits, or the letters of one inside those of the other
  Exact,     ///< one title, but for what stands between its letters and digits
};
/// How well two titles go together. Where several posters match, one that does exactly goes before all
/// others.
KeyMatch matchKeys(const MatchKey& a, const MatchKey& b);
bool keysMatch(const MatchKey& a, const MatchKey& b);

/// Whether a poster answers to what was typed or said. The query is folded; with lettersOnly titles
/// that begin with a digit do not answer. In a series room an episode answers to the name of its series,
/// unless the query names an episode.
bool matchesQuery(const MatchKey& key, const std::filesystem::path& poster, bool seriesRoom,
                  std::string_view query, bool lettersOnly);

}  // namespace tavek
