#include <gtest/gtest.h>

#include <QFile>
#include <csignal>

#include "tests/faults/fault.h"

namespace qv3::test {
namespace {

/// How long a playback goes on, in whole samples shown; it has to end by itself.
void expectPlayedToTheEnd(Bench& bench) {
  ASSERT_TRUE(
      bench.program().sees([](const Seen& seen) { return seen.operation == Operation::None; }));
}

void changeMicrophone(Bench& bench) {
  const auto noise = bench.room().play("/dev/urandom");
  ASSERT_TRUE(bench.room().control({"unload-module", "module-remap-source"}));
  bench.recordMore(50);
  ASSERT_TRUE(bench.room().control(
      {"load-module", "module-remap-source", "master=room.monitor", "source_name=another"}));
  bench.recordMore(200);
  ASSERT_NO_FATAL_FAILURE(bench.stop());
  ASSERT_NO_FATAL_FAILURE(bench.saveElsewhere());
  bench.expectSaved(310);
  bench.expectHeardToTheEnd();
  end(*noise);
}

Faults soundFaults() {
  return {
      {"no sound server",
       kManual,
       Sound::NoServer,
       Under::Recording,
       [](Bench&) {},
       {},
       Operation::Recording,
       Kept::InHand},
      {"sound server killed while recording",
       kManual,
       Sound::Own,
       Under::Recording,
       [](Bench& bench) {
         bench.room().kill();
         bench.recordMore(100);
       },
       {},
       Operation::Recording,
       Kept::InHand},
      {"sound server killed and started again",
       kManual,
       Sound::Own,
       Under::Recording,
       [](Bench& bench) {
         bench.room().kill();
         bench.recordMore(50);
         ASSERT_TRUE(bench.room().start());
         bench.recordMore(150);
       },
       {},
       Operation::Recording,
       Kept::InHand},
      {"sound server hangs while recording",
       kManual,
       Sound::Own,
       Under::Recording,
       [](Bench& bench) {
         bench.room().signal(SIGSTOP);
         bench.recordMore(100);
         EXPECT_LT(bench.program().look().longestStill, 1000);
         bench.room().signal(SIGCONT);
       },
       {},
       Operation::Recording,
       Kept::InHand},
      {"microphone changed while recording",
       kManual,
       Sound::Own,
       Under::Recording,
       changeMicrophone,
       {},
       Operation::None,
       Kept::Checked},
      {"loudspeaker removed while playing",
       kManual,
       Sound::Own,
       Under::Playing,
       [](Bench& bench) {
         ASSERT_TRUE(bench.room().control({"unload-module", "module-null-sink"}));
         expectPlayedToTheEnd(bench);
       },
       {},
       Operation::None,
       Kept::InHand},
      {"sound server killed while playing",
       kManual,
       Sound::Own,
       Under::Playing,
       [](Bench& bench) {
         bench.room().kill();
         expectPlayedToTheEnd(bench);
       },
       {},
       Operation::None,
       Kept::InHand},
  };
}

void expectInputError(Bench& bench) {
  ASSERT_TRUE(
      bench.program().sees([](const Seen& seen) { return seen.status == "Input Error"; }, 2600));
}

void reconnect(Bench& bench) {
  ASSERT_TRUE(eventually([&] { return QFile::exists(bench.meter().link()); }, 5000));
  ASSERT_TRUE(bench.program().sees(
      [](const Seen& seen) { return seen.operation == Operation::None; }, 4000));
  ASSERT_TRUE(bench.program().tell("menu mnuConnectionConnect").done);
  ASSERT_TRUE(bench.program().sees([](const Seen& seen) {
    return seen.operation == Operation::None && seen.status == "Input OK";
  }));
}

/// The cable is pulled, and comes back.
void pullCable(Bench& bench) {
  bench.meter().command("hangup");
  ASSERT_NO_FATAL_FAILURE(expectInputError(bench));
  bench.meter().command("return");
  reconnect(bench);
}

Faults linkFaults() {
  return {
      {"port lost while recording, and back",
       kManual,
       Sound::Shared,
       Under::Recording,
       pullCable,
       {},
       Operation::None,
       Kept::InHand},
      {"port lost while recording without sound",
       kAutoName,
       Sound::Off,
       Under::Recording,
       pullCable,
       {},
       Operation::None,
       Kept::InHand},
      {"port lost in the lead-in",
       kManual,
       Sound::Shared,
       Under::LeadIn,
       pullCable,
       {},
       Operation::None,
       Kept::Nothing},
      {"port lost, saved by itself",
       kAutoSave,
       Sound::Off,
       Under::Recording,
       [](Bench& bench) {
         pullCable(bench);
         bench.expectSaved(60);
       },
       {},
       Operation::None,
       Kept::Checked},
      {"meter silent while recording",
       kManual,
       Sound::Off,
       Under::Recording,
       [](Bench& bench) {
         bench.meter().command("stall");
         ASSERT_NO_FATAL_FAILURE(expectInputError(bench));
         bench.meter().command("resume");
       },
       {},
       Operation::None,
       Kept::InHand},
      {"another meter on the same port",
       kManual,
       Sound::Off,
       Under::Recording,
       [](Bench& bench) {
         bench.meter().stop();
         ASSERT_NO_FATAL_FAILURE(expectInputError(bench));
         bench.meter().start();
         reconnect(bench);
       },
       {},
       Operation::None,
       Kept::InHand},
      {"noise on the line",
       kManual,
       Sound::Off,
       Under::Recording,
       [](Bench& bench) {
         for (const char* command : {"garbage 2000", "dropcr 3", "burst 40", "x 7"}) {
           bench.meter().command(command);
         }
         bench.recordMore(50);
       },
       {},
       Operation::Recording,
       Kept::InHand},
  };
}

Faults clockFaults() {
  const auto back = [](Bench& bench) {
    ASSERT_TRUE(bench.program().tell("clock -3600").done);
    if (bench.program().look().operation == Operation::Recording) bench.recordMore(60);
  };
  return {
      {"clock an hour back while recording",
       kManual,
       Sound::Shared,
       Under::Recording,
       back,
       {},
       Operation::Recording,
       Kept::InHand},
      {"clock an hour back in the lead-in",
       kManual,
       Sound::Off,
       Under::LeadIn,
       back,
       {},
       Operation::Recording,
       Kept::InHand},
      {"clock an hour on while recording",
       kManual,
       Sound::Off,
       Under::Recording,
       [](Bench& bench) {
         ASSERT_TRUE(bench.program().tell("clock 3600").done);
         bench.recordMore(60);
       },
       {},
       Operation::Recording,
       Kept::InHand},
  };
}

Faults otherPrograms() {
  return {
      {"two programs on one port",
       kManual,
       Sound::Off,
       Under::Recording,
       [](Bench& bench) {
         const auto second = bench.another(bench.path("second"), bench.meter().link());
         ASSERT_TRUE(second->sees([](const Seen& seen) { return seen.dialog == "msgNoHardware"; }));
         EXPECT_TRUE(second->look().text.contains("is using it"))
             << second->look().text.toStdString();
         EXPECT_EQ(bench.program().look().status, "Recording");
       },
       {},
       Operation::Recording,
       Kept::InHand},
      {"two programs with the same settings folder",
       kManual,
       Sound::Off,
       Under::Recording,
       [](Bench& bench) {
         const auto second = bench.another(bench.home(), bench.meter().link());
         ASSERT_TRUE(second->sees([](const Seen& seen) { return seen.dialog == "msgNoHardware"; }));
         second->tell("answer Cancel");
         ASSERT_TRUE(second->sees([](const Seen& seen) {
           return seen.operation == Operation::None && seen.dialog.isEmpty();
         })) << "the recording of the first is not offered";
         bench.recordMore(20);
       },
       {},
       Operation::Recording,
       Kept::InHand},
      {"two programs save under one name",
       kAutoName,
       Sound::Off,
       Under::Taken,
       [](Bench& bench) {
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
       },
       {},
       Operation::None,
       Kept::Checked},
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
