#include "display/music/track_page.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <utility>

#include "display/toolkit/fonts.h"
#include "display/toolkit/shapes.h"
#include "display/toolkit/text.h"

namespace tavek {
namespace {

constexpr Colour panel = rgba(0, 0, 0, 191);
constexpr Colour rowText = rgba(230, 230, 230);
constexpr Colour litText = rgba(90, 200, 255);
constexpr Colour rowShadow = rgba(0, 0, 0, 153);
constexpr Colour lineShadow = rgba(0, 0, 0, 179);
/// Between two tellings of an album whose tags are being read.
constexpr std::chrono::milliseconds tellAgain{200};

int lineHeightOf(TTF_Font* font) {
  return std::max(TTF_FontLineSkip(font), 1);
}

/// Of the title, and of what stands below it.
std::array<TTF_Font*, 3> lineFonts(const FrameContext& frame) {
  TTF_Font* const detail = regularFont(detailFontSize(frame.height));
  return {regularFont(titleFontSize(frame.height)), detail, detail};
}

TTF_Font* columnFont(const FrameContext& frame) {
  return regularFont(columnFontSize(frame.height));
}

}  // namespace

void TrackPage::follow(const std::filesystem::path& track) {
  while (auto news = job_.take()) take(std::move(*news));
  if (track.native() == track_.native()) return;
  const bool sameAlbum = track.parent_path() == track_.parent_path();
  track_ = track;
  take({.info = knownTrackInfo(track), .tracks = {}});
  if (!sameAlbum) take({.info = {}, .tracks = std::vector<AlbumTrack>()});
  if (track.empty()) return job_.leave();
  job_.start([track](JobSide<News>& side) { find(track, side); });
}

/// The album is told as soon as its names are known, and again as its tags come in.
void TrackPage::find(const std::filesystem::path& track, JobSide<News>& side) {
  side.post({.info = trackInfo(track), .tracks = {}});
  const auto tell = [&] {
    side.post({.info = {}, .tracks = albumTracks(track, TagReading::Known, side.stop())});
  };
  const auto album = albumTracks(track, TagReading::Known, side.stop());
  side.post({.info = {}, .tracks = album});
  auto told = std::chrono::steady_clock::now();
  bool more = false;
  for (const AlbumTrack& other : album) {
    if (side.stop()) return;
    if (!knownTrackInfo(other.path)) more = trackInfo(other.path).has_value() || more;
    if (!more || std::chrono::steady_clock::now() < told + tellAgain) continue;
    tell();
    told = std::chrono::steady_clock::now();
    more = false;
  }
  if (more) tell();
}

void TrackPage::take(News news) {
  if (news.tracks) {
    tracks_ = std::move(*news.tracks);
    lit_.clear();
    fitted_ = {};
    return;
  }
  fitted_ = {};
  info_ = std::move(news.info);
  lines_ = track_.empty() ? TrackLines() : trackLines(track_, info_);
}

void TrackPage::draw(const FrameContext& frame, const std::filesystem::path& playing, const Place& place) {
  if (track_.empty()) return;
  lookUp(playing);
  ColumnLayout column;
  if (TTF_Font* font = columnFont(frame); font != nullptr && !tracks_.empty()) {
    column = layoutColumn({frame.width, frame.height}, place.edge, lineHeightOf(font), tracks_.size(),
                          litTrack_.value_or(0));
  }
  fit(frame, column);
  const BlendScope blending(frame.renderer);
  drawLines(frame, place);
  drawColumn(frame, column);
}

void TrackPage::fit(const FrameContext& frame, const ColumnLayout& column) {
  const bool same = fitted_.window.x == frame.width && fitted_.window.y == frame.height &&
                    fitted_.first == column.first && fitted_.rows.size() == column.rows;
  if (same) return;
  fitted_ = {.window = {frame.width, frame.height}, .first = column.first, .lines = {}, .rows = {}};
  const int margin = trackMargin(frame.width);
  // The column hides what would reach below it.
  const int right = column.rows > 0 ? column.panel.x : frame.width;
  const auto fonts = lineFonts(frame);
  for (std::size_t i = 0; i < fonts.size(); ++i)
    fitted_.lines[i] = fitText(fonts[i], lines_[i], std::max(right - 2 * margin, 1));
  for (std::size_t i = 0; i < column.rows; ++i) {
    const AlbumTrack& track = tracks_[column.first + i];
    const std::string number = track.number.empty() ? "" : track.number + ". ";
    fitted_.rows.push_back(
        fitText(columnFont(frame), number + track.title, column.panel.w - 2 * columnInset));
  }
}

void TrackPage::drawLines(const FrameContext& frame, const Place& place) const {
  const auto fonts = lineFonts(frame);
  int height = -trackLineGap;
  for (std::size_t i = 0; i < fonts.size(); ++i) {
    if (!fitted_.lines[i].empty()) height += lineHeightOf(fonts[i]) + trackLineGap;
  }
  int y = place.blockTop({frame.width, frame.height}, height);
  for (std::size_t i = 0; i < fonts.size(); ++i) {
    if (fitted_.lines[i].empty()) continue;
    drawShadowedText(frame.renderer, fonts[i], fitted_.lines[i], trackMargin(frame.width), y, theme::white,
                     lineShadow);
    y += lineHeightOf(fonts[i]) + trackLineGap;
  }
}

void TrackPage::drawColumn(const FrameContext& frame, const ColumnLayout& column) const {
  if (column.rows == 0) return;
  TTF_Font* font = columnFont(frame);
  fillRect(frame.renderer, column.panel, panel);
  const int x = column.panel.x + columnInset;
  int y = column.panel.y + columnInset;
  for (std::size_t i = 0; i < fitted_.rows.size(); ++i, y += lineHeightOf(font)) {
    const bool lit = litTrack_ == column.first + i;
    drawText(frame.renderer, font, fitted_.rows[i], x + 1, y + 1, rowShadow);
    drawText(frame.renderer, font, fitted_.rows[i], x, y, lit ? litText : rowText);
  }
}

void TrackPage::lookUp(const std::filesystem::path& playing) {
  if (playing.native() == lit_.native()) return;
  lit_ = playing;
  const auto found = std::ranges::find(tracks_, playing, &AlbumTrack::path);
  litTrack_.reset();
  if (found != tracks_.end()) litTrack_ = static_cast<std::size_t>(found - tracks_.begin());
}

}  // namespace tavek
