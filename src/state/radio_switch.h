#pragma once

#include <map>
#include <memory>
#include <string>
#include <variant>

#include "base/background_job.h"
#include "base/guarded.h"

namespace tavek {

/// Silences radios and lets them speak again, by rfkill and beside whoever asks: it may hang in a driver.
class RadioSwitch {
 public:
  /// The radio is called as rfkill calls it. What was asked last for it counts.
  void block(const std::string& radio, bool blocked);

 private:
  struct Wishes {
    std::map<std::string, bool> blocked;
    bool busy = false;  ///< a job carries them out
  };
  static void carryOut(Guarded<Wishes>& wishes);

  const std::shared_ptr<Guarded<Wishes>> wishes_ = std::make_shared<Guarded<Wishes>>();
  BackgroundJob<std::monostate> job_;
};

}  // namespace tavek
