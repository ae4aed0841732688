#include "recording/dialog/transportlayout.h"

#include <algorithm>
#include <cmath>

namespace qv3 {
namespace {

constexpr int kStandardHeight = 83;
constexpr int kStandardLine = 19;  ///< the highest line for which the standard height has room

constexpr int kLeftKeys = 6;  ///< stand left of the display, the others right of it
constexpr int kColumns = 4;   ///< of keys in two rows
constexpr int kGroupGapAfter = 3;

/// Distances, growing with the text.
struct Gaps {
  explicit Gaps(int line) {
    const double scale = std::max(1.0, static_cast<double>(line) / kStandardLine);
    const auto grown = [scale](int pixels) {
      return static_cast<int>(std::lround(pixels * scale));
    };
    margin = grown(6);
    key = grown(3);
    group = grown(9);
    pad = grown(7);
    keyPad = grown(5);
    bar = grown(15);
  }

  int margin;
  int key;
  int group;
  int pad;
  int keyPad;
  int bar;
};

struct Arrangement {
  bool captions = true;
  bool twoRows = false;
  int wider = 0;  ///< each key beyond what it needs
};

class Layout {
 public:
  Layout(const QSize& panel, const TransportMetrics& metrics)
      : m_panel(panel), m_metrics(metrics), m_gaps(metrics.line) {
    m_top = m_gaps.margin + m_gaps.bar + m_gaps.margin;
    m_rowHeight = std::max(0, m_panel.height() - m_top - m_gaps.margin);
  }

  TransportPlaces place(const Arrangement& arrangement) const;
  /// Beyond what the read-outs need; negative if they lack room.
  int spare(const TransportPlaces& places) const {
    return places.display.width() - displayNeeded();
  }
  /// In a wide window the keys take part of what is spare.
  int widening(int spareWidth) const {
    return std::clamp((spareWidth - displayNeeded()) / (3 * kTransportKeys), 0, m_rowHeight / 2);
  }

 private:
  int keyWidth(int key, const Arrangement& arrangement) const;
  int placeRow(TransportPlaces& places, int x, int first, int end, const Arrangement& as) const;
  int placeTwoRows(TransportPlaces& places, int x) const;
  int rightWidth(const Arrangement& arrangement) const;
  void placeReadouts(TransportPlaces& places) const;
  int displayNeeded() const { return m_metrics.time * 3 / 2 + m_metrics.details + 3 * m_gaps.pad; }

  QSize m_panel;
  const TransportMetrics& m_metrics;
  Gaps m_gaps;
  int m_top;
  int m_rowHeight;
};

int Layout::keyWidth(int key, const Arrangement& arrangement) const {
  if (arrangement.twoRows) return m_rowHeight / 2;
  const int square = m_rowHeight * 4 / 5;
  if (!arrangement.captions) return square + arrangement.wider;
  const int caption = m_metrics.captions[static_cast<std::size_t>(key)] + 2 * m_gaps.keyPad;
  return std::max(square, caption) + arrangement.wider;
}

/// Keys `first` to before `end` side by side from `x`; answers where the next thing may begin.
int Layout::placeRow(TransportPlaces& places, int x, int first, int end,
                     const Arrangement& as) const {
  for (int key = first; key < end; ++key) {
    const int width = keyWidth(key, as);
    places.keys[static_cast<std::size_t>(key)] = {x, m_top, width, m_rowHeight};
    x += width + (key + 1 == kGroupGapAfter || key + 1 == end ? m_gaps.group : m_gaps.key);
  }
  return x;
}

int Layout::placeTwoRows(TransportPlaces& places, int x) const {
  const int height = (m_rowHeight - m_gaps.key) / 2;
  const int width = keyWidth(0, {false, true});
  for (int key = 0; key < kTransportKeys; ++key) {
    const int left = x + key % kColumns * (width + m_gaps.key);
    const int top = m_top + key / kColumns * (height + m_gaps.key);
    places.keys[static_cast<std::size_t>(key)] = {left, top, width, height};
  }
  return x + kColumns * (width + m_gaps.key) - m_gaps.key + m_gaps.group;
}

/// What stands right of the display, its gap included.
int Layout::rightWidth(const Arrangement& arrangement) const {
  int width = m_gaps.group + m_metrics.list.width();
  if (arrangement.twoRows) return width;
  for (int key = kLeftKeys; key < kTransportKeys; ++key)
    width += m_gaps.key + keyWidth(key, arrangement);
  return width;
}

TransportPlaces Layout::place(const Arrangement& arrangement) const {
  TransportPlaces places;
  places.captions = arrangement.captions;
  const int inner = m_panel.width() - 2 * m_gaps.margin;
  places.bar = {m_gaps.margin, m_gaps.margin, std::max(0, inner), m_gaps.bar};
  const int left = arrangement.twoRows ? placeTwoRows(places, m_gaps.margin)
                                       : placeRow(places, m_gaps.margin, 0, kLeftKeys, arrangement);
  const int right = m_panel.width() - m_gaps.margin - rightWidth(arrangement);
  places.display = {left, m_top, std::max(0, right - left), m_rowHeight};
  const int listHeight = std::min(m_metrics.list.height(), m_rowHeight);
  const int listLeft = std::max(left, right) + m_gaps.group;
  places.list = {listLeft, m_top + (m_rowHeight - listHeight) / 2, m_metrics.list.width(),
                 listHeight};
  if (!arrangement.twoRows)
    placeRow(places, listLeft + m_metrics.list.width() + m_gaps.key, kLeftKeys, kTransportKeys,
             arrangement);
  placeReadouts(places);
  return places;
}

/// Left the times, the total below; right the file, below it the record mode and the tag.
void Layout::placeReadouts(TransportPlaces& places) const {
  const QRect inside = places.display.adjusted(m_gaps.pad, m_gaps.key, -m_gaps.pad, -m_gaps.key);
  if (inside.width() <= 0 || inside.height() <= 0) return;
  const int upper = inside.height() - std::min(m_metrics.line + 1, inside.height() / 2);
  const int roomy = std::clamp(inside.width() / 3, m_metrics.time * 3 / 2, m_metrics.time * 2);
  const int timeWide = std::min(roomy, inside.width() / 2);
  places.time = {inside.left(), inside.top(), timeWide, upper};
  places.total = {inside.left(), inside.top() + upper, timeWide, inside.height() - upper};
  const int left = inside.left() + timeWide + m_gaps.pad;
  const int wide = std::max(0, inside.left() + inside.width() - left);
  const int tagWide = std::min(m_metrics.tag, wide / 3);
  places.file = {left, inside.top(), wide, upper};
  places.mode = {left, places.total.top(), std::max(0, wide - tagWide - m_gaps.pad),
                 places.total.height()};
  places.tag = {left + wide - tagWide, places.total.top(), tagWide, places.total.height()};
}

}  // namespace

int transportHeight(int line) {
  if (line <= kStandardLine) return kStandardHeight;
  return (kStandardHeight * line + kStandardLine - 1) / kStandardLine;
}

TransportPlaces layOutTransport(const QSize& panel, const TransportMetrics& metrics) {
  const Layout layout(panel, metrics);
  for (const bool captions : {true, false}) {
    const int spare = layout.spare(layout.place({captions, false, 0}));
    if (spare >= 0) return layout.place({captions, false, layout.widening(spare)});
  }
  return layout.place({false, true, 0});
}

}  // namespace qv3
