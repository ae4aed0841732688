#include "app/window/menus.h"

#include <QMenu>

namespace qv3 {
namespace {

QString toQString(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

QMenu* addMenu(QMenuBar& bar, const MenuRow& row) {
  QMenu* menu = nullptr;
  const QString caption = toQString(row.caption);
  if (row.menu.empty()) {
    menu = bar.addMenu(caption);
  } else {
    menu = bar.findChild<QMenu*>(toQString(row.menu))->addMenu(caption);
  }
  menu->setObjectName(toQString(row.name));
  menu->setAccessibleName(QString(caption).remove(QLatin1Char('&')));
  menu->setToolTipsVisible(true);
  return menu;
}

/// Text set anew closes an open menu's highlight, so only a change is passed on.
void setCaption(QAction& action, const QString& caption) {
  if (action.text() != caption) action.setText(caption);
}

}  // namespace

Menus::Menus(QMenuBar& bar, Chosen chosen) : m_chosen(std::move(chosen)) {
  for (const MenuRow& row : menuRows()) {
    QAction* action = nullptr;
    if (row.act == Act::Menu) {
      action = addMenu(bar, row)->menuAction();
    } else {
      action = addItem(*bar.findChild<QMenu*>(toQString(row.menu)), row);
    }
    action->setObjectName(toQString(row.name));
    m_items.push_back({&row, action});
  }
}

QAction* Menus::addItem(QMenu& menu, const MenuRow& row) {
  if (row.act == Act::Separator) return menu.addSeparator();
  QAction* action = menu.addAction(toQString(row.caption));
  action->setVisible(!row.caption.empty());
  action->setCheckable(row.mark != Mark::None);
  QObject::connect(action, &QAction::triggered, &menu, [this, &row] { choose(row); });
  return action;
}

/// The toolkit has toggled the chosen item's mark by itself; whoever handles the choice refreshes.
void Menus::choose(const MenuRow& row) {
  for (const Item& item : m_items) {
    if (row.mark == Mark::Keep && item.row->key == row.key) item.action->setChecked(false);
  }
  m_chosen(row);
}

void Menus::refresh(const MenuState& state) {
  for (const auto& [row, action] : m_items) {
    if (row->act == Act::Separator) continue;
    setCaption(*action, toQString(state.caption(*row)));
    action->setVisible(state.visible(*row));
    action->setEnabled(state.enabled(*row));
    if (row->mark == Mark::None) continue;
    const bool kept = row->mark == Mark::Keep && action->isChecked();
    action->setChecked(kept || state.checked(*row));
    if (const std::string tip = state.toolTip(*row); !tip.empty()) {
      action->setToolTip(toQString(tip));
    }
  }
}

}  // namespace qv3
