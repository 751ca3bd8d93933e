#pragma once

#include "ContentClass.h"
#include "ContentClassChecker.h"

#include <QStringList>

class clsMMSManager;
class clsMessage;
class clsSlide;

// Changes a message so that its send form fits a content class: pictures
// scaled down to the class's resolution, keeping their proportions, and
// encoded in an allowed format at the highest JPEG quality that keeps the
// message within the class's size; WAV and MP3 sounds turned into AMR-NB.
// What cannot be made to fit stays in the message and is reported.
class MessageFitter {
public:
    struct Result {
        QStringList changes;                // what was done, one line each
        ContentClassChecker::Report report; // the fitted message against the class
        QString error;                      // set when the message could not be measured
        bool fits() const { return error.isEmpty() && report.fits(); }
    };

    explicit MessageFitter(clsMMSManager& manager);

    // Works on message, which must be the manager's current message; the
    // caller saves it.
    Result fit(clsMessage& message, ContentClass::Id id);

    // A WAV or MP3 file as an AMR-NB file at target (8 kHz mono), and its length.
    static bool soundToAmr(const QString& source, const QString& target, qint64& lengthMs,
                           QString& why);

    static constexpr int kLowestQuality = 10;
    static constexpr int kHighestQuality = 100;

private:
    void fitPicture(clsSlide& slide, const ContentClass::Limits& limits, Result& result);
    void fitSound(clsSlide& slide, const ContentClass::Limits& limits, Result& result);
    bool convertToAmr(clsSlide& slide, QString& why);
    void chooseEncoding(clsMessage& message, const ContentClass::Limits& limits, Result& result);
    qint64 sendSize(clsMessage& message, QString& why);

    clsMMSManager& m_manager;
};
