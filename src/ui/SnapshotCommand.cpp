#include "SnapshotCommand.h"

SnapshotCommand::SnapshotCommand(const QString& text, MessageSnapshot before, MessageSnapshot after,
                                 Restore restore, int field, int visit)
    : QUndoCommand(text), m_before(std::move(before)), m_after(std::move(after)),
      m_restore(std::move(restore)), m_field(field), m_visit(visit) {}

void SnapshotCommand::undo() {
    m_restore(m_before);
    m_done = false;
}

void SnapshotCommand::redo() {
    if (!m_done)
        m_restore(m_after);
    m_done = true;
}

bool SnapshotCommand::mergeWith(const QUndoCommand* other) {
    const auto* next = static_cast<const SnapshotCommand*>(other);
    if (next->m_visit != m_visit)
        return false;
    m_after = next->m_after;
    // Typed back to what it was: the step goes away.
    setObsolete(m_before.sameDataAs(m_after));
    return true;
}
