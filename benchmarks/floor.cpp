// The least that a program of this kind does: a window with menus and nothing in it. With --serial
// PATH it reads a meter's frames there and draws one line for each: where the reading says.

#include <QApplication>
#include <QMainWindow>
#include <QMenuBar>
#include <QPaintEvent>
#include <QPainter>
#include <QSerialPort>
#include <cstdio>

namespace {

constexpr int kMenus = 7;
constexpr int kItems = 12;
constexpr int kFrameLength = 6;

class Line final : public QWidget {
 public:
  explicit Line(QWidget* parent) : QWidget(parent) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAutoFillBackground(false);
  }

  void show(int reading) {
    update(place());
    m_reading = reading;
    update(place());
  }

 private:
  QRect place() const { return {m_reading * 5 % (width() - 4), 60, 4, 300}; }

  void paintEvent(QPaintEvent* event) override {
    QPainter painter(this);
    painter.fillRect(event->rect(), Qt::white);
    if (m_reading > 0) painter.fillRect(place(), Qt::red);
  }

  int m_reading = 0;
};

void addMenus(QMenuBar& bar) {
  for (int m = 0; m < kMenus; ++m) {
    QMenu* menu = bar.addMenu(QStringLiteral("Menu %1").arg(m));
    for (int i = 0; i < kItems; ++i) {
      QAction* action = menu->addAction(QStringLiteral("Item %1").arg(i));
      action->setCheckable(i % 2 == 0);
    }
  }
}

void takeFrames(QSerialPort& port, QByteArray& received, Line& line) {
  received += port.readAll();
  for (auto end = received.indexOf('\r'); end >= 0; end = received.indexOf('\r')) {
    if (end == kFrameLength - 1) line.show(received.mid(1, 4).toInt(nullptr, 16));
    received.remove(0, end + 1);
  }
}

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  QMainWindow window;
  addMenus(*window.menuBar());
  auto* line = new Line(&window);
  window.setCentralWidget(line);
  window.resize(1280, 880);
  window.show();

  QSerialPort port;
  QByteArray received;
  const QStringList arguments = QApplication::arguments();
  if (arguments.size() == 3 && arguments[1] == QStringLiteral("--serial")) {
    port.setPortName(arguments[2]);
    port.setBaudRate(QSerialPort::Baud9600);
    if (!port.open(QIODevice::ReadWrite)) {
      std::fprintf(stderr, "bench-floor: %s\n", qPrintable(port.errorString()));
      return 1;
    }
    QObject::connect(&port, &QSerialPort::readyRead, line,
                     [&] { takeFrames(port, received, *line); });
    port.write("U\rR\r");
  }
  return QApplication::exec();
}
