#include "base/text.h"

#include <algorithm>

namespace tavek {

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

}  // namespace tavek
