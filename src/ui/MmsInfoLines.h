#pragma once

#include <QHash>
#include <QString>
#include <QStringList>

class SendForm;
class clsMessage;
class clsSlide;

// What the message-info list says of a message measured as it would be sent:
// per slide a heading and a line for each of its parts, then the
// presentation, each part with its size in bytes, and the sum of the sizes.
class MmsInfoLines {
public:
    // form: the send form written from message.
    MmsInfoLines(const clsMessage& message, const SendForm& form);

    const QStringList& lines() const { return m_lines; }
    qint64 totalBytes() const { return m_total; }

    // "Slide 2", then a blank and a rule of 72 hyphens.
    static QString heading(const QString& text);
    // A tab, the name, a tab, the size in bytes.
    static QString part(const QString& name, qint64 bytes);
    // The localised label of a slide's heading: an animation or a video is
    // named as such.
    static QString slideLabel(const clsSlide& slide);
    // bytes in kilobytes with two decimals: "1.50" for 1536.
    static QString kilobytes(qint64 bytes);

private:
    void addPart(const QString& name);

    QHash<QString, qint64> m_sizes;
    QStringList m_lines;
    qint64 m_total = 0;
};
