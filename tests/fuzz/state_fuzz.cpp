#include <cstdlib>

#include "state/device_text.h"
#include "state/json_write.h"
#include "state/playback_file.h"
#include "state/stored_state.h"
#include "state/user_reader.h"
#include "state/wpa_config.h"

namespace tavek {
namespace {

/// What is set is what the file says afterwards, whatever it said before.
bool keepsNetwork(const std::string& text) {
  NetworkSettings settings;
  readDevice(text, settings);
  settings.dhcp = !settings.dhcp;
  settings.ssid = text + '.';
  const std::string saved = deviceText(settings, text);
  NetworkSettings read;
  readDevice(saved, read);
  return isWholeJson(saved) && read.ssid == settings.ssid && read.dhcp == settings.dhcp;
}

/// What was written once is found again.
bool keepsWifi(const std::string& text) {
  const std::string conf = wpaConfig(text, "a\"b", "");
  return wpaConfig(conf, "a\"b", "") == conf;
}

}  // namespace
}  // namespace tavek

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tavek;
  const std::string text(data, data + size);
  for (const char* key : {"users", "offset", "watched", "a", ""}) {
    readNumber(text, key);
    readInteger(text, key);
    readBool(text, key);
    readString(text, key);
    readStringAt(text, {key, "playing"});
    readObject(text, key);
    findObjectStart(text, key);
    readStringArray(text, key);
  }
  bool changed = false;
  readRoom(text, changed);
  readUsers(text, changed);
  // What is saved has to hold together, whatever was read.
  std::size_t place = 0;
  const bool holds = isOneObject(stateText(readStoredState(text, changed))) &&
                     isOneObject(compactObject(playbackMembers(parsePlayback(text)))) &&
                     parseString(quotedString(text), place) == text && keepsNetwork(text) && keepsWifi(text);
  if (!holds) std::abort();
  return 0;
}
