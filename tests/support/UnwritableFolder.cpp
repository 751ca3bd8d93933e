#include "UnwritableFolder.h"

#include "ProgramRun.h"

#include <QFile>

UnwritableFolder::UnwritableFolder(QString folder) : m_folder(std::move(folder)) {
    QFile::setPermissions(m_folder, QFile::ReadOwner | QFile::ExeOwner | QFile::ReadGroup |
                                        QFile::ExeGroup | QFile::ReadOther | QFile::ExeOther);
    if (!holds())
        m_immutable = runProgram("chattr", {"+i", m_folder}).code == 0;
}

UnwritableFolder::~UnwritableFolder() {
    if (m_immutable)
        runProgram("chattr", {"-i", m_folder});
    QFile::setPermissions(m_folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

bool UnwritableFolder::holds() const {
    QFile probe(m_folder + "/.probe");
    if (!probe.open(QIODevice::WriteOnly))
        return true;
    probe.remove();
    return false;
}
