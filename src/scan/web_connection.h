#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/process_flags.h"

namespace tavek {

/// One exchange with a web server: no redirect is followed here.
struct WebQuestion {
  std::string url;
  std::vector<std::string> headers = {};  ///< "Accept: application/json"
  const char* method = nullptr;           ///< in place of GET, or of POST
  const std::string* posted = nullptr;    ///< null asks by GET
  std::chrono::milliseconds whole{0}, connect{0};
  std::size_t longestBody = 0;
  /// Only a host with a public address is asked, and no proxy in between.
  bool publicOnly = true;
  /// Gets the body of an answer of success; false ends the exchange.
  std::function<bool(std::string_view)> take = {};
};

enum class WebFault {
  None,
  Transport,   ///< no connection, or it broke
  Slow,        ///< the time was over while the body came
  NotAllowed,  ///< the host's address is not public
  TooLong,
  NotTaken,
  Stopped,
};

struct WebAnswer {
  WebFault fault = WebFault::Transport;
  long status = 0;                         ///< 0 if none came
  std::string redirect = {};               ///< the absolute URL of where it leads; empty if it does not
  std::chrono::seconds retryAfter{0};      ///< 0 if it does not say
  std::chrono::microseconds sentAfter{0};  ///< from the call to the request, which a new connection delays
  const char* error = "";                  ///< of a fault
};

/// libcurl is there; it is made so at the first call, of any thread.
bool webReady();

/// Keeps connections alive from one exchange to the next. Of one thread.
class WebConnection {
 public:
  /// `stop` ends an exchange within 50 ms, whatever it waits for.
  explicit WebConnection(const Flag& stop);
  ~WebConnection();
  WebConnection(const WebConnection&) = delete;
  WebConnection& operator=(const WebConnection&) = delete;

  WebAnswer ask(const WebQuestion& question);

 private:
  struct Handles;
  const Flag& stop_;
  std::unique_ptr<Handles> handles_;
};

}  // namespace tavek
