#include "display/geometry/tints.h"

#include <array>

#include "measure/numbers.h"

namespace qv3 {

namespace {

constexpr std::array<int, 6> kShadowWeights{0, 2, 4, 7, 11, 20};
constexpr int kFullWeight = 20;
constexpr int kTintWeight = 4;

int mixChannel(int from, int to, int weight) {
  const double share = static_cast<double>(weight) / kFullWeight;
  return roundHalfEven(from + share * (to - from));
}

Colour mix(Colour from, Colour to, int weight) {
  const Channels a = unpack(from);
  const Channels b = unpack(to);
  return pack({mixChannel(a.red, b.red, weight), mixChannel(a.green, b.green, weight),
               mixChannel(a.blue, b.blue, weight)});
}

constexpr int fifthTowards(int from, int to) {
  return from + (to - from) / 5;
}

}  // namespace

Colour ShadowNeedleColor(Colour dial, Colour needle, int index) {
  const bool known = index >= 0 && index < static_cast<int>(kShadowWeights.size());
  return mix(dial, needle, known ? kShadowWeights[static_cast<std::size_t>(index)] : 0);
}

Colour DialNeedleTint(Colour dial, Colour needle) {
  return mix(dial, needle, kTintWeight);
}

Colour PanelTextTint(Colour panel, Colour text) {
  const Channels a = unpack(panel);
  const Channels b = unpack(text);
  return pack(
      {fifthTowards(a.red, b.red), fifthTowards(a.green, b.green), fifthTowards(a.blue, b.blue)});
}

}  // namespace qv3
