#pragma once

#include <QKeyEvent>
#include <ostream>

#include "settings/settingsrows.h"
#include "tests/app/programrig.h"

namespace qv3::test {

/// Where a user can bring the program.
struct Place {
  const char* name;
  Operation operation = Operation::None;
  bool meterFound = true;
};

inline void PrintTo(const Place& place, std::ostream* out) {
  *out << place.name;
}

constexpr Place kLive{"Live"};
constexpr Place kPlaces[] = {
    {"NoMeter", Operation::None, false}, kLive,
    {"Loading", Operation::Loading},     {"Saving", Operation::Saving},
    {"LeadIn", Operation::LeadIn},       {"Recording", Operation::Recording},
    {"Stopping", Operation::Stopping},   {"Playing", Operation::Playing},
    {"Paused", Operation::Paused},       {"Testing", Operation::Testing}};

/// One way to ask for a command, past whatever is greyed.
struct Route {
  std::string name;
  Command command;
  std::function<void()> take;
};

/// A program that is brought anywhere by its panel and its menus.
class Situations : public ProgramRig {
 public:
  Situations() {
    const std::string folder = home.path().toStdString() + '/';
    m_session = leaveSession("Take_001.qvd", 1000);
    m_long = leaveSession("Take_002.qvd", 70000);
    startLive("[Recording]\r\nAudioEnable=False\r\nSuffixType=0\r\nSavePath=" + folder +
              "\r\nLoadPath=" + folder + "\r\n");
  }

  TransportPanel& panel() { return window().transport(); }

  bool isAt(const Place& place) const {
    if (operation() != place.operation) return false;
    return place.operation != Operation::None || instrument().meterFound() == place.meterFound;
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

  void reach(const Place& wanted) {
    rest();
    go(wanted);
    ASSERT_TRUE(isAt(wanted)) << wanted.name;
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
  /// From rest.
  void go(const Place& wanted) {
    switch (wanted.operation) {
      case Operation::Loading:
        return load(m_long);
      case Operation::LeadIn:
      case Operation::Recording:
      case Operation::Stopping:
      case Operation::Saving:
        return record(wanted.operation);
      case Operation::Playing:
      case Operation::Paused:
        return play(wanted.operation == Operation::Paused);
      case Operation::Testing:
        trigger("mnuConnTestControl");
        return discard();
      default:
        if (!wanted.meterFound) trigger("mnuConnectionPortComm_0");
    }
  }
  void record(Operation until) {
    emit panel().recordClicked();
    discard();
    if (until != Operation::LeadIn) frames(80);
    if (until == Operation::Stopping || until == Operation::Saving) emit panel().stopClicked();
    if (until != Operation::Saving) return;
    frames(60);
    emit panel().saveClicked();
  }
  void play(bool paused) {
    load(m_session);
    pass(std::chrono::milliseconds{100});
    emit panel().playClicked();
    pass(std::chrono::milliseconds{100});
    if (paused) emit panel().playClicked();
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
