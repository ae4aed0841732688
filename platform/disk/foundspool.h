#pragma once

#include <string>

#include "recording/recordbuffer.h"
#include "recording/take.h"

namespace qv3 {

/// The sound of a recording that a program left behind, made ready to be played and saved: its
/// lead-in is cut, and it is lengthened with silence to last as long as the records. Sound that
/// cannot be read, or not be mended, has no length; saved, it is silence.
TakeSound mendFoundSpool(const std::string& path, const RecordBuffer& records);

}  // namespace qv3
