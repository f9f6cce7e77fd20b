#pragma once

namespace tavek {

class Display;
struct LaunchOptions;
struct Stored;

/// Home screen, then playback of the room that was chosen, and home again, until the viewer or a signal ends
/// it.
void runLibrary(Display& display, const Stored& stored, const LaunchOptions& options);

}  // namespace tavek
