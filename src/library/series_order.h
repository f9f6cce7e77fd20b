#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
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
  std::optional<std::int32_t> sequenceOf(const MatchKey& title) const;

 private:
  /// Texts by which entries are found that begin with one another. Of equal texts the first entry counts.
  class Starts {
   public:
    void add(std::string_view text, std::int32_t index) { texts_.push_back({text, index, 0, index}); }
    void build();
    /// The first entry that the text begins with.
    std::optional<std::int32_t> firstBefore(std::string_view text) const;
    /// The first entry that begins with the text.
    std::optional<std::int32_t> firstAfter(std::string_view text) const;

   private:
    struct Text {
      std::string_view text;
      std::int32_t index;
      std::size_t shorter;  ///< the place of the longest one that it begins with, or its own
      std::int32_t first;   ///< of those that it begins with
    };
    std::vector<Text> texts_;  ///< in their order
  };

  std::optional<std::int32_t> byTitle(const MatchKey& key) const;
  std::optional<std::int32_t> byLetters(const MatchKey& key) const;
  std::optional<std::int32_t> firstWithin(std::string_view letters) const;
  std::optional<std::int32_t> firstAround(std::string_view letters) const;
  void addHead(std::string_view letters);
  void buildLetters();

  std::deque<MatchKey> entries_;  ///< by their numbers; they stay where they are
  std::unordered_map<std::string, std::int32_t> keyToIndex_;
  std::unordered_map<std::string, std::int32_t> alnumToIndex_;
  std::unordered_map<std::string, std::int32_t> digitsToIndex_;
  Starts starts_;                             ///< of titles
  Starts letters_;                            ///< of their letters
  std::string lines_;                         ///< the letters of all, a line each
  std::map<std::size_t, std::int32_t> line_;  ///< the entry of each line, by where that begins
  std::vector<bool> heads_;                   ///< the three letters that one of letters_ may begin with
  /// Where in lines_ each three letters stand: for three letters the first of their places.
  std::vector<std::uint32_t> trigrams_;
  std::vector<std::uint32_t> places_;
};

/// The titles of the "order" in a file, which is scanned rather than parsed: what is not a string counts for
/// nothing there. Of a path only the file name counts, in the file's own folder. At most 1 MiB and 10,000
/// titles. Empty without any. Reads the disk.
SeriesOrder readSeriesOrder(const std::filesystem::path& file);

}  // namespace tavek
