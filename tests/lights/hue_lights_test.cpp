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

/// Nothing listens there.
const std::string deadBridge = "127.0.0.1:1";

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
  const std::string select = R"({"alert":"select"})";
  const struct {
    HueSettings settings;
    std::string action, play, pause;
  } cases[] = {
      {{}, "1", select, select},
      {{.group = "", .playScene = "", .pauseAlert = ""}, "1", select, select},
      {{.group = "7", .playScene = "a", .pauseScene = "b"}, "7", R"({"scene":"a"})", R"({"scene":"b"})"},
      {{.playScene = "a", .playAlert = "x", .pauseAlert = "y"}, "1", R"({"scene":"a"})", R"({"alert":"y"})"},
      {{.playAlert = "lselect"}, "1", R"({"alert":"lselect"})", R"({"alert":"lselect"})"},
      {{.pauseAlert = "lselect"}, "1", select, R"({"alert":"lselect"})"},
      {{.group = "1/../x?", .playScene = R"(","on":"\)"},
       "1%2F..%2Fx%3F",
       R"({"scene":"\",\"on\":\"\\"})",
       select}};
  for (const auto& row : cases) {
    HueSettings settings = row.settings;
    EXPECT_EQ(buildHueUrl(settings), std::nullopt) << "no bridge";
    settings.bridge = "hue:80";
    EXPECT_EQ(buildHueUrl(settings), std::nullopt) << "no user";
    settings.user = "u/1";
    EXPECT_EQ(buildHueUrl(settings), "http://hue:80/api/u%2F1/groups/" + row.action + "/action");
    EXPECT_EQ(huePlayBody(settings), row.play);
    EXPECT_EQ(huePauseBody(settings), row.pause);
    settings.enabled = false;
    EXPECT_EQ(buildHueUrl(settings), std::nullopt) << "off";
  }
}

TEST(HueTexts, ABridgeIsAHostAndNothingElse) {
  for (const char* good : {"hue", "192.168.0.2", "my-hue.local:8080", "[fe80::1]", "[::1]:80"})
    EXPECT_TRUE(hueBase(good, "u")) << good;
  for (const char* bad : {"",           " ",      "http://hue", "hue/",  "hue/x",     "me@hue",
                          "me:you@hue", "hue?x",  "hue#x",      "a b",   "hue\n",     "hue\r\nX: y",
                          "h\x7fue",    "hue:",   ":80",        "hue:0", "hue:65536", "hue:80:80",
                          "hue:8o",     "::1",    "[::1",       "[]",    "[::1]x",    "[::1%25eth0]",
                          "hue%2f",     "hue\\x", "h\u00fce"})
    EXPECT_FALSE(hueBase(bad, "u")) << bad;
}

TEST_F(Lights, OnlyAChangeIsSent) {
  lights_.hueTriggerPause();
  lights_.hueTriggerPlay();
  lights_.hueTriggerPlay();
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

TEST_F(Lights, TheLogKeepsTheUserBack) {
  debugEnabled = true;
  testing::internal::CaptureStdout();
  lights_.hueTriggerPlay();
  lights_.hueTriggerPause();
  const std::string url = "[Hue] url=http://" + host() + "/api/***/groups/1/action\n";
  const std::string payload = "[Hue] payload={\"alert\":\"select\"}\n";
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "[Hue] play trigger\n" + url + payload + "[Hue] pause trigger\n" + url + payload);
}

TEST_F(Lights, AScanTakesOnlyWholeReplies) {
  const std::string groups =
      R"({"2":{"lights":["9"],"name":"K\u00fcche \"1\"","action":{"name":"x"}},"1":{},"3":7})";
  const std::string scenes = R"({"a":{"name":"Dim","group":"2"},"b":{"type":"LightScene","name":"All"}})";
  const std::string error = R"([{"error":{"type":1,"description":"unauthorized user"}}])";
  const std::string filler(5U << 20, ' ');
  const WebReply good{.body = groups}, moved{.status = 302, .headers = {{"Location", "/there"}}};
  const struct {
    const char* name;
    WebReply groups, scenes;
    std::string fails;
  } cases[] = {{"well", good, {.body = scenes}, ""},
               {"unknown user", {.body = error}, {.body = error}, "groups"},
               {"unknown user for scenes", good, {.body = error}, "scenes"},
               {"no JSON", {.body = "{<html>}"}, {.body = scenes}, "groups"},
               {"half an object", good, {.body = scenes.substr(0, 40)}, "scenes"},
               {"cut", good, {.body = scenes, .cutAfter = 40}, "scenes"},
               {"refused", {.status = 403, .body = groups}, {.body = scenes}, "groups"},
               {"moved", moved, {.body = scenes}, "groups"},
               {"huge", {.body = groups + filler}, {.body = scenes}, "groups"},
               {"silent", good, {.body = scenes, .delay = 30}, "scenes"}};
  const Flag go;
  for (const auto& row : cases) {
    bridge_.clear();
    bridge_.reply("/there", good);
    bridge_.reply("/api/SECRET/groups", row.groups);
    bridge_.reply("/api/SECRET/scenes", row.scenes);
    const double start = now();
    const HueScan scan = scanHueBridge(host(), "SECRET", go);
    EXPECT_LT(now() - start, 4) << row.name;
    EXPECT_EQ(scan.failure, row.fails.empty() ? "" : "Failed to load " + row.fails + " from bridge.")
        << row.name;
    if (!row.fails.empty()) continue;
    EXPECT_EQ(scan.groups, (std::vector<HueGroup>{{"2", "K\u00fcche \"1\""}, {"1", ""}}));
    EXPECT_EQ(scan.scenes, (std::vector<HueScene>{{"a", "Dim", "2"}, {"b", "All", ""}}));
  }
  EXPECT_EQ(scanHueBridge(deadBridge, "u", go).failure, "Failed to load groups from bridge.");
  EXPECT_EQ(scanHueBridge("http://x", "u", go).failure, "Failed to load groups from bridge.");
  EXPECT_EQ(scanHueBridge(host(), "", go).failure, "Bridge and User are required.");
}

TEST(HueReplies, NothingIsTooMuchForThePage) {
  std::string reply = R"({")" + std::string(97, 'i') + R"(":{})";
  for (int i = 0; i < 3000; ++i)
    reply += ",\"" + std::to_string(i) + R"(":{"name":")" + std::string(500, 'n') + R"("})";
  const auto groups = readHueGroups(reply + "}");
  ASSERT_TRUE(groups);
  EXPECT_EQ(groups->size(), 2000U);
  EXPECT_EQ(groups->front(), (HueGroup{"0", std::string(96, 'n')}));
}

}  // namespace
}  // namespace tavek
