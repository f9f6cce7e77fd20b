#include "base/console.h"

#include <iostream>

namespace tavek::console {

void logTmdb(std::string_view text) {
  std::cout << "[TMDB] " << text << std::endl;
}

void logFanart(std::string_view text) {
  std::cout << "[FANART] " << text << std::endl;
}

}  // namespace tavek::console
