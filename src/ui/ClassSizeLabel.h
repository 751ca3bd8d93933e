#pragma once

#include <QLabel>
#include <QTimer>
#include <functional>

class MessageDocument;

// The status bar's word on the message's size as it would be sent, against
// the limit of the content class chosen in the settings. Measuring writes
// the whole send form, so it waits until the editing has paused.
class ClassSizeLabel : public QLabel {
    Q_OBJECT
public:
    static constexpr int kPauseMs = 1200;

    explicit ClassSizeLabel(MessageDocument& document, QWidget* parent = nullptr);

    // Measuring is put off while busy() says so (a message playing, a drag).
    void setBusy(std::function<bool()> busy) { m_busy = std::move(busy); }
    // Measures again after the pause, when the message changed.
    void remeasure();
    // The class, the slide size or the picture format may have changed.
    void settingsApplied();
    // Measures now.
    void measure();
    bool isOverLimit() const { return m_over; }

private:
    void showSize(qint64 bytes);

    MessageDocument& m_document;
    QTimer m_pause;
    std::function<bool()> m_busy;
    QByteArray m_measured; // the message last measured
    bool m_over = false;
};
