#include "display/playback/clear_logo.h"

#include <algorithm>

#include <SDL_image.h>

#include "base/text.h"
#include "display/toolkit/colour.h"
#include "display/toolkit/fonts.h"
#include "display/toolkit/image_file.h"
#include "display/toolkit/text.h"
#include "display/toolkit/texture.h"
#include "library/episode_name.h"
#include "library/file_types.h"
#include "library/media_paths.h"

namespace tavek {
namespace {

namespace fs = std::filesystem;

constexpr const char* fileName = "clearlogo.png";

}  // namespace

std::optional<fs::path> clearLogoFor(const fs::path& video) {
  const fs::path beside = video.parent_path() / fileName;
  if (isUsableFile(beside)) return beside;
  const auto show = seriesFolderOf(video);
  if (show && isUsableFile(*show / fileName)) return *show / fileName;
  return {};
}

std::string episodeLine(const fs::path& video) {
  const EpisodeLabel label = episodeLabelOf(video.stem().string());
  const std::string title = trim(label.title);
  if (label.season.empty() || label.episode.empty() || title.empty()) return {};
  return "Season " + shownSeason(label.season) + ", " + shownEpisode(label.episode) + " " + title;
}

SDL_Rect clearLogoRect(int width, int height, SDL_Point logo) {
  const auto logoWidth = static_cast<float>(logo.x);
  const auto logoHeight = static_cast<float>(logo.y);
  const float scale = std::min(
      {1.0F, 0.6F * static_cast<float>(width) / logoWidth, 0.18F * static_cast<float>(height) / logoHeight});
  const int shownWidth = static_cast<int>(logoWidth * scale);
  const int shownHeight = static_cast<int>(logoHeight * scale);
  return {(width - shownWidth) / 2, static_cast<int>(0.1 * height), shownWidth, shownHeight};
}

SDL_Point episodeLinePlace(int width, int height, const SDL_Rect& logo, SDL_Point line) {
  int y = logo.y + logo.h + 8;
  if (y + line.y >= height - 19) y = std::max(20, height - line.y - 20);
  return {(width - line.x) / 2, y};
}

ClearLogo::Found ClearLogo::look(const fs::path& video, const FileState& loaded,
                                 const FileState& unreadable) {
  const std::optional<fs::path> file = clearLogoFor(video);
  if (!file) return {};
  FileState state = fileStateOf(*file);
  if (state == loaded || state == unreadable) return {std::move(state), nullptr};
  return {std::move(state), {loadImage(*file).release(), SdlDeleter()}};
}

void ClearLogo::follow(SDL_Renderer* renderer, const fs::path& currentVideo, Uint64 nowMs) {
  constexpr Uint64 searchMs = 500;
  if (renderer == nullptr || currentVideo.empty()) return;
  while (auto found = search_.take()) take(renderer, std::move(*found));
  const bool sameVideo = currentVideo == video_;
  if (sameVideo && (loaded() || search_.running() || nowMs < searchedAt_ + searchMs)) return;
  video_ = currentVideo;
  searchedAt_ = nowMs;
  search_.start([video = video_, loaded = source_, unreadable = unreadable_](JobSide<Found>& side) {
    side.post(look(video, loaded, unreadable));
    SDL_TLSCleanup();
  });
}

/// One that is loaded already stays: two episodes share the logo of their show.
void ClearLogo::take(SDL_Renderer* renderer, Found found) {
  if (loaded() && found.file == source_) return;
  const bool wasUnreadable = found.file == unreadable_;
  texture_.reset();
  size_ = {};
  source_ = {};
  if (found.file.path.empty() || wasUnreadable) return;
  TexturePtr texture(found.picture ? SDL_CreateTextureFromSurface(renderer, found.picture.get()) : nullptr);
  SDL_Point size{};
  if (!texture || SDL_QueryTexture(texture.get(), nullptr, nullptr, &size.x, &size.y) != 0 || size.x <= 0 ||
      size.y <= 0) {
    unreadable_ = std::move(found.file);
    return;
  }
  texture_ = std::move(texture);
  size_ = size;
  source_ = std::move(found.file);
}

void ClearLogo::drop() {
  search_.leave();
  video_.clear();
  texture_.reset();
  size_ = {};
  source_ = {};
  fade_ = {};
}

void ClearLogo::draw(const FrameContext& frame, const ClearLogoInput& input, const fs::path& currentVideo) {
  const bool mayShow = !input.videoPlaying && !input.homeMode && loaded() && !suppressed_;
  const bool target = mayShow && (input.videoPaused || input.stripOn);
  const std::uint8_t alpha = fadedAlpha(advanceFade(fade_, target, frame.nowMs));
  if (alpha == 0 || !loaded()) return;

  const SDL_Rect place = clearLogoRect(frame.width, frame.height, size_);
  Uint8 before = 255;
  SDL_GetTextureAlphaMod(texture_.get(), &before);
  SDL_SetTextureBlendMode(texture_.get(), SDL_BLENDMODE_BLEND);
  SDL_SetTextureAlphaMod(texture_.get(), alpha);
  copyTexture(frame.renderer, texture_.get(), place);
  SDL_SetTextureAlphaMod(texture_.get(), before);
  drawEpisodeLine(frame, place, alpha, currentVideo);
}

void ClearLogo::drawEpisodeLine(const FrameContext& frame, const SDL_Rect& logo, std::uint8_t alpha,
                                const fs::path& currentVideo) const {
  if (!seriesRootOf(currentVideo)) return;
  TTF_Font* font = regularFont(std::clamp(frame.height / 20, 18, 48));
  if (font == nullptr) font = frame.baseFont;
  const int room = std::max(1, static_cast<int>(0.8 * frame.width));
  const std::string line = fitText(font, episodeLine(currentVideo), room);
  const SDL_Point place = episodeLinePlace(frame.width, frame.height, logo, textSize(font, line));
  const Colour shadow = withAlpha(theme::black, static_cast<std::uint8_t>(alpha * 0.75));
  drawShadowedText(frame.renderer, font, line, place.x, place.y, withAlpha(theme::white, alpha), shadow);
}

}  // namespace tavek
