#include "rig/screen.h"

#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>
#include <algorithm>
#include <arpa/inet.h>
#include <fcntl.h>
#include <stdexcept>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace tavek::rig {
namespace {

// Fields of the dump header, in 32-bit big-endian words.
constexpr int headerBytesField = 0, colourCountField = 19;
constexpr std::size_t colourBytes = 12;

constexpr int numberBits = 16;
// A picture that fades in is read as soon as its white stands out that much from its black.
constexpr int leastContrast = 12;

// Within the flashing body, below the numbers, and away from everything that is drawn over a picture.
constexpr Point bodyPoint{240, 270};

int brightness(std::uint32_t colour) {
  return static_cast<int>(colour >> 8 & 0xff);
}

}  // namespace

std::vector<bool> stripOf(int number) {
  std::vector<bool> cells{true};
  bool parity = false;
  for (int bit = numberBits - 1; bit >= 0; --bit) {
    cells.push_back((number >> bit & 1) != 0);
    parity ^= cells.back();
  }
  cells.insert(cells.end(), {parity, false, true});
  return cells;
}

Screen::Screen() {
  XSetErrorHandler([](::Display*, XErrorEvent*) { return 0; });  // a window may vanish under a request
  server_ = std::make_unique<Program>(
      std::vector<std::string>{"Xvfb", "-displayfd", "1", "-screen", "0", "1920x1080x24", "-fbdir",
                               folder_.path(), "-nolisten", "tcp", "-noreset"},
      Environment{});
  waitUntil(20, [this] { return server_->output().ends_with('\n'); });
  name_ = ":" + std::to_string(atoi(server_->output().c_str()));
  display_ = XOpenDisplay(name_.c_str());
  const int file = open((folder_.path() / "Xvfb_screen0").c_str(), O_RDONLY);
  struct stat status {};
  if (display_ == nullptr || file < 0 || fstat(file, &status) != 0)
    throw std::runtime_error("no screen: " + name_);
  mapBytes_ = static_cast<std::size_t>(status.st_size);
  map_ = mmap(nullptr, mapBytes_, PROT_READ, MAP_SHARED, file, 0);
  close(file);
  if (map_ == MAP_FAILED) throw std::runtime_error("no frame buffer");
  const auto* header = static_cast<const std::uint32_t*>(map_);
  const std::size_t offset = ntohl(header[headerBytesField]) + ntohl(header[colourCountField]) * colourBytes;
  pixels_ = header + offset / sizeof *header;
}

Screen::~Screen() {
  if (display_ != nullptr) XCloseDisplay(display_);
  if (map_ != nullptr) munmap(map_, mapBytes_);
}

std::optional<int> Screen::number(const Line& line) const {
  int cells[stripCells];
  for (int i = 0; i < stripCells; ++i) {
    const auto middle = [i](int a, int b) { return a + (b - a) * (2 * i + 1) / (2 * stripCells); };
    cells[i] = brightness(pixel(middle(line.from.x, line.to.x), middle(line.from.y, line.to.y)));
  }
  const int white = cells[0], black = cells[stripCells - 2];
  if (white - black < leastContrast) return std::nullopt;
  int number = 0;
  for (int i = 1; i <= numberBits; ++i) number = number * 2 + (cells[i] * 2 > white + black ? 1 : 0);
  const std::vector<bool> wanted = stripOf(number);
  for (int i = 0; i < stripCells; ++i) {
    // Grey cells come from a picture that is being drawn, or from something that is no strip.
    if (std::abs(cells[i] - (wanted[static_cast<std::size_t>(i)] ? white : black)) * 4 > white - black)
      return std::nullopt;
  }
  return number;
}

bool Screen::focusWindow(double seconds) {
  return waitUntil(seconds, [this] {
    Window root = 0, parent = 0, focused = 0, *children = nullptr;
    unsigned count = 0;
    int revert = 0;
    XQueryTree(display_, DefaultRootWindow(display_), &root, &parent, &children, &count);
    window_ = 0;
    for (unsigned i = 0; i < count; ++i) {
      XWindowAttributes attributes{};
      XGetWindowAttributes(display_, children[i], &attributes);
      if (attributes.map_state == IsViewable) window_ = children[i];
    }
    if (children != nullptr) XFree(children);
    if (window_ == 0) return false;
    XSetInputFocus(display_, window_, RevertToParent, CurrentTime);
    XGetInputFocus(display_, &focused, &revert);
    return focused == window_;
  });
}

void Screen::fake(const std::string& key, bool down) {
  const KeyCode code = XKeysymToKeycode(display_, XStringToKeysym(key.c_str()));
  if (code == 0) throw std::runtime_error("no key " + key);
  XTestFakeKeyEvent(display_, code, down ? True : False, 0);
  XSync(display_, False);
}

void Screen::closeWindow() {
  XEvent event{};
  event.xclient.type = ClientMessage;
  event.xclient.window = window_;
  event.xclient.message_type = XInternAtom(display_, "WM_PROTOCOLS", False);
  event.xclient.format = 32;
  event.xclient.data.l[0] = static_cast<long>(XInternAtom(display_, "WM_DELETE_WINDOW", False));
  XSendEvent(display_, window_, False, NoEventMask, &event);
  XSync(display_, False);
}

Watch::Watch(const Screen& screen, const Line& line)
    : screen_(screen), line_(line), thread_([this] { look(); }) {}

Watch::~Watch() {
  stop_ = true;
  thread_.join();
}

std::vector<Sight> Watch::sights(double since) const {
  const std::scoped_lock hold(lock_);
  return {std::ranges::lower_bound(sights_, since, {}, &Sight::at), sights_.end()};
}

std::vector<Sight> Watch::numbered(int from, int to) const {
  std::vector<Sight> result = sights();
  std::erase_if(result, [=](const Sight& sight) { return sight.number < from || sight.number >= to; });
  return result;
}

std::vector<double> Watch::flashes(double since) const {
  const std::scoped_lock hold(lock_);
  return {std::lower_bound(flashes_.begin(), flashes_.end(), since), flashes_.end()};
}

void Watch::look() {
  std::optional<Sight> candidate;
  for (bool bright = true; !stop_; std::this_thread::sleep_for(std::chrono::milliseconds(1))) {
    const double at = now();
    const bool wasBright = std::exchange(bright, brightness(screen_.pixel(bodyPoint.x, bodyPoint.y)) > 128);
    const std::optional<int> number = screen_.number(line_);
    const std::scoped_lock hold(lock_);
    if (bright && !wasBright) flashes_.push_back(at);
    // Two looks must agree, as the first may have met a picture that was half drawn.
    const bool agreed = candidate && number == candidate->number;
    if (agreed && *number != last_) {
      sights_.push_back(*candidate);
      last_ = *number;
    }
    if (!agreed) candidate = number ? std::optional<Sight>({at, *number}) : std::nullopt;
  }
}

}  // namespace tavek::rig
