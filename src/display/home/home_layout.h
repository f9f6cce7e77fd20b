#pragma once

#include <vector>

#include <SDL.h>

/// Where the discs of the users lie on the home screen, and what lies inside the selected one. Pixels.
namespace tavek {

struct UserDisc {
  SDL_Point centre;
  int radius;
  int ring;
};

struct HomeLayout {
  int rows = 1;
  std::vector<UserDisc> discs;
  int smallestRadius = 48;
  int hintTop = 0;
};

/// The number of rows that gives the largest discs, filled from the top.
HomeLayout layoutHome(int users, int width, int height);

/// The room's name inside a disc with an arrow up and one down behind it, one above the other.
struct RoomBox {
  SDL_Rect box;
  SDL_Point text;
  SDL_Point arrows;  ///< the left end of the two, at the upper one's top
  int arrowWidth;
  int arrowHeight;
  int arrowGap;
};

/// The font size to start with, and the width that the widest name may have.
int roomFontSize(int radius);
int roomTextWidth(int radius);
RoomBox layoutRoomBox(const UserDisc& disc, SDL_Point widestLabel);

}  // namespace tavek
