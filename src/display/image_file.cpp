#include "display/image_file.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <string_view>
#include <vector>

#include <SDL_image.h>

namespace tavek {
namespace {

constexpr std::int64_t maxPixels = 64'000'000;
constexpr std::uintmax_t maxFileBytes = 64'000'000;

/// Reads numbers at places that may lie behind the end; those are 0.
class Bytes {
 public:
  explicit Bytes(std::span<const std::byte> bytes) : bytes_(bytes) {}
  std::size_t size() const { return bytes_.size(); }
  int at(std::size_t place) const { return place < bytes_.size() ? std::to_integer<int>(bytes_[place]) : 0; }
  int big(std::size_t place, int count) const {
    std::uint32_t value = 0;
    for (int i = 0; i < count; ++i) value = value << 8 | static_cast<std::uint32_t>(at(place + i));
    return static_cast<int>(std::min<std::uint32_t>(value, INT32_MAX));
  }
  int little(std::size_t place, int count) const {
    std::uint32_t value = 0;
    for (int i = count - 1; i >= 0; --i) value = value << 8 | static_cast<std::uint32_t>(at(place + i));
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

SurfacePtr stretched(const SDL_Surface& source, int width, int height) {
  SurfacePtr target(SDL_CreateRGBSurfaceWithFormat(0, width, height, 32, SDL_PIXELFORMAT_RGBA32));
  auto* from = const_cast<SDL_Surface*>(&source);
  if (target && SDL_SoftStretchLinear(from, nullptr, target.get(), nullptr) != 0) target.reset();
  return target;
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
  if (!size || size->x < 1 || size->y < 1 || std::int64_t{size->x} * size->y > maxPixels) {
    SDL_SetError("no picture of a size that can be shown");
    return {};
  }
  SDL_RWops* stream = SDL_RWFromConstMem(bytes.data(), static_cast<int>(bytes.size()));
  const SurfacePtr picture(IMG_Load_RW(stream, 1));
  return SurfacePtr(picture ? SDL_ConvertSurfaceFormat(picture.get(), SDL_PIXELFORMAT_RGBA32, 0) : nullptr);
}

SurfacePtr fittedToHeight(SurfacePtr picture, int height) {
  // By halves first: one long step of linear scaling would leave most rows out.
  while (picture && picture->h > height) {
    const int next = std::max(height, (picture->h + 1) / 2);
    const auto width = static_cast<int>(std::int64_t{picture->w} * next / picture->h);
    picture = stretched(*picture, std::max(width, 1), next);
  }
  return picture;
}

}  // namespace tavek
