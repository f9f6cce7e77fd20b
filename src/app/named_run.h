#pragma once

namespace tavek {

class Display;
struct LaunchOptions;
struct Stored;

/// Plays the files of the command line once, in their order. One that fails is told on stderr, and the next
/// one follows; a signal or the viewer's quit ends the run.
void playNamedFiles(Display& display, const Stored& stored, const LaunchOptions& options);

}  // namespace tavek
