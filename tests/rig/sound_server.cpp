#include "rig/sound_server.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <stdexcept>
#include <unistd.h>

namespace tavek::rig {
namespace {

constexpr int loud = 1000;
// The sink is one block, as long as the recorder's latency, before the time that its clock tells.
constexpr double recordedEarly = 0.010;
constexpr std::size_t silence = recordRate / 10;

std::size_t indexAt(const Recording& recording, double time) {
  const double index = (time - recording.start) * recordRate;
  return static_cast<std::size_t>(std::clamp(index, 0.0, double(recording.samples.size())));
}

double firstDelay(const auto& accepts) {
  for (double delay = 0; delay < 3; delay += 0.005) {
    if (accepts(delay)) return delay;
  }
  return 9;
}

}  // namespace

Recording Recording::between(double from, double to) const {
  const std::size_t first = indexAt(*this, from), last = std::max(first, indexAt(*this, to));
  const auto at = [this](std::size_t index) { return samples.begin() + static_cast<std::ptrdiff_t>(index); };
  return {start + double(first) / recordRate, {at(first), at(last)}};
}

double Recording::level() const {
  double sum = 0;
  for (const double sample : samples) sum += sample * sample;
  return sum == 0 ? -120 : 10 * std::log10(sum / double(samples.size()) / (32768.0 * 32768.0));
}

double Recording::pitch() const {
  std::size_t first = 0, last = 0;
  int crossings = -1;
  for (std::size_t i = 1; i < samples.size(); ++i) {
    if (samples[i - 1] >= 0 || samples[i] < 0) continue;
    if (++crossings == 0) first = i;
    last = i;
  }
  return crossings > 0 ? crossings * double(recordRate) / double(last - first) : 0;
}

std::vector<double> Recording::onsets() const {
  std::vector<double> result;
  std::size_t quiet = 0;
  for (std::size_t i = 0; i < samples.size(); ++i, ++quiet) {
    if (std::abs(samples[i]) < loud) continue;
    if (quiet >= silence) result.push_back(start + double(i) / recordRate);
    quiet = 0;
  }
  return result;
}

SoundServer::SoundServer() {
  const std::string socket = folder_.path() / "socket";
  writeText(folder_.path() / "asound.conf",
            "</usr/share/alsa/alsa.conf>\npcm.!default { type pulse server \"unix:" + socket + "\" }\n");
  server_ = std::make_unique<Program>(
      std::vector<std::string>{"pulseaudio", "-n", "--daemonize=no", "--exit-idle-time=-1",
                               "--use-pid-file=no", "--log-target=stderr", "-L",
                               "module-null-sink sink_name=rig rate=48000 channels=2 norewinds=1", "-L",
                               "module-native-protocol-unix auth-anonymous=1 socket=" + socket},
      environment());
  if (!waitUntil(20, [this] { return std::filesystem::exists(folder_.path() / "socket"); }))
    throw std::runtime_error("no sound server: " + server_->errors());
  int ends[2];
  if (pipe(ends) != 0) throw std::runtime_error("no pipe");
  recorder_ = std::make_unique<Program>(
      std::vector<std::string>{"parec", "--latency-msec=10", "--raw", "--format=s16le", "--rate=48000",
                               "--channels=1", "--device=rig.monitor"},
      environment(), ends[1]);
  close(ends[1]);
  reader_ = std::jthread([this, end = ends[0]] { readSamples(end); });
  if (!waitUntil(20, [this] { return recording().samples.size() > recordRate / 10; }))
    throw std::runtime_error("no recorder: " + recorder_->errors());
}

Environment SoundServer::environment() const {
  const std::string folder = folder_.path();
  return {{"ALSA_CONFIG_PATH", folder + "/asound.conf"},
          {"PULSE_SERVER", "unix:" + folder + "/socket"},
          {"HOME", folder},
          {"XDG_RUNTIME_DIR", folder}};
}

Recording SoundServer::recording(double since) const {
  const std::scoped_lock hold(lock_);
  return heard_.between(since, heard_.end());
}

bool SoundServer::heard(int pitch, double from, double to) const {
  const Recording part = recording().between(from, to);
  return part.level() > -50 && std::abs(part.pitch() - pitch) < pitch * 0.05;
}

bool SoundServer::waitForPitch(int pitch, double seconds) const {
  return waitUntil(seconds, [&] { return heard(pitch, now() - 0.15, now() - 0.05); });
}

double SoundServer::delayOf(int pitch, double since) const {
  return firstDelay([&](double delay) { return heard(pitch, since + delay, since + delay + 0.02); });
}

double SoundServer::delayOfSilence(double since) const {
  return firstDelay(
      [&](double delay) { return recording().between(since + delay, since + delay + 0.04).level() < -60; });
}

void SoundServer::readSamples(int pipe) {
  std::int16_t block[recordRate / 100];
  for (ssize_t bytes = 0; (bytes = read(pipe, block, sizeof block)) > 0;) {
    const std::scoped_lock hold(lock_);
    heard_.samples.insert(heard_.samples.end(), block, block + bytes / static_cast<ssize_t>(sizeof *block));
    // A block can only come late: the earliest one tells when the recording began.
    const double start = now() + recordedEarly - double(heard_.samples.size()) / recordRate;
    if (heard_.start == 0 || start < heard_.start) heard_.start = start;
  }
  close(pipe);
}

}  // namespace tavek::rig
