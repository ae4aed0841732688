#include "app/window/programicon.h"

#include <QString>

namespace qv3 {
namespace {

QString fileOf(int size) {
  return QStringLiteral(":/icons/%1x%1/apps/org.qv3varnel.qv3varnel.png").arg(size);
}

}  // namespace

QIcon programIcon() {
  QIcon icon;
  // With its size told a file is not opened before it is shown.
  for (const int size : {16, 24, 32, 48, 64}) icon.addFile(fileOf(size), QSize(size, size));
  return icon;
}

QPixmap programPicture(int size, qreal ratio) {
  const int wanted = qRound(size * ratio);
  int file = 256;
  for (const int smaller : {128, 64}) {
    if (smaller >= wanted) file = smaller;
  }
  QPixmap picture(fileOf(file));
  if (file != wanted) {
    picture = picture.scaled(wanted, wanted, Qt::KeepAspectRatio, Qt::SmoothTransformation);
  }
  picture.setDevicePixelRatio(ratio);
  return picture;
}

}  // namespace qv3
