#include "lights/hue_lights.h"

#include <chrono>

#include <gtest/gtest.h>

#include "base/background_job.h"
#include "lights/hue_bridge.h"
#include "lights/hue_url.h"
#include "rig/process.h"
#include "rig/web_server.h"
#include "state/state_store.h"
#include "support/temp_folder.h"

namespace tavek {
namespace {

using Steady = std::chrono::steady_clock;

TEST(HueUrl, AsksABridgeAndNothingElse) {
  const struct {
    HueSettings settings;
    const char* url;
    const char *play, *pause;
  } rows[] = {
      {{.bridge = "10.0.0.2", .user = "me", .group = "7", .playScene = "a\"b"},
       "http://10.0.0.2/api/me/groups/7/action",
       R"({"scene":"a\"b"})",
       R"({"alert":"select"})"},
      {{.bridge = "hue.local:8080", .user = "me/../x?", .playAlert = "lselect"},
       "http://hue.local:8080/api/me%2F..%2Fx%3F/groups/1/action",
       R"({"alert":"lselect"})",
       R"({"alert":"lselect"})"},
      {{.bridge = "[fe80::1]:80", .user = "me", .pauseScene = "p", .pauseAlert = "select"},
       "http://[fe80::1]:80/api/me/groups/1/action",
       R"({"alert":"select"})",
       R"({"scene":"p"})"},
      {{.bridge = "10.0.0.2", .user = "me", .enabled = false}, "", nullptr, nullptr},
      {{.bridge = "10.0.0.2", .user = ""}, "", nullptr, nullptr},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(buildHueUrl(row.settings).value_or(""), row.url);
    if (row.play == nullptr) continue;
    EXPECT_EQ(huePlayBody(row.settings), row.play);
    EXPECT_EQ(huePauseBody(row.settings), row.pause);
    EXPECT_EQ(maskedHueUrl(row.settings).find("/me"), std::string::npos);
  }
  for (const char* bad :
       {"", "http://a", "a/b", "me@a", "a:0", "a:99999", "a:", ":80", "a b", "a\r\nb", "[x]", "a?b"})
    EXPECT_EQ(hueBase(bad, "me"), std::nullopt) << bad;
}

class HueTest : public testing::Test {
 protected:
  void pair(const std::string& bridge) {
    store.parts().devices.setHueSettings({.bridge = bridge, .user = "me", .playScene = "dim"});
  }
  std::string address() const { return server.base().substr(7); }

  const test::TempFolder home;
  StateStore store{"", home.path()};
  rig::WebServer server;
};

TEST_F(HueTest, FollowsThePictureAndAsksOnceForEachChange) {
  pair(address());
  server.otherwise([](const rig::WebRequest&) { return rig::WebReply{.status = 500, .body = "no"}; });
  {
    HueLights lights(store.parts().devices);
    lights.hueTriggerPause();
    for (int i = 0; i < 2; ++i) lights.hueTriggerPlay();
    for (int i = 0; i < 2; ++i) lights.hueTriggerPause();
    lights.hueTriggerPlay();
  }
  std::string asked;
  for (const rig::WebRequest& request : server.requests()) {
    EXPECT_EQ(request.method + request.target, "PUT/api/me/groups/1/action");
    asked += request.body;
  }
  EXPECT_EQ(asked, R"({"scene":"dim"}{"alert":"select"}{"scene":"dim"})") << "what waits at the end is sent";
}

TEST_F(HueTest, ADeadBridgeHoldsNobodyUpAndIsToldOnlyTheLatest) {
  pair(address());
  server.otherwise([](const rig::WebRequest&) { return rig::WebReply{.body = "[]", .stallAfter = 0}; });
  const auto start = Steady::now();
  {
    HueLights lights(store.parts().devices);
    lights.hueTriggerPlay();
    ASSERT_TRUE(rig::waitUntil(5, [&] { return !server.requests().empty(); }));
    const auto triggered = Steady::now();
    for (int i = 0; i < 10; ++i) i % 2 == 0 ? lights.hueTriggerPause() : lights.hueTriggerPlay();
    EXPECT_LT(Steady::now() - triggered, std::chrono::milliseconds(50));
  }
  EXPECT_LT(Steady::now() - start, std::chrono::milliseconds(1400));
  EXPECT_TRUE(joinLeftThreads(std::chrono::seconds(2))) << "the request was given up";
  EXPECT_LE(server.requests().size(), 2U);
}

TEST_F(HueTest, TellsItsGroupsAndScenes) {
  const char* groups = R"({"1":{"name":"Sofa \u00e9","lights":["{"]},"x":3,"2":{"state":{"name":"no"}}})";
  const char* scenes = R"({"s1":{"name":"Dim","group":"1"},"s2":{"name":"Old"}})";
  EXPECT_EQ(readHueGroups(groups), (std::vector<HueGroup>{{"1", "Sofa é"}, {"2", ""}}));
  EXPECT_EQ(readHueScenes(scenes), (std::vector<HueScene>{{"s1", "Dim", "1"}, {"s2", "Old", ""}}));
  EXPECT_EQ(readHueScenes("{}"), std::vector<HueScene>());
  const struct {
    rig::WebReply groups, scenes;
    const char* failure;
  } rows[] = {
      {{.body = groups}, {.body = scenes}, ""},
      {{.body = R"([{"error":{"type":1}}])"}, {}, "Failed to load groups from bridge."},
      {{.status = 302, .headers = {{"Location", "/elsewhere"}}}, {}, "Failed to load groups from bridge."},
      {{.body = groups, .cutAfter = 20}, {}, "Failed to load groups from bridge."},
      {{.body = groups}, {.body = "{\"s\":{}", .endless = true}, "Failed to load scenes from bridge."},
      {{.body = groups}, {.body = "<html>"}, "Failed to load scenes from bridge."},
  };
  const Flag never;
  for (const auto& row : rows) {
    server.reply("/api/me/groups", row.groups);
    server.reply("/api/me/scenes", row.scenes);
    const HueScan scan = scanHueBridge(address(), "me", never);
    EXPECT_EQ(scan.failure, row.failure);
    EXPECT_EQ(scan.scenes.size(), *row.failure == '\0' ? 2U : 0U);
  }
  EXPECT_EQ(scanHueBridge("a/b", "me", never).failure, "Failed to load groups from bridge.");
  EXPECT_EQ(scanHueBridge("", "me", never).failure, "Bridge and User are required.");
}

}  // namespace
}  // namespace tavek
