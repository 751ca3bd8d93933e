#include "RenderCommand.h"

#include "AppError.h"
#include "CliOutput.h"
#include "CliSession.h"
#include "ImageWriter.h"
#include "SlideRenderer.h"

#include <QFileInfo>

int RenderCommand::run(const QStringList& arguments) {
    QStringList positional = arguments;
    const bool sized = positional.contains("--size");
    const QString sizeText = CliOutput::takeOption(positional, "--size");
    bool numeric = false;
    const int slide = positional.value(1).toInt(&numeric);
    if (positional.size() != 3 || !numeric || (sized && sizeText.isEmpty()))
        return CliOutput::usageError(usage());
    const int format = ImageWriter::formatIndex(QFileInfo(positional[2]).suffix());
    if (format < 0)
        return CliOutput::error("render: unknown picture format of " + positional[2]);
    try {
        CliSession session;
        QSize size;
        const QString sizeProblem =
            sized ? CliOutput::pictureSize("--size", sizeText, size) : QString();
        if (!sizeProblem.isEmpty())
            return CliOutput::optionError("render", sizeProblem);
        const clsMessage* message = session.open(positional[0]);
        if (!message)
            return 2;
        if (slide < 1 || slide > message->Slides().Count())
            return CliOutput::error(
                QStringLiteral("render: the message has %1 slides").arg(message->Slides().Count()));
        // Positions on the slides are pixels of the surface the message was
        // made at, whatever size the settings name today.
        const QSize surface = SlideRenderer::surfaceOf(*message);
        const SlideRenderer renderer(session.manager().GetWorkFolderPath(), surface);
        const clsDrawObjects& objects = message->Slides().Item(slide).DrawObjects();
        const QImage picture = renderer.render(objects, sized ? size : surface);
        session.manager().SavePictureBoxImage(picture, format, positional[2]);
        return 0;
    } catch (const AppError& error) {
        return CliOutput::error("render: " + error.description());
    }
}

QString RenderCommand::usage() {
    return QStringLiteral("vellumo-cli render FILE.mms SLIDE OUT.png [--size WxH]\n"
                          "    (default: the size the message was made at)");
}
