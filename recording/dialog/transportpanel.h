#pragma once

#include <QPointer>
#include <QStringList>
#include <QWidget>
#include <array>
#include <cstdint>
#include <optional>

#include "recording/dialog/filebox.h"
#include "recording/dialog/filepositionbar.h"
#include "recording/dialog/readouts.h"
#include "recording/dialog/transportbutton.h"
#include "recording/dialog/transportlayout.h"
#include "recording/transportstate.h"

namespace qv3 {

/// `picRecord`, the recording panel: keys, position bar and read-outs. Values come in by the
/// functions, what the user wants goes out by the signals; nothing changes here by itself.
class TransportPanel : public QWidget {
  Q_OBJECT

 public:
  explicit TransportPanel(QWidget* parent = nullptr);

  void setState(const TransportState& state);

  void setLoadedFile(const QString& text, const QString& toolTip);
  void setTag(const QString& text);
  void setPlayTime(std::int64_t seconds);
  /// Nothing: the label is empty.
  void setTotalTime(std::optional<std::int64_t> seconds);
  /// "No File Loaded", no tag, no total time, the zero time, a cleared bar.
  void showNothingLoaded();

  /// The numbered files, and the one of the present number.
  void setNumberedFiles(const QStringList& numbers, int current);

  /// Drops down the list of numbered files, and gives it the focus; nothing while there are none.
  void openNumberedFiles();

  FilePositionBar& bar() { return *picFilePosition; }

  /// The height that the present font needs: 83 at the standard one.
  int neededHeight() const;

  QSize sizeHint() const override;

 signals:
  void recordClicked();
  void stopClicked();
  void playClicked();
  void revClicked();
  void fwdClicked();
  void loopClicked();
  void loadClicked();
  void numberedFilesRequested();  ///< right button on Load
  void numberedFileChosen(const QString& number);
  void saveClicked();
  void saveFileAsClicked();
  void seekRequested(int x);  ///< places 0 to 1000, as all on the bar
  void rangeRequested(int fromX, int toX);
  void wholeRangeRequested();
  void neededHeightChanged();

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  TransportButton& key(TransportKey which) { return *m_keys[static_cast<std::size_t>(which)]; }
  void addKey(TransportKey which, const char* name, void (TransportPanel::*clicked)());
  ElidedLabel* addLabel(const char* name, const QString& accessibleName);
  void connectParts();
  TransportMetrics metrics() const;
  void layOut();
  void placeMode();
  void enableFiles();
  void returnFocus(QWidget* before);
  void drawTagSign(QPainter& painter) const;

  std::array<TransportButton*, kTransportKeys> m_keys{};
  FilePositionBar* picFilePosition = nullptr;
  ElidedLabel* lblPlayTime = nullptr;
  ElidedLabel* lblTotalTime = nullptr;
  LoadedFileLabel* lblLoadedFile = nullptr;
  ElidedLabel* lblRecordMode = nullptr;
  ElidedLabel* lblTag = nullptr;
  FileBox* cboFile = nullptr;
  TransportPlaces m_places;
  bool m_filesAllowed = false;
  QPointer<QWidget> m_left;  ///< lost the focus as it was disabled
  QPointer<QWidget> m_went;  ///< and where the focus went
};

}  // namespace qv3
