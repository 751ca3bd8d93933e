#pragma once

#include <QString>

// Makes a folder one where no file can be made, for as long as the object
// lives: by its permission bits, and where those do not bind (root ignores
// them) by the file system's immutable flag. holds() says whether it worked;
// a test that needs it skips where neither way is open.
class UnwritableFolder {
public:
    explicit UnwritableFolder(QString folder);
    ~UnwritableFolder();
    UnwritableFolder(const UnwritableFolder&) = delete;
    UnwritableFolder& operator=(const UnwritableFolder&) = delete;

    bool holds() const;

private:
    QString m_folder;
    bool m_immutable = false;
};
