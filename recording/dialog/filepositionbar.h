#pragma once

#include <QAbstractSlider>

#include "recording/positionbar.h"

namespace qv3 {

/// `picFilePosition`: where in the session playback is, and which part of it is played. Its value
/// is the place, 0 to 1000. Told the progress as often as anybody likes, it paints what changed and
/// nothing when no pixel did.
class FilePositionBar : public QAbstractSlider {
  Q_OBJECT

 public:
  explicit FilePositionBar(QWidget* parent);

  /// What mouse and keys are good for. Something else than the range gives up a drag.
  void setUse(BarUse use, bool wholeRange);

  void clear();
  /// Keys make no range of less than `shortest` places.
  void showRange(int fromX, int toX, int shortest = 1);
  void showPlayback(int fromX, int toX, double place);
  void showRecording();
  /// A file is read or written; `share` of it, 0 to 1, is done.
  void showWork(double share);

  /// What is on the bar, a range on its way included.
  BarState shown() const;

  QSize sizeHint() const override;

 signals:
  void seekRequested(int x);
  /// In the order of the drag.
  void rangeRequested(int fromX, int toX);
  void wholeRangeRequested();

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void keyReleaseEvent(QKeyEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void sliderChange(SliderChange change) override;

 private:
  void setShown(const BarState& state);
  void refresh();
  void tellPlace();
  void tellRange();
  void ask(const BarRequest& request);
  void askWholeRange();
  BarGeometry geometryInPixels() const;
  int placeAt(const QPointF& position) const;
  void updateColumns(int from, int to);

  BarState m_state;
  BarDrag m_drag;
  BarUse m_use = BarUse::None;
  bool m_wholeRange = false;
  bool m_telling = false;  ///< the value is changed by what is shown, not by a request
  BarPicture m_painted;
};

}  // namespace qv3
