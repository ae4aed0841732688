#pragma once

#include "recording/recordbuffer.h"

namespace qv3 {

/// What the test mode plays over and over: 200 records, one cycle of a sine as wide as the dial.
RecordBuffer testSignal();

}  // namespace qv3
