#include "instrument/settingeffects.h"

#include "settings/derived.h"
#include "settings/settingsrows.h"

namespace qv3 {

void applySettingEffects(MeterCore& core, std::string_view key) {
  const SettingRow* row = findSetting(key);
  if (row == nullptr) return;
  const Effect effects = row->effects;
  if (has(effects, Effect::BodyMotionThreshold)) {
    core.BmThreshold = bodyMotionThreshold(core.settings.BM_Threshold_Index);
  }
  if (has(effects, Effect::LagLimit)) core.LagLimit = lagLimit(core.settings.DataLag_Index);
  if (has(effects, Effect::GraphRebuild)) core.display.rebuildGraph();
  if (has(effects, Effect::GraphBack) || has(effects, Effect::WindowBack)) {
    core.display.updateBackColours();
  }
  if (has(effects, Effect::WipeNeedle)) {
    core.display.Remove_Needle();
    core.Update_ModeDisplay();
  }
  if (has(effects, Effect::KnobMoved) || has(effects, Effect::RepaintKnob)) {
    core.display.Update_SensKnob(core.settings.KnobPosition);
  }
  if (has(effects, Effect::Layout)) core.display.layoutWindow();
  if (has(effects, Effect::Layout) || has(effects, Effect::RedrawPanel)) core.Draw_Panel();
  core.display.refreshControls();
}

}  // namespace qv3
