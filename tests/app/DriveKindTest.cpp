#include "DriveKind.h"

#include <QStorageInfo>
#include <gtest/gtest.h>

namespace {
QString kind(const char* fileSystem, const char* device, bool ready = true,
             bool removable = false) {
    DriveKind::Facts facts;
    facts.fileSystem = fileSystem;
    facts.device = device;
    facts.ready = ready;
    facts.removable = removable;
    return DriveKind::iconKey(facts);
}
} // namespace

// How the folder tree draws a volume, from what the system says of it.
TEST(DriveKindTest, EachKindOfVolumeGetsItsIcon) {
    EXPECT_EQ(kind("ext4", "/dev/nvme0n1p2"), "fixed");
    EXPECT_EQ(kind("vfat", "/dev/sdb1", true, true), "remove");
    EXPECT_EQ(kind("nfs4", "server:/export"), "remote");
    EXPECT_EQ(kind("cifs", "//server/share", false), "remotedis");
    EXPECT_EQ(kind("iso9660", "/dev/sr0"), "cd");
    EXPECT_EQ(kind("udf", "/dev/sr0", false), "cddis");
    EXPECT_EQ(kind("", "/dev/sr1", false), "cddis") << "an empty drive tells no file system";
    EXPECT_EQ(kind("tmpfs", "tmpfs"), "ram");
    EXPECT_EQ(kind("fuse.weird", "weird"), "unknown");
}

TEST(DriveKindTest, TheRootIsAUserVolumeAndTheKernelsOwnAreNot) {
    bool sawRoot = false;
    for (const QStorageInfo& volume : QStorageInfo::mountedVolumes()) {
        if (volume.isRoot()) {
            sawRoot = true;
            EXPECT_TRUE(DriveKind::isUserVolume(volume));
        }
        if (volume.rootPath().startsWith("/proc") || volume.rootPath().startsWith("/sys/"))
            EXPECT_FALSE(DriveKind::isUserVolume(volume)) << volume.rootPath().toStdString();
    }
    EXPECT_TRUE(sawRoot);
}
