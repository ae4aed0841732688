#pragma once

#include <vector>

namespace qv3::metersim {

/// One fall of the skin's resistance.
struct Fall {
  double size = 2000;     ///< readings from the start to the lowest point
  double onset = 1.5;     ///< seconds that the sweat glands drive it down
  double recovery = 4.0;  ///< seconds, time constant of the way back
};

/// One movement of the hands on the electrodes: a wiggle, quickest in its middle.
struct Movement {
  double size = 900;     ///< readings to either side
  double hertz = 4;      ///< how quickly it shakes
  double seconds = 0.8;  ///< how long it lasts
};

/// The passing events that lie over a level. A fall begins smoothly, so that no body-motion
/// detector takes it for a movement: its second difference stays well below 30 readings, a
/// movement's goes far beyond 100.
class SkinEvents {
 public:
  void start(const Fall& fall);
  void start(const Movement& movement);

  /// How far the reading is off its level in the next frame.
  double next();

 private:
  struct RunningFall {
    Fall fall;
    double drive = 0;  ///< readings a second at the middle of the onset
    double age = 0;
    double depth = 0;
  };
  struct RunningMovement {
    Movement movement;
    double age = 0;
  };

  static void advance(RunningFall& fall);
  static double unitDepth(Fall fall);
  double nextMovement();

  std::vector<RunningFall> m_falls;
  std::vector<RunningMovement> m_movements;
};

}  // namespace qv3::metersim
