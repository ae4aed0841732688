#include "recording/sounderrors.h"

#include <algorithm>
#include <array>

namespace qv3 {
namespace {

struct Row {
  int code;
  std::string_view text;
};

using namespace soundcode;

constexpr std::array kTexts = {
    Row{kUnknownWord, "The driver cannot recognize the specified command parameter."},
    Row{kUnknownCommand, "The driver cannot recognize the specified command."},
    Row{kNotOpen, "The specified device is not open or is not recognized by MCI."},
    Row{kEmpty, "No command was specified."},
    Row{kBadNumber, "The specified integer is invalid for this command."},
    Row{kParameterMissing, "The specified command requires a parameter. Please supply one."},
    Row{kNotSupported, "The MCI device you are using does not support the specified command."},
    Row{kNotFound, "Cannot find the specified file. Make sure the path and filename are correct."},
    Row{kUnknownExtension, "Cannot determine the device type from the given filename extension."},
    Row{kOutOfRange, "The specified parameter is out of range for the specified command."},
    Row{kTwice, "The specified parameters cannot be used together."},
    Row{kCannotSave,
        "Cannot save the specified file. Make sure you have enough disk space or are still "
        "connected to the network."},
    Row{kAliasInUse,
        "The specified alias is already being used in this application. Use a unique alias."},
    Row{kUnknownItem, "The specified parameter is invalid for this command."},
    Row{kNoAlias,
        "The specified command requires an alias, file, driver, or device name. Please supply "
        "one."},
    Row{kBadTimeFormat,
        "The specified value for the time format is invalid. Refer to the MCI documentation for "
        "valid formats."},
    Row{kQuoteOpen,
        "A closing double-quotation mark is missing from the parameter value. Please supply one."},
    Row{kUnreadable,
        "The specified file cannot be played on the specified MCI device. The file may be "
        "corrupt, or not in the correct format."},
    Row{kNewWithoutAlias, "You must specify an alias when using the 'new' parameter."},
    Row{kWrongOrder,
        "Cannot carry out the commands in the order specified. Correct the command sequence, and "
        "then try again."},
    Row{kAfterQuote, "Cannot specify extra characters after a string enclosed in quotation marks."},
};

}  // namespace

std::string_view soundErrorText(int code) {
  const auto* row = std::find_if(kTexts.begin(), kTexts.end(),
                                 [code](const Row& candidate) { return candidate.code == code; });
  return row == kTexts.end() ? std::string_view{} : row->text;
}

int soundCode(SoundResult result) {
  switch (result) {
    case SoundResult::Done:
      return kDone;
    case SoundResult::Closed:
      return kNotOpen;
    case SoundResult::InUse:
      return kAliasInUse;
    case SoundResult::NotFound:
      return kNotFound;
    case SoundResult::Unreadable:
      return kUnreadable;
    case SoundResult::WrongOrder:
      return kWrongOrder;
    case SoundResult::OutOfRange:
      return kOutOfRange;
    case SoundResult::NotSupported:
      return kNotSupported;
    case SoundResult::WrongTimeFormat:
      return kBadTimeFormat;
    case SoundResult::CannotWrite:
      return kCannotSave;
  }
  return kWrongOrder;
}

}  // namespace qv3
