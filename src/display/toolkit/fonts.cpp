#include "display/toolkit/fonts.h"

#include <filesystem>
#include <string>
#include <system_error>
#include <unordered_map>

#include "base/paths.h"

namespace tavek {
namespace {

/// One face file and the sizes of it that are open. The file is looked for once, so a missing one costs no
/// status query per line of text.
class Face {
 public:
  explicit Face(const char* fileName) {
    const std::filesystem::path file = fontFolder() / fileName;
    std::error_code ignored;
    if (std::filesystem::exists(file, ignored)) file_ = file.string();
  }

  FontPtr open(int size) const {
    if (size <= 0 || file_.empty()) return nullptr;
    const std::lock_guard held(fontLock);
    return FontPtr(TTF_OpenFont(file_.c_str(), size));
  }

  TTF_Font* get(int size) {
    const auto known = open_.find(size);
    if (known != open_.end()) return known->second.get();
    FontPtr font = open(size);
    return font ? (open_[size] = std::move(font)).get() : nullptr;
  }

  void close() { open_.clear(); }

 private:
  std::string file_;
  std::unordered_map<int, FontPtr> open_;
};

Face& regularFace() {
  static Face face("Lato-Regular.ttf");
  return face;
}

Face& thinFace() {
  static Face face("Lato-Thin.ttf");
  return face;
}

}  // namespace

TTF_Font* regularFont(int size) {
  return regularFace().get(size);
}

TTF_Font* thinFont(int size) {
  return thinFace().get(size);
}

FontPtr openRegularFont(int size) {
  return regularFace().open(size);
}

void closeFonts() {
  regularFace().close();
  thinFace().close();
}

}  // namespace tavek
