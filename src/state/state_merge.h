#pragma once

#include "state/stored_state.h"

namespace tavek {

/// What a save has to write where the file has come from elsewhere meanwhile: from another program beside
/// this one, or on a disk that was mounted after the start. What this run changed, which is how `ours`
/// differs from `base`, wins; everything else is as the file has it. From a text that is not whole nobody is
/// taken to be gone.
StoredState mergeStates(StoredState base, const StoredState& ours, StoredState theirs, bool theirsIsWhole);

}  // namespace tavek
