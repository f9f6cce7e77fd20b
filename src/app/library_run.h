#pragma once

namespace tavek {

class Display;
struct LaunchOptions;

/// Home screen, then playback of the room that was chosen, and home again, until the viewer or a signal ends
/// it.
void runLibrary(Display& display, const LaunchOptions& options);

}  // namespace tavek
