#pragma once

#include <QWidget>

class QLabel;
class QPlainTextEdit;
class QPushButton;
class clsMessage;
class ctlSlideTime;

// The current slide in the middle of the window: its picture (the editor
// the window hands in), the text box for its text message (txtMessage), its
// time, the message's total time, its sound, and the buttons to add,
// duplicate and delete slides.
class SlidePanel : public QWidget {
    Q_OBJECT
public:
    explicit SlidePanel(QWidget* picture, QWidget* parent = nullptr);

    void TranslateForm();
    // Shows slide (1-based) of message; nothing for none.
    void showSlide(const clsMessage* message, int slide);
    void showTotal(qint64 ms);
    // While the message plays: the time played and the whole, "#0.0/#0.0".
    void showPlayTime(qint64 elapsedMs, qint64 totalMs);
    // The play button of the message shows Stop while the message plays.
    void setPreviewPlaying(bool playing);
    void setTimeFormat(const QString& format);
    void setSlideButtonsEnabled(bool enabled);
    // The play button beside the sound shows Stop while the sound plays.
    void setSoundPlaying(bool playing);
    QPlainTextEdit* textBox() const { return txtMessage; }
    ctlSlideTime* timeField() const { return m_time; }

signals:
    void textEdited(const QString& text);
    void durationEdited(qint64 ms);
    // The user left the text box or the time field: typing there is one step.
    void fieldLeft();
    void addClicked();
    void duplicateClicked();
    void deleteClicked();
    void playSoundClicked();
    void previewClicked();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void showSound();
    void buildLayout();

    QWidget* m_picture;
    QPlainTextEdit* txtMessage;
    ctlSlideTime* m_time;
    QLabel* lblText;
    QLabel* lblSlideTime;
    QLabel* lblTotal;
    QLabel* lblTime;
    QLabel* lblSound;
    QPushButton* cmdPlaySound;
    QPushButton* cmdPreview;
    QPushButton* cmdAddNewSlide;
    QPushButton* cmdDuplicateSlide;
    QPushButton* cmdDeleteSlide;
    bool m_showing = false;
    bool m_soundPlaying = false;
    // The shown slide's sound as "name - length"; "" for none.
    QString m_sound;
    bool m_previewPlaying = false;
};
