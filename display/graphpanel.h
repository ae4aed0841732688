#pragma once

#include "display/accessiblevalue.h"
#include "display/geometry/chartpicture.h"
#include "display/geometry/graphtrace.h"
#include "measure/colour.h"

namespace qv3 {

/// The settings that the strip chart is drawn by.
struct GraphStyle {
  Colour GraphSheet_Color = 11924207;
  Colour GraphPen_Color = 0;
  Colour GraphGrid_Color = 12632256;
  int penWidth = 2;  ///< logical pixels; 0 or less draws no trace
  bool GridX = false;
  bool GridY = false;
};

/// The strip chart: shows a trace that belongs to somebody else and tells it the surface's width.
class GraphPanel : public ValueWidget {
  Q_OBJECT

 public:
  /// `trace` outlives the panel.
  explicit GraphPanel(GraphTrace& trace, QWidget* parent = nullptr);

  void setStyle(const GraphStyle& style);

  /// The trace is not what it was.
  void showTrace();

  QString accessibleValue() const override;
  QAccessible::Role accessibleRole() const override { return QAccessible::Chart; }

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  bool isPictureFitting() const;
  void fitPicture();

  GraphTrace& m_trace;
  ChartPicture m_picture;
  qreal m_ratio = 0;     ///< of the picture
  bool m_behind = true;  ///< the picture does not show the trace as it is
};

}  // namespace qv3
