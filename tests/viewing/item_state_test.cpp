#include "viewing/item_state.h"

#include <functional>
#include <optional>
#include <set>
#include <vector>

#include <gtest/gtest.h>

namespace tavek {
namespace {

using enum ItemAct;
using S = ItemState;
using R = ItemRequest;
using States = std::vector<S>;

const States running{S::Playing, S::Seeking};
const States standing{S::Paused, S::Browsing, S::SeekingInPause};
const States open{S::Playing, S::Seeking, S::Browsing, S::SeekingInPause, S::Settling};
const States uncovered{S::Playing, S::Seeking, S::SeekingInPause, S::Settling};
const std::vector<R> seekKeys{R::SeekForward, R::SeekBackward};
constexpr std::optional<S> same;

std::string nameOf(S state, R request) {
  return "state " + std::to_string(static_cast<int>(state)) + ", request " +
         std::to_string(static_cast<int>(request));
}

void forAllSteps(const std::function<void(S, R)>& look) {
  for (int state = 0; state <= static_cast<int>(S::Finished); ++state) {
    for (int request = 0; request <= static_cast<int>(R::FadedOut); ++request)
      look(static_cast<S>(state), static_cast<R>(request));
  }
}

/// What is not in a row leaves the state as it is.
TEST(ItemState, StepsByTheTable) {
  const struct Row {
    States from;
    std::vector<R> requests;
    std::optional<S> next;
    ItemActs acts;
    ItemFacts facts{};
  } rows[] = {
      {{S::Starting}, {R::Opened}, S::Playing, {Start}},
      {{S::Starting},
       {R::Selected, R::TrackFound, R::GoHome, R::ChangeSound, R::Leave, R::StreamEnded},
       S::Finished,
       {}},
      {{S::Starting}, {R::PlaySelection}, same, {Resolve}},

      {running, {R::TogglePause}, S::Paused, {StorePosition, Pause, RaiseLights, ShowSeekBar}},
      {standing, {R::TogglePause}, S::Playing, {StorePosition, Resume, DimLights, ShowSeekBar}},
      {{S::Settling}, {R::TogglePause}, S::Playing, {StorePosition, DimLights, ShowSeekBar}},
      {{S::Browsing}, {R::TogglePause}, same, {SwitchWatched}, {.marksEpisode = true}},
      {{S::Playing},
       {R::TogglePause},
       S::Paused,
       {StorePosition, Pause, RaiseLights, ShowSeekBar},
       {.marksEpisode = true}},

      {running, seekKeys, S::Seeking, {Seek}},
      {standing, seekKeys, S::SeekingInPause, {Seek, ShowSeekBar}},
      {{S::Settling}, seekKeys, S::SeekingInPause, {Pause, Seek, ShowSeekBar}},
      {{S::Starting, S::Playing, S::Paused}, seekKeys, same, {StepTrack}, {.musicRoom = true}},
      {{S::Browsing}, seekKeys, same, {StepSelection}, {.musicRoom = true, .stripShown = true}},
      {running, {R::SeekCommit}, S::Playing, {ShowSeekBar}},
      {{S::Paused}, {R::SeekCommit}, same, {ShowSeekBar}},
      {{S::SeekingInPause}, {R::SeekCommit}, S::Settling, {Resume, ShowSeekBar}},
      {{S::Settling}, {R::Settled, R::StreamEnded}, S::Paused, {Pause, ShowSeekBar}},

      {uncovered, {R::OpenPosters}, S::Browsing, {StorePosition, Pause, OpenStrip}},
      {uncovered,
       {R::OpenPosters},
       S::Browsing,
       {StorePosition, Pause, FreeSoundDevice, OpenStrip},
       {.seriesItem = true}},
      {{S::Browsing}, {R::OpenPosters}, same, {StorePosition, OpenStrip}},
      {{S::Browsing}, {R::OpenPosters}, S::Playing, {HideStrip, Resume, ShowSeekBar}, {.stripShown = true}},
      {{S::Browsing}, {R::ClosePosters}, S::Playing, {HideStrip, Resume, ShowSeekBar}},
      {running, {R::ClosePosters}, same, {HideStrip}},
      {open, {R::PlaySelection}, same, {Resolve}},

      {open, {R::Selected, R::PreviousItem, R::ChangeSound, R::Leave}, S::Finished, {StorePosition}},
      {open, {R::TrackFound}, S::Finished, {StorePosition, Pause}},
      {open, {R::PreviousItem}, same, {SeekToStart, ShowSeekBar}, {.pastStart = true}},
      {running, {R::StreamEnded}, S::Finished, {StorePosition, ShowSeekBar}},
      {open, {R::GoHome}, S::Ending, {StorePosition, RaiseLights, Pause, FadeOut}},
      {{S::Paused}, {R::GoHome}, S::Ending, {StorePosition, RaiseLights, FadeOut}},
      {{S::Paused}, {R::TrackFound}, S::Finished, {StorePosition, Pause}},
      {{S::Paused}, {R::ChangeSound, R::Leave}, S::Finished, {StorePosition}},
      {{S::Ending}, {R::Leave, R::FadedOut}, S::Finished, {StorePosition}},
  };
  std::set<std::pair<S, R>> listed;
  for (const Row& row : rows) {
    for (const S state : row.from) {
      for (const R request : row.requests) {
        const ItemStep step{row.next.value_or(state), row.acts};
        EXPECT_EQ(stepOf(state, request, row.facts), step) << nameOf(state, request);
        listed.emplace(state, request);
      }
    }
  }
  forAllSteps([&](S state, R request) {
    EXPECT_TRUE(listed.contains({state, request}) || stepOf(state, request, {}) == ItemStep{state})
        << nameOf(state, request);
  });
}

/// Whatever the facts are: the player runs in the states that say so, and only there.
TEST(ItemState, ThePlayerAndTheStateAgreeAfterEachStep) {
  for (unsigned bits = 0; bits < 32; ++bits) {
    const ItemFacts facts{(bits & 1) != 0, (bits & 2) != 0, (bits & 4) != 0, (bits & 8) != 0,
                          (bits & 16) != 0};
    forAllSteps([&](S state, R request) {
      const ItemStep step = stepOf(state, request, facts);
      const bool plays =
          (runs(state) && !step.acts.has(Pause)) || step.acts.has(Resume) || step.acts.has(Start);
      EXPECT_TRUE(plays == runs(step.next) || step.next == S::Finished) << nameOf(state, request);
      EXPECT_FALSE(runs(step.next) && pausedByViewer(step.next));
      EXPECT_TRUE(state != S::Finished || step == ItemStep{S::Finished});
    });
  }
}

}  // namespace
}  // namespace tavek
