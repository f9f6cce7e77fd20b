#pragma once

#include <fstream>
#include <string>

#include "state/stored_state.h"
#include "support/table.h"

namespace tavek::test {

inline std::string contentOf(const std::filesystem::path& file) {
  std::ifstream stream(file);
  return readWholeFile(stream);
}

inline StoredState stateOf(const std::string& text) {
  bool changed = false;
  return readStoredState(text, changed);
}

}  // namespace tavek::test
