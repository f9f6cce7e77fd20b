#pragma once

#include "display/toolkit/sdl_handles.h"

/// The two faces of the user interface, by pixel size. Main thread only, as all drawing.
namespace tavek {

/// A shared handle that stays open until closeFonts(); null for a size below 1, a missing face or a failed
/// open.
TTF_Font* regularFont(int size);
TTF_Font* thinFont(int size);

/// A font of the regular face for one drawing or one thread, which no table keeps; null as above. Any thread.
FontPtr openRegularFont(int size);

/// Closes all that the tables hold; has to run before TTF_Quit.
void closeFonts();

}  // namespace tavek
