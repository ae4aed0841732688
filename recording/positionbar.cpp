#include "recording/positionbar.h"

#include <algorithm>
#include <cmath>

namespace qv3 {
namespace {

constexpr BarRange kRecordingBlock{475, 525};
constexpr double kProgressTop = 25;
constexpr double kProgressBottom = 75;

constexpr int kStep = 10;
constexpr int kPage = 100;

int scaled(double value, int pixels, int units) {
  const double inside = std::clamp<double>(value, 0, units);
  return static_cast<int>(std::lround(inside * pixels / units));
}

int moved(int place, BarKey key, int lowest, int highest) {
  switch (key) {
    case BarKey::Left:
      return std::clamp(place - kStep, lowest, highest);
    case BarKey::Right:
      return std::clamp(place + kStep, lowest, highest);
    case BarKey::PageLeft:
      return std::clamp(place - kPage, lowest, highest);
    case BarKey::PageRight:
      return std::clamp(place + kPage, lowest, highest);
    case BarKey::First:
      return lowest;
    case BarKey::Last:
      return highest;
  }
  return place;
}

}  // namespace

int BarGeometry::column(double x) const {
  return scaled(x, m_width, kWidth);
}

int BarGeometry::row(double y) const {
  return scaled(y, m_height, kHeight);
}

int BarGeometry::placeAt(double column) const {
  if (m_width < 2) return 0;
  const double share = std::floor(column) / (m_width - 1);
  return static_cast<int>(std::lround(std::clamp(share, 0.0, 1.0) * kWidth));
}

BarBox BarGeometry::box(double fromX, double fromY, double toX, double toY) const {
  const BarBox made{column(fromX), row(fromY), column(toX), row(toY)};
  return made.empty() ? BarBox{} : made;
}

BarPicture BarGeometry::picture(const BarState& state) const {
  BarPicture made{state.face, {}, {}};
  const double place = state.place.value_or(0);
  switch (state.face) {
    case BarFace::Clear:
      break;
    case BarFace::Range:
      made.block = box(state.range.from, 0, state.range.to, kHeight);
      if (state.place) made.progress = box(state.range.from, kProgressTop, place, kProgressBottom);
      break;
    case BarFace::Recording:
      made.block = box(kRecordingBlock.from, 0, kRecordingBlock.to, kHeight);
      break;
    case BarFace::Work:
      made.progress = box(0, kProgressTop, place, kProgressBottom);
      break;
  }
  return made;
}

void BarDrag::press(int x) {
  m_from = x;
  m_to = x;
}

bool BarDrag::move(int x) {
  if (!m_from || x == m_to) return false;
  m_to = x;
  return true;
}

std::optional<BarRange> BarDrag::release() {
  if (!m_from) return std::nullopt;
  const BarRange range{*m_from, m_to};
  m_from.reset();
  if (range.from == range.to) return std::nullopt;
  return range;
}

std::optional<BarRange> BarDrag::preview() const {
  if (!m_from || *m_from == m_to) return std::nullopt;
  return BarRange{std::min(*m_from, m_to), std::max(*m_from, m_to)};
}

std::optional<BarRequest> barKey(BarKey key, bool shift, BarUse use, const BarState& state) {
  const BarRange& range = state.range;
  if (use == BarUse::Seek && !shift && range.from <= range.to) {
    const int place = static_cast<int>(std::lround(state.place.value_or(range.from)));
    const int x = moved(place, key, range.from, range.to);
    if (x != place) return BarRequest{use, {x, x}};
  }
  if (use == BarUse::Range && range.from + state.shortest <= range.to) {
    BarRange next = range;
    if (shift) {
      next.to = moved(range.to, key, range.from + state.shortest, BarGeometry::kWidth);
    } else {
      next.from = moved(range.from, key, 0, range.to - state.shortest);
    }
    if (next != range) return BarRequest{use, next};
  }
  return std::nullopt;
}

}  // namespace qv3
