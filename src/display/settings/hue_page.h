#pragma once

#include "base/background_job.h"
#include "display/settings/hue_form.h"
#include "display/settings/settings_page.h"
#include "state/stored_devices.h"

namespace tavek {

/// The settings' page of the lights. The bridge is asked beside it.
class HuePage final : public SettingsPage {
 public:
  explicit HuePage(StoredDevices& devices) : devices_(devices) {}

  void open() override;
  void close() override { scan_.leave(); }
  bool closeList() override { return form_.closeList(); }
  PageAct key(const KeyPress& press, Uint64 nowMs) override;
  bool wantsText() const override { return form_.wantsText(); }
  void text(std::string_view typed, Uint64 /*nowMs*/) override { form_.text(typed); }
  void advance(Uint64 nowMs) override;
  void draw(const FrameContext& frame, int top, bool focused) override;

 private:
  StoredDevices& devices_;
  HueForm form_;
  BackgroundJob<HueScan> scan_;
};

}  // namespace tavek
