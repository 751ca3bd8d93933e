#pragma once

#include "MediaFormat.h"

#include <QList>
#include <QSize>
#include <QString>
#include <optional>

// The content classes by which phones and operators decide whether a
// multimedia message will be delivered: each limits the size of the message
// as sent, the resolution of its pictures and the formats of its parts.
class ContentClass {
public:
    enum Id {
        Text,
        ImageBasic,
        ImageRich,
        VideoBasic,
        VideoRich,
        Megapixel,
        ContentBasic,
        ContentRich
    };

    struct Limits {
        Id id;
        const char* name; // as the conformance document writes it
        // 0 where the value is not known to the program (see the table).
        qint64 maxBytes;
        QSize maxPicture;                 // invalid: no picture allowed or not known
        QList<MediaFormat::Kind> formats; // what a part may be
    };

    static const Limits& limits(Id id);
    // All classes, smallest first.
    static const QList<Limits>& table();
    // The class of a name as written in the table, in any case and with or
    // without its blanks ("imagerich"); nullopt otherwise.
    static std::optional<Id> fromName(const QString& name);
    static QString name(Id id) { return QString::fromLatin1(limits(id).name); }
    // Whether every limit of the class is known, so that a message can be said to fit it.
    static bool fullyKnown(Id id);

    // How the composer treats a message outside the chosen class: refuse the
    // part that breaks it, warn once before it leaves, or never ask.
    enum class CreationMode { Restricted, Warning, Free };
    // "CreationMode" of section "preferences"; Warning when it names no mode.
    static CreationMode creationModeFromSettings();
};
