#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "recording/sounderrors.h"
#include "tests/support/soundrig.h"

namespace qv3::test {
namespace {

using Script = std::vector<std::pair<std::string, std::string>>;

constexpr const char* kOpenTone = "open \"/s/tone5.wav\" type waveaudio alias WavFile";
constexpr const char* kBytes = "set WavFile time format bytes";

std::string openAs(const std::string& name) {
  return "open \"/s/" + name + "\" type waveaudio alias WavFile";
}

void run(SoundRig& rig, const Script& script) {
  for (const auto& [command, answer] : script) {
    EXPECT_EQ(rig.send(command), answer) << command;
  }
}

/// Each script starts with a closed device.
struct Example {
  const char* name;
  Script script;
};

class Examples : public testing::TestWithParam<Example> {};

TEST_P(Examples, AreAnsweredInOrder) {
  SoundRig rig;
  rig.files.add("/s/tone5.mp3", SoundRig::timingTrack(10));
  run(rig, GetParam().script);
}

const Example kExamples[] = {
    {"Closed", {{"close WavFile", "263"}, {"status WavFile position", "263"}}},
    {"BadFiles",
     {{openAs("missing.wav"), "275"},
      {openAs("empty.wav"), "296"},
      {openAs("tone5.mp3"), "296"},
      {"open \"/s/\" type waveaudio alias WavFile", "275"},
      {"open \"/s/tone5.wav\" type mpegvideo alias WavFile", "0 1"}}},
    {"Units",
     {{kOpenTone, "0 1"},
      {"status WavFile length", "0 5000"},
      {kBytes, "0"},
      {"status WavFile length", "0 220500"},
      {"seek WavFile to 44101", "0"},
      {"status WavFile position", "0 44100"},
      {"set WavFile time format samples", "0"},
      {"status WavFile position", "0 22050"},
      {"set WavFile time format ms", "0"},
      {"status WavFile position", "0 1000"},
      {"status WavFile time format", "0 milliseconds"}}},
    {"Ranges",
     {{kOpenTone, "0 1"},
      {kBytes, "0"},
      {"seek WavFile to 220500", "0"},
      {"seek WavFile to 220501", "282"},
      {"status WavFile position", "0 220500"},
      {"seek WavFile to 99999999999999999999999", "282"},
      {"play WavFile from 2 to 0", "282"},
      {"play WavFile from 220502", "282"},
      {"play WavFile from 220500", "0"},
      {"status WavFile mode", "0 stopped"},
      {"seek WavFile to end", "0"},
      {"status WavFile position", "0 220500"}}},
    {"InUse", {{kOpenTone, "0 1"}, {openAs("missing.wav"), "289"}}},
    {"Blocks",
     {{openAs("st2.wav"), "0 1"},
      {kBytes, "0"},
      {"seek WavFile to 3", "0"},
      {"status WavFile position", "0 0"},
      {"seek WavFile to 352799", "0"},
      {"status WavFile position", "0 352796"}}},
    {"New",
     {{"open new type waveaudio alias WavFile", "0 1"},
      {"status WavFile samplespersec", "0 11025"},
      {"status WavFile bitspersample", "0 8"},
      {std::string(SoundRig::kSet), "0"},
      {"status WavFile bytespersec", "0 44100"},
      {"status WavFile alignment", "0 2"},
      {"status WavFile format tag", "0 pcm"},
      {"status WavFile length", "0 0"}}},
    {"FieldsDoNotCorrectEachOther",
     {{"open \"\" type waveaudio alias WavFile", "0 1"},
      {"set WavFile channels 2", "0"},
      {"status WavFile alignment", "0 1"},
      {"set WavFile bitspersample 4", "282"},
      {"set WavFile bitspersample 16 channels 0", "282"},
      {"status WavFile bitspersample", "0 8"}}},
    {"MpegVideo",
     {{"open \"/s/tone5.wav\" type mpegvideo alias WavFile", "0 1"},
      {"status WavFile length", "0 5000"},
      {kBytes, "293"},
      {"status WavFile channels", "261"},
      {"set WavFile channels 1", "261"},
      {"record WavFile", "274"},
      {"delete WavFile", "274"},
      {"save WavFile \"/s/x.wav\"", "274"},
      {"play WavFile", "0"},
      {"status WavFile mode", "0 playing"}}},
};
INSTANTIATE_TEST_SUITE_P(All, Examples, testing::ValuesIn(kExamples),
                         [](const auto& row) { return std::string(row.param.name); });

/// A command to a device that has tone5 open, in bytes.
struct Line {
  const char* command;
  int code;
};

TEST(SoundCommandLanguage, FindsWhatIsWrongInAFixedOrder) {
  const Line lines[] = {
      {"", 267},
      {"   ", 267},
      {"play", 292},
      {"nosuch", 292},
      {"nosuch WavFile", 261},
      {"nosuch Other", 261},
      {"play Other", 263},
      {"play Other from x", 263},
      {"close all", 0},
      {"\"play\" WavFile", 261},
      // Case, blanks, quotes, `wait`.
      {"  PLAY   wavFILE  wait ", 0},
      {"play \"WavFile\"", 0},
      {"play \"WavFile", 294},
      {"play \"WavFile\"from 0", 305},
      {"close WavFile wait wait", 259},
      // Numbers.
      {"seek WavFile to 1.5", 270},
      {"seek WavFile to 1e3", 270},
      {"seek WavFile to 0xfa", 270},
      {"seek WavFile to abc", 270},
      {"seek WavFile to", 270},
      {"seek WavFile to -1", 282},
      {"seek WavFile to -x", 270},
      {"seek WavFile to +1", 270},
      {"play WavFile from", 270},
      {"set WavFile channels", 270},
      // Words.
      {"status WavFile", 273},
      {"seek WavFile", 273},
      {"status WavFile nosuch", 290},
      {"status WavFile time", 290},
      {"status WavFile \"mode\"", 290},
      {"status WavFile mode mode", 284},
      {"status WavFile mode x", 259},
      {"status WavFile media present", 0},
      {"status WavFile ready", 0},
      {"set WavFile", 0},
      {"set WavFile nosuch", 259},
      {"set WavFile time", 259},
      {"set WavFile time format frames", 293},
      {"set WavFile format tag adpcm", 259},
      {"set WavFile time format ms time format ms", 284},
      {"set WavFile channels 1 channels 1", 284},
      {"set WavFile channels 1", 302},
      {"seek WavFile 5", 259},
      {"seek WavFile to 5 to 6", 284},
      {"seek WavFile to start now", 259},
      {"play WavFile from 0 from 0", 284},
      {"play WavFile 5", 259},
      {"play WavFile to 100 from 0", 0},
      {"pause WavFile now", 259},
      {"record WavFile", 302},
      {"delete WavFile from 0 to 10", 302},
      {"save WavFile", 302},
      {"save WavFile /s/a b.wav", 261},
      {"save WavFile \"/s/a b.wav\" c", 259},
      {"save WavFile \"/nowhere/a.wav\"", 275},
  };
  for (const Line& line : lines) {
    SoundRig rig;
    rig.send(kOpenTone);
    rig.send(kBytes);
    EXPECT_EQ(rig.commands.send(line.command).code, line.code) << line.command;
  }
}

TEST(SoundCommandLanguage, Open) {
  const Line lines[] = {
      {"open", 292},
      {"open /s/tone5.wav", 292},
      {"open type waveaudio alias WavFile", 292},
      {"open /s/tone5.wav alias", 292},
      {"open new type waveaudio", 299},
      {"open \"\" type waveaudio", 299},
      {"open new alias WavFile", 281},
      {"open new type mpegvideo alias WavFile", 302},
      {"open \"/s/tone5.wav\" nosuch alias Other", 263},
      {"open \"/s/tone5.wav\" type nosuch alias WavFile", 263},
      {"open \"/s/tone5.wav\" type waveaudio type waveaudio alias WavFile", 284},
      {"open \"/s/tone5.wav\" \"/s/st2.wav\" alias WavFile", 284},
      {"open \"/s/tone5.wav\" nosuch alias WavFile", 259},
      {"open /s/tone 5.wav alias WavFile", 261},
      {"open /s/tone5.flac alias WavFile", 281},
      {"open \"/s/tone5.wav alias WavFile", 294},
      {"open \"/s/tone5.wav\"alias WavFile", 305},
      {"OPEN ALIAS wavfile TYPE WaveAudio /s/tone5.wav", 0},
      {"open /s/tone5.wav alias \"WavFile\"", 0},
      {"open \"/s/it's (5)! \xC3\xA4.WAV\" alias WavFile wait", 0},
  };
  for (const Line& line : lines) {
    SoundRig rig;
    rig.files.add("/s/it's (5)! \xC3\xA4.WAV", SoundRig::wav(22050, 1, 1));
    EXPECT_EQ(rig.commands.send(line.command).code, line.code) << line.command;
  }
}

TEST(SoundCommandLanguage, RepliesAndTextsAreCut) {
  SoundRig rig;
  rig.send(kOpenTone);
  rig.send(kBytes);
  EXPECT_EQ(rig.commands.send("status WavFile length", 6).text, "22050");
  EXPECT_EQ(rig.commands.send("status WavFile length", 7).text, "220500");
  EXPECT_EQ(rig.commands.send("status WavFile length", 0).text, "");
  EXPECT_EQ(rig.commands.errorText(267), "No command was specified.");
  EXPECT_EQ(rig.commands.errorText(267, 11), "No command");
  EXPECT_EQ(rig.commands.errorText(0), "");
  EXPECT_EQ(rig.commands.errorText(277), "");
  EXPECT_EQ(rig.commands.errorText(296),
            "The specified file cannot be played on the specified MCI device. The file may be "
            "corrupt, or not in the correct format.");
}

/// What each command answers in each state, and the state it leads to.
enum class In { Stopped, Playing, Paused, Recording, PausedRecording };

void enter(SoundRig& rig, In state) {
  if (state == In::Recording || state == In::PausedRecording) {
    rig.startRecording();
    rig.hear(100, 1000);
    if (state == In::PausedRecording) rig.send("pause WavFile");
    return;
  }
  rig.send(kOpenTone);
  rig.send(kBytes);
  if (state == In::Stopped) return;
  rig.send("play WavFile");
  rig.pass(1000);
  if (state == In::Paused) rig.send("pause WavFile");
}

TEST(SoundCommandStates, EveryCommandInEveryState) {
  const std::string same;
  struct Row {
    const char* command;
    std::pair<int, std::string> in[5];
  };
  const Row rows[] = {
      {"set WavFile channels 2", {{302, same}, {302, same}, {302, same}, {302, same}, {302, same}}},
      {"set WavFile time format ms", {{0, same}, {0, same}, {0, same}, {0, same}, {0, same}}},
      {"seek WavFile to 10",
       {{0, same}, {0, "stopped"}, {0, "stopped"}, {0, "stopped"}, {0, "stopped"}}},
      {"seek WavFile to 99999999",
       {{282, same}, {282, same}, {282, same}, {282, same}, {282, same}}},
      {"play WavFile", {{0, "playing"}, {0, same}, {0, "playing"}, {302, same}, {302, same}}},
      {"play WavFile from 2",
       {{0, "playing"}, {0, same}, {0, "playing"}, {302, same}, {302, same}}},
      {"pause WavFile", {{302, same}, {0, "paused"}, {0, same}, {0, "paused"}, {0, same}}},
      {"resume WavFile", {{302, same}, {0, same}, {0, "playing"}, {0, same}, {0, "recording"}}},
      {"stop WavFile", {{0, same}, {0, "stopped"}, {0, "stopped"}, {0, "stopped"}, {0, "stopped"}}},
      {"record WavFile", {{302, same}, {302, same}, {302, same}, {302, same}, {302, same}}},
      {"delete WavFile from 0 to 2",
       {{302, same}, {302, same}, {302, same}, {302, same}, {302, same}}},
      {"save WavFile \"/s/new.wav\"",
       {{0, same}, {302, same}, {302, same}, {302, same}, {302, same}}},
      {"open new type waveaudio alias WavFile",
       {{289, same}, {289, same}, {289, same}, {289, same}, {289, same}}},
  };
  const std::string modes[] = {"stopped", "playing", "paused", "recording", "paused"};
  for (const Row& row : rows) {
    for (int state = 0; state < 5; ++state) {
      SoundRig rig;
      enter(rig, static_cast<In>(state));
      const auto& [code, mode] = row.in[state];
      EXPECT_EQ(rig.commands.send(row.command).code, code) << row.command << " in " << state;
      EXPECT_EQ(rig.commands.send("status WavFile mode").text, mode.empty() ? modes[state] : mode)
          << row.command << " in " << state;
    }
  }
}

TEST(SoundCommandStates, ARecordingThatIsStoppedPlaysRecordsAndSavesButKeepsItsFormat) {
  SoundRig rig;
  rig.startRecording();
  rig.hear(100, 1000);
  rig.send("stop WavFile");
  run(rig, {{"set WavFile channels 2", "302"},
            {"save WavFile \"/missing/rec4.wav\"", "275"},
            {"play WavFile from 0", "0"},
            {"status WavFile mode", "0 playing"},
            {"stop WavFile", "0"},
            {"record WavFile", "0"},
            {"status WavFile position", "0 44100"},
            {"stop WavFile", "0"},
            {"delete WavFile from 0 to 44102", "282"},
            {"delete WavFile from 0 to 44100", "0"},
            {"status WavFile length", "0 0"},
            {"set WavFile channels 2", "0"},
            {"close WavFile", "0"}});
}

}  // namespace
}  // namespace qv3::test
