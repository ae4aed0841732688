#include "app/window/aboutdialog.h"

#include <QFrame>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <utility>

#include "app/version.h"
#include "app/window/programicon.h"

namespace qv3 {
namespace {

constexpr int kIcon = 64;
constexpr int kColumns = 4;  ///< icon, captions, values, buttons

/// Plain text that can be selected: what the meter said is taken as it stands, and copied.
QLabel* addLabel(QGridLayout& grid, int row, int column, const char* name, const QString& text) {
  auto* label = new QLabel(text);
  label->setObjectName(QLatin1String(name));
  label->setTextFormat(Qt::PlainText);
  label->setTextInteractionFlags(Qt::TextSelectableByMouse);
  grid.addWidget(label, row, column);
  return label;
}

void addValue(QGridLayout& grid, int row, const char* captionName, const QString& caption,
              const char* name, const QString& value) {
  addLabel(grid, row, 1, captionName, caption)->setTextInteractionFlags(Qt::NoTextInteraction);
  // A label without a text has no name of its own.
  addLabel(grid, row, 2, name, value)->setAccessibleName(caption + QLatin1Char(' ') + value);
}

void addLine(QGridLayout& grid, int row, const char* name) {
  auto* line = new QFrame;
  line->setObjectName(QLatin1String(name));
  line->setFrameStyle(QFrame::HLine | QFrame::Sunken);
  grid.addWidget(line, row, 0, 1, kColumns);
}

QPushButton* addButton(QGridLayout& grid, int row, const char* name, const QString& caption) {
  auto* button = new QPushButton(caption);
  button->setObjectName(QLatin1String(name));
  grid.addWidget(button, row, kColumns - 1, Qt::AlignBottom);
  return button;
}

}  // namespace

AboutDialog::AboutDialog(const MeterIdentity& meter, std::function<void()> systemInfo,
                         QWidget* parent)
    : QDialog(parent) {
  setObjectName(QStringLiteral("frmAbout"));
  setWindowTitle(tr("About %1").arg(QStringLiteral("qv3 Varnel")));

  auto* grid = new QGridLayout(this);
  grid->setSizeConstraint(QLayout::SetFixedSize);
  grid->setHorizontalSpacing(16);
  QLabel* icon = addLabel(*grid, 0, 0, "picIcon", {});
  icon->setPixmap(programPicture(kIcon, devicePixelRatioF()));
  icon->setAccessibleName(tr("Icon"));
  addValue(*grid, 0, "Label5", tr("Software Version:"), "lblSoft", QStringLiteral(QV3_VERSION));
  addLine(*grid, 1, "Line1");
  addValue(*grid, 2, "Label2", tr("Firmware Version:"), "lblFirm",
           QString::fromStdString(meter.MeterModel));
  addValue(*grid, 3, "Label3", tr("Boot Loader Version:"), "lblBoot",
           QString::fromStdString(meter.MeterField2));
  addValue(*grid, 4, "Label4", tr("Hardware Serial Number:"), "lblhard",
           QString::fromStdString(meter.MeterField3));
  addLine(*grid, 5, "Line2");

  auto* disclaimer = new QLabel(
      tr("This software is provided \"as-is\" for operating the associated hardware. No warranties "
         "or suitability for any purpose are implied."));
  disclaimer->setObjectName(QStringLiteral("lblDisclaimer"));
  disclaimer->setWordWrap(true);
  grid->addWidget(disclaimer, 6, 0, 2, kColumns - 1);

  QPushButton* ok = addButton(*grid, 6, "cmdOK", tr("OK"));
  ok->setDefault(true);
  connect(ok, &QPushButton::clicked, this, &QDialog::accept);
  QPushButton* info = addButton(*grid, 7, "cmdSysInfo", tr("&System Info..."));
  connect(info, &QPushButton::clicked, this, std::move(systemInfo));
}

}  // namespace qv3
