// A virtual screen of a test's own: its pixels, its keys, and pictures that tell their number.
#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <optional>

#include "rig/process.h"

struct _XDisplay;

namespace tavek::rig {

struct Point {
  int x = 0, y = 0;
};

/// Where the number strip of a picture lies: from its first cell's outer edge to the last one's.
struct Line {
  Point from, to;
};

/// The strip of a picture that fills a 1920 by 1080 screen.
inline constexpr Line fullWidth{{0, 40}, {1920, 40}};

/// Number cells: a white one, sixteen bits from the highest, their even parity, a black and a white one.
inline constexpr int stripCells = 20;
std::vector<bool> stripOf(int number);

/// An Xvfb server on a number that was free, with its frame buffer mapped. Keys go to the window that has the
/// focus; they are X keysym names (XF86AudioPlay, XF86AudioForward, XF86HomePage, Menu, Print, Left ...).
class Screen {
 public:
  Screen();
  ~Screen();

  const std::string& name() const { return name_; }
  /// 0xRRGGBB.
  std::uint32_t pixel(int x, int y) const { return pixels_[y * fullWidth.to.x + x] & 0xffffff; }
  /// Pixels of the row from x1 up to x2 that the test accepts.
  template <typename Accepts>
  int count(int y, int x1, int x2, Accepts accepts) const {
    int found = 0;
    for (int x = x1; x < x2; ++x) found += accepts(pixel(x, y)) ? 1 : 0;
    return found;
  }
  std::optional<int> number(const Line& line = fullWidth) const;

  /// Waits for a window and gives it the input focus, as a window manager would.
  bool focusWindow(double seconds);
  void hold(const std::string& key) { fake(key, true); }
  void release(const std::string& key) { fake(key, false); }
  void press(const std::string& key) {
    hold(key);
    release(key);
  }
  /// Asks the window to close, as a window manager does.
  void closeWindow();

 private:
  void fake(const std::string& key, bool down);

  TempFolder folder_;
  std::unique_ptr<Program> server_;
  std::string name_;
  _XDisplay* display_ = nullptr;
  unsigned long window_ = 0;
  void* map_ = nullptr;
  std::size_t mapBytes_ = 0;
  const volatile std::uint32_t* pixels_ = nullptr;
};

/// A new number on the screen.
struct Sight {
  double at = 0;
  int number = 0;
};

/// Looks at the screen each millisecond and notes each new number, and when the picture's body turns white.
class Watch {
 public:
  explicit Watch(const Screen& screen, const Line& line = fullWidth);
  ~Watch();
  /// Everything from the given time on.
  std::vector<Sight> sights(double since = 0) const;
  /// The numbers from `from` up to `to`.
  std::vector<Sight> numbered(int from, int to) const;
  std::vector<double> flashes(double since = 0) const;
  /// The last number seen; -1 before the first.
  int number() const { return last_; }

 private:
  void look();

  const Screen& screen_;
  const Line line_;
  mutable std::mutex lock_;
  std::vector<Sight> sights_;
  std::vector<double> flashes_;
  std::atomic<int> last_{-1};
  std::atomic<bool> stop_{false};
  std::thread thread_;
};

}  // namespace tavek::rig
