#include "lights/hue_lights.h"

#include <cstdlib>

#include <gtest/gtest.h>

#include "base/background_job.h"
#include "lights/hue_bridge.h"
#include "lights/hue_url.h"
#include "rig/process.h"
#include "rig/web_server.h"
#include "state/state_store.h"

namespace tavek {
namespace {

using rig::now;
using rig::WebReply;

/// A bridge, the settings that lead to it, and a proxy that must not be asked.
class Lights : public testing::Test {
 protected:
  Lights() {
    setenv("http_proxy", proxy_.base().c_str(), 1);
    bridge_.otherwise([](const rig::WebRequest&) { return WebReply{.body = "[]"}; });
    set({.bridge = host(), .user = "SECRET"});
  }
  ~Lights() override {
    EXPECT_TRUE(proxy_.requests().empty());
    unsetenv("http_proxy");
    stopSignalled = debugEnabled = false;
  }

  std::string host() const { return bridge_.base().substr(std::string("http://").size()); }
  void set(const HueSettings& settings) { store_.parts().devices.setHueSettings(settings); }
  bool arrive(std::size_t count) const {
    return rig::waitUntil(3, [&] { return bridge_.requests().size() >= count; });
  }
  /// What it was told, in its order.
  std::string bodies() const {
    std::string all;
    for (const auto& request : bridge_.requests()) all += request.body;
    return all;
  }

  rig::TempFolder temp_;
  StateStore store_{temp_.path() / "persist.json", temp_.path()};
  rig::WebServer bridge_, proxy_;
  HueLights lights_{store_.parts().devices};
};

TEST(HueTexts, FollowTheSettings) {
  const std::string select = R"("alert":"select")";
  const struct {
    HueSettings settings;
    std::string group, play, pause;
  } cases[] = {
      {{.group = "", .playScene = "", .pauseAlert = ""}, "1", select, select},
      {{.group = "7", .playScene = "a", .pauseScene = "b"}, "7", R"("scene":"a")", R"("scene":"b")"},
      {{.playScene = "a", .playAlert = "x", .pauseAlert = "y"}, "1", R"("scene":"a")", R"("alert":"y")"},
      {{.playAlert = "x"}, "1", R"("alert":"x")", R"("alert":"x")"},
      {{.pauseAlert = "x"}, "1", select, R"("alert":"x")"},
      {{.group = "/?", .playScene = R"(",\)"}, "%2F%3F", R"("scene":"\",\\")", select}};
  for (const auto& row : cases) {
    HueSettings settings = row.settings;
    settings.bridge = "hue:80";
    EXPECT_EQ(buildHueUrl(settings), std::nullopt) << "no user";
    settings.user = "u/1";
    EXPECT_EQ(buildHueUrl(settings), "http://hue:80/api/u%2F1/groups/" + row.group + "/action");
    EXPECT_EQ(huePlayBody(settings), '{' + row.play + '}');
    EXPECT_EQ(huePauseBody(settings), '{' + row.pause + '}');
  }
  for (const char* good : {"hue", "192.168.0.2", "my-hue.local:8080", "[fe80::1]", "[::1]:80"})
    EXPECT_TRUE(hueBase(good, "u")) << good;
  for (const char* bad : {"",      "http://hue", "hue/x", "me@hue", "hue?x",  "hue#x",     "a b",
                          "hue\n", "h\x7fue",    "hue:",  ":80",    "hue:0",  "hue:65536", "hue:80:80",
                          "::1",   "[::1",       "[]",    "[::1]x", "hue%2f", "hue\\x"})
    EXPECT_FALSE(hueBase(bad, "u")) << bad;
}

TEST_F(Lights, OnlyAChangeIsSent) {
  debugEnabled = true;
  testing::internal::CaptureStdout();
  lights_.hueTriggerPause();
  lights_.hueTriggerPlay();
  lights_.hueTriggerPlay();
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "[Hue] play trigger\n[Hue] url=http://" + host() +
                "/api/***/groups/1/action\n[Hue] payload={\"alert\":\"select\"}\n");
  debugEnabled = false;
  ASSERT_TRUE(arrive(1));
  EXPECT_EQ(bridge_.requests()[0].method, "PUT");
  EXPECT_EQ(bridge_.requests()[0].target, "/api/SECRET/groups/1/action");
  EXPECT_EQ(bridge_.requests()[0].header("content-type"), "application/json");

  set({.bridge = host(), .user = "SECRET", .playScene = "P", .pauseScene = "S"});
  lights_.hueTriggerPause();
  lights_.hueTriggerPause();
  lights_.hueTriggerPlay();
  // Off, a play must not count as told.
  lights_.hueTriggerPause();
  set({.bridge = host(), .user = "SECRET", .enabled = false});
  lights_.hueTriggerPlay();
  set({.bridge = host(), .user = "SECRET", .playScene = "again"});
  lights_.hueTriggerPlay();
  lights_.stopHueWorker();
  EXPECT_EQ(bodies(), R"({"alert":"select"}{"scene":"S"}{"scene":"P"}{"scene":"S"}{"scene":"again"})");
}

TEST_F(Lights, ABridgeThatHangsIsToldTheLastFew) {
  bridge_.replies("/api/SECRET/groups/1/action", {{.body = "[]", .delay = 0.4}, {.body = "[]"}});
  lights_.hueTriggerPlay();
  ASSERT_TRUE(arrive(1));
  const double start = now();
  for (const char* scene : {"1", "2", "3", "4", "5", "6"}) {
    set({.bridge = host(), .user = "SECRET", .playScene = scene, .pauseScene = scene});
    *scene % 2 ? lights_.hueTriggerPause() : lights_.hueTriggerPlay();
  }
  EXPECT_LT(now() - start, 0.3) << "it has not answered yet";
  lights_.stopHueWorker();
  EXPECT_EQ(bodies(), R"({"alert":"select"}{"scene":"3"}{"scene":"4"}{"scene":"5"}{"scene":"6"})");
}

TEST_F(Lights, TheEndDoesNotWaitForADeadBridge) {
  for (const bool signalled : {false, true}) {
    bridge_.clear();
    bridge_.reply("/api/SECRET/groups/1/action", {.body = "[]", .delay = 30});
    HueLights lights(store_.parts().devices);
    lights.hueTriggerPlay();
    ASSERT_TRUE(arrive(1));
    lights.hueTriggerPause();
    stopSignalled = signalled;
    const double start = now();
    lights.stopHueWorker();
    EXPECT_LT(now() - start, signalled ? 0.2 : 1.2);
    EXPECT_GT(now() - start, signalled ? 0 : 0.9) << "what waits has a second";
    EXPECT_TRUE(joinLeftThreads(std::chrono::milliseconds(500))) << "the request was broken off";
    EXPECT_EQ(bridge_.requests().size(), 1U);
  }
}

TEST_F(Lights, AScanTakesOnlyWholeReplies) {
  const std::string groups =
      R"({"2":{"lights":["9"],"name":"K\u00fcche","action":{"name":"x"}},"1":{},"3":7})";
  const std::string scenes = R"({"a":{"name":"Dim","group":"2"},"b":{"type":"LightScene","name":"All"}})";
  const WebReply good{.body = groups}, goodToo{.body = scenes}, error{.body = R"([{"error":{"type":1}}])"};
  const WebReply moved{.status = 302, .headers = {{"Location", "/there"}}};
  const WebReply huge{.body = groups + std::string(5U << 20, ' ')}, refused{.status = 403, .body = groups};
  const struct {
    WebReply groups, scenes;
    std::string fails;
  } cases[] = {{good, goodToo, ""},
               {error, error, "groups"},
               {good, error, "scenes"},
               {{.body = "{<html>}"}, goodToo, "groups"},
               {good, {.body = scenes.substr(0, 40)}, "scenes"},
               {good, {.body = scenes, .cutAfter = 40}, "scenes"},
               {refused, goodToo, "groups"},
               {moved, goodToo, "groups"},
               {huge, goodToo, "groups"},
               {good, {.body = scenes, .delay = 30}, "scenes"}};
  const Flag go;
  for (const auto& row : cases) {
    bridge_.clear();
    bridge_.reply("/there", good);
    bridge_.reply("/api/SECRET/groups", row.groups);
    bridge_.reply("/api/SECRET/scenes", row.scenes);
    const double start = now();
    const HueScan scan = scanHueBridge(host(), "SECRET", go);
    EXPECT_LT(now() - start, 4) << row.groups.body;
    EXPECT_EQ(scan.failure, row.fails.empty() ? "" : "Failed to load " + row.fails + " from bridge.");
    if (!row.fails.empty()) continue;
    EXPECT_EQ(scan.groups, (std::vector<HueGroup>{{"2", "K\u00fcche"}, {"1", ""}}));
    EXPECT_EQ(scan.scenes, (std::vector<HueScene>{{"a", "Dim", "2"}, {"b", "All", ""}}));
  }
  EXPECT_EQ(scanHueBridge("http://x", "u", go).failure, "Failed to load groups from bridge.");

  std::string much = R"({")" + std::string(97, 'i') + R"(":{})", name(500, 'n');
  for (int i = 0; i < 3000; ++i) much += ",\"" + std::to_string(i) + R"(":{"name":")" + name + R"("})";
  const auto kept = readHueGroups(much + "}");
  ASSERT_TRUE(kept);
  EXPECT_EQ(kept->size(), 2000U);
  EXPECT_EQ(kept->front(), (HueGroup{"0", std::string(96, 'n')}));
}

}  // namespace
}  // namespace tavek
