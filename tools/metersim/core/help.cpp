#include "tools/metersim/core/help.h"

#include <algorithm>
#include <string_view>

#include "tools/metersim/core/options.h"

namespace qv3::metersim {
namespace {

constexpr std::string_view kIntroduction =
    R"(meter-sim - a skin-resistance meter without the hardware

usage: meter-sim [OPTION]...

It opens a pseudo terminal, prints its name on the first line of its output (and
the new name after each hang-up) and behaves there like a meter on a serial
line: it answers commands and sends 50 readings a second. It ends on Ctrl-C, on
SIGTERM, or by the command "quit".

TRY IT
  meter-sim --link ~/meter
      then start the program with  --port 1=$HOME/meter  and choose
      Connection, Port, "Comm1:". The needle moves by itself.
  meter-sim --model 31 --link ~/meter --control ~/knobs
      a meter with two sensors; from another terminal:
      echo fall 3000  > ~/knobs      a fall of the needle, now
      echo hangup 5   > ~/knobs      the cable is pulled for five seconds
  meter-sim --link ~/meter --every 20:press --at 60:"stall 3"
      the switch on the meter every 20 s, and once a silence of 3 s
  meter-sim --signal csv:readings.csv --csv-end exit --autostart --verbose
      plays a list of readings once and ends
)";

constexpr std::string_view kSignals = R"(
SIGNALS
  skin                      a person: slow drift, breath and pulse, falls of
                            several sizes that recover within seconds, now and
                            then a movement of the hands
  constant:READING          (26000)
  ramp:FROM:TO:SECONDS      again and again (30000, 22000, 20)
  sine:MEAN:AMPLITUDE:SECONDS
                            a period of so many seconds (26000, 1000, 8)
  step:FIRST:SECOND:SECONDS so long at each (26000, 24000, 5)
  csv:FILE                  one reading a line; blank lines and lines that begin
                            with # do not count
  Readings are 0 to 65535. Numbers left out are those in brackets. A frame that
  is lost takes its reading with it: the skin does not wait for the line.

COMMANDS of --control, --at and --every
  fall [SIZE]      a fall of the resistance by SIZE readings (2000)
  move [SIZE]      a movement of the hands, SIZE readings to either side (900)
  signal SIGNAL    another signal
  press            the switch on the meter: the next frame is a T (model 3A)
  x [N]            the next N frames are X frames, "no reading" (6)
  garbage [N]      N characters of noise, no CR among them (8)
  dropcr [N]       the next N frames lose their CR (1)
  burst [N]        the next N frames are held back and sent all at once (5)
  stall [SECONDS]  the meter hangs: nothing is sent, nothing is heard; without
                   a number until "resume"
  resume           ends a stall
  hangup [SECONDS] the line goes; it comes back after so long, with a new
                   terminal under the same link, and the meter is as just
                   plugged in; without a number it stays away until "return"
  return           ends a hang-up
  send TEXT        exactly these characters, with \r, \n, \\ and \xHH
  quit             ends the program
  Lines that begin with # are comments.

WHAT THE METER DOES (each command ends with a CR, each frame too)
  command  3A                40, 2A            31                any other
  V        V,QVxx,FIELD2,FIELD3 and CR, at any time
  Q        stops the stream and locks; O frames, sensor and pending switch
           presses are forgotten
  U        unlocks; without it R does nothing
  R        starts P frames   P frames          L or R frames     P frames
  O        -                 O frames from now -                 -
  SL, SR   -                 -                 L, R frames       -
  A frame is its letter, four hexadecimal digits and CR: "P6590". Anything else
  that is heard does nothing.

THE LINE
  Nothing ever waits for a reader. The far end stays open and its exclusive
  mark is cleared, so a program may close and open the port again, or be killed
  and started anew, without a hang-up. At the end what was sent gets half a
  second to be read.

EXIT STATUS
  0 ended as asked, 1 something failed on the way, 2 wrong options
)";

constexpr std::size_t kIndent = 20;
constexpr std::size_t kWidth = 80;

/// Words after a column of their own, wrapped.
std::string entry(const OptionHelp& option) {
  std::string result = "  " + option.usage;
  std::size_t column = result.size();
  if (column + 2 > kIndent) {
    result += "\n";
    column = 0;
  }
  std::string_view text = option.text;
  bool first = true;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find(' '), text.size());
    if (first || column + 1 + end > kWidth) {
      if (!first) result += "\n";
      result += std::string(kIndent - (first ? column : 0), ' ');
      column = kIndent;
    } else {
      result += ' ';
      ++column;
    }
    first = false;
    result += text.substr(0, end);
    column += end;
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return result + "\n";
}

}  // namespace

std::string helpText() {
  std::string text(kIntroduction);
  text += "\nOPTIONS\n";
  for (const OptionHelp& option : optionHelp()) text += entry(option);
  return text + std::string(kSignals);
}

}  // namespace qv3::metersim
