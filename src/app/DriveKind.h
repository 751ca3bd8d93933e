#pragma once

#include <QByteArray>
#include <QString>

class QStorageInfo;

// What kind of drive a mounted volume is, told by the icon key the folder
// tree draws it with: "fixed", "remove" (removable), "remote" (network),
// "cd" (optical), "ram", "unknown", and "remotedis" / "cddis" for a network
// or optical drive that does not answer (not connected, no disc).
class DriveKind {
public:
    // The facts this decision rests on, as the system reports them.
    struct Facts {
        QByteArray fileSystem;  // "ext4", "nfs4", "iso9660", ...
        QByteArray device;      // "/dev/sdb1", "server:/export", "tmpfs"
        QString rootPath;       // where it is mounted
        bool ready = true;      // its root can be read
        bool removable = false; // the block device says it can be taken out
    };

    static QString iconKey(const Facts& facts);
    // The facts of a mounted volume, the removable flag read from sysfs.
    static Facts factsOf(const QStorageInfo& volume);
    // Volumes a user keeps files on: not the kernel's own (proc, sysfs,
    // cgroups, ...), not snap or container layers.
    static bool isUserVolume(const QStorageInfo& volume);
};
