#include "state/radio_switch.h"

#include <chrono>
#include <utility>

#include "base/run_tool.h"

namespace tavek {

void RadioSwitch::block(const std::string& radio, bool blocked) {
  {
    const auto wishes = wishes_->hold();
    wishes->blocked[radio] = blocked;
    if (std::exchange(wishes->busy, true)) return;
  }
  job_.start([wishes = wishes_](JobSide<std::monostate>&) { carryOut(*wishes); });
}

/// To the end, also when the program ends meanwhile: what was saved is to be true.
void RadioSwitch::carryOut(Guarded<Wishes>& wishes) {
  constexpr std::chrono::seconds patience{2};
  const Flag never;
  for (;;) {
    std::vector<std::string> arguments{toolPath("rfkill", {"/usr/sbin/rfkill"})};
    {
      const auto held = wishes.hold();
      held->busy = !held->blocked.empty();
      if (!held->busy) return;
      const auto first = held->blocked.extract(held->blocked.begin());
      arguments.insert(arguments.end(), {first.mapped() ? "block" : "unblock", first.key()});
    }
    runTool({.arguments = arguments, .deadline = patience}, never);
  }
}

}  // namespace tavek
