#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "display/settings/settings_page.h"
#include "lights/hue_bridge.h"
#include "state/device_settings.h"

namespace tavek {

/// In the order of the focus.
enum class HueRow : std::size_t {
  Enabled,
  Bridge,
  User,
  Group,
  PlayScene,
  PauseScene,
  PlayAlert,
  PauseAlert,
  Save
};
inline constexpr std::size_t hueRows = 9;

struct HueOption {
  std::string label, value;
};

/// What the lights' page edits, without its looks.
class HueForm {
 public:
  /// Drops all edits, and what a bridge has told.
  void open(const HueSettings& settings);
  PageAct key(const KeyPress& press);
  void text(std::string_view typed);
  bool wantsText() const { return enabled_ && !listOpen() && takesText(focus_); }
  void say(std::string status) { status_ = std::move(status); }
  /// What the bridge has told; fields that were changed since it was asked stay as they are.
  void takeScan(HueScan scan);

  HueRow focusRow() const { return focus_; }
  bool enabled() const { return enabled_; }
  /// What the row shows.
  std::string label(HueRow row) const;
  std::string value(HueRow row) const;
  const std::string& status() const { return status_; }
  bool listOpen() const { return !options_.empty(); }
  bool closeList();
  HueRow listRow() const { return focus_; }
  const std::vector<HueOption>& options() const { return options_; }
  std::size_t optionIndex() const { return optionIndex_; }
  HueSettings settings() const;

 private:
  /// With the lights off the focus goes through rows that are not shown.
  bool hidden() const { return !enabled_ && focus_ != HueRow::Enabled && focus_ != HueRow::Save; }
  static bool takesText(HueRow row) { return row >= HueRow::Bridge && row <= HueRow::PauseScene; }
  std::string& field(HueRow row) { return fields_[static_cast<std::size_t>(row)]; }
  const std::string& field(HueRow row) const { return fields_[static_cast<std::size_t>(row)]; }
  void change(HueRow row, std::string value);
  void moveFocus(int step);
  void cycle(int step);
  PageAct activate();
  PageAct listKey(SDL_Keycode key);
  void openList();
  void chooseOption();
  void erase();
  std::vector<HueOption> valuesOf(HueRow row) const;
  void fixGroup();
  void fixScene(HueRow row);

  HueRow focus_ = HueRow::Enabled;
  bool enabled_ = true;
  std::array<std::string, hueRows> fields_;  ///< by row
  std::array<bool, hueRows> touched_{};      ///< since the bridge was asked
  std::string status_;
  std::vector<HueGroup> groups_;
  std::vector<HueScene> scenes_;
  std::vector<HueOption> options_;  ///< of the open list
  std::size_t optionIndex_ = 0;
};

}  // namespace tavek
