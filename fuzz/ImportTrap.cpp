#include "ImportTrap.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

#include <cstdlib>

namespace {
const QByteArray kSecret = "OUTSIDE-SECRET";

void require(bool condition) {
    if (!condition)
        std::abort();
}

void write(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    require(file.open(QIODevice::WriteOnly));
    require(file.write(bytes) == bytes.size());
}

QByteArray read(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}
} // namespace

ImportTrap::ImportTrap() {
    require(m_root.isValid());
    const QString root = m_root.path() + "/";
    for (const char* folder : {"set", "tmp", "victim", "work", "archive"})
        require(QDir().mkpath(root + folder));
    write(root + "secret.txt", kSecret);
    write(root + "victim/keep.doc", "keep");
    write(root + "set/a.jpg", "x");
    write(root + "set/t.txt", "text");
    require(QFile::link(root + "secret.txt", root + "set/l.txt"));
    require(QFile::link(root + "secret.txt", root + "set/l.jpg"));
    require(QFile::link(root + "victim", root + "tmp/tpldir"));
    qputenv("TMPDIR", QFile::encodeName(root + "tmp"));
}

void ImportTrap::initialize(clsMMSManager& manager) const {
    manager.InitializeAt(m_root.path() + "/work", m_root.path() + "/archive", "message.xml");
}

void ImportTrap::check(const clsMessage* message) const {
    const QString root = m_root.path() + "/";
    if (message)
        for (const auto& slide : message->Slides())
            require(!slide->Text().contains(QString::fromLatin1(kSecret)));
    QDirIterator it(root + "work",
                    QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    while (it.hasNext()) {
        const QFileInfo info(it.next());
        require(info.isFile() && !info.isSymLink() && !read(info.filePath()).contains(kSecret));
    }
    require(QDir(root + "victim").entryList(QDir::AllEntries | QDir::NoDotAndDotDot) ==
            QStringList{"keep.doc"});
    require(read(root + "victim/keep.doc") == "keep");
}
