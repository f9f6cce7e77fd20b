#include "lights/hue_bridge.h"

#include <algorithm>
#include <chrono>
#include <string_view>
#include <utility>

#include "lights/hue_url.h"
#include "scan/reply_text.h"
#include "scan/web_connection.h"
#include "state/json_read.h"

namespace tavek {
namespace {

constexpr std::chrono::milliseconds scanLimit{3000};
constexpr std::size_t longestReply = 4U << 20;
/// More than a bridge can hold; the page looks through all of them in each frame.
constexpr std::size_t mostEntries = 2000;
constexpr std::size_t longestText = 96;  // bytes, as in the page's fields

/// The members of the reply that are objects; an error of the bridge is a list.
std::optional<std::vector<JsonMember>> objectsOf(const std::string& reply) {
  if (!isWholeJson(reply)) return {};
  std::vector<JsonMember> members = readMembers(reply);
  std::erase_if(members, [](const JsonMember& member) {
    return !member.value.starts_with('{') || member.key.size() > longestText;
  });
  members.resize(std::min(members.size(), mostEntries));
  return members;
}

std::string textOf(const JsonMember& object, std::string_view key) {
  return stringMember(readMembers(object.value), key).value_or("").substr(0, longestText);
}

std::string idOf(const JsonMember& object) {
  const std::string quoted = '"' + object.key + '"';
  std::size_t start = 0;
  return parseString(quoted, start).value_or("");
}

std::optional<std::string> get(WebConnection& connection, const std::string& url) {
  std::string reply;
  const auto take = [&](std::string_view bytes) {
    reply += bytes;
    return true;
  };
  const WebAnswer answer = connection.ask({.url = url,
                                           .whole = scanLimit,
                                           .connect = scanLimit,
                                           .longestBody = longestReply,
                                           .publicOnly = false,
                                           .take = take});
  const bool good = answer.fault == WebFault::None && answer.status / 100 == 2;
  return good ? std::optional(std::move(reply)) : std::nullopt;
}

}  // namespace

std::optional<std::vector<HueGroup>> readHueGroups(const std::string& reply) {
  const auto objects = objectsOf(reply);
  if (!objects) return {};
  std::vector<HueGroup> groups;
  for (const JsonMember& object : *objects) groups.push_back({idOf(object), textOf(object, "name")});
  return groups;
}

std::optional<std::vector<HueScene>> readHueScenes(const std::string& reply) {
  const auto objects = objectsOf(reply);
  if (!objects) return {};
  std::vector<HueScene> scenes;
  for (const JsonMember& object : *objects)
    scenes.push_back({idOf(object), textOf(object, "name"), textOf(object, "group")});
  return scenes;
}

HueScan scanHueBridge(const std::string& bridge, const std::string& user, const Flag& stop) {
  if (bridge.empty() || user.empty()) return {"Bridge and User are required."};
  const auto base = hueBase(bridge, user);
  WebConnection connection(stop);
  const auto groups = base ? get(connection, *base + "/groups") : std::nullopt;
  auto groupList = groups ? readHueGroups(*groups) : std::nullopt;
  if (!groupList) return {"Failed to load groups from bridge."};
  const auto scenes = get(connection, *base + "/scenes");
  auto sceneList = scenes ? readHueScenes(*scenes) : std::nullopt;
  if (!sceneList) return {"Failed to load scenes from bridge."};
  return {"", std::move(*groupList), std::move(*sceneList)};
}

}  // namespace tavek
