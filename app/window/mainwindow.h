#pragma once

#include <QMainWindow>
#include <functional>

#include "display/bdpanel.h"
#include "display/dialpanel.h"
#include "display/geometry/graphtrace.h"
#include "display/geometry/windowlayout.h"
#include "display/graphpanel.h"
#include "display/knobpanel.h"
#include "recording/dialog/transportpanel.h"
#include "settings/sessionconfig.h"

namespace qv3 {

/// `frmMain`: the menu bar and the instrument's surfaces, laid out to fill it at any size. Shows
/// and places; everything that happens in it is told to others. Of the keys it has those that lead
/// to other controls: F4 to the list of files, F10 to the menus; Shift+F10 is the menu key.
class MainWindow : public QMainWindow {
 public:
  struct Events {
    std::function<void()> resized;         ///< the surfaces have another size
    std::function<void()> closeRequested;  ///< the window never closes by itself
  };

  MainWindow();

  void setEvents(Events events) { m_events = std::move(events); }

  DialPanel& dial() { return *m_dial; }
  BdPanel& bd() { return *m_bd; }
  KnobPanel& knob() { return *m_knob; }
  GraphPanel& graph() { return *m_graph; }
  GraphTrace& trace() { return m_trace; }
  TransportPanel& transport() { return *m_transport; }

  /// What the window shows; in its normal state it grows and shrinks by what comes and goes.
  void setParts(const LayoutParts& parts);

  /// Puts every surface where it belongs.
  void layOut();

  void setBackColour(Colour colour);

  /// Restores a place kept in twips; one without a width, or off every screen, gives a window of
  /// the standard width in the middle of the screen. The height is the one that shows everything.
  void restorePlace(const WindowPlacement& place);

  /// The window's normal place in twips, also while it is minimised or maximised.
  CurrentWindow currentPlace() const;

 protected:
  void closeEvent(QCloseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void resizeTo(int width, int height);
  int heightAround() const;
  void enterMenus();

  Events m_events;
  /// As placed before the window had a frame: its corner is where the frame's corner goes.
  QRect m_unframed;
  GraphTrace m_trace;
  LayoutParts m_parts;
  QWidget* m_area;
  DialPanel* m_dial;
  BdPanel* m_bd;
  KnobPanel* m_knob;
  GraphPanel* m_graph;
  TransportPanel* m_transport;
};

}  // namespace qv3
