#pragma once

#include <QIcon>
#include <QPixmap>

namespace qv3 {

/// The icon for windows. Its pictures are read when they are asked for; the large ones, which only
/// desktops show, are left to the desktop entry.
QIcon programIcon();

/// The same as one picture of `size` logical pixels, for a screen of this ratio.
QPixmap programPicture(int size, qreal ratio);

}  // namespace qv3
