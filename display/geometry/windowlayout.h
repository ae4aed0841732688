#pragma once

namespace qv3 {

/// Pixels from the window's upper left corner.
struct LayoutRect {
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;

  int right() const { return x + width; }    ///< first pixel beyond it
  int bottom() const { return y + height; }  ///< first pixel beyond it
  bool operator==(const LayoutRect&) const = default;
};

/// What the window shows beside meter, counter and knob.
struct LayoutParts {
  bool graphVisible = false;
  int graphHeightIndex = 3;  ///< 40 pixels each; 0 or less is no graph
  bool recordingVisible = false;
  int recordingHeight = 83;  ///< at the standard font

  int graphHeight() const;
  int recordingPanelHeight() const;
};

/// Where the window's surfaces lie. A surface without room has no extent; none overlap and none
/// leaves the window.
struct WindowLayout {
  LayoutRect picMeterPanel;  ///< 2000:1250, as large as fits
  LayoutRect picBD;          ///< right of the meter, above the knob
  LayoutRect picKnob;        ///< square
  LayoutRect picGraph;
  LayoutRect recordingPanel;
};

/// The layout of a client area. The recording panel is at the bottom and the graph on it, both as
/// wide as the window; the instrument stands in the middle of what is left.
WindowLayout layOutWindow(int width, int height, const LayoutParts& parts);

/// The client height at which a window of this width shows everything with nothing to spare.
int naturalHeight(int width, const LayoutParts& parts);

}  // namespace qv3
