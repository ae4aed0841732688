#pragma once

#include <QPainterPath>

#include "recording/transportstate.h"

namespace qv3 {

/// The outline of a key's symbol, to be filled, in a square of 24 by 24 units.
QPainterPath transportSymbol(TransportSymbol symbol);

inline constexpr double kSymbolUnits = 24;

}  // namespace qv3
