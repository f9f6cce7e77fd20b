#include "scan/http.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <functional>
#include <iostream>
#include <optional>
#include <thread>
#include <utility>

#include "base/file_write.h"
#include "base/paths.h"
#include "base/text.h"
#include "library/file_types.h"
#include "scan/part_file.h"
#include "scan/web_address.h"
#include "scan/web_connection.h"

namespace tavek {
namespace {

using namespace std::chrono_literals;
using Time = std::chrono::steady_clock::time_point;

constexpr std::size_t longestJson = 8U << 20;
constexpr std::size_t longestFile = 32U << 20;
constexpr int mostRedirects = 5;
constexpr int mostFailures = 3;

Time now() {
  return std::chrono::steady_clock::now();
}

/// A portal's page in a stranger's net is none, whatever its head says.
bool isJson(std::string_view text) {
  const auto first = std::ranges::find_if_not(text, isAsciiSpace);
  return first != text.end() && (*first == '{' || *first == '[');
}

/// One call of the session, however many requests it takes.
struct Request {
  const char* failure;  ///< how its log line begins
  std::string url;
  const ScanClient* client = nullptr;
  const std::string* posted = nullptr;
  std::size_t longestBody = 0;
  std::function<bool()> begin = {};  ///< before each attempt; false ends it
  std::function<bool(std::string_view)> take = {};
  std::function<bool()> finish = {};  ///< after a whole body; false is a failure
  bool tellsUrl = false;
};

/// How one attempt went; empty text for well.
struct Ending {
  WebFault fault = WebFault::None;
  std::string text;
  bool again = false;
};

}  // namespace

class HttpSession::Work {
 public:
  Work(WebService service, const Flag& stop) : service_(std::move(service)), stop_(stop), connection_(stop) {
    api_ = webAddressOf(service_.apiBase);
    files_ = webAddressOf(service_.fileBase);
  }

  bool carryOut(const Request& request);
  bool ended() const { return ended_; }
  bool answered() const { return answered_; }
  bool netGone() const { return netGone_; }
  std::size_t requests() const { return requests_; }
  void tell(const std::string& text) const;

 private:
  bool isApi(const WebAddress& address) const { return api_ && api_->origin == address.origin; }
  bool isFiles(const WebAddress& address) const { return files_ && files_->origin == address.origin; }
  bool isOwn(const WebAddress& address) const { return isApi(address) || isFiles(address); }

  Ending attempt(const Request& request);
  Ending verdict(const Request& request, const WebAddress& address, const WebAnswer& answer);
  /// Where the redirect leads, if one may go there.
  std::optional<WebAddress> next(const Request& request, const WebAddress& from,
                                 const WebAnswer& answer) const;
  std::optional<WebAddress> checked(const std::string& url) const;
  WebAnswer askPolitely(const Request& request, const WebAddress& address, Time& deadline);
  WebAnswer ask(const Request& request, const WebAddress& address, Time deadline);
  bool waitUntil(Time time) const;
  void count(WebFault fault);

  WebService service_;
  const Flag& stop_;
  WebConnection connection_;
  std::optional<WebAddress> api_, files_;
  Time nextStart_{};
  std::size_t requests_ = 0;
  int failures_ = 0;     // requests in a row that did not get through
  bool mayWait_ = true;  // once for each call
  bool ended_ = false;
  bool answered_ = false;
  bool netGone_ = false;
};

void HttpSession::Work::tell(const std::string& text) const {
  if (*service_.consoleEnabled) std::cerr << std::string(service_.tag) + text << std::endl;
}

bool HttpSession::Work::waitUntil(Time time) const {
  while (!stop_ && now() < time) std::this_thread::sleep_for(std::min<Time::duration>(10ms, time - now()));
  return !stop_;
}

bool HttpSession::Work::carryOut(const Request& request) {
  mayWait_ = true;
  for (int left = request.posted ? 1 : service_.limits.attempts; left > 0; --left) {
    if (ended_ || stop_ || !request.begin()) return false;
    const Ending ending = attempt(request);
    if (ending.fault == WebFault::None && ending.text.empty()) {
      count(WebFault::None);
      return true;
    }
    if (ending.fault == WebFault::Stopped) return false;
    tell(request.failure +
         (request.tellsUrl ? withoutQuery(request.url) + " (" + ending.text + ")" : ending.text));
    if (left == 1 || !ending.again) count(ending.fault);
    if (!ending.again) return false;
  }
  return false;
}

/// What came in between, a refused address or a slow body, says nothing of the connection.
void HttpSession::Work::count(WebFault fault) {
  if (fault == WebFault::Transport && ++failures_ == mostFailures) {
    ended_ = netGone_ = true;
    tell("no connection, nothing more is asked");
  }
  if (fault == WebFault::None) failures_ = 0;
}

Ending HttpSession::Work::attempt(const Request& request) {
  std::optional<WebAddress> address = checked(request.url);
  if (!address || (request.posted && !isApi(*address))) return {WebFault::NotAllowed, "not asked there"};
  Time deadline = now() + service_.limits.whole;
  WebAnswer answer = askPolitely(request, *address, deadline);
  for (int left = mostRedirects; !answer.redirect.empty() && answer.fault == WebFault::None; --left) {
    address = left > 0 ? next(request, *address, answer) : std::nullopt;
    if (!address) return {WebFault::None, left > 0 ? "redirect not allowed" : "too many redirects"};
    answer = askPolitely(request, *address, deadline);
  }
  return verdict(request, *address, answer);
}

Ending HttpSession::Work::verdict(const Request& request, const WebAddress& address,
                                  const WebAnswer& answer) {
  answered_ = answer.fault == WebFault::None;
  const bool again = answer.fault == WebFault::Transport || answer.fault == WebFault::Slow;
  if (answer.fault != WebFault::None) return {answer.fault, answer.error, again};
  if (answer.status / 100 != 2) {
    // The refusal of a stranger that keeps a picture is his affair.
    ended_ = isOwn(address) && (answer.status == 401 || answer.status == 403);
    const std::string text = "HTTP status " + std::to_string(answer.status);
    return {WebFault::None, ended_ ? text + ", nothing more is asked" : text};
  }
  if (!request.finish()) return {WebFault::None, "not what was asked for"};
  return {};
}

std::optional<WebAddress> HttpSession::Work::checked(const std::string& url) const {
  std::optional<WebAddress> address = webAddressOf(url);
  if (!address || (address->scheme != "https" && !isOwn(*address))) return {};
  if (!isApi(*address)) address = webAddressOf(withoutKeys(address->url));
  return address;
}

std::optional<WebAddress> HttpSession::Work::next(const Request& request, const WebAddress& from,
                                                  const WebAnswer& answer) const {
  // What was posted holds the key: only the same place may get it, and only where it is to be posted again.
  const std::optional<WebAddress> to = checked(answer.redirect);
  const bool same = to && to->scheme == from.scheme;
  const bool postable = !request.posted || (answer.status >= 307 && to && isApi(*to));
  return same && postable ? to : std::nullopt;
}

/// A busy service says when to come again; its wait does not count as time of the request.
WebAnswer HttpSession::Work::askPolitely(const Request& request, const WebAddress& address, Time& deadline) {
  WebAnswer answer = ask(request, address, deadline);
  const bool busy = answer.fault == WebFault::None && (answer.status == 429 || answer.status == 503);
  if (!busy || !std::exchange(mayWait_, false)) return answer;
  const HttpLimits& limits = service_.limits;
  const auto wanted = std::chrono::duration_cast<std::chrono::milliseconds>(
      std::min<std::chrono::seconds>(answer.retryAfter, 24h));
  const auto wait = std::clamp(wanted, limits.leastWait, limits.longestWait);
  if (!waitUntil(now() + wait)) return {.fault = WebFault::Stopped};
  deadline = now() + limits.whole;
  return ask(request, address, deadline);
}

WebAnswer HttpSession::Work::ask(const Request& request, const WebAddress& address, Time deadline) {
  if (!waitUntil(nextStart_)) return {.fault = WebFault::Stopped};
  const Time start = now();
  WebQuestion question{.url = address.url, .posted = request.posted, .longestBody = request.longestBody};
  question.whole = std::max(1ms, std::chrono::duration_cast<std::chrono::milliseconds>(deadline - start));
  question.connect = service_.limits.connect;
  question.publicOnly = !isOwn(address);
  question.take = request.take;
  if (request.posted) question.headers = {"Content-Type: application/json", "Accept: application/json"};
  if (request.client && !request.client->bearerToken.empty() && isApi(address))
    question.headers = {"Authorization: Bearer " + request.client->bearerToken, "Accept: application/json"};
  ++requests_;
  WebAnswer answer = connection_.ask(question);
  nextStart_ = start + answer.sentAfter + service_.limits.pace;
  return answer;
}

HttpSession::HttpSession(WebService service, const Flag& stop)
    : work_(std::make_unique<Work>(std::move(service), stop)) {}

HttpSession::~HttpSession() = default;

bool HttpSession::ended() const {
  return work_->ended();
}

bool HttpSession::answered() const {
  return work_->answered();
}

bool HttpSession::netGone() const {
  return work_->netGone();
}

std::size_t HttpSession::requests() const {
  return work_->requests();
}

namespace {

Request jsonRequest(const std::string& url, std::string& body) {
  Request request{.failure = "httpGet failed: ", .url = url, .longestBody = longestJson};
  request.begin = [&body] {
    body.clear();
    return true;
  };
  request.take = [&body](std::string_view bytes) {
    body += bytes;
    return true;
  };
  request.finish = [&body] { return isJson(body); };
  return request;
}

}  // namespace

std::string HttpSession::httpGet(const ScanClient& client, const std::string& url) {
  std::string body;
  Request request = jsonRequest(url, body);
  request.client = &client;
  return work_->carryOut(request) ? body : "";
}

std::string HttpSession::httpPost(const std::string& url, const std::string& json) {
  std::string body;
  Request request = jsonRequest(url, body);
  request.failure = "httpPost failed: ";
  request.posted = &json;
  return work_->carryOut(request) ? body : "";
}

bool HttpSession::httpDownload(const ScanClient& client, const std::string& url,
                               const std::filesystem::path& path, FileKind kind) {
  std::error_code error;
  if (ended() || std::filesystem::exists(std::filesystem::symlink_status(path, error))) return false;
  PartFile file(path);
  if (!file.isOpen()) return false;
  Request request{.failure = "download failed: ", .url = url, .client = &client, .longestBody = longestFile};
  request.begin = [&] { return file.restart(); };
  request.take = [&](std::string_view bytes) { return file.add(bytes); };
  request.finish = [&] { return file.is(kind) && file.finish(); };
  request.tellsUrl = true;
  return work_->carryOut(request);
}

WebService tmdbService() {
  return {"[TMDB] ", &tmdbConsoleEnabled, {.whole = 5s, .connect = 3s}, tmdbApiBase(), tmdbImageBase()};
}

WebService fanartService() {
  return {"[FANART] ", &fanartConsoleEnabled, {.whole = 6s, .connect = 3s}, fanartApiBase()};
}

WebService tvdbService() {
  return {"[FANART] ", &fanartConsoleEnabled, {.whole = 8s, .connect = 4s, .attempts = 1}, tvdbApiBase()};
}

std::string urlEncode(std::string_view text) {
  std::string encoded;
  encoded.reserve(text.size() * 3);
  for (const char c : text) {
    const bool plain = isAsciiDigit(c) || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
                       std::string_view("_-.~").find(c) != std::string_view::npos;
    std::array<char, 4> code{};
    if (!plain) std::snprintf(code.data(), code.size(), "%%%02X", unsigned{static_cast<unsigned char>(c)});
    if (plain || c == ' ')
      encoded += plain ? c : '+';
    else
      encoded += code.data();
  }
  return encoded;
}

bool writeTextFile(const std::filesystem::path& path, std::string_view text) {
  return replaceFile(path, text);
}

bool removeIfPresent(const std::filesystem::path& path) {
  std::error_code error;
  const auto status = std::filesystem::symlink_status(path, error);
  if (!std::filesystem::exists(status)) return true;
  if (!std::filesystem::is_regular_file(status) || isUsableFile(path)) return false;
  return std::filesystem::remove(path, error);
}

}  // namespace tavek
