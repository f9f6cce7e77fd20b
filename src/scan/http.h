#pragma once

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "base/process_flags.h"

namespace tavek {

/// What the functions below need to know of the user's account with a service.
struct ScanClient {
  std::string apiKey;
  std::string bearerToken;
  bool hasCredentials() const { return !apiKey.empty() || !bearerToken.empty(); }
};

/// What the first bytes of a file must say; `Image` is either of the two before it.
enum class FileKind { Jpeg, Png, Image, Mp3 };

struct HttpLimits {
  /// For a request with its redirects and its body, and for the connection alone.
  std::chrono::milliseconds whole, connect;
  /// How often a request is made that fails on its way.
  int attempts = 2;
  /// From the start of a request to that of the next.
  std::chrono::milliseconds pace{50};
  /// Between these the wait is kept that a busy service asks for.
  std::chrono::milliseconds leastWait{1000}, longestWait{30000};
};

/// One family of web services. Credentials go to the origin (scheme, host and port) of `apiBase` and no
/// other. A base that is plain http was given by a test: only its origin may be asked without https, or have
/// an address that is not public.
struct WebService {
  std::string_view tag;        ///< how its log lines begin: "[TMDB] "
  const bool* consoleEnabled;  ///< whether they are written
  HttpLimits limits;
  std::string apiBase;
  std::string fileBase = {};  ///< empty where files come from other hosts
};

WebService tmdbService();
WebService fanartService();
WebService tvdbService();

/// One scan's connection to one service, kept alive; of one thread. No failure is ever thrown: what comes
/// back is empty or false, and there is a line in the log. Keys and whatever else stands in a query are in no
/// line.
class HttpSession {
 public:
  /// `stop` ends a transfer or a wait within a tenth of a second.
  HttpSession(WebService service, const Flag& stop);
  ~HttpSession();
  HttpSession(const HttpSession&) = delete;
  HttpSession& operator=(const HttpSession&) = delete;

  /// The JSON text at this URL, at most 8 MiB; empty on failure, which any other text is too.
  std::string httpGet(const ScanClient& client, const std::string& url);
  /// The JSON answer to a JSON text, asked once.
  std::string httpPost(const std::string& url, const std::string& json);
  /// Makes this file, of at most 32 MiB; while it comes it is `.<name>.part`. What stands there is never
  /// replaced and, if nothing does after a failure, nothing is left.
  bool httpDownload(const ScanClient& client, const std::string& url, const std::filesystem::path& path,
                    FileKind kind);

  /// The service refused the key, or three requests in a row did not get through: nothing more is asked.
  bool ended() const;
  /// The last call came back with an answer, be it a refusal.
  bool answered() const;
  /// It ended for want of a connection.
  bool netGone() const;
  /// Those that left the machine, with repetitions and redirects.
  std::size_t requests() const;

 private:
  class Work;
  std::unique_ptr<Work> work_;
};

/// For a value in a query: a space becomes "+".
std::string urlEncode(std::string_view text);

/// False if the folders or the file could not be made; see replaceFile.
bool writeTextFile(const std::filesystem::path& path, std::string_view text);
/// Clears the way for a file by removing an empty one. True if nothing stands there afterwards: what has
/// bytes, a folder and a link are left.
bool removeIfPresent(const std::filesystem::path& path);

}  // namespace tavek
