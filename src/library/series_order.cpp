#include "library/series_order.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <numeric>
#include <utility>

#include "base/text.h"
#include "library/folder_walk.h"
#include "library/titles.h"

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

constexpr std::size_t trigramCount = 26 * 26 * 26;

/// The number of three letters a to z; none where a line ends among them.
std::optional<std::size_t> trigramAt(std::string_view letters, std::size_t place) {
  std::size_t number = 0;
  for (const char c : letters.substr(place, 3)) {
    if (c < 'a') return {};
    number = number * 26 + static_cast<std::size_t>(c - 'a');
  }
  return number;
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

/// What the names of a folder's items tell as titles.
class Titles {
 public:
  explicit Titles(fs::path folder)
      : folder_(std::move(folder)), folderName_(trim(foldCase(folder_.filename().string()))) {}
  /// All generic names have the title of the folder, which is looked for on the disk once.
  std::string of(const std::string& name) {
    const std::string title = titleOfStem(FileText('/' + name).stem());
    if (!title.empty()) return titleWithYear(title, folderName_);
    if (!generic_) generic_ = posterTitleKey(folder_ / name);
    return *generic_;
  }

 private:
  const fs::path folder_;
  const std::string folderName_;
  std::optional<std::string> generic_;
};

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

void SeriesOrder::Starts::build() {
  std::ranges::stable_sort(texts_, {}, &Text::text);
  for (std::size_t i = 1; i < texts_.size(); ++i) {
    Text& text = texts_[i];
    text.shorter = i - 1;
    while (!text.text.starts_with(texts_[text.shorter].text) && texts_[text.shorter].shorter != text.shorter)
      text.shorter = texts_[text.shorter].shorter;
    const Text& shorter = texts_[text.shorter];
    if (text.text.starts_with(shorter.text)) {
      text.first = std::min(text.index, shorter.first);
    } else {
      text.shorter = i;
    }
  }
}

Sequence SeriesOrder::Starts::firstBefore(std::string_view text) const {
  const auto behind = std::ranges::upper_bound(texts_, text, {}, &Text::text);
  if (behind == texts_.begin()) return {};
  std::size_t place = static_cast<std::size_t>(behind - texts_.begin()) - 1;
  while (!text.starts_with(texts_[place].text)) {
    if (texts_[place].shorter == place) return {};
    place = texts_[place].shorter;
  }
  return texts_[place].first;
}

Sequence SeriesOrder::Starts::firstAfter(std::string_view text) const {
  Sequence first;
  const auto from = std::ranges::lower_bound(texts_, text, {}, &Text::text);
  for (auto entry = from; entry != texts_.end() && entry->text.starts_with(text); ++entry)
    first = smaller(first, entry->index);
  return first;
}

void SeriesOrder::build() {
  heads_.assign(trigramCount, false);
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    const auto index = static_cast<std::int32_t>(i);
    const MatchKey& key = entries_[i];
    if (!formOf(key).empty()) starts_.add(formOf(key), index);
    if (key.whole || key.alpha.empty()) continue;
    letters_.add(key.alpha, index);
    addHead(key.alpha);
    line_.emplace(lines_.size(), index);
    lines_ += key.alpha + '\n';
  }
  starts_.build();
  letters_.build();
  buildLetters();
}

/// All trigrams that go on from fewer letters than three count.
void SeriesOrder::addHead(std::string_view letters) {
  std::string from(letters.substr(0, 3));
  std::string to = from;
  from.resize(3, 'a');
  to.resize(3, 'z');
  std::fill(heads_.begin() + static_cast<std::ptrdiff_t>(*trigramAt(from, 0)),
            heads_.begin() + static_cast<std::ptrdiff_t>(*trigramAt(to, 0)) + 1, true);
}

/// Sorts the places of all trigrams by counting.
void SeriesOrder::buildLetters() {
  trigrams_.assign(trigramCount + 1, 0);
  const auto forEach = [&](auto take) {
    for (std::size_t at = 0; at + 3 <= lines_.size(); ++at) {
      if (const auto trigram = trigramAt(lines_, at)) take(*trigram, static_cast<std::uint32_t>(at));
    }
  };
  forEach([&](std::size_t trigram, std::uint32_t) { ++trigrams_[trigram + 1]; });
  std::partial_sum(trigrams_.begin(), trigrams_.end(), trigrams_.begin());
  places_.resize(trigrams_.back());
  std::vector<std::uint32_t> next = trigrams_;
  forEach([&](std::size_t trigram, std::uint32_t at) { places_[next[trigram]++] = at; });
}

Sequence SeriesOrder::sequenceOf(const MatchKey& title) const {
  if (const Sequence sequence = byTitle(title)) return sequence;
  if (const Sequence sequence = byLetters(title)) return sequence;
  const std::string withoutYear = stripYear(title.raw);
  if (withoutYear.empty() || withoutYear == title.raw) return {};
  const MatchKey rest = makeMatchKey(withoutYear);
  if (const Sequence sequence = byTitle(rest)) return sequence;
  // A year of digits takes no letter away, and those have been looked for.
  return rest.alpha == title.alpha && !title.whole ? Sequence() : byLetters(rest);
}

Sequence SeriesOrder::byTitle(const MatchKey& key) const {
  Sequence sequence = found(keyToIndex_, key.raw);
  if (!sequence && !key.whole) sequence = found(alnumToIndex_, key.alnum);
  if (!sequence && !key.whole) sequence = found(digitsToIndex_, key.digits);
  const std::string& form = formOf(key);
  if (!sequence && !form.empty()) sequence = smaller(starts_.firstBefore(form), starts_.firstAfter(form));
  return sequence;
}

Sequence SeriesOrder::byLetters(const MatchKey& key) const {
  if (key.whole || key.alpha.empty()) return {};
  return smaller(firstWithin(key.alpha), firstAround(key.alpha));
}

/// The first entry whose letters these ones hold.
Sequence SeriesOrder::firstWithin(std::string_view letters) const {
  Sequence first;
  for (std::size_t at = 0; at < letters.size(); ++at) {
    if (at + 3 <= letters.size() && !heads_[*trigramAt(letters, at)]) continue;
    first = smaller(first, letters_.firstBefore(letters.substr(at)));
  }
  return first;
}

/// The first entry whose letters hold these ones: it is looked for where the rarest three of them stand.
Sequence SeriesOrder::firstAround(std::string_view letters) const {
  std::size_t from = 0;
  std::size_t to = std::string::npos;
  std::size_t rarest = 0;
  for (std::size_t at = 0; at + 3 <= letters.size(); ++at) {
    const std::size_t trigram = *trigramAt(letters, at);
    if (to - from <= trigrams_[trigram + 1] - trigrams_[trigram]) continue;
    from = trigrams_[trigram];
    to = trigrams_[trigram + 1];
    rarest = at;
  }
  std::size_t place = to == std::string::npos ? lines_.find(letters) : std::string::npos;
  for (; from < to && to <= places_.size(); ++from) {
    if (places_[from] < rarest || lines_.compare(places_[from] - rarest, letters.size(), letters) != 0)
      continue;
    place = places_[from] - rarest;
    break;
  }
  if (place == std::string::npos) return {};
  return std::prev(line_.upper_bound(place))->second;
}

SeriesOrder readSeriesOrder(const fs::path& file) {
  SeriesOrder order;
  Titles titles(file.parent_path());
  const std::string text = headOf(file);
  std::string_view rest = orderIn(text);
  for (std::size_t count = 0; count < mostEntries && !rest.empty() && rest.front() != ']';) {
    const bool quote = rest.front() == '"';
    rest.remove_prefix(1);
    if (!quote) continue;
    const auto value = readString(rest);
    if (!value) break;
    const std::string name = value->substr(value->rfind('/') + 1);
    if (name.empty()) continue;
    order.add(titles.of(name));
    ++count;
  }
  order.build();
  return order;
}

}  // namespace tavek
