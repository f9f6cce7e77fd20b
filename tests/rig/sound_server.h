// A sound server of a test's own, with a device that is paced in real time and a recorder of what it plays.
#pragma once

#include <memory>
#include <mutex>
#include <signal.h>

#include "rig/process.h"

namespace tavek::rig {

inline constexpr int recordRate = 48000;

/// What was heard, one channel: the first sample at `start` (seconds of `now()`), the others at recordRate.
struct Recording {
  double start = 0;
  std::vector<std::int16_t> samples;

  Recording between(double from, double to) const;
  double end() const { return start + double(samples.size()) / recordRate; }
  /// Effective level, 0 dB being a full-scale square wave; -120 for silence.
  double level() const;
  /// Zero crossings upward per second, from the first to the last one.
  double pitch() const;
  /// When sound began after at least a tenth of a second of near-silence.
  std::vector<double> onsets() const;
};

/// A PulseAudio server with a null sink. Its recorder runs for its whole life with a latency of 10 ms, as
/// otherwise the sink takes blocks of up to 2 s. Programs find the sink through `environment()` as ALSA's
/// default device.
class SoundServer {
 public:
  SoundServer();

  Environment environment() const;
  Recording recording(double since = 0) const;
  /// A tone of about that pitch is all that was heard between two times.
  bool heard(int pitch, double from, double to) const;
  bool waitForPitch(int pitch, double seconds) const;
  /// Seconds from a time until the tone was heard first; 9 if it was not.
  double delayOf(int pitch, double since) const;
  /// The same for 40 ms of silence.
  double delayOfSilence(double since) const;
  /// It answers nobody any more, until it goes on.
  void stop() { server_->signal(SIGSTOP); }
  void goOn() { server_->signal(SIGCONT); }

 private:
  void readSamples(int pipe);

  TempFolder folder_;
  mutable std::mutex lock_;
  Recording heard_;
  // It ends when the recorder has gone, which is first to go.
  std::jthread reader_;
  std::unique_ptr<Program> server_, recorder_;
};

}  // namespace tavek::rig
