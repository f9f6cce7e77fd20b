#pragma once

#include <string>

#include "state/device_settings.h"

/// The files of the devices as texts.
namespace tavek {

/// From any text: a value that can't be found is absent, and a switch then has its default; that of the
/// lights stays as it is.
void readDevice(const std::string& text, HueSettings& settings);
void readDevice(const std::string& text, BluetoothSettings& settings);
void readDevice(const std::string& text, NetworkSettings& settings);

/// The whole file, with what a newer program wrote into the old text, if that is whole. The old text as it is
/// where it says the same, or where the lights have no bridge or no user.
std::string deviceText(const HueSettings& settings, const std::string& old);
std::string deviceText(const BluetoothSettings& settings, const std::string& old);
std::string deviceText(const NetworkSettings& settings, const std::string& old);

}  // namespace tavek
