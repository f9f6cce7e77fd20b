#pragma once

#include <array>
#include <bitset>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "library/match_key.h"

/// The order that a series.json gives to the items of its folder.
namespace tavek {

/// The sequence numbers of titles, found by their forms in a time that hardly grows with the list: a folder
/// may hold ten thousand items that it does not name. Add all titles, then build, then ask.
class SeriesOrder {
 public:
  /// Takes the next number, unless the title is empty or known.
  void add(const std::string& title);
  void build();
  bool empty() const { return entries_.empty(); }
  /// Of the title, or else of the title without its year: the very title, its letters and digits, its digits,
  /// one that begins with the other, one whose letters hold the other's; of several the first.
  std::optional<std::int32_t> sequenceOf(const std::string& title) const;

 private:
  static constexpr std::size_t trigrams = 26 * 26 * 26;

  std::optional<std::int32_t> sequenceOf(const MatchKey& key) const;
  std::optional<std::int32_t> firstWithSharedStart(std::string_view text) const;
  std::optional<std::int32_t> firstWithSharedLetters(std::string_view letters) const;
  std::optional<std::int32_t> firstWithin(std::string_view letters) const;
  std::optional<std::int32_t> firstAround(std::string_view letters) const;

  /// An entry's text among all in their order, with the first number of those that it begins with.
  struct Start {
    std::string text;
    std::int32_t index;
    std::size_t shorter;  ///< the place of the longest one that it begins with; its own if there is none
    std::int32_t first;
  };

  std::vector<MatchKey> entries_;  ///< by their numbers
  std::unordered_map<std::string, std::int32_t> keyToIndex_;
  std::unordered_map<std::string, std::int32_t> alnumToIndex_;
  std::unordered_map<std::string, std::int32_t> digitsToIndex_;
  std::vector<Start> starts_;
  std::string letters_;                                ///< of all entries, a line each
  std::map<std::size_t, std::int32_t> lines_;          ///< where each one begins
  std::bitset<trigrams> within_;                       ///< that any of them has
  std::unordered_multimap<int, std::int32_t> begins_;  ///< entries by their first three letters
  std::vector<std::int32_t> shortOnes_;                ///< those with fewer
};

/// The titles of the "order" in a file, which is scanned rather than parsed: what is not a string counts for
/// nothing there. Of a path only the file name counts, in the file's own folder. At most 1 MiB and 10,000
/// titles. Empty without any. Reads the disk.
SeriesOrder readSeriesOrder(const std::filesystem::path& file);

}  // namespace tavek
