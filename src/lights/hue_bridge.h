#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/process_flags.h"

/// What a bridge tells of its lights.
namespace tavek {

struct HueGroup {
  std::string id, name;
  bool operator==(const HueGroup&) const = default;
};

struct HueScene {
  std::string id, name, group;
  bool operator==(const HueScene&) const = default;
};

/// In the order of the reply; none if that is no whole object. Members that are no objects are left out, and
/// so are those beyond what a page can show.
std::optional<std::vector<HueGroup>> readHueGroups(const std::string& reply);
std::optional<std::vector<HueScene>> readHueScenes(const std::string& reply);

struct HueScan {
  std::string failure = {};  ///< for the viewer; empty if all went well
  std::vector<HueGroup> groups = {};
  std::vector<HueScene> scenes = {};
};
/// Asks the bridge twice, for three seconds each at most, or until `stop`. On a thread that may wait.
HueScan scanHueBridge(const std::string& bridge, const std::string& user, const Flag& stop);

}  // namespace tavek
