#pragma once

#include <QObject>
#include <QUndoStack>
#include <functional>
#include <memory>
#include <optional>

class clsMMSManager;
class clsMessage;
class clsSlide;
class MessageSnapshot;

// The open message as the windows see it: the message of the manager, the
// current slide (1-based, 0 with no slides), the modified flag and the edit
// history. Every edit goes through here, so the thumbnail strip, the editor,
// the text and time fields and the preview only listen to the signals.
class MessageDocument : public QObject {
    Q_OBJECT
public:
    // Fields whose typing merges into one step per visit; nudges of a
    // picture object by key merge the same way until another edit.
    enum class Field { SlideText = 1, SlideDuration = 2, ObjectNudge = 3 };

    explicit MessageDocument(clsMMSManager& manager, QObject* parent = nullptr);
    ~MessageDocument() override;

    clsMessage* message() const;
    clsMMSManager& manager() const { return m_manager; }
    int currentSlide() const { return m_current; }
    int slideCount() const;
    bool isModified() const { return !m_history.isClean(); }
    QUndoStack& undoStack() { return m_history; }

    // A new message with one empty slide; the history starts empty.
    void newMessage();
    // On failure the work folder is already emptied, so a new message takes
    // the old one's place; the manager's lastError() says why.
    bool openMessage(const QString& path);
    // The message a copy of the program that did not end left in the work
    // folder becomes the open one, named name and modified; on failure a new
    // message takes its place.
    bool recoverMessage(const QString& name);
    // The message of a SMIL file or template (clsMMSManager::ImportKind)
    // becomes the open one, with a history of its own. A file that cannot be
    // read leaves the open message as it was; false, with the manager's
    // GetExportImportStatus() saying why.
    bool importMessage(const QString& path, int kind);
    // A successful save marks the history clean.
    bool saveMessage(const QString& path);

    void setCurrentSlide(int index);

    // Slide commands; each is one step, and the new (or remaining) slide
    // becomes current. False when there is no message or no such slide.
    bool appendSlide();
    bool insertSlideBefore(int index);
    bool insertSlideAfter(int index);
    // A copy of slide index with its media copied under fresh names.
    bool duplicateSlideBefore(int index);
    bool duplicateSlideAfter(int index);
    // The only slide is emptied, never removed.
    bool deleteSlide(int index);
    bool moveSlide(int from, int to);

    // Edits of the current slide.
    bool setSlideText(const QString& text);
    bool setSlideDuration(qint64 ms);
    bool deleteSlidePicture();
    bool deleteSlideText();
    bool deleteSlideSound();
    // The user left the field: the next typing starts a new step.
    void endFieldVisit() { ++m_visit; }

    // Any other edit of the current slide, as one step named by key.
    bool editSlide(const char* key, const QString& fallback,
                   const std::function<void(clsSlide& slide)>& change,
                   std::optional<Field> typedInto = std::nullopt);
    // An edit of the whole message, as one step named by key.
    bool editMessage(const char* key, const QString& fallback,
                     const std::function<void()>& change) {
        return edit(key, fallback, change);
    }
    // A change made a little at a time, as a drag is: begin remembers the
    // message as it is, the caller changes the current slide freely (and
    // shows it itself), and finish records the whole as one step and tells
    // the listeners. Cancel puts the remembered state back.
    void beginLiveEdit();
    bool isLiveEditing() const { return m_liveBefore != nullptr; }
    bool finishLiveEdit(const char* key, const QString& fallback);
    void cancelLiveEdit();

signals:
    void slidesChanged();
    void currentSlideChanged(int index);
    void modifiedChanged(bool modified);

private:
    bool hasSlide(int index) const;
    // Makes change, which may move the current slide, and records it as one
    // step when it changed the message.
    // A step typed into a field merges with the one before it in the same visit.
    bool edit(const char* key, const QString& fallback, const std::function<void()>& change,
              std::optional<Field> typedInto = std::nullopt);
    bool editCurrent(const char* key, const QString& fallback,
                     const std::function<void(int index)>& change,
                     std::optional<Field> typedInto = std::nullopt);
    void emptySlide(int index);
    void restore(const MessageSnapshot& state);
    void startHistory();
    void announce(int previousSlide);
    void record(const char* key, const QString& fallback, MessageSnapshot before,
                std::optional<Field> typedInto);

    clsMMSManager& m_manager;
    QUndoStack m_history;
    int m_current = 0;
    int m_visit = 0;
    std::unique_ptr<MessageSnapshot> m_liveBefore;
};
