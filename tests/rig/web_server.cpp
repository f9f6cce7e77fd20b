#include "rig/web_server.h"

#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <condition_variable>
#include <mutex>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <stdexcept>
#include <string_view>
#include <sys/socket.h>

#include "base/process_flags.h"
#include "base/text.h"
#include "rig/process.h"

namespace tavek::rig {
namespace {

/// True once the socket can be read (or written), false at a stop.
bool awaitSocket(int socket, short events, const std::stop_token& stop) {
  while (!stop.stop_requested()) {
    pollfd wanted{socket, events, 0};
    if (::poll(&wanted, 1, 10) > 0) return true;
  }
  return false;
}

void waitFor(double seconds, const std::stop_token& stop) {
  std::mutex lock;
  std::unique_lock held(lock);
  std::condition_variable_any never;
  never.wait_for(held, stop, std::chrono::duration<double>(seconds), [] { return false; });
}

bool send(int socket, std::string_view bytes, const std::stop_token& stop) {
  while (!bytes.empty()) {
    if (!awaitSocket(socket, POLLOUT, stop)) return false;
    const ssize_t sent = ::send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    if (sent <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(sent));
  }
  return true;
}

/// Reads until the text holds so many bytes, or (without a number) the end of a head.
bool receive(int socket, std::string& text, std::optional<std::size_t> size, const std::stop_token& stop) {
  std::array<char, 16384> buffer{};
  while (size ? text.size() < *size : text.find("\r\n\r\n") == std::string::npos) {
    if (!awaitSocket(socket, POLLIN, stop)) return false;
    const ssize_t got = ::recv(socket, buffer.data(), buffer.size(), 0);
    if (got <= 0) return false;
    text.append(buffer.data(), static_cast<std::size_t>(got));
  }
  return true;
}

WebRequest parseHead(std::string_view head) {
  WebRequest request;
  const auto takeUntil = [&](std::string_view end) {
    const std::string_view part = head.substr(0, head.find(end));
    head.remove_prefix(std::min(head.size(), part.size() + end.size()));
    return part;
  };
  request.method = takeUntil(" ");
  request.target = takeUntil(" ");
  takeUntil("\r\n");
  while (!head.empty()) {
    const std::string_view line = takeUntil("\r\n");
    const std::size_t colon = std::min(line.find(':'), line.size());
    request.headers[toLower(line.substr(0, colon))] = trim(line.substr(std::min(colon + 1, line.size())));
  }
  return request;
}

std::string headOf(const WebReply& reply) {
  std::string head =
      "HTTP/1.1 " + std::to_string(reply.status) + " -\r\nContent-Type: " + reply.type + "\r\n";
  for (const auto& [name, value] : reply.headers) head.append(name).append(": ").append(value).append("\r\n");
  // Without a length the body ends with the connection: here never.
  if (!reply.endless) head += "Content-Length: " + std::to_string(reply.body.size()) + "\r\n";
  return head + "\r\n";
}

/// True if the connection can be used again.
bool sendReply(int socket, const WebReply& reply, const std::stop_token& stop) {
  waitFor(reply.delay, stop);
  if (!reply.raw.empty()) {
    send(socket, reply.raw, stop);
    return false;
  }
  if (!send(socket, headOf(reply), stop)) return false;
  while (reply.endless && send(socket, reply.body, stop)) continue;
  const std::size_t sent = reply.cutAfter.value_or(reply.stallAfter.value_or(reply.body.size()));
  if (reply.endless || !send(socket, std::string_view(reply.body).substr(0, sent), stop)) return false;
  // A client that has had enough closes.
  std::string ignored;
  if (reply.stallAfter) receive(socket, ignored, 1, stop);
  return !reply.cutAfter && !reply.stallAfter;
}

}  // namespace

std::string WebRequest::header(const std::string& name) const {
  const auto found = headers.find(name);
  return found == headers.end() ? "" : found->second;
}

struct WebServer::Connection {
  explicit Connection(int descriptor) : socket(descriptor) {}
  Descriptor socket;
  Flag ended;
  std::jthread thread;
};

WebServer::WebServer() : listener_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  auto* general = reinterpret_cast<sockaddr*>(&address);
  if (::bind(listener_.get(), general, size) != 0 || ::listen(listener_.get(), 64) != 0 ||
      ::getsockname(listener_.get(), general, &size) != 0)
    throw std::runtime_error("no port for a web server");
  base_ = "http://127.0.0.1:" + std::to_string(ntohs(address.sin_port));
  clear();
  acceptor_ = std::jthread([this](const std::stop_token& stop) { accept(stop); });
}

WebServer::~WebServer() {
  acceptor_.request_stop();
  acceptor_.join();
}

void WebServer::reply_(const std::string& target, std::vector<WebReply> replies) {
  script_.hold()->replies[target] = std::move(replies);
}

void WebServer::otherwise(Answer answer) {
  script_.hold()->otherwise = std::move(answer);
}

void WebServer::clear() {
  const auto script = script_.hold();
  script->replies.clear();
  script->requests.clear();
  script->otherwise = [](const WebRequest&) {
    return WebReply{.status = 404, .body = R"({"success":false,"status_code":34})"};
  };
}

std::vector<WebRequest> WebServer::requests() const {
  return script_.hold()->requests;
}

void WebServer::accept(const std::stop_token& stop) {
  std::size_t number = 0;
  while (awaitSocket(listener_.get(), POLLIN, stop)) {
    const int socket = ::accept4(listener_.get(), nullptr, nullptr, SOCK_CLOEXEC);
    if (socket < 0) continue;
    const int on = 1;
    ::setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    std::erase_if(connections_, [](const auto& connection) { return bool(connection->ended); });
    Connection& made = *connections_.emplace_back(std::make_unique<Connection>(socket));
    made.thread = std::jthread([this, &made, number](const std::stop_token& own) {
      serve(made.socket.get(), number, own);
      ::shutdown(made.socket.get(), SHUT_RDWR);
      made.ended = true;
    });
    ++number;
  }
  for (const auto& connection : connections_) connection->thread.request_stop();
  connections_.clear();
}

void WebServer::serve(int socket, std::size_t number, const std::stop_token& stop) {
  std::string text;
  for (bool kept = true; kept;) {
    if (!receive(socket, text, {}, stop)) return;
    const std::size_t end = text.find("\r\n\r\n") + 4;
    WebRequest request = parseHead(std::string_view(text).substr(0, end - 4));
    request.at = now();
    request.connection = number;
    const std::string length = request.header("content-length");
    const std::size_t whole = end + (length.empty() ? 0 : std::stoul(length));
    if (!receive(socket, text, whole, stop)) return;
    request.body = text.substr(end, whole - end);
    text.erase(0, whole);
    kept = sendReply(socket, replyTo(request), stop);
  }
}

WebReply WebServer::replyTo(const WebRequest& request) {
  Answer answer;
  {
    const auto script = script_.hold();
    script->requests.push_back(request);
    for (const std::string& target : {request.target, request.path()}) {
      const auto found = script->replies.find(target);
      if (found == script->replies.end() || found->second.empty()) continue;
      WebReply next = found->second.front();
      if (found->second.size() > 1) found->second.erase(found->second.begin());
      return next;
    }
    answer = script->otherwise;
  }
  return answer(request);
}

}  // namespace tavek::rig
