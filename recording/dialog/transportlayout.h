#pragma once

#include <QRect>
#include <array>

namespace qv3 {

/// The keys of the transport panel from left to right.
enum class TransportKey { Record, Stop, Play, Rev, Fwd, Loop, Load, Save };
inline constexpr int kTransportKeys = 8;

/// What the panel's texts need, in logical pixels.
struct TransportMetrics {
  int line = 15;                               ///< height of a line of text
  std::array<int, kTransportKeys> captions{};  ///< the widest caption that each key may show
  int time = 60;       ///< the longest time, as wide as it is in the text's font
  int details = 100;   ///< what the read-outs beside the time need at least
  int tag = 30;        ///< tag count with its sign
  QSize list{60, 24};  ///< numbered files
};

/// Where the panel's parts lie.
struct TransportPlaces {
  QRect bar;
  std::array<QRect, kTransportKeys> keys;
  bool captions = true;  ///< else the keys show their symbols alone
  QRect display;         ///< the inset that holds the read-outs
  QRect time;
  QRect total;
  QRect file;
  QRect mode;
  QRect tag;
  QRect list;

  const QRect& key(TransportKey which) const { return keys[static_cast<std::size_t>(which)]; }
};

/// Height of the panel with lines so high: 83 at the standard font, growing with larger ones.
int transportHeight(int line);

/// The places in a panel of this size. As the width gets short the keys lose their captions, then
/// stand in two rows; the read-outs keep what they need as long as there is any room.
TransportPlaces layOutTransport(const QSize& panel, const TransportMetrics& metrics);

}  // namespace qv3
