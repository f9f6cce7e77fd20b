#pragma once

#include <array>
#include <sstream>
#include <string>
#include <vector>

#include "base/text.h"

namespace tavek::test {

inline std::vector<std::string> split(const std::string& text, char separator = '|') {
  std::vector<std::string> parts;
  std::istringstream stream(text);
  for (std::string part; std::getline(stream, part, separator);) parts.push_back(part);
  return parts;
}

/// Rows of fields, "a => b => c" for three, one or more a line with ";;" between them.
template <std::size_t fields = 2>
std::vector<std::array<std::string, fields>> table(std::string text) {
  std::vector<std::array<std::string, fields>> rows;
  for (std::size_t at = 0; (at = text.find(";;", at)) != std::string::npos;) text.replace(at, 2, "\n");
  for (const std::string& line : split(text, '\n')) {
    if (trim(line).empty()) continue;
    std::size_t at = 0;
    for (std::string& field : rows.emplace_back()) {
      const std::size_t end = std::min(line.find("=>", at), line.size());
      field = trim(line.substr(std::min(at, end), end - at));
      at = end + 2;
    }
  }
  return rows;
}

}  // namespace tavek::test
