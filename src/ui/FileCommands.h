#pragma once

#include <QObject>
#include <QString>

class ClassGuard;
class MessageDocument;
class RecentFilesList;
class QWidget;

// New, Open, Save, Save as and Exit with their questions: unsaved changes are
// never lost without the user saying so, a failed open ends in a new untitled
// message, and a failed save keeps the file and the modified flag as they were.
class FileCommands : public QObject {
    Q_OBJECT
public:
    enum ImportOutcome { Imported, NotImported, Declined };

    // A guard, when given, holds what is saved to the chosen content class.
    FileCommands(MessageDocument& document, RecentFilesList& recent, QWidget* window,
                 ClassGuard* guard = nullptr);

    // The message file's path; "" for a message never saved.
    QString fileName() const { return m_fileName; }

    bool newMessage();
    bool openDialog();
    // Opens path as the user asked for it (the command line, a recent file).
    bool open(const QString& path);
    // A file of the recent list: asked about unsaved changes first.
    bool openRecent(const QString& path);
    // The message of a SMIL file or template (clsMMSManager::ImportKind)
    // replaces the open one as an opened message does, after the question
    // about unsaved changes; it has no file yet, so saving asks for one.
    ImportOutcome importMessage(const QString& path, int kind);
    // The unsaved work a copy of the program that did not end left behind
    // becomes the open message, modified, under its file's name (path; "" for
    // a message never saved). On failure, said in a box, a new message.
    bool recover(const QString& path);
    bool save();
    bool saveAs();
    // True when the program may end: asked, and saved if the user wanted.
    bool mayExit();

signals:
    void fileNameChanged();
    void recentFilesChanged();

private:
    // Asks about unsaved changes; true when the action may go on.
    bool changesHandled();
    bool saveTo(const QString& path);
    void setFileName(const QString& path);
    QString startFolder() const;
    QString text(const char* key, const char* fallback) const;

    MessageDocument& m_document;
    RecentFilesList& m_recent;
    QWidget* m_window;
    ClassGuard* m_guard;
    QString m_fileName;
};
