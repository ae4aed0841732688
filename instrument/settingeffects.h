#pragma once

#include <string_view>

#include "instrument/metercore.h"

namespace qv3 {

/// Brings about what the menu item of the setting does once the setting has its value; an unknown
/// key does nothing.
void applySettingEffects(MeterCore& core, std::string_view key);

}  // namespace qv3
