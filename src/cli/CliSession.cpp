#include "CliSession.h"

#include "AppError.h"
#include "AppGlobals.h"
#include "CliOutput.h"
#include "SlideRenderer.h"

#include <unistd.h>

CliSession::CliSession() {
    if (!m_temp.isValid())
        throw AppError("CliSession",
                       "no private temporary folder can be made: " + m_temp.errorString());
    useWorkFolder(m_temp.path() + "/work");
    // Long work says how far it is, where someone watches.
    if (::isatty(STDERR_FILENO))
        QObject::connect(&m_manager, &clsMMSManager::ProsessingSlide, &CliOutput::progress);
}

void CliSession::useWorkFolder(const QString& folder) {
    m_manager.InitializeAt(folder, m_temp.path() + "/archive",
                           AppGlobals::setting("paths", "messagefile", "message.xml"));
}

clsMessage* CliSession::open(const QString& file) {
    int result = 0;
    clsMessage* message = m_manager.OpenMsg(file, result);
    if (!message)
        CliOutput::error(m_manager.lastError());
    else
        reportMissingMedia();
    // A binary MMS is opened by importing it, which says what it left out.
    for (const QString& note : m_manager.exportImportNotes())
        CliOutput::warning("open: " + note);
    return message;
}

void CliSession::setSurface(const QSize& size) {
    const QString folder = m_manager.GetWorkFolderPath();
    const QSize surface = size.isValid() ? size : SlideRenderer::surfaceFromSettings();
    m_manager.setSlideRenderer([folder, surface](const clsSlide& slide, const QString& path) {
        return SlideRenderer(folder, surface).renderToFile(slide, path);
    });
}

void CliSession::reportMissingMedia() const {
    for (const QString& why : m_manager.missingMedia())
        CliOutput::warning("media left out: " + why + "; its slide goes on without it");
}
