#include "ContentClass.h"

#include "AppGlobals.h"

#include <algorithm>

namespace {
using F = MediaFormat;
constexpr qint64 kKilobyte = 1024;

const QList<F::Kind> kTexts{F::Smil, F::TextAscii, F::TextUtf8, F::TextUtf16};
const QList<F::Kind> kBasicMedia{F::JpegBaseline, F::Gif87a, F::Gif89a, F::Wbmp, F::AmrNb};
const QList<F::Kind> kRichMedia{F::Png, F::SpMidi};
const QList<F::Kind> kVideo{F::Video3gpp};

QList<F::Kind> joined(std::initializer_list<QList<F::Kind>> lists) {
    QList<F::Kind> all;
    for (const auto& list : lists)
        all += list;
    return all;
}
} // namespace

// The classes of the Open Mobile Alliance's MMS Conformance Document,
// version 1.2, with the two that version 1.3 adds (Content Basic and Content
// Rich; section 7 of 1.3 defines the classes). Sizes count 1 KB as 1024 bytes.
//
// Read from the document's text as quoted in public summaries: the sizes of
// Text (30 KB), Image Basic (30 KB), Image Rich (100 KB), Video Basic
// (100 KB) and Video Rich (300 KB); the picture limits of Image Basic
// (160x120) and of Image Rich, Video Basic and Video Rich (640x480); UTF-8
// and US-ASCII text; AMR-NB in Image Basic; AMR-NB and SP-MIDI in Content
// Basic.
// Not confirmed from the document here, kept as the program has always
// assumed them: the still-picture list of Image Basic (baseline JPEG, GIF87a,
// GIF89a, WBMP), PNG and SP-MIDI coming with Image Rich, UTF-16 text, and the
// video classes taking 3GPP files (whose codec is not inspected).
// Not found at all: the size and picture limits of Megapixel, Content Basic
// and Content Rich, and their format lists beyond AMR-NB and SP-MIDI in
// Content Basic (the lists below only say what the checker reports on).
// The limits stay 0 (unknown), so no message is ever said to fit those
// classes, rather than promising on a guessed figure.
const QList<ContentClass::Limits>& ContentClass::table() {
    static const QList<Limits> classes{
        {Text, "Text", 30 * kKilobyte, QSize(), kTexts},
        {ImageBasic, "Image Basic", 30 * kKilobyte, QSize(160, 120), joined({kTexts, kBasicMedia})},
        {ImageRich, "Image Rich", 100 * kKilobyte, QSize(640, 480),
         joined({kTexts, kBasicMedia, kRichMedia})},
        {VideoBasic, "Video Basic", 100 * kKilobyte, QSize(640, 480),
         joined({kTexts, kBasicMedia, kRichMedia, kVideo})},
        {VideoRich, "Video Rich", 300 * kKilobyte, QSize(640, 480),
         joined({kTexts, kBasicMedia, kRichMedia, kVideo})},
        {Megapixel, "Megapixel", 0, QSize(), joined({kTexts, kBasicMedia, kRichMedia})},
        {ContentBasic, "Content Basic", 0, QSize(), joined({kTexts, kBasicMedia, kRichMedia})},
        {ContentRich, "Content Rich", 0, QSize(),
         joined({kTexts, kBasicMedia, kRichMedia, kVideo})},
    };
    return classes;
}

const ContentClass::Limits& ContentClass::limits(Id id) {
    return table().at(id);
}

std::optional<ContentClass::Id> ContentClass::fromName(const QString& name) {
    const auto& classes = table();
    const auto found = std::find_if(classes.begin(), classes.end(), [&](const Limits& limits) {
        return QString(name).remove(' ').compare(QString::fromLatin1(limits.name).remove(' '),
                                                 Qt::CaseInsensitive) == 0;
    });
    return found == classes.end() ? std::nullopt : std::optional<Id>(found->id);
}

bool ContentClass::fullyKnown(Id id) {
    const Limits& entry = limits(id);
    return entry.maxBytes > 0 && (id == Text || entry.maxPicture.isValid());
}

ContentClass::CreationMode ContentClass::creationModeFromSettings() {
    const QString mode = AppGlobals::setting("preferences", "CreationMode", "Warning");
    if (mode.compare(QLatin1String("Restricted"), Qt::CaseInsensitive) == 0)
        return CreationMode::Restricted;
    if (mode.compare(QLatin1String("Free"), Qt::CaseInsensitive) == 0)
        return CreationMode::Free;
    return CreationMode::Warning;
}
