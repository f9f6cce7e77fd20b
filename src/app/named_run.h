#pragma once

namespace tavek {

struct LaunchOptions;
struct PlayContext;

/// Plays the files of the command line once, in their order. One that fails is told on stderr, and the next
/// one follows; a signal or the viewer's quit ends the run.
void playNamedFiles(const PlayContext& context, const LaunchOptions& options);

}  // namespace tavek
