#pragma once

#include "clsMMSManager.h"

#include <QString>
#include <QTemporaryDir>

// A place to import hostile presentations in, laid with the traps a stranger
// would lay: a secret beside the presentation's folder with links to it
// inside, and a link where a shared temporary folder would be. After each
// import check() aborts when anything of the secret got into the message, the
// work folder holds anything but plain files, a temporary folder stayed
// behind, or the link's target was touched.
class ImportTrap {
public:
    ImportTrap();
    // The folder the presentation's files go in.
    QString presentationFolder() const { return m_root.path() + "/set/"; }
    // A fresh manager working in the trap's work folder.
    void initialize(clsMMSManager& manager) const;
    void check(const clsMessage* message) const;

private:
    QTemporaryDir m_root;
};
