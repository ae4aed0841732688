#pragma once

#include "measure/colour.h"

namespace qv3 {

/// Colour of the shadow needle: the dial colour moved towards the needle colour. `index` is the
/// shade of the menu, 0 "Off" (the dial colour) to 5 "Full" (the needle colour); any other index
/// gives the dial colour.
Colour ShadowNeedleColor(Colour dial, Colour needle, int index);

/// The dial colour a fifth of the way to the needle colour, rounded to nearest, halves to even.
Colour DialNeedleTint(Colour dial, Colour needle);

/// The panel colour a fifth of the way to the text colour, truncated towards the panel colour.
Colour PanelTextTint(Colour panel, Colour text);

}  // namespace qv3
