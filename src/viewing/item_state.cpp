#include "viewing/item_state.h"

namespace tavek {
namespace {

using enum ItemAct;
using State = ItemState;
using Request = ItemRequest;

constexpr ItemActs resuming{Resume, ShowSeekBar};
constexpr ItemActs pausing{Pause, ShowSeekBar};
/// The next song does not wait for what the device still holds of this one.
constexpr ItemActs leavingForTrack{StorePosition, Pause};

ItemStep stay(State state) {
  return {state};
}

/// In a music room the seek keys go from track to track, and with the strip from album to album.
ItemStep stepTrack(State state, const ItemFacts& facts) {
  return {state, {facts.stripShown ? StepSelection : StepTrack}};
}

/// What ends an item, or opens the strip over it, is the same whether it runs or stands.
ItemStep leaveOrBrowse(State state, Request request, const ItemFacts& facts) {
  switch (request) {
    case Request::Leave:
    case Request::ChangeSound:
      return {State::Finished, {StorePosition}};
    case Request::GoHome:
      return {State::Ending, {StorePosition, RaiseLights, Pause, FadeOut}};
    case Request::PreviousItem:
      if (facts.pastStart) return {state, {SeekToStart, ShowSeekBar}};
      return {State::Finished, {StorePosition}};
    case Request::PlaySelection:
      return {state, {Resolve}};
    case Request::Selected:
      return {State::Finished, {StorePosition}};
    case Request::TrackFound:
      return {State::Finished, leavingForTrack};
    case Request::OpenPosters:
      if (facts.seriesItem) return {State::Browsing, {StorePosition, Pause, FreeSoundDevice, OpenStrip}};
      return {State::Browsing, {StorePosition, Pause, OpenStrip}};
    default:
      return stay(state);
  }
}

ItemStep whileStarting(Request request, const ItemFacts& facts) {
  switch (request) {
    case Request::Opened:
      return {State::Playing, {Start}};
    case Request::PlaySelection:
      return {State::Starting, {Resolve}};
    case Request::SeekForward:
    case Request::SeekBackward:
      return facts.musicRoom ? stepTrack(State::Starting, facts) : stay(State::Starting);
    case Request::GoHome:
    case Request::Selected:
    case Request::TrackFound:
    case Request::ChangeSound:
    case Request::Leave:
    case Request::StreamEnded:
      return {State::Finished};
    default:
      return stay(State::Starting);
  }
}

ItemStep whileRunning(State state, Request request, const ItemFacts& facts) {
  switch (request) {
    case Request::TogglePause:
      return {State::Paused, {StorePosition, Pause, RaiseLights, ShowSeekBar}};
    case Request::SeekForward:
    case Request::SeekBackward:
      return facts.musicRoom ? stepTrack(state, facts) : ItemStep{State::Seeking, {Seek}};
    case Request::SeekCommit:
      return {State::Playing, {ShowSeekBar}};
    case Request::ClosePosters:
      return {state, {HideStrip}};
    case Request::StreamEnded:
      return {State::Finished, {StorePosition, ShowSeekBar}};
    default:
      return leaveOrBrowse(state, request, facts);
  }
}

ItemStep whilePaused(Request request, const ItemFacts& facts) {
  switch (request) {
    case Request::TogglePause:
      return {State::Playing, {StorePosition, Resume, DimLights, ShowSeekBar}};
    case Request::SeekForward:
    case Request::SeekBackward:
      if (facts.musicRoom) return stepTrack(State::Paused, facts);
      return {State::SeekingInPause, {Seek, ShowSeekBar}};
    case Request::SeekCommit:
      return {State::Paused, {ShowSeekBar}};
    case Request::TrackFound:
      return {State::Finished, leavingForTrack};
    // From the settings.
    case Request::GoHome:
      return {State::Ending, {StorePosition, RaiseLights, FadeOut}};
    case Request::ChangeSound:
    case Request::Leave:
      return {State::Finished, {StorePosition}};
    default:
      return stay(State::Paused);
  }
}

ItemStep whileBrowsing(Request request, const ItemFacts& facts) {
  switch (request) {
    case Request::TogglePause:
      if (facts.marksEpisode) return {State::Browsing, {SwitchWatched}};
      return {State::Playing, {StorePosition, Resume, DimLights, ShowSeekBar}};
    case Request::SeekForward:
    case Request::SeekBackward:
      if (facts.musicRoom) return stepTrack(State::Browsing, facts);
      return {State::SeekingInPause, {Seek, ShowSeekBar}};
    case Request::OpenPosters:
      if (!facts.stripShown) return {State::Browsing, {StorePosition, OpenStrip}};
      [[fallthrough]];
    case Request::ClosePosters:
      return {State::Playing, {HideStrip, Resume, ShowSeekBar}};
    default:
      return leaveOrBrowse(State::Browsing, request, facts);
  }
}

ItemStep whileSeekingInPause(Request request, const ItemFacts& facts) {
  switch (request) {
    case Request::TogglePause:
      return {State::Playing, {StorePosition, Resume, DimLights, ShowSeekBar}};
    case Request::SeekForward:
    case Request::SeekBackward:
      return {State::SeekingInPause, {Seek, ShowSeekBar}};
    case Request::SeekCommit:
      return {State::Settling, resuming};
    default:
      return leaveOrBrowse(State::SeekingInPause, request, facts);
  }
}

/// To the viewer this is a pause already.
ItemStep whileSettling(Request request, const ItemFacts& facts) {
  switch (request) {
    case Request::TogglePause:
      return {State::Playing, {StorePosition, DimLights, ShowSeekBar}};
    case Request::SeekForward:
    case Request::SeekBackward:
      return {State::SeekingInPause, {Pause, Seek, ShowSeekBar}};
    case Request::Settled:
    case Request::StreamEnded:
      return {State::Paused, pausing};
    default:
      return leaveOrBrowse(State::Settling, request, facts);
  }
}

ItemStep whileEnding(Request request) {
  if (request == Request::FadedOut || request == Request::Leave) return {State::Finished, {StorePosition}};
  return stay(State::Ending);
}

}  // namespace

ItemStep stepOf(ItemState state, ItemRequest request, const ItemFacts& facts) {
  switch (state) {
    case State::Starting:
      return whileStarting(request, facts);
    case State::Playing:
    case State::Seeking:
      return whileRunning(state, request, facts);
    case State::Paused:
      return whilePaused(request, facts);
    case State::Browsing:
      return whileBrowsing(request, facts);
    case State::SeekingInPause:
      return whileSeekingInPause(request, facts);
    case State::Settling:
      return whileSettling(request, facts);
    case State::Ending:
      return whileEnding(request);
    case State::Finished:
      break;
  }
  return stay(State::Finished);
}

}  // namespace tavek
