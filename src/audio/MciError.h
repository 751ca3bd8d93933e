#pragma once

#include <QString>

// The media command error numbers the program sees, with the values the
// platform's interface uses, and 512 upward for this driver's own errors.
namespace MciError {
constexpr int None = 0;
constexpr int UnrecognizedKeyword = 259;
constexpr int UnrecognizedCommand = 261;
constexpr int InvalidDeviceName = 263;
constexpr int MissingCommandString = 267;
constexpr int BadInteger = 270;
constexpr int DriverInternal = 272;
constexpr int MissingParameter = 273;
constexpr int UnsupportedFunction = 274;
constexpr int FileNotFound = 275;
constexpr int DeviceNotReady = 276;
constexpr int OutOfRange = 282;
constexpr int FileNotSaved = 286;
constexpr int DeviceTypeRequired = 287;
constexpr int DuplicateAlias = 289;
constexpr int BadTimeFormat = 293;
constexpr int NoClosingQuote = 294;
constexpr int DuplicateFlags = 295;
constexpr int InvalidFile = 296;
constexpr int NewRequiresAlias = 299;
constexpr int NonapplicableFunction = 302;
constexpr int FilenameRequired = 304;
constexpr int ExtraCharacters = 305;
constexpr int OutputsUnsuitable = 326;
constexpr int InputsUnsuitable = 328;
constexpr int FileRead = 348;
constexpr int CompressedWave = 512;

// The readable text of an error number, in the user's language.
QString text(int code);
bool isKnown(int code);
} // namespace MciError
