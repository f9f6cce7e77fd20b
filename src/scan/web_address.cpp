#include "scan/web_address.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <netinet/in.h>

#include "base/text.h"
#include "scan/curl_handles.h"

namespace tavek {
namespace {

constexpr std::array keyNames = {"api_key", "client_key", "apikey"};

struct Net4 {
  std::uint32_t net;
  int bits;
};
constexpr std::array closedNets4 = {
    Net4{0x00000000, 8},   // this machine
    Net4{0x0a000000, 8},   // private
    Net4{0x64400000, 10},  // behind a provider's translator
    Net4{0x7f000000, 8},   // loopback
    Net4{0xa9fe0000, 16},  // link-local
    Net4{0xac100000, 12},  // private
    Net4{0xc0000000, 24},  // protocols
    Net4{0xc0a80000, 16},  // private
    Net4{0xc6120000, 15},  // measuring
    Net4{0xe0000000, 3},   // multicast, reserved, broadcast
};

bool isPublic4(std::uint32_t address) {
  return std::ranges::none_of(closedNets4,
                              [&](Net4 net) { return (address ^ net.net) >> (32 - net.bits) == 0; });
}

using Bytes6 = std::array<std::uint8_t, 16>;

struct Net6 {
  Bytes6 net;
  int bits;
};
constexpr std::array closedNets6 = {
    Net6{{0xfc}, 7},                                // private
    Net6{{0xfe, 0x80}, 10},                         // link-local
    Net6{{0xfe, 0xc0}, 10},                         // site-local
    Net6{{0xff}, 8},                                // multicast
    Net6{{0x00, 0x64, 0xff, 0x9b, 0x00, 0x01}, 48}  // a translator's own
};

/// An IPv4 address stands behind these.
struct Wrapped4 {
  Net6 net;
  std::size_t at;
};
constexpr std::array wrapped4 = {
    Wrapped4{{{}, 96}, 12},                                          // also ::1 and ::
    Wrapped4{{{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xff, 0xff}, 96}, 12},  // mapped
    Wrapped4{{{0x00, 0x64, 0xff, 0x9b}, 96}, 12},                    // translated
    Wrapped4{{{0x20, 0x02}, 16}, 2},                                 // tunnelled
};

bool lies(const Bytes6& address, const Net6& net) {
  const auto whole = static_cast<std::size_t>(net.bits / 8);
  if (!std::equal(address.begin(), address.begin() + whole, net.net.begin())) return false;
  const int rest = net.bits % 8;
  return rest == 0 || (address[whole] ^ net.net[whole]) >> (8 - rest) == 0;
}

bool isPublic6(const Bytes6& address) {
  for (const Net6& net : closedNets6)
    if (lies(address, net)) return false;
  for (const Wrapped4& wrapped : wrapped4) {
    if (!lies(address, wrapped.net)) continue;
    std::uint32_t inner = 0;
    for (std::size_t i = 0; i < 4; ++i) inner = inner << 8 | address[wrapped.at + i];
    return isPublic4(inner);
  }
  return true;
}

bool holdsKey(std::string_view part) {
  const std::string name = toLower(part.substr(0, part.find('=')));
  return std::ranges::find(keyNames, name) != keyNames.end();
}

std::string partOf(CURLU* url, CURLUPart part, unsigned flags = 0) {
  char* text = nullptr;
  if (curl_url_get(url, part, &text, flags) != CURLUE_OK) return "";
  return CurlText(text).get();
}

}  // namespace

std::optional<WebAddress> webAddressOf(const std::string& url) {
  const CurlUrl parsed(curl_url());
  if (!parsed || curl_url_set(parsed.get(), CURLUPART_URL, url.c_str(), CURLU_URLENCODE) != CURLUE_OK)
    return {};
  const std::string scheme = toLower(partOf(parsed.get(), CURLUPART_SCHEME));
  const std::string host = toLower(partOf(parsed.get(), CURLUPART_HOST));
  if ((scheme != "https" && scheme != "http") || host.empty()) return {};
  for (const CURLUPart secret : {CURLUPART_USER, CURLUPART_PASSWORD, CURLUPART_OPTIONS})
    if (!partOf(parsed.get(), secret).empty()) return {};
  const std::string port = partOf(parsed.get(), CURLUPART_PORT, CURLU_DEFAULT_PORT);
  return WebAddress{partOf(parsed.get(), CURLUPART_URL), scheme, scheme + "://" + host + ":" + port};
}

std::string withoutKeys(std::string_view url) {
  const std::size_t query = url.find('?');
  std::string kept(url.substr(0, query));
  if (query == std::string_view::npos) return kept;
  char before = '?';
  for (std::string_view rest = url.substr(query + 1); !rest.empty();) {
    const std::string_view part = rest.substr(0, rest.find('&'));
    rest.remove_prefix(std::min(rest.size(), part.size() + 1));
    if (part.empty() || holdsKey(part)) continue;
    kept.append(1, before).append(part);
    before = '&';
  }
  return kept;
}

std::string withoutQuery(std::string_view url) {
  return std::string(url.substr(0, url.find_first_of("?#")));
}

bool isPublicAddress(const sockaddr& address) {
  if (address.sa_family == AF_INET) {
    sockaddr_in place{};
    std::memcpy(&place, &address, sizeof place);
    return isPublic4(ntohl(place.sin_addr.s_addr));
  }
  if (address.sa_family != AF_INET6) return false;
  sockaddr_in6 place{};
  std::memcpy(&place, &address, sizeof place);
  Bytes6 bytes{};
  std::copy_n(place.sin6_addr.s6_addr, bytes.size(), bytes.begin());
  return isPublic6(bytes);
}

}  // namespace tavek
