#include "MciError.h"

#include "AppGlobals.h"

#include <QHash>

namespace {
// English texts; the language files carry them under "ERR_MCI_" + number.
const QHash<int, const char*>& englishTexts() {
    static const QHash<int, const char*> texts{
        {MciError::None, "The command was carried out."},
        {MciError::UnrecognizedKeyword, "The command holds a word the device does not know."},
        {MciError::UnrecognizedCommand, "The media command is not known."},
        {MciError::InvalidDeviceName, "No device is open under that name."},
        {MciError::MissingCommandString, "No media command was given."},
        {MciError::BadInteger, "A number in the command is not a whole number."},
        {MciError::DriverInternal, "The sound device failed."},
        {MciError::MissingParameter, "A value the command needs is missing."},
        {MciError::UnsupportedFunction, "This device cannot carry out the command."},
        {MciError::FileNotFound, "The sound file cannot be found."},
        {MciError::DeviceNotReady, "The device is busy; stop it first."},
        {MciError::OutOfRange, "A value in the command is out of range."},
        {MciError::FileNotSaved, "The file could not be saved."},
        {MciError::DeviceTypeRequired, "The command must name a device type."},
        {MciError::DuplicateAlias, "A device is already open under that name."},
        {MciError::BadTimeFormat, "That time format is not supported."},
        {MciError::NoClosingQuote, "A quoted name in the command has no closing quote."},
        {MciError::DuplicateFlags, "A word appears twice in the command."},
        {MciError::InvalidFile,
         "The file cannot be played on this device: it is damaged or of another kind."},
        {MciError::NewRequiresAlias, "A new recording needs a name given with alias."},
        {MciError::NonapplicableFunction, "The command does not apply to the device now."},
        {MciError::FilenameRequired, "The command needs a file name."},
        {MciError::ExtraCharacters, "The command has words left over at its end."},
        {MciError::OutputsUnsuitable, "No sound output can play this sound."},
        {MciError::InputsUnsuitable, "No sound input can record in this format."},
        {MciError::FileRead, "The file cannot be read."},
        {MciError::CompressedWave,
         "The WAV file is compressed; only uncompressed PCM WAV files can be played."},
    };
    return texts;
}
} // namespace

QString MciError::text(int code) {
    const auto it = englishTexts().constFind(code);
    if (it == englishTexts().constEnd())
        return AppGlobals::text(QStringLiteral("ERR_MCI_UNKNOWN"), "Unknown media command error.");
    return AppGlobals::text(QStringLiteral("ERR_MCI_%1").arg(code), QString::fromUtf8(it.value()));
}

bool MciError::isKnown(int code) {
    return englishTexts().contains(code);
}
