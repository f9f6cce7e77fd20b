#include "lights/hue_url.h"

#include <algorithm>
#include <charconv>
#include <initializer_list>
#include <string_view>

#include "scan/http.h"
#include "state/json_write.h"

namespace tavek {
namespace {

using Text = std::optional<std::string>;
constexpr std::size_t npos = std::string_view::npos;

bool has(const Text& text) {
  return text && !text->empty();
}

bool isPort(std::string_view text) {
  unsigned port = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), port);
  return error == std::errc() && end == text.data() + text.size() && port >= 1 && port <= 65535;
}

/// A name, an address, or an address in brackets.
bool isHost(std::string_view text) {
  constexpr std::string_view letters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789.-_";
  const bool bracketed = text.starts_with('[') && text.ends_with(']') && text.size() > 2;
  if (bracketed) return text.substr(1, text.size() - 2).find_first_not_of("0123456789abcdefABCDEF:.") == npos;
  return !text.empty() && text.find_first_not_of(letters) == npos;
}

bool isBridge(std::string_view text) {
  const std::size_t colon = text.rfind(':');
  const bool hasPort = colon != npos && !text.ends_with(']');
  return isHost(text.substr(0, hasPort ? colon : npos)) && (!hasPort || isPort(text.substr(colon + 1)));
}

std::string actionOf(const HueSettings& settings) {
  return "/groups/" + urlEncode(has(settings.group) ? *settings.group : "1") + "/action";
}

std::string body(std::string_view key, const std::string& value) {
  return "{\"" + std::string(key) + "\":" + quotedString(value) + "}";
}

std::string bodyOf(const Text& scene, std::initializer_list<const Text*> alerts) {
  if (has(scene)) return body("scene", *scene);
  for (const Text* alert : alerts) {
    if (has(*alert)) return body("alert", **alert);
  }
  return body("alert", "select");
}

}  // namespace

std::optional<std::string> hueBase(const std::string& bridge, const std::string& user) {
  if (!isBridge(bridge) || user.empty()) return {};
  return "http://" + bridge + "/api/" + urlEncode(user);
}

std::optional<std::string> buildHueUrl(const HueSettings& settings) {
  const auto base = hueBase(settings.bridge.value_or(""), settings.user.value_or(""));
  return settings.enabled && base ? std::optional(*base + actionOf(settings)) : std::nullopt;
}

std::string maskedHueUrl(const HueSettings& settings) {
  return "http://" + settings.bridge.value_or("") + "/api/***" + actionOf(settings);
}

std::string huePlayBody(const HueSettings& settings) {
  return bodyOf(settings.playScene, {&settings.playAlert});
}

std::string huePauseBody(const HueSettings& settings) {
  return bodyOf(settings.pauseScene, {&settings.pauseAlert, &settings.playAlert});
}

}  // namespace tavek
