#include "state/wpa_config.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "base/file_write.h"
#include "base/paths.h"
#include "base/text.h"
#include "state/small_file.h"
#include "state/wpa_key.h"

namespace tavek {
namespace {

constexpr std::size_t npos = std::string::npos;
constexpr std::size_t longestName = 32;
constexpr std::array<std::string_view, 3> headerLines{"ctrl_interface=DIR=/run/wpa_supplicant GROUP=netdev",
                                                      "update_config=1", "fast_reauth=1"};
constexpr std::string_view blockStart = "network={";
constexpr std::string_view blockEnd = "}";

/// May stand between quotes: no escape is undone there, and a quote within hides what follows.
bool isPlain(const std::string& text) {
  return std::ranges::all_of(text, [](char c) { return c >= ' ' && c <= '~' && c != '"' && c != '\\'; });
}

std::string hexText(const std::string& bytes) {
  constexpr std::string_view digits = "0123456789abcdef";
  std::string text;
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    text += {digits[byte >> 4], digits[byte & 15]};
  }
  return text;
}

std::optional<std::string> bytesOfHex(std::string_view text) {
  std::string bytes;
  for (; text.size() >= 2; text.remove_prefix(2)) {
    unsigned char byte = 0;
    if (std::from_chars(text.data(), text.data() + 2, byte, 16).ptr != text.data() + 2) return {};
    bytes += static_cast<char>(byte);
  }
  return text.empty() ? std::optional(bytes) : std::nullopt;
}

std::string blockOf(const std::string& ssid, const std::string& passphrase) {
  const auto quoted = [](const std::string& text) { return '"' + text + '"'; };
  std::string text{blockStart};
  text += "\n\tssid=" + (isPlain(ssid) ? quoted(ssid) : hexText(ssid));
  if (passphrase.empty())
    text += "\n\tkey_mgmt=NONE";
  else
    text += "\n\tpsk=" + (isPlain(passphrase) ? quoted(passphrase) : hexText(wpaKey(passphrase, ssid)));
  return text + "\n\tpriority=10\n}\n";
}

/// With the line feed.
std::string_view takeLine(std::string_view& text) {
  const std::string_view line = text.substr(0, std::min(text.find('\n'), text.size() - 1) + 1);
  text.remove_prefix(line.size());
  return line;
}

/// Without blanks and the comment, which begins at a # that is in no quotes.
std::string contentOf(std::string_view line) {
  const std::size_t open = line.find('"');
  const std::size_t close = open == npos ? npos : line.find('"', open + 1);
  return trim(line.substr(0, line.find('#', close == npos ? 0 : close)));
}

std::optional<std::string> nameIn(std::string_view value) {
  if (!value.starts_with('"')) return bytesOfHex(value);
  return std::string(value.substr(1, std::max<std::size_t>(value.rfind('"'), 1) - 1));
}

struct Block {
  std::string_view text;
  std::optional<std::string> ssid = {};  ///< not of one that has no end
};

/// The text begins with its first line.
Block takeBlock(std::string_view& text) {
  const std::string_view start = text;
  std::optional<std::string> ssid;
  takeLine(text);
  while (!text.empty()) {
    std::string_view rest = text;
    const std::string content = contentOf(takeLine(rest));
    if (content == blockStart) break;
    text = rest;
    constexpr std::string_view key = "ssid=";
    if (content.starts_with(key)) ssid = nameIn(std::string_view(content).substr(key.size()));
    if (content == blockEnd) return {start.substr(0, start.size() - text.size()), ssid};
  }
  return {start.substr(0, start.size() - text.size())};
}

}  // namespace

bool passphraseFits(const std::string& passphrase) {
  return passphrase.size() >= 8 && passphrase.size() <= 63;
}

std::string wpaConfig(const std::string& old, const std::string& ssid, const std::string& passphrase) {
  const bool nameFits = !ssid.empty() && ssid.size() <= longestName;
  if (!nameFits || (!passphrase.empty() && !passphraseFits(passphrase))) return old;

  std::string block = blockOf(ssid, passphrase);
  std::vector<std::string_view> missing(headerLines.begin(), headerLines.end());
  std::string text;
  for (std::string_view rest = old; !rest.empty();) {
    std::string_view behind = rest;
    const std::string_view line = takeLine(behind);
    const std::string content = contentOf(line);
    if (content == blockStart) {
      const Block there = takeBlock(rest);
      text += there.ssid == ssid ? std::exchange(block, "") : std::string(there.text);
      continue;
    }
    std::erase_if(missing, [&](std::string_view header) {
      return content.starts_with(header.substr(0, header.find('=') + 1));
    });
    text += line;
    rest = behind;
  }
  if (!text.empty() && !text.ends_with('\n')) text += '\n';
  if (!block.empty()) text += '\n' + block;
  std::string header;
  for (const std::string_view line : missing) header.append(line) += '\n';
  return header + text;
}

void writeWpaConfig(const std::string& ssid, const std::string& passphrase) {
  const std::filesystem::path file = etcFolder() / "wpa_supplicant/wpa_supplicant.conf";
  const SmallFile old = readSmallFile(file);
  if (old.found == FileFound::Unreadable) return;
  const std::string text = wpaConfig(old.text, ssid, passphrase);
  if (text == old.text) return;
  removeLeftovers(file);
  const bool isNew = old.found == FileFound::Missing;
  replaceFile(file, text, isNew ? std::optional<mode_t>(0600) : std::nullopt);
}

}  // namespace tavek
