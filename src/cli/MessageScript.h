#pragma once

#include <QRect>
#include <QSize>
#include <QString>
#include <QStringList>
#include <functional>
#include <map>

class clsDrawObject;
class clsMMSManager;
class clsMessage;
class clsSlide;

// Builds a message from command-line options, slide by slide, so a whole
// message can be scripted without the window (vellumo-cli new).
class MessageScript {
public:
    explicit MessageScript(clsMMSManager& manager);

    // Applies the options to the manager's current message. False, with
    // error() saying which option was wrong, on the first bad one.
    bool apply(const QStringList& options);
    QString error() const { return m_error; }
    // The editing surface the positions refer to (--size), invalid when not given.
    QSize surface() const { return m_surface; }

    static QString help();

private:
    using Handler = std::function<bool(MessageScript&)>;
    static const std::map<QString, Handler>& handlers();

    QString take();
    bool fail(const QString& why);
    clsSlide* slide();
    clsDrawObject* text();
    bool takeRect(QRect& rect);
    bool takeColor(qint64& color);
    QString bringIn(const QString& prefix, const QString& file);
    bool readable(const QString& file);
    bool decodable(const QString& file);
    bool copyIn(const QString& file, const QString& name);

    bool newSlide();
    bool background();
    bool image();
    bool addText();
    bool sound();
    bool textAlign();
    bool fontFlag(const char* attribute);

    clsMMSManager& m_manager;
    clsMessage* m_message;
    QStringList m_rest;
    QString m_option;
    QString m_error;
    QSize m_surface;
    clsDrawObject* m_lastText = nullptr;
    bool m_slideHasDuration = false;
    int m_objects = 0;
};
