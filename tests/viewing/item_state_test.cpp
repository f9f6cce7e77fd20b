#include "viewing/item_state.h"

#include <algorithm>
#include <array>

#include <gtest/gtest.h>

namespace tavek {
namespace {

using enum ItemAct;
using S = ItemState;
using R = ItemRequest;

constexpr auto states = std::to_array({S::Starting, S::Playing, S::Paused, S::Browsing, S::Seeking,
                                       S::SeekingInPause, S::Settling, S::Ending, S::Finished});
constexpr auto requests =
    std::to_array({R::Opened, R::TogglePause, R::SeekForward, R::SeekBackward, R::SeekCommit, R::OpenPosters,
                   R::ClosePosters, R::PlaySelection, R::Selected, R::GoHome, R::PreviousItem, R::Leave,
                   R::StreamEnded, R::Settled, R::FadedOut});

struct Row {
  S state;
  R request;
  ItemStep step;
};

/// With no fact set. What is not in it leaves the state as it is.
constexpr auto table = std::to_array<Row>({
    {S::Starting, R::Opened, {S::Playing, {Start}}},
    {S::Starting, R::PlaySelection, {S::Starting, {Resolve}}},
    {S::Starting, R::Selected, {S::Finished}},
    {S::Starting, R::GoHome, {S::Finished}},
    {S::Starting, R::Leave, {S::Finished}},
    {S::Starting, R::StreamEnded, {S::Finished}},

    {S::Playing, R::TogglePause, {S::Paused, {StorePosition, Pause, ShowSeekBar}}},
    {S::Playing, R::SeekForward, {S::Seeking, {Seek}}},
    {S::Playing, R::SeekBackward, {S::Seeking, {Seek}}},
    {S::Playing, R::SeekCommit, {S::Playing, {ShowSeekBar}}},
    {S::Playing, R::OpenPosters, {S::Browsing, {StorePosition, Pause, OpenStrip}}},
    {S::Playing, R::ClosePosters, {S::Playing, {HideStrip}}},
    {S::Playing, R::PlaySelection, {S::Playing, {Resolve}}},
    {S::Playing, R::Selected, {S::Finished, {StorePosition}}},
    {S::Playing, R::GoHome, {S::Ending, {StorePosition, Pause, FadeOut}}},
    {S::Playing, R::PreviousItem, {S::Finished, {StorePosition}}},
    {S::Playing, R::Leave, {S::Finished, {StorePosition}}},
    {S::Playing, R::StreamEnded, {S::Finished, {StorePosition, ShowSeekBar}}},

    {S::Paused, R::TogglePause, {S::Playing, {StorePosition, Resume, ShowSeekBar}}},
    {S::Paused, R::SeekForward, {S::SeekingInPause, {Seek, ShowSeekBar}}},
    {S::Paused, R::SeekBackward, {S::SeekingInPause, {Seek, ShowSeekBar}}},
    {S::Paused, R::SeekCommit, {S::Paused, {ShowSeekBar}}},
    {S::Paused, R::Leave, {S::Finished, {StorePosition}}},

    {S::Browsing, R::TogglePause, {S::Playing, {StorePosition, Resume, ShowSeekBar}}},
    {S::Browsing, R::SeekForward, {S::SeekingInPause, {Seek, ShowSeekBar}}},
    {S::Browsing, R::SeekBackward, {S::SeekingInPause, {Seek, ShowSeekBar}}},
    {S::Browsing, R::OpenPosters, {S::Browsing, {StorePosition, OpenStrip}}},
    {S::Browsing, R::ClosePosters, {S::Playing, {HideStrip, Resume, ShowSeekBar}}},
    {S::Browsing, R::PlaySelection, {S::Browsing, {Resolve}}},
    {S::Browsing, R::Selected, {S::Finished, {StorePosition}}},
    {S::Browsing, R::GoHome, {S::Ending, {StorePosition, Pause, FadeOut}}},
    {S::Browsing, R::PreviousItem, {S::Finished, {StorePosition}}},
    {S::Browsing, R::Leave, {S::Finished, {StorePosition}}},

    {S::Seeking, R::TogglePause, {S::Paused, {StorePosition, Pause, ShowSeekBar}}},
    {S::Seeking, R::SeekForward, {S::Seeking, {Seek}}},
    {S::Seeking, R::SeekBackward, {S::Seeking, {Seek}}},
    {S::Seeking, R::SeekCommit, {S::Playing, {ShowSeekBar}}},
    {S::Seeking, R::OpenPosters, {S::Browsing, {StorePosition, Pause, OpenStrip}}},
    {S::Seeking, R::ClosePosters, {S::Seeking, {HideStrip}}},
    {S::Seeking, R::PlaySelection, {S::Seeking, {Resolve}}},
    {S::Seeking, R::Selected, {S::Finished, {StorePosition}}},
    {S::Seeking, R::GoHome, {S::Ending, {StorePosition, Pause, FadeOut}}},
    {S::Seeking, R::PreviousItem, {S::Finished, {StorePosition}}},
    {S::Seeking, R::Leave, {S::Finished, {StorePosition}}},
    {S::Seeking, R::StreamEnded, {S::Finished, {StorePosition, ShowSeekBar}}},

    {S::SeekingInPause, R::TogglePause, {S::Playing, {StorePosition, Resume, ShowSeekBar}}},
    {S::SeekingInPause, R::SeekForward, {S::SeekingInPause, {Seek, ShowSeekBar}}},
    {S::SeekingInPause, R::SeekBackward, {S::SeekingInPause, {Seek, ShowSeekBar}}},
    {S::SeekingInPause, R::SeekCommit, {S::Settling, {Resume, ShowSeekBar}}},
    {S::SeekingInPause, R::OpenPosters, {S::Browsing, {StorePosition, Pause, OpenStrip}}},
    {S::SeekingInPause, R::PlaySelection, {S::SeekingInPause, {Resolve}}},
    {S::SeekingInPause, R::Selected, {S::Finished, {StorePosition}}},
    {S::SeekingInPause, R::GoHome, {S::Ending, {StorePosition, Pause, FadeOut}}},
    {S::SeekingInPause, R::PreviousItem, {S::Finished, {StorePosition}}},
    {S::SeekingInPause, R::Leave, {S::Finished, {StorePosition}}},

    {S::Settling, R::TogglePause, {S::Playing, {StorePosition, ShowSeekBar}}},
    {S::Settling, R::SeekForward, {S::SeekingInPause, {Pause, Seek, ShowSeekBar}}},
    {S::Settling, R::SeekBackward, {S::SeekingInPause, {Pause, Seek, ShowSeekBar}}},
    {S::Settling, R::OpenPosters, {S::Browsing, {StorePosition, Pause, OpenStrip}}},
    {S::Settling, R::PlaySelection, {S::Settling, {Resolve}}},
    {S::Settling, R::Selected, {S::Finished, {StorePosition}}},
    {S::Settling, R::GoHome, {S::Ending, {StorePosition, Pause, FadeOut}}},
    {S::Settling, R::PreviousItem, {S::Finished, {StorePosition}}},
    {S::Settling, R::Leave, {S::Finished, {StorePosition}}},
    {S::Settling, R::StreamEnded, {S::Paused, {Pause, ShowSeekBar}}},
    {S::Settling, R::Settled, {S::Paused, {Pause, ShowSeekBar}}},

    {S::Ending, R::Leave, {S::Finished, {StorePosition}}},
    {S::Ending, R::FadedOut, {S::Finished, {StorePosition}}},
});

ItemStep wanted(S state, R request) {
  const auto row =
      std::ranges::find_if(table, [&](const Row& r) { return r.state == state && r.request == request; });
  return row != table.end() ? row->step : ItemStep{state};
}

std::string nameOf(S state, R request) {
  return "state " + std::to_string(static_cast<int>(state)) + ", request " +
         std::to_string(static_cast<int>(request));
}

TEST(ItemState, StepsByTheTable) {
  for (const S state : states) {
    for (const R request : requests) {
      EXPECT_EQ(stepOf(state, request, {}), wanted(state, request)) << nameOf(state, request);
    }
  }
}

TEST(ItemState, FactsChangeASteps) {
  const ItemFacts music{.musicRoom = true};
  for (const S state : {S::Playing, S::Seeking, S::Paused, S::Browsing}) {
    for (const R key : {R::SeekForward, R::SeekBackward}) {
      EXPECT_EQ(stepOf(state, key, music), ItemStep{state}) << nameOf(state, key);
    }
  }
  for (const S state : {S::Playing, S::Seeking, S::Settling, S::SeekingInPause}) {
    const ItemStep series{S::Browsing, {StorePosition, Pause, FreeSoundDevice, OpenStrip}};
    EXPECT_EQ(stepOf(state, R::OpenPosters, {.seriesItem = true}), series) << nameOf(state, R::OpenPosters);
    const ItemStep anew{state, {SeekToStart, ShowSeekBar}};
    EXPECT_EQ(stepOf(state, R::PreviousItem, {.pastStart = true}), anew) << nameOf(state, R::PreviousItem);
  }
  EXPECT_EQ(stepOf(S::Browsing, R::TogglePause, {.marksEpisode = true}),
            (ItemStep{S::Browsing, {SwitchWatched}}));
  EXPECT_EQ(stepOf(S::Playing, R::TogglePause, {.marksEpisode = true}).next, S::Paused)
      << "no strip, no mark";
  EXPECT_EQ(stepOf(S::Browsing, R::OpenPosters, {.stripShown = true}),
            (ItemStep{S::Playing, {HideStrip, Resume, ShowSeekBar}}));
}

/// Whatever the facts are: the player runs in the states that say so, and only there.
TEST(ItemState, ThePlayerAndTheStateAgreeAfterEachStep) {
  for (unsigned bits = 0; bits < 32; ++bits) {
    const ItemFacts facts{(bits & 1) != 0, (bits & 2) != 0, (bits & 4) != 0, (bits & 8) != 0,
                          (bits & 16) != 0};
    for (const S state : states) {
      for (const R request : requests) {
        const ItemStep step = stepOf(state, request, facts);
        const bool running =
            (runs(state) && !step.acts.has(Pause)) || step.acts.has(Resume) || step.acts.has(Start);
        EXPECT_TRUE(running == runs(step.next) || step.next == S::Finished) << nameOf(state, request);
        EXPECT_FALSE(runs(step.next) && pausedByViewer(step.next));
        EXPECT_TRUE(state != S::Finished || step == ItemStep{S::Finished});
      }
    }
  }
}

}  // namespace
}  // namespace tavek
