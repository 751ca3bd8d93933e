#pragma once

#include <QObject>
#include <QTimer>

class FileCommands;
class MessageDocument;
class WorkFolderClaim;
class QWidget;

// Keeps the open message recoverable while it is modified: after every step
// of its history the message XML in the work folder is written (the media are
// there already; no slide picture is encoded) and the folder is marked as
// holding unsaved work of the message's file. A saved or new message, and a
// clean exit, take the mark away; a copy of the program that finds it at
// start offers to take the work up again.
class RecoveryJournal : public QObject {
    Q_OBJECT
public:
    RecoveryJournal(MessageDocument& document, FileCommands& files, WorkFolderClaim& claim,
                    QObject* parent = nullptr);

    // At start, before any message is made: asks whether to recover unsaved
    // work the folder holds. True when the recovered message is open; false
    // leaves the window to start a new message, which empties the folder.
    bool offerRecovery(QWidget* window);
    // The program ends cleanly: nothing is left to recover.
    void close();

private:
    void write();

    MessageDocument& m_document;
    FileCommands& m_files;
    WorkFolderClaim& m_claim;
    // Steps come in bursts (a paste, an undo of many); one write follows them.
    QTimer m_pending;
};
