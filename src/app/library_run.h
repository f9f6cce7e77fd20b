#pragma once

namespace tavek {

struct LaunchOptions;
struct PlayContext;

/// Home screen, then playback of the room that was chosen, and home again, until the viewer or a signal ends
/// it.
void runLibrary(const PlayContext& context, const LaunchOptions& options);

}  // namespace tavek
