#pragma once

#include <string_view>

#include "recording/sounddevice.h"

namespace qv3 {

/// The codes with which commands are answered.
namespace soundcode {

constexpr int kDone = 0;
constexpr int kUnknownWord = 259;
constexpr int kUnknownCommand = 261;
constexpr int kNotOpen = 263;
constexpr int kEmpty = 267;
constexpr int kBadNumber = 270;
constexpr int kParameterMissing = 273;
constexpr int kNotSupported = 274;
constexpr int kNotFound = 275;
constexpr int kUnknownExtension = 281;
constexpr int kOutOfRange = 282;
constexpr int kTwice = 284;
constexpr int kCannotSave = 286;
constexpr int kAliasInUse = 289;
constexpr int kUnknownItem = 290;
constexpr int kNoAlias = 292;
constexpr int kBadTimeFormat = 293;
constexpr int kQuoteOpen = 294;
constexpr int kUnreadable = 296;
constexpr int kNewWithoutAlias = 299;
constexpr int kWrongOrder = 302;
constexpr int kAfterQuote = 305;

}  // namespace soundcode

/// Empty for 0 and for codes without a text.
std::string_view soundErrorText(int code);

int soundCode(SoundResult result);

}  // namespace qv3
