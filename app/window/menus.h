#pragma once

#include <QAction>
#include <QMenuBar>
#include <functional>
#include <vector>

#include "app/commandtable.h"
#include "app/menustate.h"

namespace qv3 {

/// The menu bar, built from the command table. Knows no command: an item that is chosen is told by
/// its row.
class Menus {
 public:
  using Chosen = std::function<void(const MenuRow&)>;

  /// Fills `bar`, which owns the items and must outlive this.
  Menus(QMenuBar& bar, Chosen chosen);

  /// Captions, marks, enabling and visibility as they are now.
  void refresh(const MenuState& state);

 private:
  struct Item {
    const MenuRow* row;
    QAction* action;
  };

  QAction* addItem(QMenu& menu, const MenuRow& row);
  void choose(const MenuRow& row);

  Chosen m_chosen;
  std::vector<Item> m_items;
};

}  // namespace qv3
