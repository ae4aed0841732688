#include "app/window/mainwindow.h"

#include <QCloseEvent>
#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMenuBar>
#include <QProxyStyle>
#include <QScreen>
#include <QStyleOptionMenuItem>

#include "display/displaystyle.h"

namespace qv3 {
namespace {

constexpr int kStandardWidth = 896;
constexpr int kSmallestWidth = 320;
constexpr int kSmallestHeight = 240;

/// So much of the window's upper edge has to be on a screen for the window to be found and moved.
constexpr QSize kReachable(80, 24);

QRect toQRect(const LayoutRect& rect) {
  return {rect.x, rect.y, rect.width, rect.height};
}

int pixels(std::int16_t twips) {
  return qRound(pixelsFromTwips(twips));
}

/// The toolkit's own style shows the menu that a key would open only once it is open.
class MenuBarStyle : public QProxyStyle {
 public:
  using QProxyStyle::QProxyStyle;

  void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                   const QWidget* widget) const override {
    const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
    if (element != CE_MenuBarItem || item == nullptr || !item->state.testFlag(State_Selected)) {
      QProxyStyle::drawControl(element, option, painter, widget);
      return;
    }
    QStyleOptionMenuItem shown(*item);
    shown.state |= State_Sunken;
    QProxyStyle::drawControl(element, &shown, painter, widget);
  }
};

bool isReachable(const QRect& place) {
  const QRect edge(place.topLeft(), QSize(place.width(), kReachable.height()));
  for (const QScreen* screen : QGuiApplication::screens()) {
    const QRect seen = screen->availableGeometry() & edge;
    if (seen.width() >= kReachable.width() && seen.height() >= kReachable.height()) return true;
  }
  return false;
}

}  // namespace

MainWindow::MainWindow()
    : m_area(new QWidget),
      m_dial(new DialPanel(m_area)),
      m_bd(new BdPanel(m_area)),
      m_knob(new KnobPanel(m_area)),
      m_graph(new GraphPanel(m_trace, m_area)),
      m_transport(new TransportPanel(m_area)) {
  setObjectName(QStringLiteral("frmMain"));
  setWindowTitle(QStringLiteral("qv3 Varnel"));
  setMinimumSize(kSmallestWidth, kSmallestHeight);
  menuBar()->setAccessibleName(tr("Menu"));
  auto* style = new MenuBarStyle(menuBar()->style()->name());
  style->setParent(menuBar());
  menuBar()->setStyle(style);
  m_area->setObjectName(QStringLiteral("picArea"));
  m_area->setAccessibleName(tr("Instrument"));
  m_area->setAutoFillBackground(true);
  m_area->installEventFilter(this);
  m_graph->hide();
  m_transport->hide();
  setCentralWidget(m_area);
}

void MainWindow::setParts(const LayoutParts& parts) {
  const int before = m_parts.graphHeight() + m_parts.recordingPanelHeight();
  m_parts = parts;
  m_graph->setVisible(parts.graphHeight() > 0);
  m_transport->setVisible(parts.recordingPanelHeight() > 0);
  const int growth = parts.graphHeight() + parts.recordingPanelHeight() - before;
  const bool normal = (windowState() & (Qt::WindowMaximized | Qt::WindowFullScreen)) == 0;
  if (growth != 0 && isVisible() && normal) resizeTo(width(), height() + growth);
}

void MainWindow::layOut() {
  const WindowLayout layout = layOutWindow(m_area->width(), m_area->height(), m_parts);
  m_dial->setGeometry(toQRect(layout.picMeterPanel));
  m_bd->setGeometry(toQRect(layout.picBD));
  m_knob->setGeometry(toQRect(layout.picKnob));
  m_knob->setMeterWidth(layout.picMeterPanel.width);
  m_graph->setGeometry(toQRect(layout.picGraph));
  m_transport->setGeometry(toQRect(layout.recordingPanel));
}

void MainWindow::setBackColour(Colour colour) {
  QPalette palette = m_area->palette();
  palette.setColor(QPalette::Window, toQColor(colour));
  m_area->setPalette(palette);
}

void MainWindow::restorePlace(const WindowPlacement& place) {
  const QRect kept(pixels(place.left), pixels(place.top), qMax(pixels(place.width), kSmallestWidth),
                   kReachable.height());
  const bool usable = place.width > 0 && isReachable(kept);
  const int width = usable ? kept.width() : kStandardWidth;
  resizeTo(width, naturalHeight(width, m_parts) + heightAround());
  const QPoint middle = screen()->availableGeometry().center() - rect().center();
  move(usable ? kept.topLeft() : middle);
  m_unframed = geometry();
  if (place.state == 1) setWindowState(Qt::WindowMinimized);
  if (place.state == 2) setWindowState(Qt::WindowMaximized);
}

CurrentWindow MainWindow::currentPlace() const {
  const bool normal = (windowState() & (Qt::WindowMaximized | Qt::WindowMinimized)) == 0;
  const QRect inner = normal || !normalGeometry().isValid() ? geometry() : normalGeometry();
  // A window that was maximised before it was shown has had no frame in its normal place yet.
  const bool unframed = !normal && inner == m_unframed;
  const QPoint frame = unframed ? QPoint() : geometry().topLeft() - pos();
  CurrentWindow place;
  place.left = twipsFromPixels(inner.x() - frame.x());
  place.top = twipsFromPixels(inner.y() - frame.y());
  place.width = twipsFromPixels(inner.width());
  if (isMinimized()) {
    place.state = 1;
  } else if (isMaximized()) {
    place.state = 2;
  }
  return place;
}

void MainWindow::closeEvent(QCloseEvent* event) {
  event->ignore();
  if (m_events.closeRequested) m_events.closeRequested();
}

/// What no control wanted.
void MainWindow::keyPressEvent(QKeyEvent* event) {
  const Qt::KeyboardModifiers with = event->modifiers();
  if (event->key() == Qt::Key_F4 && with == Qt::NoModifier) {
    m_transport->openNumberedFiles();
  } else if (event->key() == Qt::Key_F10 && with == Qt::NoModifier) {
    enterMenus();
  } else if (event->key() == Qt::Key_F10 && with == Qt::ShiftModifier && focusWidget() != nullptr) {
    QWidget& target = *focusWidget();
    const QPoint middle = target.rect().center();
    QContextMenuEvent menuKey(QContextMenuEvent::Keyboard, middle, target.mapToGlobal(middle));
    QCoreApplication::sendEvent(&target, &menuKey);
  } else {
    QMainWindow::keyPressEvent(event);
  }
}

/// With the first one open, since the toolkit has no way in that opens none. The bar takes the
/// focus by itself: one that it was given it would keep.
void MainWindow::enterMenus() {
  menuBar()->setActiveAction(menuBar()->actions().value(0));
}

bool MainWindow::eventFilter(QObject* watched, QEvent* event) {
  if (watched == m_area && event->type() == QEvent::Resize && m_events.resized) {
    m_events.resized();
  }
  return QMainWindow::eventFilter(watched, event);
}

/// As high as the screen allows.
void MainWindow::resizeTo(int width, int height) {
  resize(width, qMin(height, screen()->availableGeometry().height()));
}

/// What the window needs above the instrument.
int MainWindow::heightAround() const {
  return menuBar()->sizeHint().height();
}

}  // namespace qv3
