#include "ClassSizeLabel.h"

#include "AppGlobals.h"
#include "ClassGuard.h"
#include "MessageDocument.h"
#include "MessageSnapshot.h"
#include "MmsInfoLines.h"

ClassSizeLabel::ClassSizeLabel(MessageDocument& document, QWidget* parent)
    : QLabel(parent), m_document(document) {
    setObjectName(QStringLiteral("lblClassSize"));
    m_pause.setSingleShot(true);
    m_pause.setInterval(kPauseMs);
    connect(&m_pause, &QTimer::timeout, this, &ClassSizeLabel::measure);
    connect(&document, &MessageDocument::slidesChanged, this, &ClassSizeLabel::remeasure);
}

void ClassSizeLabel::remeasure() {
    m_pause.start();
}

void ClassSizeLabel::settingsApplied() {
    m_measured.clear();
    remeasure();
}

void ClassSizeLabel::measure() {
    const clsMessage* message = m_document.message();
    if (!message)
        return;
    if ((m_busy && m_busy()) || m_document.isLiveEditing())
        return remeasure();
    // Only a changed message is worth writing out again.
    const QByteArray state = MessageSnapshot::take(*message, 0).xml();
    if (state == m_measured)
        return;
    m_measured = state;
    QString error;
    const auto report = ClassGuard::measure(m_document.manager(), *message, &error);
    if (!report) {
        setText(error);
        setAccessibleName(error);
        return;
    }
    showSize(report->bytes);
}

void ClassSizeLabel::showSize(qint64 bytes) {
    const ContentClass::Limits& limits =
        ContentClass::limits(ContentClassChecker::classFromSettings());
    const QString size = MmsInfoLines::kilobytes(bytes);
    m_over = limits.maxBytes > 0 && bytes > limits.maxBytes;
    QString said;
    if (limits.maxBytes <= 0)
        said = AppGlobals::text("STR_SIZE_NO_LIMIT", "%0 KB (%1)",
                                {size, QString::fromLatin1(limits.name)});
    else
        said = AppGlobals::text(
            m_over ? "STR_SIZE_OVER" : "STR_SIZE_OF",
            m_over ? "%0 KB: over the %1 KB of %2" : "%0 KB of %1 KB (%2)",
            {size, MmsInfoLines::kilobytes(limits.maxBytes), QString::fromLatin1(limits.name)});
    setText(said);
    setAccessibleName(AppGlobals::text("STR_SIZE_NAME", "Message size") + QStringLiteral(": ") +
                      said);
    setStyleSheet(m_over ? QStringLiteral("color: #b00000; font-weight: bold") : QString());
}
