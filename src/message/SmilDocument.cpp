#include "SmilDocument.h"

#include "AppPaths.h"
#include "DomAttributes.h"
#include "VbFormat.h"

#include <algorithm>
#include <limits>

namespace {
// The text the presentation starts from, line by line; attribute values that
// come from the message are set afterwards, so no name can break the XML.
const char* const kPresentation = "<smil>\r\n"
                                  "<head>\r\n"
                                  "<meta name=\"title\" content=\"\" />\r\n"
                                  "<meta name=\"author\" content=\"MMS\" />\r\n"
                                  "<layout>\r\n"
                                  "<root-layout width=\"160\" height=\"160\" />\r\n"
                                  "<region id=\"Image\" width=\"160\" height=\"120\" left=\"0\" "
                                  "top=\"0\" />\r\n"
                                  "<region id=\"Text\" width=\"160\" height=\"20\" left=\"0\" "
                                  "top=\"120\" />\r\n"
                                  "</layout>\r\n"
                                  "</head>\r\n"
                                  "<body>\r\n"
                                  "</body>\r\n"
                                  "</smil>";

const char* const kTextsIndex = "<mms-text-files>\r\n"
                                "<message>\r\n"
                                "</message>\r\n"
                                "</mms-text-files>";

constexpr qint64 kMaxMs = std::numeric_limits<qint32>::max();

qint64 wholeNumberBefore(const QString& text, QChar letter) {
    return VbFormat::toInteger(text.left(text.indexOf(letter)));
}
} // namespace

void SmilDocument::startPresentation(pugi::xml_document& document, const QString& title) {
    DomAttributes::startDocument(document, kPresentation);
    DomAttributes::set(document.child("smil").child("head").child("meta"), "content", title);
}

void SmilDocument::startTextsIndex(pugi::xml_document& document, const QString& title) {
    DomAttributes::startDocument(document, kTextsIndex);
    DomAttributes::setText(document.child("mms-text-files").child("message").append_child("title"),
                           title);
}

bool SmilDocument::save(const pugi::xml_document& document, const QString& path, QString* why) {
    return DomAttributes::save(document, AppPaths::toDisk(path), why);
}

QString SmilDocument::formatDuration(qint64 ms, int format) {
    if (format == 1)
        return VbFormat::format(double(ms) / 1000.0, "0.000", ".") + "s";
    return QString::number(ms) + "ms";
}

qint64 SmilDocument::parseDuration(const QString& text) {
    qint64 ms = 0;
    if (text.contains(QLatin1Char('m')))
        ms = wholeNumberBefore(text, QLatin1Char('m'));
    else if (text.contains(QLatin1Char('s')))
        ms = std::clamp<qint64>(wholeNumberBefore(text, QLatin1Char('s')), 0, kMaxMs / 1000) * 1000;
    // Slide times are 32-bit milliseconds and never negative.
    return std::clamp<qint64>(ms, 0, kMaxMs);
}
