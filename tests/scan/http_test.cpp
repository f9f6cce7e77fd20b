#include "scan/http.h"

#include <iostream>
#include <netdb.h>

#include <gtest/gtest.h>

#include "rig/process.h"
#include "rig/web_server.h"
#include "scan/part_file.h"
#include "scan/web_address.h"
#include "support/table.h"

namespace tavek {
namespace {

using namespace std::chrono_literals;
using rig::WebReply;
using rig::WebRequest;

const bool told = true;
const std::string jpeg = "\xff\xd8\xff\xe0 a picture";

/// A service on one server, its files on another, a third beside them, and a folder for what comes.
struct Http : testing::Test {
  Http() : outer_(std::cerr.rdbuf(log_.rdbuf())) {}
  ~Http() override {
    std::cerr.rdbuf(outer_);
    for (const char* secret : {"KEY", "TOKEN", "?"})
      EXPECT_EQ(log_.str().find(secret), std::string::npos) << log_.str();
  }

  WebService service(HttpLimits limits = calm) const {
    return {"[T] ", &told, limits, api_.base() + "/3", files_.base()};
  }
  /// The names in the folder.
  std::string standing() const {
    std::string all;
    for (const auto& entry : fs::directory_iterator(temp_.path()))
      all += entry.path().filename().string() + " ";
    return all;
  }
  fs::path goal() const { return temp_.path() / "poster.jpg"; }

  static constexpr HttpLimits quick{200ms, 200ms, 2, 0ms, 10ms, 20ms}, calm{5s, 5s, 2, 0ms, 10ms, 20ms};
  const ScanClient client_{"KEY", "TOKEN"};
  rig::WebServer api_, files_, stranger_;
  rig::TempFolder temp_;
  Flag stop_;
  std::ostringstream log_;
  std::streambuf* const outer_;
};

const auto leadsTo = [](const std::string& where, int status = 302) {
  return WebReply{.status = status, .headers = {{"Location", where}}};
};
const auto withStatus = [](int status) { return WebReply{.status = status, .body = jpeg}; };

TEST_F(Http, EveryFailureLeavesNothing) {
  const WebReply whole{.body = jpeg}, moved = leadsTo("/file");
  std::string longHead;
  while (longHead.size() < 270'000) longHead += "A: " + std::string(9'000, 'a') + "\r\n";
  const std::string json = R"({"id":1})", url = api_.base() + "/file?api_key=KEY";
  const WebReply text{.body = json};
  const std::tuple<const char*, bool, std::vector<WebReply>, bool, std::size_t> cases[] = {
      {"a picture", true, {whole}, true, 1},
      {"a text", false, {text}, true, 1},
      {"wrong key", false, {{.status = 401, .body = json}}, false, 1},
      {"closed account", true, {withStatus(403)}, false, 1},
      {"unknown picture", true, {withStatus(404)}, false, 1},
      {"unknown film", false, {{.status = 404, .body = json}}, false, 1},
      {"broken server", true, {withStatus(500)}, false, 1},
      {"busy once", true, {{.status = 429, .headers = {{"Retry-After", "1"}}}, whole}, true, 2},
      {"away once, without a time", false, {withStatus(503), text}, true, 2},
      {"busy for long", true, {{.status = 429, .headers = {{"Retry-After", "86400"}}}}, false, 2},
      {"busy, moved, busy again", true, {withStatus(503), moved, withStatus(429), whole}, false, 3},
      {"a page for a picture", true, {{.body = "<html>", .type = "image/jpeg"}}, false, 1},
      {"another kind of picture", true, {{.body = "\x89PNG\r\n\x1a\n"}}, false, 1},
      {"no bytes", true, {{.body = ""}}, false, 1},
      {"a page for a text", false, {{.body = "\n<html>"}}, false, 1},
      {"a cut picture", true, {{.body = jpeg, .cutAfter = 5}}, false, 2},
      {"a cut text", false, {{.body = json, .cutAfter = 7}}, false, 2},
      {"cut once", true, {{.body = jpeg, .cutAfter = 5}, whole}, true, 2},
      {"an endless picture", true, {{.body = std::string(1 << 20, '\xff'), .endless = true}}, false, 1},
      {"an endless text", false, {{.body = std::string(1 << 20, '{'), .endless = true}}, false, 1},
      {"too long by its head", false, {{.body = "{}", .headers = {{"Content-Length", "8388609"}}}}, false, 1},
      {"too long a head", false, {{.raw = "HTTP/1.1 200 -\r\n" + longHead + "\r\n" + json}}, false, 1},
      {"a slow picture", true, {{.body = jpeg, .stallAfter = 5}}, false, 2},
      {"a slow server", false, {{.body = json, .delay = 5}}, false, 2},
      {"no HTTP at all", false, {{.raw = "hello"}}, false, 2},
      {"moved", true, {moved, leadsTo("?again", 307), whole}, true, 3},
      {"moved in a circle", true, {moved}, false, 6},
      {"moved to the disk", true, {leadsTo("file:///etc/hostname")}, false, 1},
      {"moved to another scheme", true, {leadsTo("https" + files_.base().substr(4) + "/file")}, false, 1},
      {"moved to another port", true, {leadsTo(stranger_.base() + "/file")}, false, 1},
      {"moved with a name", true, {leadsTo("http://me@" + files_.base().substr(7) + "/file")}, false, 1},
      {"moved nowhere", true, {{.status = 302, .body = jpeg}}, false, 1}};
  stranger_.reply("/file", whole);
  for (const auto& [name, file, replies, comes, requests] : cases) {
    SCOPED_TRACE(name);
    const bool ends = replies[0].status == 401 || replies[0].status == 403;
    api_.clear();
    api_.replies("/file", replies);
    const bool waits = replies[0].stallAfter || replies[0].delay > 0;
    HttpSession session(service(waits ? quick : calm), stop_);
    const bool came = file ? session.httpDownload(client_, url, goal(), FileKind::Jpeg)
                           : session.httpGet(client_, url) == json;
    EXPECT_EQ(came, comes);
    EXPECT_EQ(api_.requests().size(), requests);
    EXPECT_EQ(session.ended(), ends);
    EXPECT_EQ(standing(), comes && file ? "poster.jpg " : "");
    EXPECT_EQ(test::readText(goal()), comes && file ? jpeg : "");
    EXPECT_TRUE(!ends || session.httpGet(client_, url).empty());
    EXPECT_EQ(session.requests(), requests) << "nothing more";
    fs::remove(goal());
  }
  EXPECT_TRUE(stranger_.requests().empty());
}

TEST_F(Http, CredentialsStayWithTheirService) {
  const WebReply there{.body = "{}"};
  const std::string asked = "/3/there?q=a+b&api_key=KEY&client_key=KEY";
  api_.reply(asked, leadsTo(files_.base() + asked));
  files_.reply("/3/there", there);
  HttpSession session(service(), stop_);
  EXPECT_EQ(session.httpGet(client_, api_.base() + asked), "{}");
  EXPECT_EQ(session.httpGet(client_, files_.base() + asked), "{}");
  ASSERT_EQ(api_.requests().size(), 1U);
  EXPECT_EQ(api_.requests()[0].header("authorization"), "Bearer TOKEN");
  ASSERT_EQ(files_.requests().size(), 2U);
  for (const WebRequest& request : files_.requests()) {
    EXPECT_EQ(request.target, "/3/there?q=a+b");
    EXPECT_EQ(request.header("authorization"), "");
  }
  // What is posted holds the key too.
  api_.reply("/same", leadsTo("/3/there", 307));
  api_.reply("/3/there", there);
  api_.reply("/away", leadsTo(files_.base() + "/3/there", 307));
  EXPECT_EQ(session.httpPost(api_.base() + "/same", R"({"key":"KEY"})"), "{}");
  EXPECT_EQ(api_.requests().back().body, R"({"key":"KEY"})");
  EXPECT_EQ(session.httpPost(api_.base() + "/away", R"({"key":"KEY"})"), "");
  EXPECT_EQ(session.httpPost(files_.base() + "/3/there", R"({"key":"KEY"})"), "");
  EXPECT_EQ(files_.requests().size(), 2U);

  api_.clear();
  api_.reply("/cut", {.body = "{}", .cutAfter = 1});
  EXPECT_EQ(session.httpPost(api_.base() + "/cut", "{}"), "");
  EXPECT_EQ(api_.requests().size(), 1U) << "a log-in is not tried twice";
}

TEST_F(Http, OnlyPublicPlacesAreAsked) {
  HttpSession session(service(), stop_);
  const std::string port = stranger_.base().substr(stranger_.base().rfind(':'));
  for (const std::string& url :
       {"https://127.0.0.1" + port, "https://localhost" + port, "https://2130706433" + port,
        "https://[::1]" + port, stranger_.base(), std::string("file:///etc/hostname"),
        "ftp://127.0.0.1" + port, "//127.0.0.1" + port, std::string()})
    EXPECT_FALSE(session.httpDownload(client_, url, goal(), FileKind::Jpeg)) << url;
  EXPECT_FALSE(session.ended()) << "a refused place is no lost connection";
  EXPECT_EQ(standing(), "");
  // A plus stands before those that may be asked.
  for (const std::string& word :
       test::split("+1.1.1.1 +172.32.0.1 +100.128.0.1 +2606:4700::1111 +::ffff:8.8.8.8 +64:ff9b::808:808 "
                   "0.0.0.0 10.1.2.3 "
                   "100.64.0.1 127.9.9.9 169.254.169.254 172.16.0.1 172.31.255.255 192.168.1.1 198.19.0.1 "
                   "224.0.0.251 "
                   "255.255.255.255 :: ::1 fd00::1 fe80::1 febf::1 ff02::1 ::ffff:192.168.1.1 ::10.0.0.1 "
                   "64:ff9b::7f00:1 2002:a00:1::1",
                   ' ')) {
    const bool open = word[0] == '+';
    addrinfo hints{}, *found = nullptr;
    hints.ai_flags = AI_NUMERICHOST;
    ASSERT_EQ(getaddrinfo(word.c_str() + open, nullptr, &hints, &found), 0) << word;
    EXPECT_EQ(isPublicAddress(*found->ai_addr), open) << word;
    freeaddrinfo(found);
  }
}

TEST_F(Http, NeverTakesANameOrFollowsALink) {
  const fs::path outside = temp_.path() / "outside", hidden = temp_.path() / ".poster.jpg.part";
  const auto download = [&] {
    HttpSession session(service(), stop_);
    return session.httpDownload(client_, api_.base() + "/file", goal(), FileKind::Jpeg);
  };
  api_.reply("/file", {.body = jpeg});
  test::writeText(outside, "mine");
  fs::create_symlink("outside", goal());
  EXPECT_FALSE(download());
  EXPECT_TRUE(api_.requests().empty());
  fs::remove(goal());

  api_.clear();
  api_.otherwise([&](const WebRequest&) {
    test::writeText(goal(), "came in between");
    return WebReply{.body = jpeg};
  });
  EXPECT_FALSE(download());
  EXPECT_EQ(test::readText(goal()), "came in between");
  fs::remove(goal());

  api_.reply("/file", {.body = jpeg + std::string(100'000, 'x')});
  test::onFullDisk(50'000, [&] { EXPECT_FALSE(download()) << "no room on the disk"; });
  EXPECT_EQ(standing(), "outside ");

  fs::create_symlink("outside", hidden);
  EXPECT_TRUE(download());
  EXPECT_EQ(test::readText(outside), "mine");
  EXPECT_FALSE(fs::is_symlink(fs::symlink_status(goal())) || fs::exists(fs::symlink_status(hidden)));
}

TEST_F(Http, KeepsItsConnectionAndAPace) {
  setenv("http_proxy", "http://127.0.0.1:1", 1);
  const HttpLimits limits{900ms, 900ms, 2, 50ms, 10ms, 30s};
  api_.reply("/a", {.body = "{}"});
  api_.replies("/busy", {{.status = 429, .headers = {{"Retry-After", "1"}}}, {.body = "{}", .delay = 0.02}});
  HttpSession session(service(limits), stop_);
  const double start = rig::now();
  for (const char* path : {"/a", "/none", "/a"}) session.httpGet(client_, api_.base() + path);
  EXPECT_GE(rig::now() - start, 0.1);
  EXPECT_EQ(session.httpGet(client_, api_.base() + "/busy"), "{}");
  EXPECT_GE(rig::now() - start, 1.15);
  unsetenv("http_proxy");
  const std::vector<WebRequest> asked = api_.requests();
  ASSERT_EQ(asked.size(), 5U);
  for (const WebRequest& request : asked) EXPECT_EQ(request.connection, 0U);
}

TEST_F(Http, ThreeRequestsThatDoNotGetThroughEndIt) {
  const std::string cut = api_.base() + "/cut", whole = api_.base() + "/whole", slow = api_.base() + "/slow";
  api_.reply("/cut", {.body = "{}", .cutAfter = 1});
  api_.reply("/whole", {.body = "{}"});
  api_.reply("/slow", {.body = "{}", .stallAfter = 1});
  HttpSession session(service({100ms, 100ms, 1, 0ms, 10ms, 20ms}), stop_);
  for (const std::string& url : {cut, cut, whole, cut, slow, slow, slow, cut}) session.httpGet(client_, url);
  EXPECT_FALSE(session.ended() || session.netGone());
  session.httpGet(client_, cut);
  EXPECT_TRUE(session.ended() && session.netGone());
  EXPECT_EQ(session.httpGet(client_, whole), "");
  EXPECT_EQ(session.requests(), 9U);
}

TEST_F(Http, AStopEndsWhateverWaits) {
  const HttpLimits patient{10s, 10s, 2, 50ms, 10s, 20s};
  api_.reply("/stalls", {.body = jpeg, .stallAfter = 5});
  api_.reply("/late", {.body = jpeg, .delay = 10});
  api_.reply("/busy", {.status = 503});
  for (const char* path : {"/stalls", "/late", "/busy"}) {
    stop_ = false;
    HttpSession session(service(patient), stop_);
    const double start = rig::now();
    const std::jthread stopper([&] { rig::let(0.1), stop_ = true; });
    EXPECT_FALSE(session.httpDownload(client_, api_.base() + path, goal(), FileKind::Jpeg));
    EXPECT_LT(rig::now() - start, 0.3) << path;
    EXPECT_EQ(session.requests(), 1U) << path;
    EXPECT_FALSE(session.ended()) << path;
    EXPECT_EQ(standing(), "") << path;
  }
}

TEST(UrlEncode, KeepsWhatIsPlain) {
  EXPECT_EQ(urlEncode("Se7en & Co"), "Se7en+%26+Co");
  EXPECT_EQ(urlEncode("aZ_-.~/\xc3\xa9"), "aZ_-.~%2F%C3%A9");
}

TEST(RemoveIfPresent, ClearsOnlyWhatIsEmpty) {
  const rig::TempFolder temp;
  const fs::path file = temp.path() / "a/poster.jpg", link = temp.path() / "link";
  EXPECT_TRUE(removeIfPresent(file));
  EXPECT_TRUE(writeTextFile(file, ""));
  EXPECT_TRUE(removeIfPresent(file));
  EXPECT_TRUE(writeTextFile(file, "x"));
  fs::create_symlink("away", link);
  for (const fs::path& kept : {file, file.parent_path(), link}) {
    EXPECT_FALSE(removeIfPresent(kept)) << kept;
    EXPECT_TRUE(fs::exists(fs::symlink_status(kept))) << kept;
  }
  EXPECT_FALSE(writeTextFile(file / "below", "x"));
}

}  // namespace
}  // namespace tavek
