#include "display/settings/hue_form.h"

#include <algorithm>
#include <utility>

#include "library/titles.h"

namespace tavek {
namespace {

constexpr std::size_t longestField = 96;  // bytes
constexpr std::array<std::string_view, hueRows> labels = {"Hue Lights", "Bridge IP",   "Hue User",
                                                          "Group",      "Play Scene",  "Pause Scene",
                                                          "Play Alert", "Pause Alert", "Save"};
const std::vector<HueOption> alerts = {{"None", ""}, {"select", "select"}, {"lselect", "lselect"}};

std::size_t around(std::size_t index, int step, std::size_t count) {
  return (index + count + static_cast<std::size_t>(step)) % count;
}

/// Where the value stands, or the first place.
std::size_t placeOf(const std::vector<HueOption>& options, const std::string& value) {
  const auto found = std::ranges::find(options, value, &HueOption::value);
  return found != options.end() ? static_cast<std::size_t>(found - options.begin()) : 0;
}

}  // namespace

void HueForm::open(const HueSettings& settings) {
  *this = {};
  enabled_ = settings.enabled;
  const std::pair<HueRow, const std::optional<std::string>&> stored[] = {
      {HueRow::Bridge, settings.bridge},         {HueRow::User, settings.user},
      {HueRow::Group, settings.group},           {HueRow::PlayScene, settings.playScene},
      {HueRow::PauseScene, settings.pauseScene}, {HueRow::PlayAlert, settings.playAlert},
      {HueRow::PauseAlert, settings.pauseAlert}};
  for (const auto& [row, value] : stored) field(row) = value.value_or("");
}

HueSettings HueForm::settings() const {
  const auto value = [this](HueRow row) {
    return field(row).empty() ? std::nullopt : std::optional(field(row));
  };
  return {.bridge = value(HueRow::Bridge),
          .user = value(HueRow::User),
          .group = value(HueRow::Group),
          .playScene = value(HueRow::PlayScene),
          .pauseScene = value(HueRow::PauseScene),
          .playAlert = value(HueRow::PlayAlert),
          .pauseAlert = value(HueRow::PauseAlert),
          .enabled = enabled_};
}

// --- Keys ---

PageAct HueForm::key(const KeyPress& press) {
  if (press.key == SDLK_LEFT) return PageAct::PreviousTab;
  if (press.repeat && (press.key == SDLK_RETURN || press.key == SDLK_KP_ENTER)) return PageAct::Handled;
  if (listOpen()) return listKey(press.key);
  switch (press.key) {
    case SDLK_DOWN:
      moveFocus(+1);
      break;
    case SDLK_UP:
      moveFocus(-1);
      break;
    case SDLK_TAB:
      moveFocus(press.shift ? -1 : +1);
      break;
    case SDLK_RIGHT:
      cycle(+1);
      break;
    case SDLK_RETURN:
    case SDLK_KP_ENTER:
      return activate();
    case SDLK_BACKSPACE:
      erase();
      break;
    case SDLK_AC_BACK:
      return PageAct::ToAudio;
    default:
      break;
  }
  return PageAct::Handled;
}

void HueForm::moveFocus(int step) {
  focus_ = static_cast<HueRow>(around(static_cast<std::size_t>(focus_), step, hueRows));
}

PageAct HueForm::activate() {
  if (hidden()) return PageAct::Handled;
  if (focus_ == HueRow::Enabled) enabled_ = !enabled_;
  if (focus_ >= HueRow::Group && focus_ <= HueRow::PauseScene) openList();
  if (focus_ != HueRow::Save) return PageAct::Handled;
  if (!field(HueRow::Bridge).empty() && !field(HueRow::User).empty()) return PageAct::Close;
  status_ = "Bridge and User cannot be empty.";
  return PageAct::Handled;
}

void HueForm::change(HueRow row, std::string value) {
  field(row) = std::move(value);
  touched_[static_cast<std::size_t>(row)] = true;
}

void HueForm::cycle(int step) {
  if (hidden()) return;
  const std::vector<HueOption> values = valuesOf(focus_);
  if (values.empty()) return;
  change(focus_, values[around(placeOf(values, field(focus_)), step, values.size())].value);
  if (focus_ == HueRow::Group) fixGroup();
}

void HueForm::text(std::string_view typed) {
  while (wantsText() && !typed.empty()) {
    std::string_view rest = typed;
    const auto code = takeCharacter(rest);
    if (!code) rest.remove_prefix(1);
    const std::string_view character = typed.substr(0, typed.size() - rest.size());
    typed = rest;
    const bool prints = code && *code >= 0x20 && (*code < 0x7F || *code >= 0xA0);
    if (prints && field(focus_).size() + character.size() <= longestField)
      change(focus_, field(focus_).append(character));
  }
}

void HueForm::erase() {
  if (!wantsText()) return;
  std::string value = field(focus_);
  const auto continues = [](char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; };
  while (!value.empty() && continues(value.back())) value.pop_back();
  if (!value.empty()) value.pop_back();
  change(focus_, std::move(value));
}

// --- The list ---

PageAct HueForm::listKey(SDL_Keycode key) {
  switch (key) {
    case SDLK_UP:
    case SDLK_DOWN:
      optionIndex_ = around(optionIndex_, key == SDLK_UP ? -1 : +1, options_.size());
      break;
    case SDLK_RETURN:
    case SDLK_KP_ENTER:
      chooseOption();
      break;
    case SDLK_AC_BACK:
    case SDLK_BACKSPACE:
      closeList();
      break;
    default:
      break;
  }
  return PageAct::Handled;
}

/// What the row can be set to, as far as the bridge has told.
std::vector<HueOption> HueForm::valuesOf(HueRow row) const {
  if (row == HueRow::PlayAlert || row == HueRow::PauseAlert) return alerts;
  std::vector<HueOption> values;
  if (row == HueRow::Group)
    for (const auto& [id, name] : groups_)
      values.push_back({std::string(name).append(" (").append(id).append(")"), id});
  if (row != HueRow::PlayScene && row != HueRow::PauseScene) return values;
  const auto add = [&](bool all) {
    for (const auto& [id, name, group] : scenes_)
      if (all || group == field(HueRow::Group)) values.push_back({name.empty() ? id : name, id});
  };
  if (!field(HueRow::Group).empty()) add(false);
  if (values.empty()) add(true);
  return values;
}

void HueForm::openList() {
  options_ = valuesOf(focus_);
  options_.insert(options_.begin(), {"(none)", ""});
  optionIndex_ = placeOf(options_, field(focus_));
}

void HueForm::chooseOption() {
  change(focus_, options_[optionIndex_].value);
  if (focus_ == HueRow::Group) fixGroup();
  closeList();
}

bool HueForm::closeList() {
  const bool open = listOpen();
  options_.clear();
  return open;
}

// --- The bridge ---

void HueForm::takeScan(HueScan scan) {
  status_ = std::move(scan.failure);
  if (!status_.empty()) return;
  groups_ = std::move(scan.groups);
  scenes_ = std::move(scan.scenes);
  closeList();
  std::string& group = field(HueRow::Group);
  const bool known = std::ranges::find(groups_, group, &HueGroup::id) != groups_.end();
  if (!touched_[static_cast<std::size_t>(HueRow::Group)] && !group.empty() && !known)
    group = groups_.empty() ? "" : groups_.front().id;
  for (const HueRow row : {HueRow::PlayScene, HueRow::PauseScene})
    if (!touched_[static_cast<std::size_t>(row)]) fixScene(row);
  touched_ = {};
}

/// Another group has other scenes.
void HueForm::fixGroup() {
  fixScene(HueRow::PlayScene);
  fixScene(HueRow::PauseScene);
}

void HueForm::fixScene(HueRow row) {
  std::string& scene = field(row);
  const bool known = std::ranges::find(scenes_, scene, &HueScene::id) != scenes_.end();
  if (known && !scene.empty()) return;
  if (scenes_.empty()) return scene.clear();
  const auto ofGroup = std::ranges::find(scenes_, field(HueRow::Group), &HueScene::group);
  const bool found = !field(HueRow::Group).empty() && ofGroup != scenes_.end();
  scene = found ? ofGroup->id : scenes_.front().id;
}

// --- What is shown ---

std::string HueForm::label(HueRow row) const {
  return std::string(labels[static_cast<std::size_t>(row)]);
}

std::string HueForm::value(HueRow row) const {
  const std::string& text = field(row);
  switch (row) {
    case HueRow::Enabled:
      return enabled_ ? "Enabled" : "Disabled";
    case HueRow::Bridge:
    case HueRow::User:
      return text.empty() ? "(required)" : text;
    case HueRow::PlayAlert:
    case HueRow::PauseAlert:
      return text.empty() ? "None" : text;
    case HueRow::Group: {
      const auto group = std::ranges::find(groups_, text, &HueGroup::id);
      return group != groups_.end() && !group->name.empty() ? group->name : text;
    }
    case HueRow::PlayScene:
    case HueRow::PauseScene: {
      const auto scene = std::ranges::find(scenes_, text, &HueScene::id);
      return scene != scenes_.end() && !scene->name.empty() ? scene->name : text;
    }
    case HueRow::Save:
      break;
  }
  return "";
}

}  // namespace tavek
