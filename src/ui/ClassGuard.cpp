#include "ClassGuard.h"

#include "AppGlobals.h"
#include "DialogService.h"
#include "MediaFormat.h"
#include "MessageDocument.h"
#include "MessageFitter.h"
#include "MessageSnapshot.h"
#include "clsMMSManager.h"
#include "clsMessage.h"

#include <QFile>
#include <QSignalBlocker>
#include <QWidget>

namespace {
using Mode = ContentClass::CreationMode;

QString text(const char* key, const char* fallback, const QStringList& arguments = {}) {
    return AppGlobals::text(key, fallback, arguments);
}

QString chosenName() {
    return ContentClass::name(ContentClassChecker::classFromSettings());
}

QString title() {
    return text("STR_CLASS_TITLE", "Content class");
}

QString brokenList(const QList<ContentClassChecker::Broken>& broken) {
    QStringList lines;
    for (const ContentClassChecker::Broken& rule : broken)
        lines << QStringLiteral("• ") + rule.line();
    return lines.join(u'\n');
}
} // namespace

ClassGuard::ClassGuard(MessageDocument& document, QWidget* window)
    : QObject(window), m_document(document), m_window(window) {}

std::optional<ContentClassChecker::Report>
ClassGuard::measure(clsMMSManager& manager, const clsMessage& message, QString* error) {
    clsMessage copy;
    copy.setPath(message.Path());
    if (!MessageSnapshot::take(message, 0).restore(copy)) {
        *error = text("STR_SAVE_MSG_ERROR", "The message cannot be saved.");
        return std::nullopt;
    }
    // Measuring is no export the user asked for: the progress stays quiet.
    const QSignalBlocker quiet(&manager);
    return ContentClassChecker::checkMessage(manager, copy,
                                             ContentClassChecker::classFromSettings(), error);
}

bool ClassGuard::mayLeave(Leaving how) {
    const Mode mode = ContentClass::creationModeFromSettings();
    const clsMessage* message = m_document.message();
    if (mode == Mode::Free || !message)
        return true;
    const QByteArray state = MessageSnapshot::take(*message, 0).xml();
    if (m_acceptedClass == ContentClassChecker::classFromSettings() && m_acceptedState == state)
        return true;
    QString error;
    const auto report = measure(m_document.manager(), *message, &error);
    // What cannot be measured cannot be sent either; the action itself says why.
    if (!report || report->fits())
        return true;
    if (mode == Mode::Restricted && how != Leaving::Save)
        return restrictedLeave(*report);
    return warnedLeave(*report, state);
}

bool ClassGuard::warnedLeave(const ContentClassChecker::Report& report, const QByteArray& state) {
    const QString question = text("STR_CLASS_WARNING",
                                  "The message does not fit %0, the content class chosen in the "
                                  "settings; a phone may refuse it:",
                                  {ContentClass::name(report.chosen)}) +
                             u'\n' + brokenList(report.broken) + QStringLiteral("\n\n") +
                             text("STR_CLASS_GO_ON", "Go on all the same?");
    if (DialogService::messageBox(m_window, question, title(), QMessageBox::Yes | QMessageBox::No,
                                  QMessageBox::Warning) != QMessageBox::Yes)
        return false;
    m_acceptedState = state;
    m_acceptedClass = report.chosen;
    return true;
}

bool ClassGuard::restrictedLeave(const ContentClassChecker::Report& report) {
    const QString question = text("STR_CLASS_REFUSED",
                                  "The message cannot leave: it does not fit %0, the content "
                                  "class chosen in the settings:",
                                  {ContentClass::name(report.chosen)}) +
                             u'\n' + brokenList(report.broken) + QStringLiteral("\n\n") +
                             text("STR_CLASS_FIT_NOW", "Make the message fit now?");
    if (DialogService::messageBox(m_window, question, title(), QMessageBox::Yes | QMessageBox::No,
                                  QMessageBox::Warning) != QMessageBox::Yes)
        return false;
    return fitMessage();
}

ClassGuard::Admission ClassGuard::admit(const QString& path, const QString& name,
                                        const QString& fitOffer) {
    if (ContentClass::creationModeFromSettings() != Mode::Restricted)
        return Admission::Admit;
    const QList<ContentClassChecker::Broken> broken =
        ContentClassChecker::fileRules(path, name, ContentClassChecker::classFromSettings());
    if (broken.isEmpty())
        return Admission::Admit;
    const QString refusal = text("STR_CLASS_PART_REFUSED",
                                 "%0 cannot be added: it does not fit %1, the content class "
                                 "chosen in the settings:",
                                 {name, chosenName()}) +
                            u'\n' + brokenList(broken);
    if (fitOffer.isEmpty()) {
        DialogService::messageBox(m_window, refusal, title(), QMessageBox::Ok,
                                  QMessageBox::Warning);
        return Admission::Refuse;
    }
    return DialogService::messageBox(m_window, refusal + QStringLiteral("\n\n") + fitOffer, title(),
                                     QMessageBox::Yes | QMessageBox::No,
                                     QMessageBox::Warning) == QMessageBox::Yes
               ? Admission::Fit
               : Admission::Refuse;
}

bool ClassGuard::soundCanFit(const QString& path) {
    QFile file(path);
    const MediaFormat::Kind kind =
        MediaFormat::identify(file.open(QIODevice::ReadOnly) ? file.read(64 * 1024) : QByteArray())
            .kind;
    return (kind == MediaFormat::Wav || kind == MediaFormat::Mp3) &&
           ContentClass::limits(ContentClassChecker::classFromSettings())
               .formats.contains(MediaFormat::AmrNb);
}

bool ClassGuard::fitMessage() {
    clsMessage* message = m_document.message();
    if (!message)
        return false;
    MessageFitter::Result result;
    const ContentClass::Id id = ContentClassChecker::classFromSettings();
    m_document.editMessage("STR_CLASS_FIT", "Fit to content class",
                           [&] { result = MessageFitter(m_document.manager()).fit(*message, id); });
    QStringList said = result.changes;
    if (said.isEmpty())
        said << text("STR_CLASS_FIT_NOTHING", "Nothing needed changing.");
    if (!result.error.isEmpty())
        said << result.error;
    else if (result.fits())
        said << text("STR_MMSINFO_FITS", "It fits %0.", {ContentClass::name(id)});
    else
        said << text("STR_MMSINFO_BREAKS", "It does not fit %0:", {ContentClass::name(id)})
             << brokenList(result.report.broken);
    DialogService::messageBox(m_window, said.join(u'\n'), title(), QMessageBox::Ok,
                              result.fits() ? QMessageBox::Information : QMessageBox::Warning);
    return result.fits();
}
