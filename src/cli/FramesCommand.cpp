#include "FramesCommand.h"

#include "CliOutput.h"
#include "SmilFrameRenderer.h"
#include "SmilTimelineReader.h"

#include <QDir>
#include <algorithm>

namespace {
// Zero-padded to one width, so the names sort as the times do.
QString frameName(qint64 ms, int digits) {
    return QStringLiteral("%1.png").arg(ms, digits, 10, QLatin1Char('0'));
}

int digitsFor(qint64 ms) {
    return std::max(6, int(QString::number(ms).size()));
}
} // namespace

int FramesCommand::run(const QStringList& arguments) {
    if (arguments.size() != 2)
        return CliOutput::usageError(usage());
    SmilTimeline timeline;
    if (!SmilTimelineReader::read(arguments[0], timeline))
        return CliOutput::error("frames: " + timeline.problems().join(u' '));
    const QDir folder(arguments[1]);
    if (!folder.mkpath(QStringLiteral(".")))
        return CliOutput::error("frames: the folder " + arguments[1] + " cannot be made");
    SmilFrameRenderer renderer(timeline);
    const QList<qint64> changes = timeline.visibleChanges();
    const int digits = digitsFor(changes.last());
    for (const qint64 ms : changes) {
        const QString name = frameName(ms, digits);
        if (!renderer.render(ms).save(folder.filePath(name), "PNG"))
            return CliOutput::error("frames: " + folder.filePath(name) + " cannot be written");
        CliOutput::out(name);
    }
    for (const QString& problem : timeline.problems() + renderer.problems())
        CliOutput::warning(problem);
    return 0;
}

QString FramesCommand::usage() {
    return QStringLiteral("vellumo-cli frames FILE.smil DIR");
}
