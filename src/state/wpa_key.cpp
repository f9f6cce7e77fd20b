#include "state/wpa_key.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <new>

extern "C" {
#include <libavutil/hmac.h>
}

namespace tavek {
namespace {

struct HmacFreer {
  void operator()(AVHMAC* hmac) const { av_hmac_free(hmac); }
};

// As the standard has it: PBKDF2 with SHA-1.
using Digest = std::array<std::uint8_t, 20>;
constexpr int rounds = 4096;
constexpr std::size_t keySize = 32;

const std::uint8_t* bytesOf(const std::string& text) {
  return reinterpret_cast<const std::uint8_t*>(text.data());
}

}  // namespace

std::string wpaKey(const std::string& passphrase, const std::string& ssid) {
  const std::unique_ptr<AVHMAC, HmacFreer> hmac(av_hmac_alloc(AV_HMAC_SHA1));
  if (!hmac) throw std::bad_alloc();
  const auto digestOf = [&](const std::uint8_t* data, std::size_t size) {
    Digest digest{};
    av_hmac_calc(hmac.get(), data, static_cast<unsigned>(size), bytesOf(passphrase),
                 static_cast<unsigned>(passphrase.size()), digest.data(), digest.size());
    return digest;
  };
  std::string key;
  for (char block = 1; key.size() < keySize; ++block) {
    const std::string salt = ssid + std::string{0, 0, 0, block};
    Digest digest = digestOf(bytesOf(salt), salt.size());
    Digest sum = digest;
    for (int round = 1; round < rounds; ++round) {
      digest = digestOf(digest.data(), digest.size());
      std::ranges::transform(sum, digest, sum.begin(), std::bit_xor<>());
    }
    key.append(sum.begin(), sum.end());
  }
  key.resize(keySize);
  return key;
}

}  // namespace tavek
