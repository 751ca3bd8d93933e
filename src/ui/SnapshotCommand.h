#pragma once

#include "MessageSnapshot.h"

#include <QUndoCommand>
#include <functional>

// One step of the edit history, whatever the edit was: the message before and
// after it. Undo and redo put a whole snapshot back, so they can never
// disagree with the model. Steps typed into one field during one visit of it
// merge into one.
class SnapshotCommand : public QUndoCommand {
public:
    using Restore = std::function<void(const MessageSnapshot&)>;
    static constexpr int kNoMerge = -1;

    // The edit has already been made: the first redo, which QUndoStack::push
    // calls, leaves the message alone. field is kNoMerge or the id of the
    // field typed into; visit tells visits of that field apart.
    SnapshotCommand(const QString& text, MessageSnapshot before, MessageSnapshot after,
                    Restore restore, int field = kNoMerge, int visit = 0);

    void undo() override;
    void redo() override;
    int id() const override { return m_field; }
    bool mergeWith(const QUndoCommand* other) override;

private:
    MessageSnapshot m_before;
    MessageSnapshot m_after;
    Restore m_restore;
    int m_field;
    int m_visit;
    bool m_done = true;
};
