#pragma once

#include "ContentClass.h"
#include "MediaFormat.h"
#include "SendForm.h"

#include <QList>
#include <QString>
#include <optional>

class clsMMSManager;
class clsMessage;

// Measures a message's send form against the content classes: the smallest
// class it fits, and for any class every rule it breaks, naming the part.
class ContentClassChecker {
public:
    struct Part {
        QString name;
        qint64 bytes = 0;
        MediaFormat::Facts facts;
    };
    // One broken rule in the user's language; part is empty for a rule of
    // the whole message.
    struct Broken {
        QString part;
        QString text;
        // The rule as one line, after the part it concerns.
        QString line() const { return part.isEmpty() ? text : part + QStringLiteral(": ") + text; }
    };
    struct Report {
        qint64 bytes = 0;
        QList<Part> parts;
        std::optional<ContentClass::Id> smallest; // nullopt: no class fits
        ContentClass::Id chosen = ContentClass::ImageRich;
        QList<Broken> broken; // for chosen
        bool fits() const { return broken.isEmpty(); }
    };

    // Reads every part of form once: from its binary message when it has
    // one, else from the part files.
    explicit ContentClassChecker(const SendForm& form);

    QList<Broken> brokenRules(ContentClass::Id id) const;
    std::optional<ContentClass::Id> smallestClass() const;
    Report report(ContentClass::Id chosen) const;
    const QList<Part>& parts() const { return m_parts; }

    // Writes the message's send form into a private folder and checks it;
    // nullopt, with error set, when the send form cannot be written.
    static std::optional<Report> checkMessage(clsMMSManager& manager, clsMessage& message,
                                              ContentClass::Id chosen, QString* error);
    // The rules one file named name breaks in a class by itself, before it
    // is added to a message: its format, damage, name and resolution.
    static QList<Broken> fileRules(const QString& path, const QString& name, ContentClass::Id id);
    // The class named by "ContentClass" of section "preferences"; Image Rich
    // when the setting names none.
    static ContentClass::Id classFromSettings();

private:
    bool readPacked(const QString& path);
    void addPart(const QString& name, const QByteArray& bytes);
    void partRules(const Part& part, const ContentClass::Limits& limits,
                   QList<Broken>& broken) const;

    qint64 m_bytes = 0;
    QList<Part> m_parts;
};
