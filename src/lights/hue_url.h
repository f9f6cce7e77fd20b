#pragma once

#include <optional>
#include <string>

#include "state/device_settings.h"

/// What the bridge of the lights is asked, as text.
namespace tavek {

/// "http://<bridge>/api/<user>"; none unless the bridge is a host or an address, with a port or without, and
/// there is a user.
std::optional<std::string> hueBase(const std::string& bridge, const std::string& user);
/// Where the group of lights is set; none for lights that are off or have no bridge.
std::optional<std::string> buildHueUrl(const HueSettings& settings);
/// The same without the user's name, which opens the bridge to whoever has it.
std::string maskedHueUrl(const HueSettings& settings);
std::string huePlayBody(const HueSettings& settings);
std::string huePauseBody(const HueSettings& settings);

}  // namespace tavek
