#pragma once

#include <filesystem>
#include <vector>

#include "base/process_flags.h"
#include "library/poster_candidate.h"

namespace tavek {

/// The images below the folder that stand for the videos below it; all images if there is no video. In the
/// order of the walk, each with the video that plays for it. Returns what it has when `stop` is set.
std::vector<PosterCandidate> filmCandidates(const std::filesystem::path& folder, const Flag& stop);

}  // namespace tavek
