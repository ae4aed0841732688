#include "recording/dialog/transportpanel.h"

#include <QEvent>
#include <QLinearGradient>
#include <QPainter>
#include <utility>

#include "recording/dialog/transportlook.h"
#include "recording/naming.h"

namespace qv3 {
namespace {

constexpr double kDisplayRadius = 3;
constexpr int kStandardWidth = 896;

QString toText(const std::string& text) {
  return QString::fromStdString(text);
}

QString toText(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

QString longestTime() {
  return QStringLiteral("00:00:00");
}

/// The captions that a key may show.
QStringList captionsOf(TransportKey key) {
  switch (key) {
    case TransportKey::Record:
      return {QStringLiteral("Record")};
    case TransportKey::Stop:
      return {QStringLiteral("Stop")};
    case TransportKey::Play:
      return {QStringLiteral("Play"), QStringLiteral("Pause")};
    case TransportKey::Rev:
      return {QStringLiteral("Rev")};
    case TransportKey::Fwd:
      return {QStringLiteral("Fwd")};
    case TransportKey::Loop:
      return {QStringLiteral("Single"), QStringLiteral("Loop")};
    case TransportKey::Load:
      return {QStringLiteral("Load")};
    case TransportKey::Save:
      return {QStringLiteral("Save"), QStringLiteral("Save As"), QStringLiteral("Settings")};
  }
  return {};
}

}  // namespace

// The order in which the parts are made is that of the Tab key.
TransportPanel::TransportPanel(QWidget* parent) : QWidget(parent) {
  setObjectName(QStringLiteral("picRecord"));
  setAccessibleName(tr("Recording"));
  addKey(TransportKey::Record, "cmdRecord", &TransportPanel::recordClicked);
  addKey(TransportKey::Stop, "cmdStop", &TransportPanel::stopClicked);
  addKey(TransportKey::Play, "cmdPlay", &TransportPanel::playClicked);
  addKey(TransportKey::Rev, "cmdRev", &TransportPanel::revClicked);
  addKey(TransportKey::Fwd, "cmdFwd", &TransportPanel::fwdClicked);
  addKey(TransportKey::Loop, "cmdLoop", &TransportPanel::loopClicked);
  picFilePosition = new FilePositionBar(this);
  lblPlayTime = addLabel("lblPlayTime", tr("Play time"));
  lblPlayTime->setFill(longestTime());
  lblTotalTime = addLabel("lblTotalTime", tr("Total time"));
  lblLoadedFile = new LoadedFileLabel(this);
  lblRecordMode = addLabel("lblRecordMode", tr("Record mode"));
  lblTag = addLabel("lblTag", tr("Tags"));
  lblTag->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  cboFile = new FileBox(this);
  addKey(TransportKey::Load, "cmdLoad", &TransportPanel::loadClicked);
  addKey(TransportKey::Save, "cmdSave", &TransportPanel::saveClicked);
  connectParts();
  setState(transportState({}));
  setNumberedFiles({}, -1);
  showNothingLoaded();
}

void TransportPanel::addKey(TransportKey which, const char* name,
                            void (TransportPanel::*clicked)()) {
  auto* made = new TransportButton(name, this);
  connect(made, &QAbstractButton::clicked, this, clicked);
  m_keys[static_cast<std::size_t>(which)] = made;
}

ElidedLabel* TransportPanel::addLabel(const char* name, const QString& accessibleName) {
  auto* made = new ElidedLabel(name, this);
  made->setAccessibleName(accessibleName);
  made->setForegroundRole(QPalette::Text);
  return made;
}

void TransportPanel::connectParts() {
  connect(&key(TransportKey::Load), &TransportButton::alternateClicked, this,
          &TransportPanel::numberedFilesRequested);
  connect(lblLoadedFile, &QAbstractButton::clicked, this, &TransportPanel::saveFileAsClicked);
  connect(cboFile, &FileBox::fileChosen, this, &TransportPanel::numberedFileChosen);
  connect(picFilePosition, &FilePositionBar::seekRequested, this, &TransportPanel::seekRequested);
  connect(picFilePosition, &FilePositionBar::rangeRequested, this, &TransportPanel::rangeRequested);
  connect(picFilePosition, &FilePositionBar::wholeRangeRequested, this,
          &TransportPanel::wholeRangeRequested);
}

void TransportPanel::setState(const TransportState& state) {
  QWidget* const focused = window()->focusWidget();
  key(TransportKey::Record).setState(state.cmdRecord);
  key(TransportKey::Stop).setState(state.cmdStop);
  key(TransportKey::Play).setState(state.cmdPlay);
  key(TransportKey::Rev).setState(state.cmdRev);
  key(TransportKey::Fwd).setState(state.cmdFwd);
  key(TransportKey::Loop).setState(state.cmdLoop);
  key(TransportKey::Load).setState(state.cmdLoad);
  key(TransportKey::Save).setState(state.cmdSave);
  lblRecordMode->setEnabled(state.recordModeEnabled);
  if (state.lblRecordMode) {
    lblRecordMode->setValue(toText(state.lblRecordMode->text));
    lblRecordMode->setToolTip(toText(state.lblRecordMode->toolTip));
  }
  lblLoadedFile->setEnabled(state.saveFileAs);
  m_filesAllowed = state.cboFile;
  enableFiles();
  QPalette time;
  if (state.playTimeRed) time.setColor(QPalette::Text, kRecordingRed);
  lblPlayTime->setPalette(time);
  picFilePosition->setUse(state.barUse, state.wholeRange);
  returnFocus(focused);
}

/// A key that is disabled for a while, such as Record, has the focus again afterwards, unless the
/// user went elsewhere meanwhile.
void TransportPanel::returnFocus(QWidget* before) {
  QWidget* const now = window()->focusWidget();
  if (before != now && before != nullptr && isAncestorOf(before) && !before->isEnabled()) {
    if (before != m_went) m_left = before;
    m_went = now;
  }
  if (now != m_went) m_left = nullptr;
  if (m_left && m_left->isEnabled()) std::exchange(m_left, nullptr)->setFocus();
}

void TransportPanel::setLoadedFile(const QString& text, const QString& toolTip) {
  if (text != lblLoadedFile->text()) lblLoadedFile->setName(text);
  lblLoadedFile->setToolTip(toolTip);
}

void TransportPanel::setTag(const QString& text) {
  if (text == lblTag->text()) return;
  lblTag->setValue(text);
  placeMode();
  update(m_places.tag);
}

void TransportPanel::setPlayTime(std::int64_t seconds) {
  lblPlayTime->setValue(toText(formatDuration(seconds)));
}

void TransportPanel::setTotalTime(std::optional<std::int64_t> seconds) {
  lblTotalTime->setValue(seconds ? toText(formatDuration(*seconds)) : QString());
}

void TransportPanel::showNothingLoaded() {
  setLoadedFile(toText(kNoFileLoaded), toText(kNoFileLoaded));
  setTag({});
  setTotalTime(std::nullopt);
  setPlayTime(0);
  picFilePosition->clear();
}

void TransportPanel::setNumberedFiles(const QStringList& numbers, int current) {
  cboFile->setFiles(numbers, current);
  cboFile->setToolTip(numbers.isEmpty() ? tr("Right-click Load for the numbered recordings")
                                        : tr("Numbered recordings"));
  enableFiles();
}

void TransportPanel::openNumberedFiles() {
  if (!cboFile->isEnabled() || !cboFile->isVisible()) return;
  cboFile->setFocus(Qt::ShortcutFocusReason);
  cboFile->showPopup();
}

void TransportPanel::enableFiles() {
  cboFile->setEnabled(m_filesAllowed && cboFile->count() > 0);
}

TransportMetrics TransportPanel::metrics() const {
  const QFontMetrics font = fontMetrics();
  TransportMetrics made;
  made.line = font.height();
  for (int which = 0; which < kTransportKeys; ++which) {
    for (const QString& caption : captionsOf(static_cast<TransportKey>(which))) {
      int& widest = made.captions[static_cast<std::size_t>(which)];
      widest = qMax(widest, font.horizontalAdvance(caption));
    }
  }
  made.time = font.horizontalAdvance(longestTime());
  made.tag = font.horizontalAdvance(QStringLiteral("000")) + made.line * 5 / 4;
  made.details = font.horizontalAdvance(QStringLiteral("Auto Name")) + made.tag;
  made.list = cboFile->sizeHint();
  return made;
}

int TransportPanel::neededHeight() const {
  return transportHeight(fontMetrics().height());
}

QSize TransportPanel::sizeHint() const {
  return {kStandardWidth, neededHeight()};
}

void TransportPanel::layOut() {
  m_places = layOutTransport(size(), metrics());
  for (std::size_t which = 0; which < m_keys.size(); ++which) {
    m_keys[which]->setCaptionShown(m_places.captions);
    m_keys[which]->setGeometry(m_places.keys[which]);
  }
  picFilePosition->setGeometry(m_places.bar);
  lblPlayTime->setGeometry(m_places.time);
  lblTotalTime->setGeometry(m_places.total);
  lblLoadedFile->setGeometry(m_places.file);
  placeMode();
  lblTag->setGeometry(m_places.tag);
  cboFile->setGeometry(m_places.list);
  update();
}

/// Without a tag its room is the record mode's.
void TransportPanel::placeMode() {
  const bool tagged = !lblTag->text().isEmpty();
  lblRecordMode->setGeometry(tagged ? m_places.mode : m_places.mode | m_places.tag);
}

void TransportPanel::resizeEvent(QResizeEvent*) {
  layOut();
}

void TransportPanel::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() != QEvent::FontChange && event->type() != QEvent::StyleChange) return;
  layOut();
  updateGeometry();
  emit neededHeightChanged();
}

void TransportPanel::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const TransportLook look(palette());
  QLinearGradient face(0, 0, 0, height());
  face.setColorAt(0, look.panelTop);
  face.setColorAt(1, look.panelBottom);
  painter.fillRect(rect(), face);
  const double line = hairline(painter);
  painter.fillRect(QRectF(0, 0, width(), line), look.edge);
  painter.fillRect(QRectF(0, line, width(), line), look.highlight);
  drawEdgedBox(painter, QRectF(m_places.bar).adjusted(-line, -line, line, line), 2 * line,
               look.edge, look.edge);
  drawEdgedBox(painter, m_places.display, kDisplayRadius, look.edge, look.display);
  drawTagSign(painter);
}

/// A flag before the number of the last tag.
void TransportPanel::drawTagSign(QPainter& painter) const {
  if (lblTag->text().isEmpty()) return;
  const double size = fontMetrics().ascent();
  const double right = m_places.tag.right() + 1 - fontMetrics().horizontalAdvance(lblTag->text());
  const QPointF foot(right - size, m_places.tag.center().y() + size / 2);
  const QPolygonF cloth{QPointF(foot.x(), foot.y() - size),
                        QPointF(foot.x() + size * 0.7, foot.y() - size * 0.72),
                        QPointF(foot.x(), foot.y() - size * 0.44)};
  painter.setPen(Qt::NoPen);
  painter.setBrush(palette().color(QPalette::Highlight));
  painter.drawPolygon(cloth);
  painter.fillRect(QRectF(foot.x() - 1, foot.y() - size, 1, size), palette().color(QPalette::Text));
}

}  // namespace qv3
