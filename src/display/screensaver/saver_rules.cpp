#include "display/screensaver/saver_rules.h"

#include <algorithm>

#include "base/text.h"

namespace tavek {
void SaverFade::start(bool on, Uint64 nowMs) {
  from_ = alpha_;
  target_ = on;
  running_ = true;
  startedAt_ = nowMs;
}

bool SaverFade::advance(Uint64 nowMs) {
  if (!running_) return false;
  const double passed = nowMs > startedAt_ ? static_cast<double>(nowMs - startedAt_) : 0;
  const double part = std::min(passed / saverFadeMs, 1.0);
  alpha_ = from_ + ((target_ ? 1.0 : 0.0) - from_) * part;
  running_ = part < 1;
  return !running_ && !target_;
}

void SlideClock::begin(Uint64 nowMs) {
  startedAt_ = nowMs;
}

void SlideClock::next(std::size_t count, Uint64 nowMs) {
  previous_ = current_;
  current_ = (current_ + 1) % std::max<std::size_t>(count, 1);
  startedAt_ = nowMs;
}

void SlideClock::erase(std::size_t index, std::size_t count) {
  if (previous_ == index) {
    previous_.reset();
  } else if (previous_ && *previous_ > index) {
    --*previous_;
  }
  if (current_ > index) --current_;
  if (count > 0) current_ = std::min(current_, count - 1);
}

std::optional<std::size_t> SlideClock::previous(Uint64 nowMs) const {
  return crossfade(nowMs) < 1 ? previous_ : std::nullopt;
}

double SlideClock::crossfade(Uint64 nowMs) const {
  if (!startedAt_) return 0;
  return std::min(static_cast<double>(nowMs - *startedAt_) / saverFadeMs, 1.0);
}

TitleYear splitTitleYear(std::string_view text) {
  const std::string whole = trim(text);
  const std::size_t open = whole.rfind('(');
  if (whole.size() < 7 || whole.back() != ')' || open == std::string::npos) return {whole, {}};
  const std::string year = trim(std::string_view(whole).substr(open + 1, whole.size() - open - 2));
  if (year.size() != 4 || !std::ranges::all_of(year, isAsciiDigit)) return {whole, {}};
  return {trim(std::string_view(whole).substr(0, open)), year};
}

const char* resolutionBadge(int width, int height) {
  const auto [shorter, longer] = std::minmax(width, height);
  if (longer >= 3840 && shorter >= 2160) return "4K";
  if (longer >= 1920 && shorter >= 1080) return "FHD";
  return longer >= 1280 && shorter >= 720 ? "HD" : "";
}

}  // namespace tavek
