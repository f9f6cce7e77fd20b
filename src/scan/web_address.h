#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <sys/socket.h>

/// Where a request goes, and what may be told there. Every text may come from a stranger.
namespace tavek {

struct WebAddress {
  std::string url;     ///< as it is asked
  std::string scheme;  ///< "http" or "https"
  std::string origin;  ///< "https://image.tmdb.org:443"
};

/// None for other schemes, for what is no URL, and for one that carries a name or password.
std::optional<WebAddress> webAddressOf(const std::string& url);
/// Without the parts of the query that hold a key.
std::string withoutKeys(std::string_view url);
/// As a log may show it.
std::string withoutQuery(std::string_view url);
/// False for the machine itself, its neighbours and whatever else is not one place in the public net, also
/// where an IPv6 address only wraps such a place.
bool isPublicAddress(const sockaddr& address);

}  // namespace tavek
