#include "app/failed_item.h"

#include <iostream>

#include "base/console.h"

namespace tavek {

void tellFailed(const std::string& path, const std::exception& error) {
  std::cerr << console::boldRed << "Failed to open " << path << ": " << error.what() << console::reset
            << std::endl;
}

}  // namespace tavek
