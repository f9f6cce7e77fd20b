#pragma once

#include <string>

#include "media/movie_info.h"

namespace tavek {

/// The lines of the "[movie]" block, each with its line feed.
std::string movieText(const std::string& path, const MovieInfo& info);

}  // namespace tavek
