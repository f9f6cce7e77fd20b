#include "display/theme/theme_rules.h"

#include <utility>

#include "library/media_paths.h"

namespace tavek {
namespace {

constexpr Uint64 restMs = 150;
/// A folder of the same show takes its time to come up, and the theme goes on meanwhile.
constexpr Uint64 loadingMs = 1000;

}  // namespace

ThemeChoice::Act ThemeChoice::follow(const ThemeFacts& facts, Uint64 nowMs) {
  const bool moved = facts.selected != nullptr && facts.selected->native() != selected_;
  if (moved) {
    selected_ = facts.selected->native();
    selectedAt_ = nowMs;
    const auto show = seriesFolderOf(*facts.selected);
    shown_ = show ? ThemeCandidate{*show, {}} : ThemeCandidate{{}, "skip: no tv show root"};
  }
  if (facts.selected != nullptr) lastSeenAt_ = nowMs;
  const bool loading = facts.selected == nullptr && facts.stripAny && facts.tvRoom && !facts.videoPlaying;
  if (loading && nowMs < lastSeenAt_ + loadingMs) return Act::None;
  const ThemeCandidate& candidate = themeCandidate(facts);
  if (candidate.folder.native() == themeRequested_.native()) return Act::None;
  if (!themeRequested_.empty()) {
    themeRequested_.clear();
    return Act::Stop;
  }
  if (nowMs < selectedAt_ + restMs) return Act::None;
  themeRequested_ = candidate.folder;
  return Act::Start;
}

const ThemeCandidate& ThemeChoice::themeCandidate(const ThemeFacts& facts) {
  std::string_view reason;
  if (facts.selected == nullptr) reason = "skip: poster selection invalid";
  if (!facts.stripAny) reason = "skip: posters inactive";
  if (facts.videoPlaying) reason = "skip: video playing";
  if (!facts.tvRoom) reason = "skip: not tv library";
  candidate_.reason = reason.empty() ? shown_.reason : reason;
  if (!candidate_.reason.empty()) {
    candidate_.folder.clear();
  } else if (candidate_.folder.native() != shown_.folder.native()) {
    candidate_.folder = shown_.folder;
  }
  return candidate_;
}

bool ThemeChoice::reset() {
  return !std::exchange(themeRequested_, {}).empty();
}

}  // namespace tavek
