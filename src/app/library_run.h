#pragma once

namespace tavek {

struct PlayContext;

/// Home screen, then playback of the room that was chosen, and home again, until the viewer or a signal ends
/// it.
void runLibrary(const PlayContext& context);

}  // namespace tavek
