#include "state/device_text.h"

#include <algorithm>
#include <array>
#include <initializer_list>
#include <span>
#include <string_view>
#include <vector>

#include "base/text.h"
#include "state/json_read.h"
#include "state/json_write.h"

namespace tavek {
namespace {

using Path = std::initializer_list<std::string_view>;
using Text = std::optional<std::string>;

/// How a switch is told by words.
struct Words {
  std::array<std::string_view, 3> some;
  bool meaning;  ///< of these; every other word means the opposite
  bool anyCase = true;
  std::optional<bool> absent = {};  ///< else it stays as it is
  std::string_view on = "true", off = "false";
};
constexpr Words lightWords{{"true", "1"}, true, false};
constexpr Words onWords{{"false", "0", "no"}, false, true, true};
constexpr Words visibleWords{{"true", "1", "yes"}, true, true, false};
constexpr Words blockedWords{{"blocked", "true", "1"}, true, true, false, "blocked", "unblocked"};

// The members in the order of the files.

template <typename Visitor>
void visit(HueSettings& hue, Visitor& visitor) {
  visitor.text({"Hue", "Bridge"}, hue.bridge);
  visitor.text({"Hue", "User"}, hue.user);
  visitor.text({"Hue", "Group"}, hue.group);
  visitor.flag({"Hue", "Enabled"}, hue.enabled, lightWords);
  visitor.text({"Hue", "Play", "Scene"}, hue.playScene);
  visitor.text({"Hue", "Play", "Alert"}, hue.playAlert);
  visitor.text({"Hue", "Pause", "Scene"}, hue.pauseScene);
  visitor.text({"Hue", "Pause", "Alert"}, hue.pauseAlert);
}

template <typename Visitor>
void visit(BluetoothSettings& bluetooth, Visitor& visitor) {
  visitor.text({"Bluetooth", "Adapter"}, bluetooth.adapter);
  visitor.text({"Bluetooth", "Name"}, bluetooth.name);
  visitor.flag({"Bluetooth", "Enabled"}, bluetooth.enabled, onWords);
  visitor.flag({"Bluetooth", "Discoverable"}, bluetooth.discoverable, visibleWords);
  visitor.flag({"Bluetooth", "Rfkill"}, bluetooth.rfkillBlocked, blockedWords);
  visitor.text({"Bluetooth", "PIN"}, bluetooth.pin);
  visitor.text({"Bluetooth", "AutoPrimary"}, bluetooth.autoPrimary);
  visitor.text({"Bluetooth", "AutoSecondary"}, bluetooth.autoSecondary);
  visitor.text({"Bluetooth", "AudioProfile"}, bluetooth.audioProfile);
}

template <typename Visitor>
void visit(NetworkSettings& network, Visitor& visitor) {
  visitor.text({"Network", "Interface"}, network.interface);
  visitor.flag({"Network", "DHCP"}, network.dhcp, onWords);
  visitor.flag({"Network", "Rfkill"}, network.rfkillBlocked, blockedWords);
  visitor.text({"Network", "Static", "Address"}, network.wired.address);
  visitor.text({"Network", "Static", "Netmask"}, network.wired.netmask);
  visitor.text({"Network", "Static", "Gateway"}, network.wired.gateway);
  visitor.text({"Network", "Static", "DNS1"}, network.wired.dns1);
  visitor.text({"Network", "Static", "DNS2"}, network.wired.dns2);
  visitor.text({"Network", "WiFi", "Static", "Address"}, network.wifi.address);
  visitor.text({"Network", "WiFi", "Static", "Netmask"}, network.wifi.netmask);
  visitor.text({"Network", "WiFi", "Static", "Gateway"}, network.wifi.gateway);
  visitor.text({"Network", "WiFi", "Static", "DNS1"}, network.wifi.dns1);
  visitor.text({"Network", "WiFi", "Static", "DNS2"}, network.wifi.dns2);
  visitor.text({"Network", "WiFi", "SSID"}, network.ssid);
  visitor.text({"Network", "WiFi", "Password"}, network.password);
}

auto find(const std::vector<JsonMember>& members, std::string_view key) {
  return std::ranges::find_if(members, [&](const JsonMember& member) {
    std::size_t start = 0;
    return parseString('"' + member.key + '"', start) == key;
  });
}

/// The string, number or word at the end of a path. A search would take that of another object where it is
/// missing in its own.
Text scalarAt(std::string text, Path path) {
  for (const std::string_view key : path) {
    const std::vector<JsonMember> members = readMembers(text);
    const auto member = find(members, key);
    if (member == members.end()) return {};
    text = member->value;
  }
  std::size_t start = 0;
  if (auto string = parseString(text, start)) return string;
  const bool isValue = text != "null" && !text.starts_with('{') && !text.starts_with('[');
  return isValue ? Text(text) : std::nullopt;
}

/// Sets what it visits to what the text holds.
class Reader {
 public:
  explicit Reader(const std::string& text) : text_(text), whole_(isWholeJson(text)) {}
  void text(Path path, Text& value) const {
    value = whole_ ? scalarAt(text_, path) : readStringAt(text_, path);
  }
  void flag(Path path, bool& value, const Words& words) const {
    Text word;
    text(path, word);
    if (!word) return void(value = words.absent.value_or(value));
    const std::string said = words.anyCase ? toLower(*word) : *word;
    const bool isSome = !said.empty() && std::ranges::find(words.some, said) != words.some.end();
    value = isSome == words.meaning;
  }

 private:
  const std::string& text_;
  const bool whole_;
};

struct Row {
  std::vector<std::string_view> path;
  std::string value;  ///< as it stands in the file; empty without one
};

/// Gathers what it visits.
struct Rows {
  void text(Path path, const Text& value) {
    rows.push_back({path, value.value_or("").empty() ? "" : quotedString(*value)});
  }
  void flag(Path path, bool value, const Words& words) {
    rows.push_back({path, quotedString(value ? words.on : words.off)});
  }
  std::vector<Row> rows = {};
};

/// The object of the rows, whose paths are the same up to this depth, and of what the old one has more; empty
/// without any.
std::string objectText(std::span<const Row> rows, std::size_t depth, const std::string& old) {
  std::vector<JsonMember> members = readMembers(old);
  const int tabs = static_cast<int>(depth) + 1;
  FieldState fields{.text = "{\n"};
  while (!rows.empty()) {
    const Row& first = rows.front();
    const std::string_view key = first.path[depth];
    const auto end = std::ranges::find_if(rows, [&](const Row& row) { return row.path[depth] != key; });
    const auto ofKey = rows.first(static_cast<std::size_t>(end - rows.begin()));
    rows = rows.subspan(ofKey.size());
    const auto there = find(members, key);
    const std::string inside = there == members.end() ? "" : there->value;
    if (there != members.end()) members.erase(there);
    const std::string value =
        first.path.size() == depth + 1 ? first.value : objectText(ofKey, depth + 1, inside);
    if (!value.empty()) appendRaw(fields, tabs, key, value);
  }
  for (const auto& [key, value] : members) appendRaw(fields, tabs, key, value);
  return fields.written ? fields.text + '\n' + std::string(depth, '\t') + '}' : "";
}

template <typename Settings>
std::string newText(Settings settings, const std::string& old) {
  Settings there = settings;
  readDevice(old, there);
  if (there == settings) return old;
  Rows rows;
  visit(settings, rows);
  return objectText(rows.rows, 0, isWholeJson(old) ? old : "") + '\n';
}

void fill(Text& value, const Text& from) {
  if (!value) value = from;
}

}  // namespace

void readDevice(const std::string& text, HueSettings& settings) {
  Reader reader(text);
  visit(settings, reader);
}

void readDevice(const std::string& text, BluetoothSettings& settings) {
  Reader reader(text);
  visit(settings, reader);
}

void readDevice(const std::string& text, NetworkSettings& settings) {
  Reader reader(text);
  visit(settings, reader);
  fill(settings.wifi.address, settings.wired.address);
  fill(settings.wifi.netmask, settings.wired.netmask);
  fill(settings.wifi.gateway, settings.wired.gateway);
  fill(settings.wifi.dns1, settings.wired.dns1);
  fill(settings.wifi.dns2, settings.wired.dns2);
}

std::string deviceText(const HueSettings& settings, const std::string& old) {
  const bool paired = !settings.bridge.value_or("").empty() && !settings.user.value_or("").empty();
  return paired ? newText(settings, old) : old;
}

std::string deviceText(const BluetoothSettings& settings, const std::string& old) {
  return newText(settings, old);
}

std::string deviceText(const NetworkSettings& settings, const std::string& old) {
  return newText(settings, old);
}

}  // namespace tavek
