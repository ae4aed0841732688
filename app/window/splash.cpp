#include "app/window/splash.h"

#include <QGridLayout>

#include "app/version.h"
#include "app/window/programicon.h"

namespace qv3 {
namespace {

constexpr int kLogo = 64;

QLabel* addLabel(QGridLayout& grid, int row, int column, const char* name, const QString& text) {
  auto* label = new QLabel(text);
  label->setObjectName(QLatin1String(name));
  grid.addWidget(label, row, column);
  return label;
}

}  // namespace

QString versionText() {
  return QStringLiteral("Version " QV3_VERSION);
}

Splash::Splash() : QWidget(nullptr, Qt::SplashScreen | Qt::FramelessWindowHint) {
  setObjectName(QStringLiteral("frmQvSplash"));
  setWindowTitle(QStringLiteral("qv3 Varnel"));
  setAttribute(Qt::WA_ShowWithoutActivating);
  auto* grid = new QGridLayout(this);
  grid->setContentsMargins(24, 24, 24, 24);
  grid->setHorizontalSpacing(16);
  auto* picture = new QLabel;
  picture->setObjectName(QStringLiteral("imlLogo"));
  picture->setAccessibleName(tr("Logo"));
  picture->setPixmap(programPicture(kLogo, devicePixelRatioF()));
  grid->addWidget(picture, 0, 0, 4, 1);
  QLabel* title = addLabel(*grid, 0, 1, "lblTitle", QStringLiteral("qv3 Varnel"));
  QFont large = title->font();
  large.setPointSizeF(large.pointSizeF() * 2);
  title->setFont(large);
  addLabel(*grid, 1, 1, "Label1", tr("Product Name:"));
  addLabel(*grid, 1, 2, "lblProductName", QStringLiteral("qv3 Varnel"));
  addLabel(*grid, 2, 1, "Label2", tr("Software Version:"));
  addLabel(*grid, 2, 2, "lblVersion", versionText());
  m_status = addLabel(*grid, 3, 1, "lblInfo", tr("Loading"));
  grid->addWidget(m_status, 3, 1, 1, 2);
  grid->setColumnMinimumWidth(2, 160);
}

void Splash::showStatus(const QString& text) {
  m_status->setText(text);
}

}  // namespace qv3
