#pragma once

#include <memory>
#include <string>
#include <thread>

#include "base/process_flags.h"
#include "state/stored_devices.h"

namespace tavek {

/// The lights follow the film: dimmed while it plays, and up again while it stands. One thread carries the
/// requests to the bridge, from the first one on. Main thread only; no call but the last waits.
class HueLights {
 public:
  explicit HueLights(StoredDevices& devices);
  ~HueLights() { stopHueWorker(); }
  HueLights(const HueLights&) = delete;
  HueLights& operator=(const HueLights&) = delete;

  /// Twice in a row counts once.
  void hueTriggerPlay();
  void hueTriggerPause();
  /// What waits is still sent, within a second, unless a signal ends the program.
  void stopHueWorker();

 private:
  struct Shared;
  void tell(const char* what, const HueSettings& settings, const std::string& body) const;
  void enqueueHueRequest(std::string url, std::string body);
  static void run(Shared& shared);

  StoredDevices& devices_;
  bool huePlaying_ = false;
  const std::shared_ptr<Shared> shared_;
  std::shared_ptr<Flag> ended_;
  std::thread worker_;
};

}  // namespace tavek
