#include "library/match_key.h"

#include <algorithm>
#include <utility>

#include "base/text.h"
#include "library/episode_name.h"
#include "library/file_types.h"
#include "library/folder_walk.h"
#include "library/media_paths.h"
#include "library/titles.h"

namespace tavek {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t yearLength = 4;

bool isFourDigits(std::string_view text) {
  return text.size() == yearLength && std::ranges::all_of(text, isAsciiDigit);
}

std::string withoutPosterSuffix(std::string name) {
  constexpr std::string_view suffix = ".poster";
  if (name.ends_with(suffix)) name.resize(name.size() - suffix.size());
  return name;
}

/// In the order of the directory; empty without a video.
std::string firstVideoStem(const fs::path& folder) {
  std::string stem;
  walkIn(folder, [&](const fs::directory_entry& entry) {
    if (isFilm(entry.path()) && isRegularFile(entry)) stem = entry.path().stem().string();
    return stem.empty();
  });
  return stem;
}

bool isTitleSeparator(char c) {
  return isAsciiSpace(c) || c == '_' || c == '.' || c == '-' || c == ',';
}

/// Where the bracket opens that closes at the end of the title, if a year stands between them.
std::size_t bracketedYear(std::string_view title) {
  constexpr std::string_view opening = "([{";
  constexpr std::string_view closing = ")]}";
  const std::size_t kind = title.empty() ? std::string_view::npos : closing.find(title.back());
  if (kind == std::string_view::npos) return kind;
  const std::size_t open = title.rfind(opening[kind]);
  if (open == std::string_view::npos) return open;
  const std::string_view inside = title.substr(open + 1, title.size() - open - 2);
  return isYear(trim(inside)) ? open : std::string_view::npos;
}

/// One of them begins with the other.
bool shareStart(std::string_view a, std::string_view b) {
  return !a.empty() && !b.empty() && (a.starts_with(b) || b.starts_with(a));
}

bool oneHoldsOther(std::string_view a, std::string_view b) {
  return !a.empty() && !b.empty() &&
         (a.find(b) != std::string_view::npos || b.find(a) != std::string_view::npos);
}

bool anyFormBegins(const MatchKey& key, std::string_view query) {
  return key.raw.starts_with(query) || key.alnum.starts_with(query) || key.alpha.starts_with(query) ||
         key.digits.starts_with(query);
}

bool namesEpisode(std::string_view query) {
  return !episodeLabelOf(query).episode.empty();
}

}  // namespace

MatchKey makeMatchKey(std::string_view text) {
  std::string folded = foldCase(text);
  const bool whole = losesLetters(folded);
  const std::string letters = whole ? baseLetters(folded) : folded;
  MatchKey key{whole ? std::move(folded) : std::string(text), {}, {}, {}, whole};
  for (const char c : letters) {
    const bool digit = isAsciiDigit(c);
    const bool letter = c >= 'a' && c <= 'z';
    if (digit || letter) key.alnum += c;
    if (letter) key.alpha += c;
    if (digit) key.digits += c;
  }
  return key;
}

std::string titleKeyOf(std::string_view name, const fs::path& folder) {
  return titleWithYear(name, trim(foldCase(folder.filename().string())));
}

std::string posterTitleKey(const fs::path& path) {
  const fs::path folder = path.parent_path();
  const std::string folderName = folder.filename().string();
  std::string title = titleOfStem(path.stem().string());
  if (title.empty()) {
    // A series folder stands for itself, not for a video that lies in it.
    const std::string video = seriesDepth(folder) == 1 ? std::string() : firstVideoStem(folder);
    title = titleOfFolder(folderName, video);
  }
  return titleWithYear(title, trim(foldCase(folderName)));
}

MatchKey matchKeyOf(const fs::path& path) {
  return makeMatchKey(posterTitleKey(path));
}

std::string titleOfStem(std::string_view stem) {
  std::string title = withoutPosterSuffix(foldCase(stem));
  return isGenericPosterName(title) ? std::string() : title;
}

std::string titleOfFolder(std::string_view folderName, std::string_view firstVideoStem) {
  return firstVideoStem.empty() ? withoutPosterSuffix(foldCase(folderName)) : foldCase(firstVideoStem);
}

std::string titleWithYear(std::string_view name, std::string_view folderName) {
  std::string title(name);
  const std::size_t at = folderName.find(name);
  if (at == std::string_view::npos) return title;
  std::string rest = trim(folderName.substr(at + name.size()));
  if (rest.size() >= 2 && rest.front() == '(' && rest.back() == ')') {
    rest = trim(std::string_view(rest).substr(1, rest.size() - 2));
  }
  return isFourDigits(rest) ? title + ' ' + rest : title;
}

bool isYear(std::string_view text) {
  return isFourDigits(text) && text >= "1800" && text <= "2199";
}

std::string stripYear(std::string_view text) {
  std::string title = trim(text);
  if (const std::size_t open = bracketedYear(title); open != std::string::npos) {
    title.resize(open);
    return trim(title);
  }
  // Whether a separator stands before the bare year or not, it goes with all that stand before it.
  if (title.size() < yearLength || !isYear(std::string_view(title).substr(title.size() - yearLength))) {
    return title;
  }
  title.resize(title.size() - yearLength);
  while (!title.empty() && isTitleSeparator(title.back())) title.pop_back();
  return trim(title);
}

KeyMatch matchKeys(const MatchKey& a, const MatchKey& b) {
  if (!a.raw.empty() && a.raw == b.raw) return KeyMatch::Exact;
  if (a.whole || b.whole) return shareStart(a.raw, b.raw) ? KeyMatch::Generous : KeyMatch::None;
  if (!a.alnum.empty() && a.alnum == b.alnum) return KeyMatch::Exact;
  const bool generous = shareStart(a.alnum, b.alnum) || (!a.digits.empty() && a.digits == b.digits) ||
                        oneHoldsOther(a.alpha, b.alpha);
  return generous ? KeyMatch::Generous : KeyMatch::None;
}

bool keysMatch(const MatchKey& a, const MatchKey& b) {
  return matchKeys(a, b) != KeyMatch::None;
}

bool matchesQuery(const MatchKey& key, const fs::path& poster, bool seriesRoom, std::string_view query,
                  bool lettersOnly) {
  if (query.empty()) return false;
  if (lettersOnly && !key.raw.empty() && isAsciiDigit(key.raw.front())) return false;
  if (seriesRoom) {
    const auto series = namesEpisode(query) ? std::nullopt : seriesFolderOf(poster);
    return anyFormBegins(series ? matchKeyOf(folderTile(*series)) : key, query);
  }
  const std::string title = stripYear(key.raw);
  const std::string wanted = stripYear(query);
  return anyFormBegins(key, query) || title.starts_with(query) ||
         (!wanted.empty() && title.starts_with(wanted));
}

}  // namespace tavek
