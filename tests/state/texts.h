#pragma once

#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include "base/text.h"
#include "state/stored_state.h"

namespace tavek::test {

inline std::string contentOf(const std::filesystem::path& file) {
  std::ifstream stream(file);
  return readWholeFile(stream);
}

inline StoredState stateOf(const std::string& text) {
  bool changed = false;
  return readStoredState(text, changed);
}

/// Rows of "text => expected", one or more a line with ";;" between them.
inline std::vector<std::pair<std::string, std::string>> table(const std::string& text) {
  std::vector<std::pair<std::string, std::string>> rows;
  for (std::size_t at = 0, middle = 0; (middle = text.find("=>", at)) != std::string::npos;) {
    const std::size_t end = std::min({text.find(";;", middle), text.find('\n', middle), text.size()});
    rows.emplace_back(trim(text.substr(at, middle - at)), trim(text.substr(middle + 2, end - middle - 2)));
    at = text.compare(end, 2, ";;") == 0 ? end + 2 : end;
  }
  return rows;
}

}  // namespace tavek::test
