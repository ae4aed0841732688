#pragma once

namespace qv3::test {

/// In milliseconds, far beyond what anything takes that a test waits for.
inline constexpr int kPatienceMs = 20000;

}  // namespace qv3::test
