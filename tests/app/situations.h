#pragma once

#include <QKeyEvent>

#include "settings/settingsrows.h"
#include "tests/app/toldprogram.h"

namespace qv3::test {

/// Where a user can bring the program.
enum class Place {
  NoMeter,
  Live,
  Loading,
  Saving,
  LeadIn,
  Recording,
  Stopping,
  Playing,
  Paused,
  Testing
};

constexpr Place kPlaces[] = {Place::NoMeter, Place::Live,      Place::Loading,  Place::Saving,
                             Place::LeadIn,  Place::Recording, Place::Stopping, Place::Playing,
                             Place::Paused,  Place::Testing};

constexpr const char* nameOf(Place place) {
  constexpr const char* kNames[] = {"NoMeter",   "Live",     "Loading", "Saving", "LeadIn",
                                    "Recording", "Stopping", "Playing", "Paused", "Testing"};
  return kNames[static_cast<int>(place)];
}

/// One way to ask for a command, past whatever is greyed.
struct Route {
  std::string name;
  Command command;
  std::function<void()> take;
};

/// A program that is brought anywhere by its panel and its menus.
class Situations : public ToldProgram {
 public:
  Situations() {
    const std::string folder = home.path().toStdString() + '/';
    leaveConfig(0, 1);
    leaveSettings("[Recording]\r\nAudioEnable=False\r\nSuffixType=0\r\nSavePath=" + folder +
                  "\r\nLoadPath=" + folder + "\r\n");
    m_session = leaveSession("Take_001.qvd", 1000);
    m_long = leaveSession("Take_002.qvd", 70000);
    startTold();
  }

  TransportPanel& panel() { return window().transport(); }

  Place place() const {
    switch (operation()) {
      case Operation::Loading:
        return Place::Loading;
      case Operation::Saving:
        return Place::Saving;
      case Operation::LeadIn:
        return Place::LeadIn;
      case Operation::Recording:
        return Place::Recording;
      case Operation::Stopping:
        return Place::Stopping;
      case Operation::Playing:
        return Place::Playing;
      case Operation::Paused:
        return Place::Paused;
      case Operation::Testing:
        return Place::Testing;
      default:
        return instrument().meterFound() ? Place::Live : Place::NoMeter;
    }
  }

  /// Whatever is going on ends; a live meter, the panel shown, no dialog open.
  void rest() {
    for (int round = 0; round < 100 && !ended; ++round) {
      if (QDialog* dialog = openDialog()) {
        dialog->reject();
      } else if (operation() == Operation::None) {
        break;
      } else if (instrument().allowed(Command::Stop)) {
        emit panel().stopClicked();
      }
      frames(5);
    }
    if (!settings().RecordVisible) trigger("mnuViewRecording");
    if (!instrument().meterFound()) trigger("mnuConnectionConnect");
    frames(10);
  }

  void reach(Place wanted) {
    rest();
    if (wanted == Place::NoMeter) trigger("mnuConnectionPortComm_0");
    if (wanted == Place::Loading) load(m_long);
    if (wanted == Place::LeadIn) record();
    if (wanted == Place::Recording) recordData();
    if (wanted == Place::Stopping) stopRecording();
    if (wanted == Place::Saving) {
      stopRecording();
      frames(60);
      emit panel().saveClicked();
    }
    if (wanted == Place::Playing || wanted == Place::Paused) play();
    if (wanted == Place::Paused) emit panel().playClicked();
    if (wanted == Place::Testing) {
      trigger("mnuConnTestControl");
      discard();
    }
    ASSERT_EQ(nameOf(place()), std::string(nameOf(wanted)));
    turnOver();
  }

  void load(const std::string& path) {
    emit panel().loadClicked();
    discard();
    auto* chooser = dialog<QFileDialog>("dlgLoad");
    ASSERT_NE(chooser, nullptr);
    chooseFile(*chooser, path);
  }

  /// Yes to the question about an unsaved recording, if it is asked.
  void discard() {
    turnOver();
    if (auto* box = dialog<QMessageBox>("msgNotSaved")) box->button(QMessageBox::Yes)->click();
    turnOver();
  }

  void key(int code, Qt::KeyboardModifiers with = Qt::NoModifier) {
    for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease}) {
      QKeyEvent event(type, code, with);
      QCoreApplication::sendEvent(window().windowHandle(), &event);
    }
  }

  /// Every menu item, key, button and surface.
  std::vector<Route> routes() {
    std::vector<Route> all;
    for (const MenuRow& row : menuRows()) {
      if (!program->handles(row.act) || row.caption.empty()) continue;
      all.push_back({std::string(row.name), row.command, [this, &row] { program->choose(row); }});
    }
    addButtons(all);
    addKeys(all);
    addMouse(all);
    return all;
  }

 private:
  void record() {
    emit panel().recordClicked();
    discard();
  }
  void recordData() {
    record();
    frames(80);
  }
  void stopRecording() {
    recordData();
    emit panel().stopClicked();
  }
  void play() {
    load(m_session);
    pass(std::chrono::milliseconds{100});
    emit panel().playClicked();
    pass(std::chrono::milliseconds{100});
  }

  void addButtons(std::vector<Route>& all) {
    TransportPanel* p = &panel();
    all.insert(all.end(),
               {{"cmdRecord", Command::Record, [p] { emit p->recordClicked(); }},
                {"cmdStop", Command::Stop, [p] { emit p->stopClicked(); }},
                {"cmdPlay", Command::Play, [p] { emit p->playClicked(); }},
                {"cmdRev", Command::Skip, [p] { emit p->revClicked(); }},
                {"cmdFwd", Command::Skip, [p] { emit p->fwdClicked(); }},
                {"cmdLoop", Command::Loop, [p] { emit p->loopClicked(); }},
                {"cmdLoad", Command::Load, [p] { emit p->loadClicked(); }},
                {"cmdLoad right", Command::Load, [p] { emit p->numberedFilesRequested(); }},
                {"cboFile", Command::Load, [p] { emit p->numberedFileChosen("001"); }},
                {"cmdSave", Command::Save, [p] { emit p->saveClicked(); }},
                {"lblLoadedFile", Command::SaveFileAs, [p] { emit p->saveFileAsClicked(); }},
                {"bar seek", Command::PositionLeft, [p] { emit p->seekRequested(300); }},
                {"bar range", Command::PositionLeft, [p] { emit p->rangeRequested(100, 900); }},
                {"bar whole", Command::PositionRight, [p] { emit p->wholeRangeRequested(); }}});
  }

  void addKeys(std::vector<Route>& all) {
    const std::pair<Key, Command> commands[] = {
        {Key::Space, Command::Set}, {Key::Insert, Command::Set},
        {Key::Up, Command::Knob},   {Key::Down, Command::Knob},
        {Key::C, Command::BdKeys},  {Key::Z, Command::BdKeys},
        {Key::F, Command::Freeze},  {Key::T, Command::Tag},
        {Key::R, Command::Record},  {Key::B, Command::BodyMotionAlert},
        {Key::S, Command::Stop},    {Key::P, Command::Play},
        {Key::O, Command::Load},    {Key::L, Command::Load},
        {Key::Less, Command::Skip}, {Key::Greater, Command::Skip}};
    for (const KeyRow& row : keyRows()) {
      for (const auto& [meaning, command] : commands) {
        if (row.key != meaning) continue;
        all.push_back({"key " + std::to_string(row.code), command, [this, &row] {
                         key(row.code, row.shift ? Qt::ShiftModifier : Qt::NoModifier);
                       }});
      }
    }
  }

  void addMouse(std::vector<Route>& all) {
    MainWindow* w = &window();
    all.insert(all.end(),
               {{"picMeterPanel", Command::Set, [w] { emit w->dial().pressed(); }},
                {"picKnob", Command::KnobMouse, [w] { emit w->knob().mouseUsed(1, 300, 900); }},
                {"picBD", Command::BdMouse,
                 [w] {
                   emit w->bd().pressed();
                   emit w->bd().released();
                 }},
                {"window", Command::Exit, [w] { w->close(); }}});
  }

  std::string m_session;
  std::string m_long;
};

}  // namespace qv3::test
