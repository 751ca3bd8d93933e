#pragma once

#include <QString>

class frmMain;

// The message every picture of the help shows: three slides with a
// background, pictures, texts and a sound from the program's own archive,
// its words in the language the pictures are taken in.
class SampleMessage {
public:
    SampleMessage(frmMain& window, const QString& language);
    void compose();

private:
    struct Slide {
        const char* background;
        const char* picture;
        QString caption; // the text drawn on the picture
        QString text;    // the slide's own text
        const char* sound;
    };
    QList<Slide> slides() const;
    void fill(const Slide& slide);
    void attachSound(const QString& file);
    QString archiveFile(const QString& relative) const;

    frmMain& m_window;
    bool m_german;
};
