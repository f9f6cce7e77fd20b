#include "display/toolkit/image_file.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <string_view>
#include <utility>
#include <vector>

#include <SDL_image.h>

namespace tavek {
namespace {

constexpr std::int64_t maxPixels = 64'000'000;
constexpr int maxSide = 32'000;
constexpr std::uintmax_t maxFileBytes = 64'000'000;

/// Reads numbers at places that may lie behind the end; those are 0.
class Bytes {
 public:
  explicit Bytes(std::span<const std::byte> bytes) : bytes_(bytes) {}
  std::size_t size() const { return bytes_.size(); }
  int at(std::size_t place) const { return place < bytes_.size() ? std::to_integer<int>(bytes_[place]) : 0; }
  int big(std::size_t place, std::size_t count) const {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < count; ++i) value = value << 8 | static_cast<std::uint32_t>(at(place + i));
    return static_cast<int>(std::min<std::uint32_t>(value, INT32_MAX));
  }
  int little(std::size_t place, std::size_t count) const {
    std::uint32_t value = 0;
    for (std::size_t i = count; i > 0; --i)
      value = value << 8 | static_cast<std::uint32_t>(at(place + i - 1));
    return static_cast<int>(std::min<std::uint32_t>(value, INT32_MAX));
  }
  bool says(std::size_t place, std::string_view text) const {
    return place + text.size() <= bytes_.size() &&
           std::memcmp(bytes_.data() + place, text.data(), text.size()) == 0;
  }

 private:
  std::span<const std::byte> bytes_;
};

/// The size stands in the first start-of-frame segment.
std::optional<SDL_Point> jpegSize(const Bytes& file) {
  for (std::size_t place = 2; place + 9 < file.size();) {
    if (file.at(place) != 0xFF) return {};
    const int marker = file.at(place + 1);
    const bool startOfFrame =
        marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
    if (startOfFrame) return SDL_Point{file.big(place + 7, 2), file.big(place + 5, 2)};
    const bool filler = marker == 0xFF;
    place += filler ? 1 : 2 + static_cast<std::size_t>(std::max(file.big(place + 2, 2), 2));
  }
  return {};
}

std::optional<SDL_Point> webpSize(const Bytes& file) {
  if (file.says(12, "VP8X")) return SDL_Point{file.little(24, 3) + 1, file.little(27, 3) + 1};
  if (file.says(12, "VP8 ")) return SDL_Point{file.little(26, 2) & 0x3FFF, file.little(28, 2) & 0x3FFF};
  if (!file.says(12, "VP8L")) return {};
  const auto bits = static_cast<std::uint32_t>(file.little(21, 2) | file.little(23, 2) << 16);
  return SDL_Point{static_cast<int>(bits & 0x3FFF) + 1, static_cast<int>(bits >> 14 & 0x3FFF) + 1};
}

std::vector<std::byte> contentOf(const std::filesystem::path& file) {
  std::error_code error;
  const std::uintmax_t size = std::filesystem::file_size(file, error);
  if (error || size > maxFileBytes) return {};
  std::vector<std::byte> bytes(static_cast<std::size_t>(size));
  std::ifstream in(file, std::ios::binary);
  in.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(size));
  bytes.resize(static_cast<std::size_t>(std::max<std::streamsize>(in.gcount(), 0)));
  return bytes;
}

/// One sample's part in the mean that makes up a smaller one, in 1/256.
struct Share {
  std::ptrdiff_t at;
  std::uint16_t part;
};

/// What each of `target` smaller samples is made of, out of `length`. The parts of each make up 256.
std::vector<std::vector<Share>> sharesOf(int length, int target) {
  std::vector<std::vector<Share>> shares(static_cast<std::size_t>(target));
  const double ratio = static_cast<double>(length) / target;
  for (int i = 0; i < target; ++i) {
    const double from = i * ratio;
    const double to = std::min<double>(from + ratio, length);
    long taken = 0;
    for (int at = static_cast<int>(from); at < to; ++at) {
      const long upToHere = std::lround(256 * (std::min(to, at + 1.0) - from) / (to - from));
      shares[static_cast<std::size_t>(i)].push_back({at, static_cast<std::uint16_t>(upToHere - taken)});
      taken = upToHere;
    }
  }
  return shares;
}

/// Each sample of the target is the mean of those that it covers, so nothing flickers and no row is left out.
template <int channels>
void shrink(const SDL_Surface& source, SDL_Surface& target) {
  const auto rows = sharesOf(source.h, target.h);
  const auto columns = sharesOf(source.w, target.w);
  std::vector<std::uint16_t> row(static_cast<std::size_t>(source.w) * channels);
  auto* out = static_cast<Uint8*>(target.pixels);
  for (const auto& covered : rows) {
    std::ranges::fill(row, std::uint16_t{0});
    for (const auto& [at, part] : covered) {
      const auto* samples = static_cast<const Uint8*>(source.pixels) + at * source.pitch;
      for (std::size_t i = 0; i < row.size(); ++i)
        row[i] = static_cast<std::uint16_t>(row[i] + samples[i] * part);
    }
    Uint8* pixel = out;
    for (const auto& shares : columns) {
      std::array<std::uint32_t, 4> sums{1U << 15, 1U << 15, 1U << 15, channels < 4 ? 255U << 16 : 1U << 15};
      for (const auto& [at, part] : shares) {
        const std::uint16_t* samples = row.data() + at * channels;
        for (std::size_t c = 0; c < channels; ++c) sums[c] += std::uint32_t{samples[c]} * part;
      }
      for (const std::uint32_t sum : sums) *pixel++ = static_cast<Uint8>(sum >> 16);
    }
    out += target.pitch;
  }
}

SurfacePtr converted(const SDL_Surface& picture) {
  return SurfacePtr(SDL_ConvertSurfaceFormat(const_cast<SDL_Surface*>(&picture), SDL_PIXELFORMAT_RGBA32, 0));
}

SurfacePtr shrunkTo(SurfacePtr picture, SDL_Point size) {
  if (picture->h <= size.y) return converted(*picture);
  // What a JPEG decodes to needs no step in between.
  const bool plain = picture->format->format == SDL_PIXELFORMAT_RGB24;
  if (!plain) picture = converted(*picture);
  if (!picture) return {};
  SurfacePtr shrunk(SDL_CreateRGBSurfaceWithFormat(0, std::max(size.x, 1), std::max(size.y, 1), 32,
                                                   SDL_PIXELFORMAT_RGBA32));
  if (shrunk) plain ? shrink<3>(*picture, *shrunk) : shrink<4>(*picture, *shrunk);
  return shrunk;
}

}  // namespace

std::optional<SDL_Point> pictureSizeOf(std::span<const std::byte> bytes) {
  const Bytes file(bytes);
  if (file.says(0, "\xFF\xD8")) return jpegSize(file);
  if (file.says(0, "\x89PNG") && file.says(12, "IHDR")) return SDL_Point{file.big(16, 4), file.big(20, 4)};
  if (file.says(0, "RIFF") && file.says(8, "WEBP")) return webpSize(file);
  if (file.says(0, "GIF8")) return SDL_Point{file.little(6, 2), file.little(8, 2)};
  return {};
}

SurfacePtr loadImage(const std::filesystem::path& file) {
  const std::vector<std::byte> bytes = contentOf(file);
  const std::optional<SDL_Point> size = pictureSizeOf(bytes);
  if (!size || std::min(size->x, size->y) < 1 || std::max(size->x, size->y) > maxSide ||
      std::int64_t{size->x} * size->y > maxPixels) {
    SDL_SetError("no picture of a size that can be shown");
    return {};
  }
  SDL_RWops* stream = SDL_RWFromConstMem(bytes.data(), static_cast<int>(bytes.size()));
  return SurfacePtr(IMG_Load_RW(stream, 1));
}

SurfacePtr fittedToHeight(SurfacePtr picture, int height) {
  if (!picture) return {};
  const auto width = static_cast<int>(std::int64_t{picture->w} * height / picture->h);
  return shrunkTo(std::move(picture), {width, height});
}

SurfacePtr fittedTo(SurfacePtr picture, SDL_Point area, Fit fit) {
  if (!picture) return {};
  const double across = static_cast<double>(area.x) / picture->w;
  const double down = static_cast<double>(area.y) / picture->h;
  const double scale = fit == Fit::Cover ? std::max(across, down) : std::min(across, down);
  const SDL_Point size{static_cast<int>(std::lround(picture->w * scale)),
                       static_cast<int>(std::lround(picture->h * scale))};
  return shrunkTo(std::move(picture), size);
}

}  // namespace tavek
