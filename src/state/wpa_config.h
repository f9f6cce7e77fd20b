#pragma once

#include <string>

/// The file in which the system's Wi-Fi service looks for networks. It takes the whole file or nothing, so
/// nothing may get there that it refuses.
namespace tavek {

/// Of a length that the standard allows. Without a passphrase a network is open.
bool passphraseFits(const std::string& passphrase);
/// The text with this network in it, in the place of those of the same name; all else stays as it is. The old
/// text where the name or the passphrase is none that a network can have.
std::string wpaConfig(const std::string& old, const std::string& ssid, const std::string& passphrase);
/// A file that cannot be read or written is left alone. Waits for the disk.
void writeWpaConfig(const std::string& ssid, const std::string& passphrase);

}  // namespace tavek
