#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace qv3::metersim {

/// What kind of meter this is. All texts hold only the characters that their place allows; see
/// identityError.
struct MeterIdentity {
  std::string model = "3A";           ///< two characters; 3A, 40, 2A and 31 are known
  std::string field2 = "1.04";        ///< the boot loader's version
  std::string field3 = "20417";       ///< the serial number
  std::optional<std::string> answer;  ///< to "V", instead of the usual one; may be empty
  std::string tail;                   ///< characters after the four digits of a frame
};

/// Why the identity cannot be sent as it is; empty if it can.
std::string identityError(const MeterIdentity& identity);

/// The meter's side of the protocol: commands in, answers and frames out. Pure: it neither knows
/// the time nor the line.
class Meter {
 public:
  explicit Meter(MeterIdentity identity);

  /// As just plugged in: silent, locked, nothing chosen, nothing pending.
  void powerOn();

  struct Answer {
    std::string characters;  ///< to be sent, often none
    std::string remark;      ///< what the command did, for people
  };

  /// One command, without its CR.
  Answer command(std::string_view text);

  void unlock() { m_unlocked = true; }
  void startStream() { m_streaming = m_unlocked; }
  bool streaming() const { return m_streaming; }

  /// Presses the switch once; false if this model has none. Presses wait for their frames.
  bool press();

  /// The next `count` frames say that there is no reading.
  void sendErrorFrames(int count) { m_errorFrames = count; }

  /// The frame of a reading, its CR included.
  std::string frame(std::uint16_t reading);

 private:
  struct Model;

  static const Model& modelOf(std::string_view code);
  void quiet();
  char tag() const;

  MeterIdentity m_identity;
  const Model& m_model;
  bool m_unlocked = false;
  bool m_streaming = false;
  bool m_secondTag = false;  ///< O frames asked for, or the remote sensor
  int m_presses = 0;
  int m_errorFrames = 0;
};

}  // namespace qv3::metersim
