#include "DriveKind.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStorageInfo>

namespace {
bool isOneOf(const QByteArray& value, std::initializer_list<const char*> list) {
    for (const char* item : list)
        if (value == item)
            return true;
    return false;
}

bool isRemote(const QByteArray& fileSystem) {
    return isOneOf(fileSystem, {"nfs", "nfs4", "cifs", "smb3", "smbfs", "sshfs", "fuse.sshfs",
                                "davfs", "fuse.davfs", "9p", "afs", "ceph", "glusterfs",
                                "fuse.gvfsd-fuse", "fuse.rclone"});
}

bool isOptical(const QByteArray& fileSystem, const QByteArray& device) {
    return isOneOf(fileSystem, {"iso9660", "udf"}) || device.startsWith("/dev/sr") ||
           device.startsWith("/dev/cdrom");
}

// "/dev/sdb1" -> "sdb", "/dev/mmcblk0p1" -> "mmcblk0", "/dev/nvme0n1p2" -> "nvme0n1".
QString blockDeviceOf(const QByteArray& device) {
    static const QRegularExpression partition(
        QStringLiteral("^/dev/((?:mmcblk|nvme\\d+n|loop)\\d+|[a-z]+)(?:p?\\d+)?$"));
    const QRegularExpressionMatch match = partition.match(QString::fromLocal8Bit(device));
    return match.hasMatch() ? match.captured(1) : QString();
}

bool sysfsSaysRemovable(const QByteArray& device) {
    const QString block = blockDeviceOf(device);
    if (block.isEmpty())
        return false;
    QFile flag(QStringLiteral("/sys/block/") + block + QStringLiteral("/removable"));
    return flag.open(QIODevice::ReadOnly) && flag.read(1) == "1";
}
} // namespace

QString DriveKind::iconKey(const Facts& facts) {
    if (isRemote(facts.fileSystem))
        return facts.ready ? QStringLiteral("remote") : QStringLiteral("remotedis");
    if (isOptical(facts.fileSystem, facts.device))
        return facts.ready ? QStringLiteral("cd") : QStringLiteral("cddis");
    if (isOneOf(facts.fileSystem, {"tmpfs", "ramfs"}))
        return QStringLiteral("ram");
    if (facts.removable)
        return QStringLiteral("remove");
    if (facts.device.startsWith("/dev/"))
        return QStringLiteral("fixed");
    return QStringLiteral("unknown");
}

DriveKind::Facts DriveKind::factsOf(const QStorageInfo& volume) {
    Facts facts;
    facts.fileSystem = volume.fileSystemType();
    facts.device = volume.device();
    facts.rootPath = volume.rootPath();
    facts.ready = volume.isValid() && volume.isReady() && QDir(volume.rootPath()).isReadable();
    facts.removable = sysfsSaysRemovable(facts.device);
    return facts;
}

bool DriveKind::isUserVolume(const QStorageInfo& volume) {
    const QByteArray fileSystem = volume.fileSystemType();
    const QString root = volume.rootPath();
    if (isOneOf(fileSystem,
                {"proc",       "sysfs",     "devtmpfs", "devpts",    "cgroup",      "cgroup2",
                 "securityfs", "pstore",    "debugfs",  "tracefs",   "configfs",    "fusectl",
                 "mqueue",     "hugetlbfs", "bpf",      "autofs",    "binfmt_misc", "squashfs",
                 "overlay",    "nsfs",      "efivarfs", "rpc_pipefs"}))
        return root == QLatin1String("/");
    for (const char* system : {"/proc", "/sys", "/dev", "/run", "/snap", "/boot/efi"})
        if (root == QLatin1String(system) || root.startsWith(QLatin1String(system) + u'/'))
            return root.startsWith(QLatin1String("/run/media/"));
    return true;
}
