// A web server of a test's own, which answers as it is told, badly too, and remembers what it was asked.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "base/descriptor.h"
#include "base/guarded.h"

namespace tavek::rig {

/// What one connection sends for one request. All in bytes and seconds.
struct WebReply {
  int status = 200;
  std::string body = {};
  std::string type = "application/json";
  /// Further lines of the head: {"Retry-After", "1"}, {"Location", "/there"}.
  std::map<std::string, std::string> headers = {};
  /// Before the first byte.
  double delay = 0;
  /// The head promises the whole body, and after so many bytes of it the connection is closed...
  std::optional<std::size_t> cutAfter = {};
  /// ...or so: nothing comes any more, and the connection stays.
  std::optional<std::size_t> stallAfter = {};
  /// The body again and again.
  bool endless = false;
  /// Sent as it is, instead of all the above but the delay; then the connection is closed.
  std::string raw = {};
};

struct WebRequest {
  std::string method, target;                  ///< "GET", "/3/search/movie?query=Heat"
  std::map<std::string, std::string> headers;  ///< names in lower case
  std::string body;
  double at = 0;               ///< seconds of `now()`
  std::size_t connection = 0;  ///< 0 for the first one that was made

  std::string path() const { return target.substr(0, target.find('?')); }
  /// Empty if there is none.
  std::string header(const std::string& name) const;
};

/// HTTP/1.1 on a free port of 127.0.0.1, kept alive, one thread for each connection. Any thread may call it.
class WebServer {
 public:
  using Answer = std::function<WebReply(const WebRequest&)>;

  WebServer();
  /// Ends at once, whatever is being sent.
  ~WebServer();
  WebServer(const WebServer&) = delete;
  WebServer& operator=(const WebServer&) = delete;

  /// "http://127.0.0.1:40123"
  const std::string& base() const { return base_; }
  /// From now on the reply to this path with its query, or, if none such is told, to this path with any
  /// query. Of several replies each is given once, the last one for ever.
  void reply(const std::string& target, WebReply reply) { reply_(target, {std::move(reply)}); }
  void replies(const std::string& target, std::vector<WebReply> replies) {
    reply_(target, std::move(replies));
  }
  /// The reply to all else; 404 with a JSON body before it is told. Called by the connections' threads.
  void otherwise(Answer answer);
  /// Forgets what it was told and asked.
  void clear();

  std::vector<WebRequest> requests() const;

 private:
  struct Script {
    std::map<std::string, std::vector<WebReply>> replies;
    Answer otherwise;
    std::vector<WebRequest> requests;
  };
  struct Connection;

  void reply_(const std::string& target, std::vector<WebReply> replies);
  void accept(const std::stop_token& stop);
  void serve(int socket, std::size_t number, const std::stop_token& stop);
  WebReply replyTo(const WebRequest& request);

  Descriptor listener_;
  std::string base_;
  Guarded<Script> script_;
  std::vector<std::unique_ptr<Connection>> connections_;  // the acceptor's, until it has ended
  std::jthread acceptor_;
};

}  // namespace tavek::rig
