// Reads arbitrary bytes as a presentation to be played, from a folder that
// holds a picture, a text and a link to a secret outside it. Aborts when a
// played file lies outside the folder, the secret was read, or a time runs
// backwards or past the presentation's end.
#include "SmilTimelineReader.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QTemporaryDir>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {
class Stage {
public:
    Stage() {
        QFile secret(m_root.filePath("secret.txt"));
        if (!secret.open(QIODevice::WriteOnly) || !QDir(m_root.path()).mkpath("set"))
            std::abort();
        secret.write("SECRET");
        secret.close();
        QImage picture(8, 8, QImage::Format_RGB32);
        picture.fill(Qt::red);
        picture.save(folder() + "a.png");
        QFile text(folder() + "t.txt");
        if (text.open(QIODevice::WriteOnly))
            text.write("hello");
        QFile::link(m_root.filePath("secret.txt"), folder() + "link.txt");
    }
    QString folder() const { return m_root.path() + "/set/"; }

private:
    QTemporaryDir m_root;
};

void check(const SmilTimeline& timeline, const QString& folder) {
    for (const SmilTimeline::Item& item : timeline.items()) {
        if (!item.file.startsWith(folder) || item.file.mid(folder.size()).contains(u'/'))
            std::abort();
        if (item.text.contains(QLatin1String("SECRET")))
            std::abort();
        if (item.start < 0 || item.end < item.start || item.end > timeline.duration())
            std::abort();
    }
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Stage stage;
    QFile file(stage.folder() + "show.smil");
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return 0;
    file.write(reinterpret_cast<const char*>(data), qint64(size));
    file.close();
    SmilTimeline timeline;
    SmilTimelineReader::read(stage.folder() + "show.smil", timeline);
    check(timeline, stage.folder());
    timeline.visibleChanges();
    return 0;
}
