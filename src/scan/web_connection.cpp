#include "scan/web_connection.h"

#include <optional>
#include <sys/socket.h>
#include <tuple>
#include <unistd.h>

#include "scan/curl_handles.h"
#include "scan/web_address.h"

namespace tavek {
namespace {

constexpr int roundMs = 50;
constexpr std::size_t longestHead = 256U << 10;

/// What libcurl's callbacks know of the exchange.
struct Exchange {
  CURL* handle = nullptr;
  const WebQuestion& question;
  std::size_t headBytes = 0;
  std::size_t bodyBytes = 0;
  bool closedAddress = false;
  bool tooLong = false;
  bool notTaken = false;
};

long statusOf(CURL* handle) {
  long status = 0;
  curl_easy_getinfo(handle, CURLINFO_RESPONSE_CODE, &status);
  return status;
}

std::size_t takeBody(char* bytes, std::size_t, std::size_t size, void* data) {
  Exchange& exchange = *static_cast<Exchange*>(data);
  exchange.bodyBytes += size;
  exchange.tooLong = exchange.bodyBytes > exchange.question.longestBody;
  if (exchange.tooLong) return 0;
  if (statusOf(exchange.handle) / 100 != 2) return size;
  exchange.notTaken = !exchange.question.take({bytes, size});
  return exchange.notTaken ? 0 : size;
}

std::size_t takeHead(char*, std::size_t, std::size_t size, void* data) {
  Exchange& exchange = *static_cast<Exchange*>(data);
  exchange.headBytes += size;
  exchange.tooLong = exchange.headBytes > longestHead;
  return exchange.tooLong ? 0 : size;
}

curl_socket_t openSocket(void* data, curlsocktype, curl_sockaddr* address) {
  Exchange& exchange = *static_cast<Exchange*>(data);
  // The address is looked at here, not before, as a name may be resolved anew in between.
  if (exchange.question.publicOnly && !isPublicAddress(address->addr)) {
    exchange.closedAddress = true;
    return CURL_SOCKET_BAD;
  }
  return ::socket(address->family, address->socktype | SOCK_CLOEXEC, address->protocol);
}

void setAddress(CURL* handle, const WebQuestion& question) {
  curl_easy_setopt(handle, CURLOPT_URL, question.url.c_str());
  curl_easy_setopt(handle, CURLOPT_PROTOCOLS_STR, "http,https");
  curl_easy_setopt(handle, CURLOPT_FOLLOWLOCATION, 0L);
  curl_easy_setopt(handle, CURLOPT_USERAGENT, "tavek");
  if (question.publicOnly || question.url.starts_with("http:")) curl_easy_setopt(handle, CURLOPT_PROXY, "");
}

void setLimits(CURL* handle, const WebQuestion& question) {
  curl_easy_setopt(handle, CURLOPT_NOSIGNAL, 1L);
  // A name server that does not answer must not hold the end of the program up.
  curl_easy_setopt(handle, CURLOPT_QUICK_EXIT, 1L);
  curl_easy_setopt(handle, CURLOPT_TIMEOUT_MS, long(question.whole.count()));
  curl_easy_setopt(handle, CURLOPT_CONNECTTIMEOUT_MS, long(question.connect.count()));
  curl_easy_setopt(handle, CURLOPT_MAXFILESIZE_LARGE, static_cast<curl_off_t>(question.longestBody));
}

void setBodies(CURL* handle, const WebQuestion& question, curl_slist* headers, Exchange& exchange) {
  curl_easy_setopt(handle, CURLOPT_HTTPHEADER, headers);
  if (question.posted) {
    curl_easy_setopt(handle, CURLOPT_POST, 1L);
    curl_easy_setopt(handle, CURLOPT_POSTFIELDS, question.posted->c_str());
    curl_easy_setopt(handle, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(question.posted->size()));
  }
  if (question.method) curl_easy_setopt(handle, CURLOPT_CUSTOMREQUEST, question.method);
  curl_easy_setopt(handle, CURLOPT_WRITEFUNCTION, takeBody);
  curl_easy_setopt(handle, CURLOPT_WRITEDATA, &exchange);
  curl_easy_setopt(handle, CURLOPT_HEADERFUNCTION, takeHead);
  curl_easy_setopt(handle, CURLOPT_HEADERDATA, &exchange);
  curl_easy_setopt(handle, CURLOPT_OPENSOCKETFUNCTION, openSocket);
  curl_easy_setopt(handle, CURLOPT_OPENSOCKETDATA, &exchange);
}

CurlList listOf(const std::vector<std::string>& lines) {
  CurlList list;
  for (const std::string& line : lines) {
    curl_slist* longer = curl_slist_append(list.get(), line.c_str());
    if (!longer) break;
    std::ignore = list.release();
    list.reset(longer);
  }
  return list;
}

/// Runs the transfer on the spot; none if it was stopped.
std::optional<CURLcode> carryOut(CURLM* multi, const Flag& stop) {
  int running = 1;
  while (running > 0) {
    if (stop) return {};
    if (curl_multi_perform(multi, &running) != CURLM_OK) return CURLE_FAILED_INIT;
    if (running > 0 && curl_multi_poll(multi, nullptr, 0, roundMs, nullptr) != CURLM_OK)
      return CURLE_FAILED_INIT;
  }
  int waiting = 0;
  const CURLMsg* message = curl_multi_info_read(multi, &waiting);
  return message && message->msg == CURLMSG_DONE ? message->data.result : CURLE_FAILED_INIT;
}

WebFault faultOf(CURLcode code, const Exchange& exchange) {
  if (exchange.notTaken) return WebFault::NotTaken;
  if (exchange.tooLong || code == CURLE_FILESIZE_EXCEEDED) return WebFault::TooLong;
  if (code == CURLE_OK) return WebFault::None;
  if (exchange.closedAddress) return WebFault::NotAllowed;
  return code == CURLE_OPERATION_TIMEDOUT && exchange.bodyBytes > 0 ? WebFault::Slow : WebFault::Transport;
}

const char* errorOf(WebFault fault, CURLcode code) {
  if (fault == WebFault::NotAllowed) return "no public address";
  if (fault == WebFault::TooLong) return "too long";
  return curl_easy_strerror(code);
}

void readFacts(CURL* handle, WebAnswer& answer) {
  answer.status = statusOf(handle);
  const char* redirect = nullptr;
  if (curl_easy_getinfo(handle, CURLINFO_REDIRECT_URL, &redirect) == CURLE_OK && redirect)
    answer.redirect = redirect;
  curl_off_t seconds = 0;
  if (curl_easy_getinfo(handle, CURLINFO_RETRY_AFTER, &seconds) == CURLE_OK)
    answer.retryAfter = std::chrono::seconds(seconds);
  curl_off_t sentAfter = 0;
  if (curl_easy_getinfo(handle, CURLINFO_PRETRANSFER_TIME_T, &sentAfter) == CURLE_OK)
    answer.sentAfter = std::chrono::microseconds(sentAfter);
}

}  // namespace

struct WebConnection::Handles {
  CurlMulti multi{curl_multi_init()};
  CurlEasy easy{curl_easy_init()};
};

bool webReady() {
  static const bool ready = curl_global_init(CURL_GLOBAL_ALL) == CURLE_OK;
  return ready;
}

WebConnection::WebConnection(const Flag& stop) : stop_(stop) {
  if (webReady()) handles_ = std::make_unique<Handles>();
}

WebConnection::~WebConnection() = default;

WebAnswer WebConnection::ask(const WebQuestion& question) {
  WebAnswer answer;
  answer.error = curl_easy_strerror(CURLE_FAILED_INIT);
  if (!handles_ || !handles_->easy || !handles_->multi) return answer;
  CURL* handle = handles_->easy.get();
  Exchange exchange{handle, question};
  const CurlList headers = listOf(question.headers);
  curl_easy_reset(handle);
  setAddress(handle, question);
  setLimits(handle, question);
  setBodies(handle, question, headers.get(), exchange);

  if (curl_multi_add_handle(handles_->multi.get(), handle) != CURLM_OK) return answer;
  const std::optional<CURLcode> code = carryOut(handles_->multi.get(), stop_);
  answer.fault = code ? faultOf(*code, exchange) : WebFault::Stopped;
  answer.error = code ? errorOf(answer.fault, *code) : "stopped";
  readFacts(handle, answer);
  curl_multi_remove_handle(handles_->multi.get(), handle);
  return answer;
}

}  // namespace tavek
