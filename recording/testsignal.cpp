#include "recording/testsignal.h"

#include <cmath>

#include "measure/numbers.h"

namespace qv3 {
namespace {

constexpr int kRecords = 200;
constexpr double kHalfTurn = 3.14159;  // no more digits: they would move some records
constexpr double kSwing = 9000;

}  // namespace

RecordBuffer testSignal() {
  RecordBuffer records;
  double phase = 0;
  for (int number = 1; number <= kRecords; ++number) {
    phase += 2 * kHalfTurn / kRecords;
    SampleRecord record;
    record.NeedleShown = static_cast<std::int16_t>(roundHalfEven(kSwing * std::sin(phase)));
    records.append(record);
  }
  return records;
}

}  // namespace qv3
