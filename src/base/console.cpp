#include "base/console.h"

#include <cstdlib>
#include <iostream>

namespace tavek::console {

bool seekDebugWanted() {
  const char* value = std::getenv("TAVEK_SEEK_DEBUG");
  return value != nullptr && std::string_view(value) == "1";
}

void logTmdb(std::string_view text) {
  std::cout << "[TMDB] " << text << std::endl;
}

void logFanart(std::string_view text) {
  std::cout << "[FANART] " << text << std::endl;
}

}  // namespace tavek::console
