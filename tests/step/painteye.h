#pragma once

#include <QEvent>
#include <QObject>
#include <QString>
#include <vector>

#include "display/dialpanel.h"
#include "tests/step/claps.h"

namespace qv3::test {

/// Sees when a dial is painted with its needle elsewhere than before.
class PaintEye final : public QObject {
 public:
  explicit PaintEye(DialPanel& dial) : m_dial(dial) { dial.installEventFilter(this); }

  const std::vector<Moment>& painted() const { return m_painted; }

 private:
  bool eventFilter(QObject*, QEvent* event) override {
    if (event->type() != QEvent::Paint) return false;
    const QString needle = m_dial.accessibleValue();
    if (needle != m_needle) m_painted.push_back(momentNow());
    m_needle = needle;
    return false;
  }

  DialPanel& m_dial;
  QString m_needle;
  std::vector<Moment> m_painted;
};

}  // namespace qv3::test
