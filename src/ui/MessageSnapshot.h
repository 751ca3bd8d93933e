#pragma once

#include <QByteArray>
#include <QImage>
#include <QList>

class clsMessage;

// The whole state of an open message at one moment: its XML, which is the only
// copy of the data, the pictures the slides hold in memory (renderings that
// the XML does not carry) and the current slide.
class MessageSnapshot {
public:
    static MessageSnapshot take(const clsMessage& message, int currentSlide);

    // Puts message back into this state; false when the XML was refused, which
    // leaves message as it was.
    bool restore(clsMessage& message) const;

    int currentSlide() const { return m_currentSlide; }
    // Whether the message data (not which slide is current) is the same.
    bool sameDataAs(const MessageSnapshot& other) const { return m_xml == other.m_xml; }
    const QByteArray& xml() const { return m_xml; }

private:
    struct SlidePictures {
        QImage image;
        QImage background;
    };

    QByteArray m_xml;
    QList<SlidePictures> m_pictures;
    int m_currentSlide = 0;
};
