#include <gtest/gtest.h>

#include <cstdlib>
#include <random>

#include "tests/app/situations.h"

namespace qv3::test {
namespace {

using std::chrono::milliseconds;

constexpr unsigned kSeed = 20417;
constexpr int kSteps = 4000;

unsigned numberFrom(const char* variable, unsigned otherwise) {
  const char* text = std::getenv(variable);
  return text == nullptr ? otherwise : static_cast<unsigned>(std::strtoul(text, nullptr, 10));
}

/// What must hold whatever was done; each gives what is wrong, or nothing.
class Invariants {
 public:
  explicit Invariants(Situations& rig) : m_rig(rig) {}

  void restarted() {
    m_items.clear();
    m_atStake = false;
  }
  /// A Yes to a question that may cost a recording, or its "Discard".
  void discardWasAnswered() { m_discarded = true; }

  std::string broken() {
    return oneState() + enabledIsAllowed() + noLostRecording() + noStuckWait();
  }

 private:
  std::string oneState() {
    std::string wrong;
    const Instrument& meter = m_rig.instrument();
    const Operation operation = m_rig.operation();
    const bool keeps = operation == Operation::Recording || operation == Operation::Stopping;
    if (keeps != (meter.recorder().phase() == Recorder::Phase::Data)) {
      wrong += "the recorder is in another state\n";
    }
    const bool borrowed = meter.liveSettings().KnobPosition != m_rig.settings().KnobPosition;
    if (borrowed && meter.programState() != 2) wrong += "values are still borrowed\n";
    if (meter.state().NeedleTest != (operation == Operation::Testing || meter.needleTestChosen())) {
      wrong += "the needle test is another's\n";
    }
    const bool polled = operation != Operation::None && operation != Operation::Starting &&
                        operation != Operation::Probing && operation != Operation::Closing;
    if (polled != m_rig.polling()) wrong += "the poll is not the operation's\n";
    return wrong;
  }

  std::string enabledIsAllowed() {
    std::string wrong;
    const Instrument& meter = m_rig.instrument();
    for (const MenuRow& row : menuRows()) {
      if (!m_rig.program->handles(row.act)) continue;
      const QAction* item = m_items[&row];
      if (item == nullptr) item = m_items[&row] = m_rig.item(row.name);
      if (!item->isVisible()) continue;
      if (item->isEnabled() != meter.allowed(row.command)) wrong += std::string(row.name) + '\n';
    }
    const std::pair<const char*, Command> buttons[] = {
        {"cmdRecord", Command::Record}, {"cmdStop", Command::Stop}, {"cmdPlay", Command::Play},
        {"cmdRev", Command::Skip},      {"cmdFwd", Command::Skip},  {"cmdLoop", Command::Loop},
        {"cmdLoad", Command::Load},     {"cmdSave", Command::Save}};
    for (const auto& [name, command] : buttons) {
      const bool enabled = m_rig.find(name)->isEnabledTo(&m_rig.window());
      if (enabled != meter.allowed(command)) wrong += std::string(name) + '\n';
    }
    return wrong.empty() ? wrong : "enabled otherwise than allowed: " + wrong;
  }

  /// A journal goes only with a saved file or by a user's word, and never while the recording that
  /// it keeps is unsaved.
  std::string noLostRecording() {
    std::string wrong;
    std::size_t kept = 0;
    std::size_t number = 0;
    for (const JournalLog& journal : m_rig.journals) {
      if (number == m_seen.size()) m_seen.push_back("open");
      const bool went = journal.fate == "removed" && m_seen[number] != "removed";
      if (went && m_atStake && !m_discarded && saved() == m_saved)
        wrong += "a recording was lost\n";
      if (went) m_discarded = false;
      m_seen[number] = journal.fate;
      kept += journal.fate == "open" || journal.fate == "finished" ? 1 : 0;
      ++number;
    }
    m_saved = saved();
    const Instrument& meter = m_rig.instrument();
    const bool unsaved = meter.situation().unsaved;
    const bool closing = m_rig.operation() == Operation::Closing;
    if (unsaved && kept == 0 && !closing) wrong += "unsaved, without journal\n";
    m_atStake = unsaved || !meter.recorder().records().empty();
    return wrong;
  }

  /// Files renamed to their final names so far.
  std::size_t saved() const { return m_rig.files.renamed.size(); }

  /// Nothing waits longer than it may: told time, or polls where a disk works.
  std::string noStuckWait() {
    const Operation operation = m_rig.operation();
    const Instant now = m_rig.told.steady;
    if (operation != m_operation) m_since = now;
    m_operation = operation;
    const bool bounded = operation == Operation::LeadIn || operation == Operation::Stopping ||
                         operation == Operation::Loading || operation == Operation::Saving;
    if (bounded && now - m_since > std::chrono::seconds{5}) return "stuck\n";
    const auto searching = [this] {
      return m_rig.operation() == Operation::Probing && Situations::openDialog() == nullptr;
    };
    for (int turn = 0; turn < 20 && searching(); ++turn) Situations::turnOver();
    return searching() ? "probing\n" : "";
  }

  Situations& m_rig;
  std::map<const MenuRow*, QAction*> m_items;
  std::vector<std::string> m_seen;  ///< what became of each journal
  std::size_t m_saved = 0;
  bool m_discarded = false;
  bool m_atStake = false;  ///< there was a sample that could be lost
  Operation m_operation = Operation::None;
  Instant m_since{0};
};

/// Does anything at all, as a seed says.
class Monkey {
 public:
  Monkey(Situations& rig, unsigned seed)
      : m_rig(rig), m_random(seed), m_invariants(rig), m_routes(rig.routes()) {}

  /// What was done; the invariants hold afterwards, else a failure is noted.
  void step() {
    m_done.clear();
    if (m_rig.ended) {
      startAgain();
    } else if (QDialog* dialog = Situations::openDialog(); dialog != nullptr && below(3) != 0) {
      answer(*dialog);
    } else {
      act();
    }
    Situations::turnOver();
    if (m_rig.ended) return;
    const std::string wrong = m_invariants.broken();
    EXPECT_EQ(wrong, "") << "after " << m_done;
  }

  const std::string& done() const { return m_done; }

 private:
  unsigned below(unsigned count) { return static_cast<unsigned>(m_random() % count); }

  template <typename Choices>
  auto& oneOf(Choices& choices) {
    return *(std::begin(choices) + below(static_cast<unsigned>(std::size(choices))));
  }

  void act() {
    const unsigned what = below(100);
    if (what < 35) {
      timePasses();
    } else if (what < 55) {
      frames();
    } else if (Situations::openDialog() == nullptr && what < 96) {
      command();
    } else if (what < 98) {
      trouble();
    } else if (what == 98) {
      m_done = "a request to end";
      if (below(4) == 0) m_rig.window().close();
    } else if (below(20) == 0) {
      m_done = "a signal";
      m_rig.program->endSilently();
    }
  }

  /// Buttons and keys of a session more often than one of the many colours.
  void command() {
    std::vector<const Route*> wanted;
    const bool preference = below(4) == 0;
    for (const Route& route : m_routes) {
      if (route.command == Command::Exit) continue;
      if ((route.command == Command::Preference) == preference) wanted.push_back(&route);
    }
    const Route& route = *oneOf(wanted);
    m_done = route.name;
    route.take();
    if (below(4) == 0) route.take();
  }

  void timePasses() {
    constexpr int kSpans[] = {1, 5, 20, 100, 400, 1500};
    const int span = oneOf(kSpans);
    m_done = std::to_string(span) + " ms";
    m_rig.pass(milliseconds{span});
  }

  void frames() {
    constexpr const char* kFrames[] = {
        "P7000\r", "P7100\r", "T7000\r", "PXYZ0\r", "P70", "00\r", "P7000\rP7001\rP7002\rP7003\r",
        "\r\r\r"};
    constexpr int kCounts[] = {1, 3, 20, 60};
    const char* frame = below(3) == 0 ? oneOf(kFrames) : kFrames[0];
    const int count = oneOf(kCounts);
    m_done = std::to_string(count) + " frames";
    m_rig.frames(count, frame);
  }

  void trouble() {
    const std::pair<const char*, std::function<void()>> kinds[] = {
        {"the line goes", [this] { m_rig.port.lose(); }},
        {"the sound device falls silent, or speaks again",
         [this] { m_rig.media.silent = !m_rig.media.silent; }},
        {"the sound device refuses, or obeys again",
         [this] { m_rig.media.refuse = !m_rig.media.refuse; }},
        {"the disk is full, or has room again",
         [this] { m_rig.files.room = m_rig.files.room < 1000 ? std::uint64_t{1} << 40 : 500; }},
        {"the window has another size", [this] {
           const int width = 500 + static_cast<int>(below(700));
           m_rig.window().resize(width, 400 + static_cast<int>(below(400)));
         }}};
    const auto& [name, happens] = oneOf(kinds);
    m_done = name;
    happens();
  }

  void answer(QDialog& dialog) {
    m_done = dialog.objectName().toStdString();
    if (auto* box = qobject_cast<QMessageBox*>(&dialog)) {
      const auto buttons = box->buttons();
      QAbstractButton* button = oneOf(buttons);
      m_done += ' ' + button->text().toStdString();
      const QString name = box->objectName();
      const bool discards = name == "msgNotSaved" || name == "msgExit";
      if (discards && box->standardButton(button) == QMessageBox::Yes) {
        m_invariants.discardWasAnswered();
      }
      button->click();
    } else if (auto* chooser = qobject_cast<QFileDialog*>(&dialog); chooser && below(2) == 0) {
      chooseFile(*chooser);
    } else if (below(2) == 0) {
      clickInside(dialog);
    } else {
      dialog.done(below(2) == 0 ? QDialog::Accepted : QDialog::Rejected);
    }
  }

  void chooseFile(QFileDialog& chooser) {
    // A name that is missing where one has to be there is the toolkit's to refuse.
    constexpr const char* kNames[] = {"Take_001.qvd", "Take_002.qvd", "new.qvd"};
    const bool settings = chooser.objectName().contains(QLatin1String("Settings"));
    const bool save = chooser.acceptMode() == QFileDialog::AcceptSave;
    const std::string name = m_rig.file(settings ? "qv3_Varnel.ini" : kNames[below(save ? 3 : 2)]);
    m_done += ' ' + name;
    Situations::chooseFile(chooser, name);
  }

  /// Not into dialogs of the toolkit: what they do is not ours.
  void clickInside(QDialog& dialog) {
    if (!dialog.objectName().startsWith(QLatin1String("frm"))) return;
    const auto buttons = dialog.findChildren<QAbstractButton*>();
    if (buttons.empty()) return;
    QAbstractButton* button = oneOf(buttons);
    if (!button->isVisible() || !button->isEnabled() ||
        button->objectName() == "cmdBrowseSaveFolder")
      return;
    m_done += ' ' + button->objectName().toStdString();
    button->click();
  }

  void startAgain() {
    m_done = "a new start";
    m_rig.media.refuse = false;
    m_rig.start();
    m_routes = m_rig.routes();
    m_invariants.restarted();
  }

  Situations& m_rig;
  std::mt19937 m_random;
  Invariants m_invariants;
  std::vector<Route> m_routes;
  std::string m_done;
};

/// QV3_MONKEY_SEED and QV3_MONKEY_STEPS repeat a failure, or look for another.
TEST(Monkey, WhateverItDoesEveryInvariantHolds) {
  const unsigned seed = numberFrom("QV3_MONKEY_SEED", kSeed);
  const auto steps = static_cast<int>(numberFrom("QV3_MONKEY_STEPS", kSteps));
  SCOPED_TRACE("QV3_MONKEY_SEED=" + std::to_string(seed));
  Situations rig;
  Monkey monkey(rig, seed);
  std::string history;
  for (int step = 0; step < steps && !testing::Test::HasFailure(); ++step) {
    monkey.step();
    history += monkey.done() + '\n';
  }
  if (testing::Test::HasFailure()) {
    const std::size_t from = history.size() > 1500 ? history.size() - 1500 : 0;
    ADD_FAILURE() << "the last of it:\n" << history.substr(from);
    return;
  }
  rig.rest();
  EXPECT_EQ(rig.operation(), Operation::None);
}

}  // namespace
}  // namespace qv3::test
