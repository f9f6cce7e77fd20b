#pragma once

#include <cstdint>
#include <initializer_list>

/// The life of an item as its viewer steers it: one state at a time, and one rule for each step. No clock, no
/// screen and no player in here; who carries the acts out is Viewing.
namespace tavek {

enum class ItemState : std::int32_t {
  Starting,  ///< its file is being opened
  Playing,
  Paused,          ///< by the viewer; ended before anything else can be reached
  Browsing,        ///< it stands while the strip lies over it
  Seeking,         ///< a seek key is down while it plays
  SeekingInPause,  ///< a seek key is down while it stands
  Settling,        ///< it runs for a moment, so that a pause shows a picture of the place that was sought
  Ending,          ///< its picture fades on the way home
  Finished,
};

/// What can happen to an item: by the viewer, by its own end, or by time.
enum class ItemRequest : std::int32_t {
  Opened,  ///< the file can be played
  TogglePause,
  SeekForward,
  SeekBackward,
  SeekCommit,  ///< the seek key is up
  OpenPosters,
  ClosePosters,
  PlaySelection,
  Selected,    ///< the selection has turned out to be a file that plays
  TrackFound,  ///< the album has a track there
  GoHome,
  PreviousItem,
  ChangeSound,  ///< it starts again in another sound mode
  Leave,        ///< another item, the window closed, or a signal
  StreamEnded,
  Settled,   ///< the moment of Settling is over
  FadedOut,  ///< the fade of Ending is over
};

/// What the step depends on beside the state.
struct ItemFacts {
  bool musicRoom = false;     ///< seek keys step the track there
  bool marksEpisode = false;  ///< the strip offers to switch the watched mark of its selection
  bool stripShown = false;
  bool seriesItem = false;  ///< its theme needs the sound device while it is browsed
  bool pastStart = false;   ///< more than half a second into the item
};

/// What a step does, in the order in which it is done.
enum class ItemAct : std::uint32_t {
  HideStrip = 1U << 0,
  StorePosition = 1U << 1,
  Start = 1U << 2,  ///< the player runs for the first time
  Pause = 1U << 3,
  FreeSoundDevice = 1U << 4,
  Resume = 1U << 5,
  Seek = 1U << 6,  ///< a step of the key, in its direction
  SeekToStart = 1U << 7,
  FadeOut = 1U << 8,
  OpenStrip = 1U << 9,  ///< over the item's own room, at its poster
  ShowSeekBar = 1U << 10,
  SwitchWatched = 1U << 11,
  Resolve = 1U << 12,        ///< what does the selected poster stand for?
  StepTrack = 1U << 13,      ///< is there a track in the key's direction?
  StepSelection = 1U << 14,  ///< on the strip, in the key's direction
  DimLights = 1U << 15,
  RaiseLights = 1U << 16,
};

class ItemActs {
 public:
  constexpr ItemActs() = default;
  constexpr ItemActs(std::initializer_list<ItemAct> acts) {
    for (const ItemAct act : acts) bits_ |= static_cast<std::uint32_t>(act);
  }
  constexpr bool has(ItemAct act) const { return (bits_ & static_cast<std::uint32_t>(act)) != 0; }
  constexpr bool operator==(const ItemActs&) const = default;

 private:
  std::uint32_t bits_ = 0;
};

struct ItemStep {
  ItemState next{};
  ItemActs acts = {};
  bool operator==(const ItemStep&) const = default;
};

/// A request that means nothing in a state leaves it, without an act.
ItemStep stepOf(ItemState state, ItemRequest request, const ItemFacts& facts);

/// The player runs; in every other state between Starting and Finished it is held.
constexpr bool runs(ItemState state) {
  return state == ItemState::Playing || state == ItemState::Seeking || state == ItemState::Settling;
}
/// The pause counts as the viewer's, with its icon and a bar that stands.
constexpr bool pausedByViewer(ItemState state) {
  return state == ItemState::Paused || state == ItemState::SeekingInPause;
}

}  // namespace tavek
