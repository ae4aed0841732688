#include "settings/dialog/meterdialog.h"

#include <QButtonGroup>
#include <QGridLayout>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>
#include <utility>

namespace qv3 {
namespace {

constexpr int kFirstDigitalClock = 2;

}  // namespace

MeterDialog::MeterDialog(ProgramSettings& settings, std::function<void(std::string_view)> changed,
                         QWidget* parent)
    : QDialog(parent), m_settings(settings), m_changed(std::move(changed)) {
  setObjectName(QStringLiteral("frmMeter"));
  setWindowTitle(tr("Meter Display Setup"));

  auto* grid = new QGridLayout(this);
  grid->addWidget(addGroup("framMeter", tr("Dial"), "optDial",
                           {tr("Circular 1"), tr("Traditional"), tr("Traditional Continuous"),
                            tr("Circular 2")},
                           settings.DialType, [this](int index) { dialClicked(index); }),
                  0, 0);
  grid->addWidget(addGroup("FramScale", tr("Scale"), "optScale", {tr("Traditional"), tr("Simple")},
                           settings.ScaleType, [this](int index) { scaleClicked(index); }),
                  0, 1);

  // The clock's click rule decides about the date frame, so that one has to be there.
  framDate = addGroup("framDate", tr("Date"), "optDateType", {tr("Hide"), tr("Short"), tr("Long")},
                      settings.DateType, [this](int index) { dateClicked(index); });
  grid->addWidget(addClock(), 1, 0);
  grid->addWidget(framDate, 1, 1);

  auto* close = new QPushButton(tr("Close"));
  close->setObjectName(QStringLiteral("cmdClose"));
  close->setDefault(true);
  connect(close, &QPushButton::clicked, this, &QDialog::accept);
  grid->addWidget(close, 2, 0, 1, 2, Qt::AlignRight);
  Loading = false;
}

QGroupBox* MeterDialog::addClock() {
  QGroupBox* clock = addGroup("framClock", tr("Clock"), "optClock",
                              {tr("None"), tr("Analog"), tr("12 Hour"), tr("24 Hour")},
                              m_settings.ClockType, [this](int index) { clockClicked(index); });
  auto* left = new QCheckBox(tr("On Left"));
  left->setObjectName(QStringLiteral("chkClockLeft"));
  left->setChecked(m_settings.ClockLeft);
  connect(left, &QCheckBox::toggled, this, [this](bool checked) {
    m_settings.ClockLeft = checked;
    m_changed("ClockLeft");
  });
  clock->layout()->addWidget(left);
  return clock;
}

QGroupBox* MeterDialog::addGroup(const char* name, const QString& caption, const char* option,
                                 const QStringList& captions, int selected, Clicked clicked) {
  auto* group = new QGroupBox(caption);
  group->setObjectName(QLatin1String(name));
  auto* column = new QVBoxLayout(group);
  column->setAlignment(Qt::AlignTop);
  auto* buttons = new QButtonGroup(group);
  connect(buttons, &QButtonGroup::idToggled, this,
          [clicked = std::move(clicked)](int index, bool checked) {
            if (checked) clicked(index);
          });
  for (int index = 0; index < captions.size(); ++index) {
    auto* button = new QRadioButton(captions[index]);
    button->setObjectName(QStringLiteral("%1_%2").arg(QLatin1String(option)).arg(index));
    column->addWidget(button);
    buttons->addButton(button, index);
    button->setChecked(index == selected);
  }
  return group;
}

void MeterDialog::dialClicked(int index) {
  if (Loading) return;
  m_settings.DialType = index;
  m_changed("DialType");
}

void MeterDialog::scaleClicked(int index) {
  if (Loading) return;
  m_settings.ScaleType = index;
  m_changed("ScaleType");
}

/// Analogue clocks show no date. The date's style stays what it was.
void MeterDialog::clockClicked(int index) {
  framDate->setEnabled(index >= kFirstDigitalClock);
  if (Loading) return;
  m_settings.ClockType = index;
  m_changed("ClockType");
}

void MeterDialog::dateClicked(int index) {
  if (Loading) return;
  m_settings.DateType = index;
  m_changed("DateType");
}

}  // namespace qv3
