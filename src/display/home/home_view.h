#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include <SDL.h>

#include "display/home/home_layout.h"
#include "display/toolkit/colour.h"
#include "display/toolkit/frame_context.h"
#include "display/toolkit/shapes.h"

namespace tavek {

/// What the discs show beside the users.
struct HomeShown {
  const std::vector<std::string>& roomLabels;
  std::size_t roomIndex = 0;
  bool homeMode = true;
  bool stripOn = false;                  ///< the poster strip in any state but closed
  std::optional<Uint64> folderChangeAt;  ///< a user was confirmed then
};

/// The home screen: a disc for each user, and the name of the selected room in the selected one.
class HomeView {
 public:
  /// The users, and the one under the cursor.
  void setUsers(std::vector<std::string> names, std::size_t index);
  const std::vector<std::string>& users() const { return userNames_; }
  std::size_t userIndex() const { return userIndex_; }
  /// False at the ends of the list.
  bool moveUser(int delta);

  void startFadeIn(Uint64 nowMs) { fadeInAt_ = nowMs; }
  void endFadeIn() { fadeInAt_.reset(); }
  /// The keys are explained on the first home screen of a run only.
  void showHint(Uint64 nowMs);
  void setArrows(bool up, bool down);

  void draw(const FrameContext& frame, const HomeShown& input);

 private:
  double strength(const FrameContext& frame, const HomeShown& input);
  void drawRoom(const FrameContext& frame, const HomeShown& input, const UserDisc& disc,
                double strength) const;
  void drawArrows(SDL_Renderer* renderer, const HomeShown& input, const RoomBox& room, double strength) const;
  Colour arrowColour(const HomeShown& input, bool up) const;
  void drawNames(const FrameContext& frame, const HomeLayout& layout, double strength) const;
  void drawHints(const FrameContext& frame, const HomeShown& input, int top, double strength);

  std::vector<std::string> userNames_;
  std::size_t userIndex_ = 0;
  std::vector<Disc> discs_;  ///< one for each user
  std::optional<Uint64> fadeInAt_;
  std::optional<Uint64> hintShownAt_;
  bool hintShownOnce_ = false;   ///< it was on the screen
  bool roomUpArrowLit_ = false;  ///< its key is down
  bool roomDownArrowLit_ = false;
};

}  // namespace tavek
