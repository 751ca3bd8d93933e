#include "RenderCommand.h"

#include "AppError.h"
#include "CliOutput.h"
#include "CliSession.h"
#include "ImageWriter.h"
#include "SlideRenderer.h"

#include <QFileInfo>

int RenderCommand::run(const QStringList& arguments) {
    QStringList positional = arguments;
    QSize size;
    const qsizetype sizeAt = positional.indexOf("--size");
    if (sizeAt >= 0) {
        size = CliOutput::parseSize(positional.value(sizeAt + 1));
        if (!size.isValid())
            return CliOutput::usageError(usage());
        positional.remove(sizeAt, 2);
    }
    bool numeric = false;
    const int slide = positional.value(1).toInt(&numeric);
    if (positional.size() != 3 || !numeric)
        return CliOutput::usageError(usage());
    const int format = ImageWriter::formatIndex(QFileInfo(positional[2]).suffix());
    if (format < 0)
        return CliOutput::error("render: unknown picture format of " + positional[2]);
    try {
        CliSession session;
        const clsMessage* message = session.open(positional[0]);
        if (!message)
            return 2;
        if (slide < 1 || slide > message->Slides().Count())
            return CliOutput::error(
                QStringLiteral("render: the message has %1 slides").arg(message->Slides().Count()));
        const SlideRenderer renderer(session.manager().GetWorkFolderPath(),
                                     SlideRenderer::surfaceFromSettings());
        const clsDrawObjects& objects = message->Slides().Item(slide).DrawObjects();
        const QImage picture =
            size.isValid() ? renderer.render(objects, size) : renderer.render(objects);
        session.manager().SavePictureBoxImage(picture, format, positional[2]);
        return 0;
    } catch (const AppError& error) {
        return CliOutput::error("render: " + error.description());
    }
}

QString RenderCommand::usage() {
    return QStringLiteral("vellumo-cli render FILE.mms SLIDE OUT.png [--size WxH]");
}
