#include "InfoCommand.h"

#include "AppError.h"
#include "CliOutput.h"
#include "CliSession.h"
#include "StoredColor.h"
#include "clsMessage.h"

namespace {
QString quoted(QString text) {
    text.replace(QLatin1String("\r\n"), QLatin1String("\\n"));
    return '"' + text + '"';
}

QString rectangle(const DrawObjectProperties& p) {
    return QStringLiteral("at %1,%2 size %3x%4 zorder %5")
        .arg(p.x)
        .arg(p.y)
        .arg(p.w)
        .arg(p.h)
        .arg(p.zorder);
}

QString drawObjectLine(int index, const DrawObjectProperties& p) {
    QString line = QStringLiteral("  object %1: %2 ").arg(index).arg(p.typ);
    if (p.typ == QLatin1String("image"))
        return line + p.image + " " + rectangle(p);
    static const char* const alignments[] = {"left", "right", "center"};
    line += quoted(p.text) + " " + rectangle(p) + " font " + quoted(p.fontName) + " " +
            QString::number(p.fontSize) + " colour " + StoredColor::toHex(p.fontColor) + " align " +
            alignments[p.fontAlign >= 0 && p.fontAlign <= 2 ? p.fontAlign : 0];
    if (p.bold)
        line += " bold";
    if (p.italic)
        line += " italic";
    if (p.underline)
        line += " underline";
    return line;
}

QStringList slideLines(const clsSlide& slide) {
    const clsDrawObjects& objects = slide.DrawObjects();
    QStringList lines;
    lines << QStringLiteral("slide %1: duration %2 ms, file %3")
                 .arg(slide.index())
                 .arg(slide.Duration())
                 .arg(slide.SlideFileName());
    lines << QStringLiteral("  background: kind %1 colour %2")
                     .arg(objects.BackType())
                     .arg(StoredColor::toHex(objects.BackColor())) +
                 (objects.BackPicture().isEmpty() ? QString() : " file " + objects.BackPicture()) +
                 (objects.BackDuration() > 0
                      ? QStringLiteral(" duration %1 ms").arg(objects.BackDuration())
                      : QString());
    int index = 1;
    for (const auto& object : objects)
        lines << drawObjectLine(index++, object->GetAllPproperties());
    if (!slide.Sound().isEmpty())
        lines << QStringLiteral("  sound: %1 %2 %3 ms")
                     .arg(slide.Sound(), quoted(slide.SoundName()))
                     .arg(slide.SoundDuration());
    if (!slide.Text().isEmpty())
        lines << "  text: " + quoted(slide.Text());
    return lines;
}
} // namespace

int InfoCommand::run(const QStringList& arguments) {
    if (arguments.size() != 1)
        return CliOutput::usageError(usage());
    try {
        CliSession session;
        const clsMessage* message = session.open(arguments[0]);
        if (!message)
            return 2;
        for (const QString& line : describe(*message))
            CliOutput::out(line);
        return 0;
    } catch (const AppError& error) {
        return CliOutput::error("info: " + error.description());
    }
}

QStringList InfoCommand::describe(const clsMessage& message) {
    QStringList lines{"name: " + message.name(), "version: " + message.version(),
                      "slides: " + QString::number(message.Slides().Count())};
    for (const auto& slide : message.Slides())
        lines << slideLines(*slide);
    return lines;
}

QString InfoCommand::usage() {
    return QStringLiteral("vellumo-cli info FILE.mms");
}
