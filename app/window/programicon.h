#pragma once

#include <QIcon>
#include <QPixmap>

namespace qv3 {

/// The icon for windows, in the sizes of title bars and task lists: every picture has to be read
/// while the program starts. Larger ones are left to the desktop entry.
QIcon programIcon();

/// The same as one picture of `size` logical pixels, for a screen of this ratio.
QPixmap programPicture(int size, qreal ratio);

}  // namespace qv3
