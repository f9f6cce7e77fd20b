#pragma once

#include <SDL.h>

#include "display/toolkit/colour.h"
#include "display/toolkit/sdl_handles.h"

/// Shapes of the user interface. All restore what they change of the renderer's state but the draw colour,
/// and draw nothing on a null renderer.
namespace tavek {

/// Switches the renderer to a blend mode for as long as it lives.
class BlendScope {
 public:
  explicit BlendScope(SDL_Renderer* renderer, SDL_BlendMode mode = SDL_BLENDMODE_BLEND);
  ~BlendScope();
  BlendScope(const BlendScope&) = delete;
  BlendScope& operator=(const BlendScope&) = delete;

 private:
  SDL_Renderer* renderer_;
  SDL_BlendMode before_ = SDL_BLENDMODE_NONE;
};

/// A rectangle, blended as the renderer is set; an opaque one just covers. Empty and negative sizes draw
/// nothing.
void fillRect(SDL_Renderer* renderer, const SDL_Rect& rect, Colour colour);
void outlineRect(SDL_Renderer* renderer, const SDL_Rect& rect, Colour colour);

/// A disc whose outer `ring` pixels thin out to 70 percent. A ring that is not smaller than the radius lies
/// around the whole disc instead. A rim colour with an alpha above zero smooths the circle of `radius`.
void drawDisc(SDL_Renderer* renderer, int centreX, int centreY, int radius, int ring, Colour colour,
              Colour rim = 0);

/// A disc that stands for many frames: its picture is made once and copied from then on. Has to go before its
/// renderer.
class Disc {
 public:
  /// As drawDisc; a strength of 1 is the full colour.
  void draw(SDL_Renderer* renderer, SDL_Point centre, int radius, int ring, Colour colour, double strength);

 private:
  int radius_ = 0;
  int ring_ = 0;
  Colour colour_ = 0;
  TexturePtr picture_;
};

/// The green triangle in the top right corner of a watched poster; a strength of 1 is the full colour.
void drawCornerMark(SDL_Renderer* renderer, const SDL_Rect& poster, double strength);

/// The box of all pages: black, with an orange frame when focused.
void fillPanel(SDL_Renderer* renderer, const SDL_Rect& rect);
void framePanel(SDL_Renderer* renderer, const SDL_Rect& rect, bool focused);
void drawPanel(SDL_Renderer* renderer, const SDL_Rect& rect, bool focused);

/// Where the insertion mark stands in a box: two pixels wide, kept off the left and right edges.
SDL_Rect caretRect(const SDL_Rect& box, int x, int height);
/// It blinks with a period of 1200 milliseconds of `ticks`.
bool caretShows(Uint64 ticks);
void drawCaret(SDL_Renderer* renderer, const SDL_Rect& box, int x, int height, bool active);

struct ToggleStyle {
  Colour on = theme::toggleOn;
  Colour off = theme::toggleOff;
  Colour knob = theme::toggleKnob;
};

/// The pill-shaped switch; focus lightens it.
void drawToggle(const ToggleStyle& style, SDL_Renderer* renderer, const SDL_Rect& rect, bool on,
                bool focused);

}  // namespace tavek
