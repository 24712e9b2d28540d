#include "platform/ARXMountTable.h"

#include "platform/ARXBlockDevice.h"
#include "support/ARXTestEnvironment.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <set>
#include <sys/mount.h>

namespace {

ARXVolumeRef findVolume(const ARXVolumeList& volumes, const Path& root) {
    for (const ARXVolumeRef& volume : volumes) {
        if (volume->root == root) {
            return volume;
        }
    }
    return nullptr;
}

} // namespace

TEST(ARXMountTable, PseudoMountsAreLeftOutButTheRootAndUserTmpfsStay) {
    EXPECT_TRUE(ARXMountTable::isPseudoMount("proc", "/proc"));
    EXPECT_TRUE(ARXMountTable::isPseudoMount("cgroup2", "/sys/fs/cgroup/unified"));
    EXPECT_TRUE(ARXMountTable::isPseudoMount("tmpfs", "/dev/shm"));
    EXPECT_TRUE(ARXMountTable::isPseudoMount("tmpfs", "/run/user/1000"));
    EXPECT_TRUE(ARXMountTable::isPseudoMount("fuse.portal", "/run/user/1000/doc"));
    EXPECT_TRUE(ARXMountTable::isPseudoMount("fuse.gvfsd-fuse", "/home/u/.gvfs"));
    EXPECT_TRUE(ARXMountTable::isPseudoMount("autofs", "/boot/efi"));
    EXPECT_TRUE(ARXMountTable::isPseudoMount("squashfs", "/snap/core22/1033"));
    EXPECT_TRUE(ARXMountTable::isPseudoMount("overlay", "/var/lib/docker/overlay2/x/merged"));
    EXPECT_TRUE(ARXMountTable::isPseudoMount("tmpfs", "/run/media"));

    // A container's root is an overlay or rootfs, and still the place the user browses.
    EXPECT_FALSE(ARXMountTable::isPseudoMount("overlay", "/"));
    EXPECT_FALSE(ARXMountTable::isPseudoMount("rootfs", "/"));
    EXPECT_FALSE(ARXMountTable::isPseudoMount("ext4", "/"));
    EXPECT_FALSE(ARXMountTable::isPseudoMount("tmpfs", "/tmp"));
    EXPECT_FALSE(ARXMountTable::isPseudoMount("vfat", "/run/media/u/STICK"));
    EXPECT_FALSE(ARXMountTable::isPseudoMount("vfat", "/boot/efi"));
    EXPECT_FALSE(ARXMountTable::isPseudoMount("btrfs", "/home"));
    // Only whole folders count: "/process" and "/runner" are not under /proc and /run.
    EXPECT_FALSE(ARXMountTable::isPseudoMount("ext4", "/process"));
    EXPECT_FALSE(ARXMountTable::isPseudoMount("ext4", "/runner"));
}

TEST(ARXMountTable, CaseRuleFollowsTheTypeAndTheMountOptions) {
    for (const char* type : {"vfat", "msdos", "exfat", "ntfs", "ntfs3", "fuseblk", "hfsplus",
                             "fuseblk.ntfs-3g", "fuse.exfat"}) {
        EXPECT_TRUE(ARXMountTable::isCaseInsensitiveType(type)) << type;
    }
    for (const char* type : {"ext4", "btrfs", "xfs", "tmpfs", "overlay", "nfs4", "fuse.sshfs"}) {
        EXPECT_FALSE(ARXMountTable::isCaseInsensitiveType(type)) << type;
    }
    // The kernel shows how an iso9660 disc compares names: Joliet folds case ("check=r"),
    // Rock Ridge keeps POSIX names ("check=s").
    EXPECT_TRUE(ARXMountTable::isCaseInsensitiveType("iso9660", "ro,norock,check=r,map=n"));
    EXPECT_TRUE(ARXMountTable::isCaseInsensitiveType("iso9660", "ro,check=relaxed"));
    EXPECT_FALSE(ARXMountTable::isCaseInsensitiveType("iso9660", "ro,nojoliet,check=s,map=n"));
    EXPECT_FALSE(ARXMountTable::isCaseInsensitiveType("iso9660", ""));
    // A share mounted with "nocase" folds; the option is matched as a whole word.
    EXPECT_TRUE(ARXMountTable::isCaseInsensitiveType("cifs", "rw,nocase,vers=3.0"));
    EXPECT_FALSE(ARXMountTable::isCaseInsensitiveType("cifs", "rw,vers=3.0"));
    EXPECT_FALSE(ARXMountTable::isCaseInsensitiveType("ext4", "rw,nocasefold"));
}

TEST(ARXMountTable, NetworkMountsAreKnownByTypeOrBySource) {
    EXPECT_TRUE(ARXMountTable::isNetworkMount("nfs4", "server:/export"));
    EXPECT_TRUE(ARXMountTable::isNetworkMount("cifs", "//server/share"));
    EXPECT_TRUE(ARXMountTable::isNetworkMount("fuse.sshfs", "u@host:"));
    EXPECT_TRUE(ARXMountTable::isNetworkMount("9p", "hostshare"));
    // An unknown FUSE driver still names a remote source.
    EXPECT_TRUE(ARXMountTable::isNetworkMount("fuse.something", "u@host:/home/u"));
    EXPECT_FALSE(ARXMountTable::isNetworkMount("ext4", "/dev/sda1"));
    EXPECT_FALSE(ARXMountTable::isNetworkMount("tmpfs", "tmpfs"));
    EXPECT_FALSE(ARXMountTable::isNetworkMount("fuseblk", "/dev/sdb1"));
}

TEST(ARXBlockDevice, UdevEscapesGiveBackTheLabelBytes) {
    EXPECT_EQ(ARXBlockDevice::decodeUdevEscapes("My\\x20Stick"), "My Stick");
    EXPECT_EQ(ARXBlockDevice::decodeUdevEscapes("caf\\xe9"), std::string("caf\xe9"));
    EXPECT_EQ(ARXBlockDevice::decodeUdevEscapes("a\\x2fb"), "a/b");
    // Not an escape: kept as it stands.
    EXPECT_EQ(ARXBlockDevice::decodeUdevEscapes("\\xZZ and \\x2"), "\\xZZ and \\x2");
}

TEST(ARXMountTable, ThisMachinesTableHasTheRootAndNoPseudoMounts) {
    const ARXVolumeList volumes = ARXMountTable::shared().readVolumes();
    const ARXVolumeRef root = findVolume(volumes, "/");
    ASSERT_NE(root, nullptr);
    EXPECT_TRUE(root->isRootFileSystem);
    EXPECT_TRUE(root->isLocal);
    EXPECT_TRUE(root->isBrowsable);
    EXPECT_FALSE(root->name.isEmpty());
    EXPECT_GT(root->totalSize, 0);
    EXPECT_GE(root->availableSize, 0);
    EXPECT_LE(root->availableSize, root->totalSize);

    std::set<Path> roots;
    for (const ARXVolumeRef& volume : volumes) {
        EXPECT_TRUE(roots.insert(volume->root).second) << "listed twice: " << volume->root;
        EXPECT_FALSE(ARXMountTable::isPseudoMount(volume->fileSystemType, volume->root))
            << volume->root;
        EXPECT_EQ(volume->isRootFileSystem, volume->root == "/");
    }
}

// Mounting needs privileges a build machine may not grant; the test skips then.
class ARXMountTableLive : public ARXTestEnvironment {
protected:
    void TearDown() override {
        for (const Path& path : _mounted) {
            ::umount2(path.c_str(), MNT_DETACH);
        }
        ARXTestEnvironment::TearDown();
    }

    bool mountTmpfs(const Path& path, const char* options) {
        makeFolder(path);
        if (::mount("atrium-test", path.c_str(), "tmpfs", 0, options) != 0) {
            _failure = std::strerror(errno);
            return false;
        }
        _mounted.push_back(path);
        return true;
    }

    std::vector<Path> _mounted;
    std::string _failure;
};

TEST_F(ARXMountTableLive, AMountAndItsUnmountAreSignalledAndRead) {
    ARXMountTable& table = ARXMountTable::shared();
    int changes = 0;
    QObject::connect(&table, &ARXMountTable::mountsChanged, [&] { ++changes; });

    const Path point = ARXPath::join(root(), "ram disk");
    if (!mountTmpfs(point, "size=1m")) {
        GTEST_SKIP() << "cannot mount a tmpfs here: " << _failure;
    }
    ASSERT_TRUE(waitUntil([&] { return changes > 0; }, 5000));
    ARXVolumeRef volume = findVolume(table.readVolumes(), point);
    ASSERT_NE(volume, nullptr);
    EXPECT_EQ(volume->fileSystemType, "tmpfs");
    EXPECT_EQ(volume->name, QStringLiteral("ram disk"));
    EXPECT_EQ(volume->totalSize, 1 << 20);
    EXPECT_TRUE(volume->caseSensitive);
    EXPECT_TRUE(volume->isLocal);
    EXPECT_TRUE(volume->isInternal);
    EXPECT_FALSE(volume->isRootFileSystem);
    EXPECT_FALSE(volume->isReadOnly);

    // Mounted over: one volume for the path, with the facts of the mount on top.
    if (mountTmpfs(point, "size=2m,ro")) {
        volume = findVolume(table.readVolumes(), point);
        ASSERT_NE(volume, nullptr);
        EXPECT_EQ(volume->totalSize, 2 << 20);
        EXPECT_TRUE(volume->isReadOnly);
        ASSERT_EQ(::umount(point.c_str()), 0);
        _mounted.pop_back();
    }

    changes = 0;
    ASSERT_EQ(::umount(point.c_str()), 0);
    _mounted.clear();
    ASSERT_TRUE(waitUntil([&] { return changes > 0; }, 5000));
    EXPECT_EQ(findVolume(table.readVolumes(), point), nullptr);
}

TEST_F(ARXMountTableLive, ADiskImageIsEjectableAndItsJournalIsSeen) {
    const Path image = ARXPath::join(root(), "disk.img");
    const Path point = ARXPath::join(root(), "disk");
    makeFolder(point);
    const std::string make =
        "truncate -s 8M '" + image + "' && mkfs.ext4 -q -F -b 1024 '" + image + "' >/dev/null 2>&1";
    if (std::system(make.c_str()) != 0) {
        GTEST_SKIP() << "no mkfs.ext4 here";
    }
    const std::string attach = "mount -o loop '" + image + "' '" + point + "' 2>/dev/null";
    if (std::system(attach.c_str()) != 0) {
        GTEST_SKIP() << "cannot mount a disk image here";
    }
    _mounted.push_back(point);
    const ARXVolumeRef volume = findVolume(ARXMountTable::shared().readVolumes(), point);
    ASSERT_NE(volume, nullptr);
    EXPECT_EQ(volume->fileSystemType, "ext4");
    EXPECT_TRUE(volume->isEjectable);
    EXPECT_FALSE(volume->isInternal);
    EXPECT_FALSE(volume->isRemovable);
    EXPECT_TRUE(volume->supportsJournaling);
    EXPECT_TRUE(volume->isJournaling);
    EXPECT_TRUE(volume->supportsHardLinks);
    EXPECT_GT(volume->totalSize, 0);
}
