#pragma once

#include <QString>
#include <pugixml.hpp>

// The two XML files of an exported message: "mms.smil" with its fixed
// 160 x 160 layout, and the texts index "texts.xml".
class SmilDocument {
public:
    // The presentation: head with title, author and layout, an empty body.
    static void startPresentation(pugi::xml_document& document, const QString& title);
    // <mms-text-files><message><title>...</title></message></mms-text-files>
    static void startTextsIndex(pugi::xml_document& document, const QString& title);
    static bool save(const pugi::xml_document& document, const QString& path,
                     QString* why = nullptr);

    // "2500ms" (format 0) or "2.500s" (format 1, always with a decimal point).
    static QString formatDuration(qint64 ms, int format);
    // "750ms" is 750; "4s" is 4000; "2.500s" is 2000: the seconds become a whole
    // number before they are multiplied. Anything else is 0.
    static qint64 parseDuration(const QString& text);
};
