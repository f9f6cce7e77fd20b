#pragma once

#include <filesystem>
#include <variant>

#include <SDL.h>

#include "display/toolkit/focus.h"
#include "display/toolkit/frame_context.h"
#include "display/toolkit/held_keys.h"
#include "display/toolkit/nav_code.h"

/// What every screen has in common. A screen owns all of its state; what crosses screens it leaves to who
/// holds them.
namespace tavek {

/// A key that goes down or up.
struct KeyPress {
  SDL_Keycode key = SDLK_UNKNOWN;
  bool down = true;
  bool repeat = false;  ///< made by the keyboard, not by a finger
  bool shift = false;   ///< held with it
};

/// The key means nothing here, or all that it means is done.
struct Unhandled {};
struct Handled {};
/// The posters of a room are to be listed behind the home screen.
struct OpenRoom {
  std::filesystem::path folder;
};
/// The home screen gives way to the posters of a room.
struct EnterRoom {
  std::filesystem::path folder;
};
/// What a key, or the time, means to the program.
using Meaning = std::variant<Unhandled, Handled, NavCode, OpenRoom, EnterRoom>;

/// One screen, as the window holds it. Main thread only; times are the clock's milliseconds.
class Layer {
 public:
  Layer() = default;
  virtual ~Layer() = default;
  Layer(const Layer&) = delete;
  Layer& operator=(const Layer&) = delete;

  /// Whether the keys are this screen's under a focus.
  virtual bool owns(FocusName focus) const = 0;
  /// A key while this screen has the focus.
  virtual Meaning key(const KeyPress& press, const FocusFacts& facts, Uint64 nowMs) = 0;
  /// A direction that was pressed, or that is held and repeats.
  virtual Meaning move(Direction direction, const FocusFacts& facts, Uint64 nowMs) = 0;
  /// Whether a held direction repeats here.
  virtual bool repeats(const FocusFacts& facts) const = 0;
  /// Text and mouse events reach the screen that has the focus; most have no use for them.
  virtual Meaning event(const SDL_Event& /*event*/, Uint64 /*nowMs*/) { return Unhandled(); }
  /// Once per pass, before the keys: what time and workers have brought.
  virtual Meaning advance(Uint64 /*nowMs*/) { return Unhandled(); }

  /// Over the picture and the layers below; nothing if it is not open.
  virtual void draw(const FrameContext& frame, const FocusFacts& facts) = 0;
  /// Textures go before the renderer that they live on.
  virtual void destroyTextures() = 0;
};

}  // namespace tavek
