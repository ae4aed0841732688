#include "app/window/programicon.h"

#include <QString>

namespace qv3 {
namespace {

/// The format is named: to find it out, the toolkit would load all its modules for pictures.
QPixmap drawn(int size) {
  const auto file = QStringLiteral(":/icons/%1x%1/apps/org.qv3varnel.qv3varnel.png").arg(size);
  return QPixmap(file, "PNG");
}

}  // namespace

QIcon programIcon() {
  QIcon icon;
  for (const int size : {16, 32, 48}) icon.addPixmap(drawn(size));
  return icon;
}

QPixmap programPicture(int size, qreal ratio) {
  const int wanted = qRound(size * ratio);
  int file = 256;
  for (const int smaller : {128, 64}) {
    if (smaller >= wanted) file = smaller;
  }
  QPixmap picture = drawn(file);
  if (file != wanted) {
    picture = picture.scaled(wanted, wanted, Qt::KeepAspectRatio, Qt::SmoothTransformation);
  }
  picture.setDevicePixelRatio(ratio);
  return picture;
}

}  // namespace qv3
