#pragma once

#include <QString>
#include <vector>

#include "recording/samplerecord.h"

namespace qv3::test {

/// A session on the disk, looked at with nothing of the program but the codec of a record.
struct SavedPair {
  std::vector<SampleRecord> records;
  double soundSeconds = -1;  ///< without a sound file less than 0
  double heardSeconds = 0;   ///< where the last that is not silence stands

  double dataSeconds() const;
};

/// Fails the test where the files are not what they have to be: whole records whose times never
/// fall, made of readings that were sent, in their order, and a sound file that ends when the data
/// does or later.
SavedPair readPair(const QString& data, const std::vector<int>& sent);

}  // namespace qv3::test
