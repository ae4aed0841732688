#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/soundscript.h"

namespace qv3::test {
namespace {

/// Each script starts with a closed device.
TEST(SoundCommands, ExamplesAreAnsweredInOrder) {
  for (const char* script : {
           "close !263; position !263",
           "open missing.wav !275; open empty.wav !296; open tone5.mp3 !296; "
           "open tone5.wav as mpegvideo; length = 5000",
           "open tone5.wav; length = 5000; bytes; length = 220500; seek to 44101; "
           "position = 44100; set time format samples; position = 22050; set time format ms; "
           "position = 1000; time format = milliseconds",
           "open tone5.wav; bytes; seek to 220500; seek to 220501 !282; position = 220500; "
           "seek to 99999999999999999999999 !282; play from 2 to 0 !282; play from 220502 !282; "
           "play from 220500; mode = stopped; seek to end; position = 220500",
           "open tone5.wav; open missing.wav !289",
           "open st2.wav; bytes; seek to 3; position = 0; seek to 352799; position = 352796",
           "open new; samplespersec = 11025; bitspersample = 8; setup; bytespersec = 44100; "
           "alignment = 2; format tag = pcm; length = 0",
           "open new; set channels 2; alignment = 1; set bitspersample 4 !282; "
           "set bitspersample 16 channels 0 !282; bitspersample = 8",
           "open tone5.wav as mpegvideo; length = 5000; set time format bytes !293; "
           "channels !261; set channels 1 !261; record !274; delete !274; save x.wav !274; play; "
           "mode = playing",
       }) {
    SoundScript fresh;
    fresh.rig.files.add("/s/tone5.mp3", SoundRig::timingTrack(10));
    EXPECT_EQ(fresh.run(script), script);
  }
}

/// Commands that are answered by a code.
struct Answer {
  int code;
  std::vector<const char*> commands;
};

void expectCodes(const std::vector<Answer>& answers, const std::string& entered) {
  for (const auto& [code, commands] : answers) {
    for (const char* command : commands) {
      SoundScript device;
      device.rig.files.add("/s/it's (5)! \xC3\xA4.WAV", SoundRig::wav(22050, 1, 1));
      device.run(entered);
      EXPECT_EQ(device.rig.commands.send(command).code, code) << command;
    }
  }
}

TEST(SoundCommands, FindsWhatIsWrongInAFixedOrder) {
  const std::vector<Answer> answers = {
      {0,
       {"close all", "  PLAY   wavFILE  wait ", "play \"WavFile\"", "status WavFile media present",
        "status WavFile ready", "set WavFile", "play WavFile to 100 from 0"}},
      {259,
       {"close WavFile wait wait", "status WavFile mode x", "set WavFile nosuch",
        "set WavFile time", "set WavFile format tag adpcm", "seek WavFile 5",
        "seek WavFile to start now", "play WavFile 5", "pause WavFile now",
        "save WavFile \"/s/a b.wav\" c"}},
      {261, {"nosuch WavFile", "nosuch Other", "\"play\" WavFile", "save WavFile /s/a b.wav"}},
      {263, {"play Other", "play Other from x"}},
      {267, {"", "   "}},
      {270,
       {"seek WavFile to 1.5", "seek WavFile to 1e3", "seek WavFile to 0xfa", "seek WavFile to abc",
        "seek WavFile to", "seek WavFile to -x", "seek WavFile to +1", "play WavFile from",
        "set WavFile channels"}},
      {273, {"status WavFile", "seek WavFile"}},
      {275, {"save WavFile \"/nowhere/a.wav\""}},
      {282, {"seek WavFile to -1"}},
      {284,
       {"status WavFile mode mode", "set WavFile time format ms time format ms",
        "set WavFile channels 1 channels 1", "seek WavFile to 5 to 6",
        "play WavFile from 0 from 0"}},
      {290, {"status WavFile nosuch", "status WavFile time", "status WavFile \"mode\""}},
      {292, {"play", "nosuch"}},
      {293, {"set WavFile time format frames"}},
      {294, {"play \"WavFile"}},
      {302,
       {"set WavFile channels 1", "record WavFile", "delete WavFile from 0 to 10", "save WavFile"}},
      {305, {"play \"WavFile\"from 0"}},
  };
  expectCodes(answers, "open tone5.wav; bytes");
}

TEST(SoundCommands, Open) {
  const std::vector<Answer> answers = {
      {0,
       {"OPEN ALIAS wavfile TYPE WaveAudio /s/tone5.wav", "open /s/tone5.wav alias \"WavFile\"",
        "open \"\" type waveaudio alias WavFile",
        "open \"/s/it's (5)! \xC3\xA4.WAV\" alias WavFile wait"}},
      {259, {"open \"/s/tone5.wav\" nosuch alias WavFile"}},
      {261, {"open /s/tone 5.wav alias WavFile"}},
      {263,
       {"open \"/s/tone5.wav\" nosuch alias Other",
        "open \"/s/tone5.wav\" type nosuch alias WavFile"}},
      {275, {"open \"/s/\" type waveaudio alias WavFile"}},
      {281, {"open new alias WavFile", "open /s/tone5.flac alias WavFile"}},
      {284,
       {"open \"/s/tone5.wav\" type waveaudio type waveaudio alias WavFile",
        "open \"/s/tone5.wav\" \"/s/st2.wav\" alias WavFile"}},
      {292,
       {"open", "open /s/tone5.wav", "open type waveaudio alias WavFile",
        "open /s/tone5.wav alias"}},
      {294, {"open \"/s/tone5.wav alias WavFile"}},
      {299, {"open new type waveaudio", "open \"\" type waveaudio"}},
      {302, {"open new type mpegvideo alias WavFile"}},
      {305, {"open \"/s/tone5.wav\"alias WavFile"}},
  };
  expectCodes(answers, "");
}

TEST(SoundCommands, RepliesAndTextsAreCut) {
  SoundScript script;
  script.run("open tone5.wav; bytes");
  SoundCommands& commands = script.rig.commands;
  EXPECT_EQ(commands.send("open new type waveaudio alias WavFile").text, "") << "refused";
  EXPECT_EQ(commands.send("status WavFile length", 6).text, "22050");
  EXPECT_EQ(commands.send("status WavFile length", 7).text, "220500");
  EXPECT_EQ(commands.send("status WavFile length", 0).text, "");
  EXPECT_EQ(commands.send("close WavFile").text, "");
  EXPECT_EQ(commands.send("open new type waveaudio alias WavFile").text, "1");
  EXPECT_EQ(commands.errorText(267), "No command was specified.");
  EXPECT_EQ(commands.errorText(267, 11), "No command");
  EXPECT_EQ(commands.errorText(0), "");
  EXPECT_EQ(commands.errorText(277), "");
  EXPECT_EQ(commands.errorText(296),
            "The specified file cannot be played on the specified MCI device. The file may be "
            "corrupt, or not in the correct format.");
}

/// A command's answer in each state, and the state it leads to, which is the same where none is
/// told.
TEST(SoundCommands, EveryCommandInEveryState) {
  constexpr int kStates = 5;
  const char* const entered[kStates] = {"open tone5.wav; bytes",
                                        "open tone5.wav; bytes; play; sleep 1000",
                                        "open tone5.wav; bytes; play; sleep 1000; pause",
                                        "start; hear 100 1000", "start; hear 100 1000; pause"};
  const std::string modes[kStates] = {"stopped", "playing", "paused", "recording", "paused"};
  struct Row {
    std::string command;
    std::pair<int, std::string> in[kStates];
  };
  const Row rows[] = {
      {"set channels 2", {{302, ""}, {302, ""}, {302, ""}, {302, ""}, {302, ""}}},
      {"set time format ms", {{0, ""}, {0, ""}, {0, ""}, {0, ""}, {0, ""}}},
      {"seek to 10", {{0, ""}, {0, "stopped"}, {0, "stopped"}, {0, "stopped"}, {0, "stopped"}}},
      {"seek to 99999999", {{282, ""}, {282, ""}, {282, ""}, {282, ""}, {282, ""}}},
      {"play", {{0, "playing"}, {0, ""}, {0, "playing"}, {302, ""}, {302, ""}}},
      {"play from 2", {{0, "playing"}, {0, ""}, {0, "playing"}, {302, ""}, {302, ""}}},
      {"pause", {{302, ""}, {0, "paused"}, {0, ""}, {0, "paused"}, {0, ""}}},
      {"resume", {{302, ""}, {0, ""}, {0, "playing"}, {0, ""}, {0, "recording"}}},
      {"stop", {{0, ""}, {0, "stopped"}, {0, "stopped"}, {0, "stopped"}, {0, "stopped"}}},
      {"record", {{302, ""}, {302, ""}, {302, ""}, {302, ""}, {302, ""}}},
      {"delete from 0 to 2", {{302, ""}, {302, ""}, {302, ""}, {302, ""}, {302, ""}}},
      {"save new.wav", {{0, ""}, {302, ""}, {302, ""}, {302, ""}, {302, ""}}},
      {"open new", {{289, ""}, {289, ""}, {289, ""}, {289, ""}, {289, ""}}},
  };
  for (const Row& row : rows) {
    for (int state = 0; state < kStates; ++state) {
      const auto& [code, mode] = row.in[state];
      const std::string script = row.command + (code == 0 ? "" : " !" + std::to_string(code)) +
                                 "; mode = " + (mode.empty() ? modes[state] : mode);
      SoundScript device;
      device.run(entered[state]);
      EXPECT_EQ(device.run(script), script) << "while " << modes[state] << ", " << state;
    }
  }
}

}  // namespace
}  // namespace qv3::test
