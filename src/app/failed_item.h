#pragma once

#include <exception>
#include <string>

namespace tavek {

/// The line on stderr for an item that could not be played.
void tellFailed(const std::string& path, const std::exception& error);

}  // namespace tavek
