#include "library/series_order.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <utility>

namespace tavek {
namespace {

namespace fs = std::filesystem;

constexpr std::streamsize mostBytes = 1 << 20;
constexpr std::size_t mostEntries = 10'000;

using Sequence = std::optional<std::int32_t>;

Sequence smaller(Sequence a, Sequence b) {
  if (!a || !b) return a ? a : b;
  return std::min(*a, *b);
}

Sequence found(const std::unordered_map<std::string, std::int32_t>& map, const std::string& text) {
  const auto entry = text.empty() ? map.end() : map.find(text);
  return entry != map.end() ? Sequence(entry->second) : Sequence();
}

/// Titles of other scripts are compared whole.
const std::string& formOf(const MatchKey& key) {
  return key.whole ? key.raw : key.alnum;
}

/// Of three letters a to z.
int trigramAt(std::string_view letters, std::size_t place) {
  const auto value = [&](std::size_t i) { return letters[place + i] - 'a'; };
  return (value(0) * 26 + value(1)) * 26 + value(2);
}

std::string headOf(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  std::string text(static_cast<std::size_t>(mostBytes), '\0');
  in.read(text.data(), mostBytes);
  text.resize(static_cast<std::size_t>(std::max<std::streamsize>(in.gcount(), 0)));
  return text;
}

char escaped(char c) {
  constexpr std::string_view codes = "nbfrt\"/\\";
  constexpr std::string_view characters = "\n\b\f\r\t\"/\\";
  const std::size_t place = codes.find(c);
  return place != std::string_view::npos ? characters[place] : '\0';
}

/// Reads from behind the opening quote to behind the closing one; none without that.
std::optional<std::string> readString(std::string_view& text) {
  std::string value;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '"') {
      text.remove_prefix(i + 1);
      return value;
    }
    const bool escape = text[i] == '\\' && i + 1 < text.size();
    const char c = escape ? escaped(text[++i]) : text[i];
    if (c != '\0') value += c;
  }
  return {};
}

/// What stands behind the "[" of the "order".
std::string_view orderIn(std::string_view text) {
  const std::size_t name = text.find("\"order\"");
  if (name == std::string_view::npos) return {};
  const std::size_t open = text.find('[', name);
  return open == std::string_view::npos ? std::string_view() : text.substr(open + 1);
}

}  // namespace

void SeriesOrder::add(const std::string& title) {
  const auto index = static_cast<std::int32_t>(entries_.size());
  if (title.empty() || !keyToIndex_.try_emplace(title, index).second) return;
  entries_.push_back(makeMatchKey(title));
  const MatchKey& key = entries_.back();
  if (key.whole) return;
  if (!key.alnum.empty()) alnumToIndex_.try_emplace(key.alnum, index);
  if (!key.digits.empty()) digitsToIndex_.try_emplace(key.digits, index);
}

void SeriesOrder::build() {
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    const auto index = static_cast<std::int32_t>(i);
    if (!formOf(entries_[i]).empty()) starts_.push_back({formOf(entries_[i]), index, 0, index});
    const std::string& letters = entries_[i].alpha;
    if (letters.empty() || entries_[i].whole) continue;
    lines_.emplace(letters_.size(), index);
    letters_ += letters + '\n';
    if (letters.size() < 3) shortOnes_.push_back(index);
    if (letters.size() >= 3) begins_.emplace(trigramAt(letters, 0), index);
    for (std::size_t at = 0; at + 3 <= letters.size(); ++at)
      within_.set(static_cast<std::size_t>(trigramAt(letters, at)));
  }
  std::ranges::stable_sort(starts_, {}, &Start::text);
  for (std::size_t i = 0; i < starts_.size(); ++i) {
    std::size_t shorter = i > 0 ? i - 1 : i;
    while (shorter != starts_[shorter].shorter && !starts_[i].text.starts_with(starts_[shorter].text))
      shorter = starts_[shorter].shorter;
    const bool begins = shorter != i && starts_[i].text.starts_with(starts_[shorter].text);
    starts_[i].shorter = begins ? shorter : i;
    if (begins) starts_[i].first = std::min(starts_[i].index, starts_[shorter].first);
  }
}

Sequence SeriesOrder::sequenceOf(const std::string& title) const {
  Sequence sequence = sequenceOf(makeMatchKey(title));
  if (sequence) return sequence;
  const std::string withoutYear = stripYear(title);
  if (withoutYear.empty() || withoutYear == title) return {};
  return sequenceOf(makeMatchKey(withoutYear));
}

Sequence SeriesOrder::sequenceOf(const MatchKey& key) const {
  Sequence sequence = found(keyToIndex_, key.raw);
  if (!sequence && !key.whole) sequence = found(alnumToIndex_, key.alnum);
  if (!sequence && !key.whole) sequence = found(digitsToIndex_, key.digits);
  if (!sequence) sequence = firstWithSharedStart(formOf(key));
  if (!sequence && !key.whole) sequence = firstWithSharedLetters(key.alpha);
  return sequence;
}

Sequence SeriesOrder::firstWithSharedStart(std::string_view text) const {
  if (text.empty()) return {};
  Sequence first;
  // Those that begin with the text stand from here on; the last one before them leads to those that it
  // begins with.
  const auto from = std::ranges::lower_bound(starts_, text, {}, &Start::text);
  for (auto entry = from; entry != starts_.end() && entry->text.starts_with(text); ++entry)
    first = smaller(first, entry->index);
  if (from == starts_.begin()) return first;
  std::size_t place = static_cast<std::size_t>(from - starts_.begin()) - 1;
  while (place != starts_[place].shorter && !text.starts_with(starts_[place].text))
    place = starts_[place].shorter;
  return text.starts_with(starts_[place].text) ? smaller(first, starts_[place].first) : first;
}

Sequence SeriesOrder::firstWithSharedLetters(std::string_view letters) const {
  if (letters.empty()) return {};
  return smaller(firstWithin(letters), firstAround(letters));
}

/// The entries whose letters these ones hold.
Sequence SeriesOrder::firstWithin(std::string_view letters) const {
  Sequence first;
  const auto look = [&](std::string_view here, std::int32_t index) {
    if (here.starts_with(entries_[static_cast<std::size_t>(index)].alpha)) first = smaller(first, index);
  };
  for (std::size_t at = 0; at < letters.size(); ++at) {
    const std::string_view here = letters.substr(at);
    for (const std::int32_t index : shortOnes_) look(here, index);
    if (here.size() < 3 || !within_[static_cast<std::size_t>(trigramAt(here, 0))]) continue;
    const auto [from, to] = begins_.equal_range(trigramAt(here, 0));
    for (auto entry = from; entry != to; ++entry) look(here, entry->second);
  }
  return first;
}

/// The first entry whose letters hold these ones.
Sequence SeriesOrder::firstAround(std::string_view letters) const {
  for (std::size_t at = 0; at + 3 <= letters.size(); ++at) {
    if (!within_[static_cast<std::size_t>(trigramAt(letters, at))]) return {};
  }
  const std::size_t place = letters_.find(letters);
  if (place == std::string::npos) return {};
  return std::prev(lines_.upper_bound(place))->second;
}

SeriesOrder readSeriesOrder(const fs::path& file) {
  SeriesOrder order;
  const std::string text = headOf(file);
  std::string_view rest = orderIn(text);
  for (std::size_t count = 0; count < mostEntries && !rest.empty() && rest.front() != ']';) {
    const bool quote = rest.front() == '"';
    rest.remove_prefix(1);
    if (!quote) continue;
    const auto value = readString(rest);
    if (!value) break;
    const fs::path name = fs::path(*value).filename();
    if (name.empty()) continue;
    order.add(posterTitleKey(file.parent_path() / name));
    ++count;
  }
  order.build();
  return order;
}

}  // namespace tavek
