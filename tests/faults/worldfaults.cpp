#include <gtest/gtest.h>

#include <QFile>
#include <csignal>

#include "tests/faults/fault.h"

namespace qv3::test {
namespace {

using enum Kept;
using enum Sound;
using enum Under;

void killServer(Bench& bench) {
  bench.room().kill();
}

void hangServer(Bench& bench) {
  bench.room().signal(SIGSTOP);
  bench.recordMore(100);
  EXPECT_LT(bench.program().look().longestStill, 1000);
  bench.room().signal(SIGCONT);
}

/// The noise in the room is heard again when so many more samples have come.
void expectHeardAgain(Bench& bench, int samplesMore) {
  const auto noise = bench.room().play("/dev/urandom");
  const int before = bench.program().look().recorded;
  bench.recordMore(samplesMore);
  ASSERT_NO_FATAL_FAILURE(bench.stop());
  ASSERT_NO_FATAL_FAILURE(bench.saveElsewhere());
  bench.expectSaved(before + samplesMore);
  bench.expectHeardToTheEnd();
  end(*noise);
}

void restartServer(Bench& bench) {
  killServer(bench);
  bench.recordMore(50);
  ASSERT_TRUE(bench.room().start());
  expectHeardAgain(bench, 300);
}

void changeMicrophone(Bench& bench) {
  ASSERT_TRUE(bench.room().control({"unload-module", "module-remap-source"}));
  bench.recordMore(50);
  ASSERT_TRUE(bench.room().control(
      {"load-module", "module-remap-source", "master=room.monitor", "source_name=another"}));
  expectHeardAgain(bench, 200);
}

void removeLoudspeaker(Bench& bench) {
  ASSERT_TRUE(bench.room().control({"unload-module", "module-null-sink"}));
}

/// By itself.
void playsToTheEnd(Bench& bench) {
  ASSERT_TRUE(bench.program().reaches(Operation::None));
}

Faults soundFaults() {
  const Strike killed = each({killServer, samples(100)});
  const Strike loudspeakerRemoved = each({removeLoudspeaker, playsToTheEnd});
  const Strike killedInPlayback = each({killServer, playsToTheEnd});
  return {
      {"no sound server", kManual, NoServer, Recording, each({}), InHand, kGoesOn},
      {"sound server killed while recording", kManual, Own, Recording, killed, InHand, kGoesOn},
      {"sound server killed and started again", kManual, Own, Recording, restartServer, Checked,
       kIdle},
      {"sound server hangs while recording", kManual, Own, Recording, hangServer, InHand, kGoesOn},
      {"microphone changed while recording", kManual, Own, Recording, changeMicrophone, Checked,
       kIdle},
      {"loudspeaker removed while playing", kManual, Own, Playing, loudspeakerRemoved, InHand,
       kIdle},
      {"sound server killed while playing", kManual, Own, Playing, killedInPlayback, InHand, kIdle},
  };
}

/// To the meter.
Strike command(const char* line) {
  return [line](Bench& bench) { bench.meter().command(line); };
}

void inputError(Bench& bench) {
  ASSERT_TRUE(bench.program().sees([](const Seen& seen) { return seen.status == "Input Error"; }));
}

void reconnect(Bench& bench) {
  ASSERT_TRUE(eventually([&] { return QFile::exists(bench.meter().link()); }));
  ASSERT_TRUE(bench.program().reaches(Operation::None));
  ASSERT_TRUE(bench.program().tell("menu mnuConnectionConnect").done);
  ASSERT_TRUE(bench.program().sees([](const Seen& seen) {
    return seen.operation == Operation::None && seen.status == "Input OK";
  }));
}

Faults linkFaults() {
  const Strike cablePulled = each({command("hangup"), inputError, command("return"), reconnect});
  const Strike silence = each({command("stall"), inputError, command("resume")});
  const Strike anotherMeter = each({[](Bench& bench) { bench.meter().stop(); }, inputError,
                                    [](Bench& bench) { bench.meter().start(); }, reconnect});
  const Strike noise = each({command("garbage 2000"), command("dropcr 3"), command("burst 40"),
                             command("x 7"), samples(50)});
  const Strike savedByItself = each({cablePulled, [](Bench& bench) { bench.expectSaved(60); }});
  return {
      {"port lost while recording, and back", kManual, Shared, Recording, cablePulled, InHand,
       kIdle},
      {"port lost while recording without sound", kAutoName, Off, Recording, cablePulled, InHand,
       kIdle},
      {"port lost in the lead-in", kManual, Shared, LeadIn, cablePulled, Gone, kIdle},
      {"port lost, saved by itself", kAutoSave, Off, Recording, savedByItself, Checked, kIdle},
      {"meter silent while recording", kManual, Off, Recording, silence, InHand, kIdle},
      {"another meter on the same port", kManual, Off, Recording, anotherMeter, InHand, kIdle},
      {"noise on the line", kManual, Off, Recording, noise, InHand, kGoesOn},
  };
}

Faults clockFaults() {
  const Strike back = tell("clock -3600");
  const Strike backAndOn = each({back, samples(60)});
  const Strike forth = each({tell("clock 3600"), samples(60)});
  return {
      {"clock an hour back while recording", kManual, Shared, Recording, backAndOn, InHand,
       kGoesOn},
      {"clock an hour back in the lead-in", kManual, Off, LeadIn, back, InHand, kGoesOn},
      {"clock an hour on while recording", kManual, Off, Recording, forth, InHand, kGoesOn},
  };
}

void secondProgramOnThePort(Bench& bench) {
  const auto second = bench.another(bench.path("second"), bench.meter().link());
  ASSERT_TRUE(second->opens("msgNoHardware"));
  EXPECT_TRUE(second->look().text.contains("is using it")) << second->look().text.toStdString();
  EXPECT_EQ(bench.program().look().status, "Recording");
}

void secondProgramInTheFolder(Bench& bench) {
  const auto second = bench.another(bench.home(), bench.meter().link());
  ASSERT_TRUE(second->opens("msgNoHardware"));
  second->tell("answer Cancel");
  ASSERT_TRUE(second->sees([](const Seen& seen) {
    return seen.operation == Operation::None && seen.dialog.isEmpty();
  })) << "the recording of the first is not offered";
  bench.recordMore(20);
}

void saveTwiceUnderOneName(Bench& bench) {
  SimulatedMeter meter(bench.folderFor("second"));
  const auto second = bench.another(bench.home(), meter.link());
  ASSERT_TRUE(second->sees([](const Seen& seen) {
    return seen.operation == Operation::None && seen.programState == 1;
  }));
  ASSERT_TRUE(second->tell("click cmdRecord").done);
  ASSERT_TRUE(second->sees([](const Seen& seen) { return seen.recorded > 60; }));
  second->tell("click cmdStop");
  ASSERT_TRUE(second->sees(
      [](const Seen& seen) { return seen.unsaved && seen.operation == Operation::None; }));
  second->tell("click cmdSave");
  bench.program().tell("click cmdSave");
  const auto saved = [](const Seen& seen) { return !seen.unsaved; };
  ASSERT_TRUE(second->sees(saved) && bench.program().sees(saved));
  EXPECT_EQ(bench.saved().size(), 2) << bench.saved().join(' ').toStdString();
}

Faults otherPrograms() {
  return {
      {"two programs on one port", kManual, Off, Recording, secondProgramOnThePort, InHand,
       kGoesOn},
      {"two programs with the same settings folder", kManual, Off, Recording,
       secondProgramInTheFolder, InHand, kGoesOn},
      {"two programs save under one name", kAutoName, Off, Taken, saveTwiceUnderOneName, Checked,
       kIdle},
  };
}

}  // namespace

Faults worldFaults() {
  Faults all;
  for (const Faults& part : {soundFaults(), linkFaults(), clockFaults(), otherPrograms()}) {
    all.insert(all.end(), part.begin(), part.end());
  }
  return all;
}

}  // namespace qv3::test
