#include "base/text.h"

#include <algorithm>

namespace tavek {
namespace {

/// Takes the digits off the front of the text. Without leading zeros, so that the longer number is the
/// greater one.
std::string_view takeNumber(std::string_view& text) {
  const auto length = static_cast<std::size_t>(std::ranges::find_if_not(text, isAsciiDigit) - text.begin());
  std::string_view number = text.substr(0, length);
  text.remove_prefix(length);
  number.remove_prefix(std::min(number.find_first_not_of('0'), number.size()));
  return number;
}

/// How many bytes at the start are the same in both, up to the number that they differ in.
std::size_t sharedStart(std::string_view a, std::string_view b) {
  auto same = static_cast<std::size_t>(std::ranges::mismatch(a, b).in1 - a.begin());
  if (same == a.size() && same == b.size()) return same;
  while (same > 0 && isAsciiDigit(a[same - 1])) --same;
  return same;
}

}  // namespace

std::string toLower(std::string_view text) {
  std::string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  return lower;
}

std::string trim(std::string_view text) {
  while (!text.empty() && isAsciiSpace(text.front())) text.remove_prefix(1);
  while (!text.empty() && isAsciiSpace(text.back())) text.remove_suffix(1);
  return std::string(text);
}

std::string lowerExtension(const std::filesystem::path& path) {
  return toLower(path.extension().string());
}

bool isAsciiDigit(char c) {
  return c >= '0' && c <= '9';
}

bool isAsciiSpace(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

bool lessNatural(std::string_view a, std::string_view b) {
  std::string_view restA = a;
  std::string_view restB = b;
  while (true) {
    const std::size_t same = sharedStart(restA, restB);
    restA.remove_prefix(same);
    restB.remove_prefix(same);
    if (restA.empty() && restB.empty()) return a < b;
    if (restA.empty() || restB.empty()) return restA.empty();
    if (!isAsciiDigit(restA.front()) || !isAsciiDigit(restB.front())) return restA < restB;
    const std::string_view numberA = takeNumber(restA);
    const std::string_view numberB = takeNumber(restB);
    if (numberA.size() != numberB.size()) return numberA.size() < numberB.size();
    if (numberA != numberB) return numberA < numberB;
  }
}

}  // namespace tavek
