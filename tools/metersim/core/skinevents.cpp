#include "tools/metersim/core/skinevents.h"

#include <algorithm>
#include <cmath>

#include "tools/metersim/core/nanos.h"

namespace qv3::metersim {
namespace {

constexpr double kTurn = 6.283185307179586;
constexpr double kGone = 0.25;  // readings; less than half of one shows nowhere

}  // namespace

// A bell-shaped drive into a leaky store: slope and curvature have no jump anywhere.
void SkinEvents::advance(RunningFall& fall) {
  fall.age += kFrameSeconds;
  const double part = fall.age / fall.fall.onset;
  const double bell = part < 1 ? (1 - std::cos(kTurn * part)) / 2 : 0;
  fall.depth += (fall.drive * bell - fall.depth / fall.fall.recovery) * kFrameSeconds;
}

// Recovery starts while the drive still works, so a fall is less deep than its drive alone says.
double SkinEvents::unitDepth(Fall fall) {
  RunningFall unit{fall, 1, 0, 0};
  double deepest = 0;
  while (unit.age < fall.onset) {
    advance(unit);
    deepest = std::max(deepest, unit.depth);
  }
  return deepest;
}

void SkinEvents::start(const Fall& fall) {
  m_falls.push_back({fall, fall.size / unitDepth(fall), 0, 0});
}

void SkinEvents::start(const Movement& movement) {
  m_movements.push_back({movement, 0});
}

double SkinEvents::nextMovement() {
  double sum = 0;
  for (RunningMovement& running : m_movements) {
    running.age += kFrameSeconds;
    const double envelope = std::sin(kTurn / 2 * running.age / running.movement.seconds);
    sum +=
        running.movement.size * envelope * std::sin(kTurn * running.movement.hertz * running.age);
  }
  std::erase_if(m_movements, [](const RunningMovement& running) {
    return running.age + kFrameSeconds > running.movement.seconds;
  });
  return sum;
}

double SkinEvents::next() {
  double sum = nextMovement();
  for (RunningFall& fall : m_falls) {
    advance(fall);
    sum -= fall.depth;
  }
  std::erase_if(m_falls, [](const RunningFall& fall) {
    return fall.age > fall.fall.onset && std::abs(fall.depth) < kGone;
  });
  return sum;
}

}  // namespace qv3::metersim
