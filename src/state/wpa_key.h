#pragma once

#include <string>

namespace tavek {

/// The key that a passphrase gives for a wireless network of this name: 32 bytes. Takes some ten
/// milliseconds.
std::string wpaKey(const std::string& passphrase, const std::string& ssid);

}  // namespace tavek
