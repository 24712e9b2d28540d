#include "platform/ARXFileStatus.h"

#include "support/ARXTestEnvironment.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

class ARXFileStatusTest : public ARXTestEnvironment {
protected:
    static void setTimes(const Path& path, ARXFileTime access, ARXFileTime modification) {
        const struct timespec times[2] = {{access.seconds, long(access.nanoseconds)},
                                          {modification.seconds, long(modification.nanoseconds)}};
        ASSERT_EQ(::utimensat(AT_FDCWD, path.c_str(), times, AT_SYMLINK_NOFOLLOW), 0);
    }
};

TEST_F(ARXFileStatusTest, RegularFileCarriesEveryField) {
    const Path file = ARXPath::join(root(), "report.txt");
    writeFile(file, "twelve bytes");
    ASSERT_EQ(::chmod(file.c_str(), 0640), 0);
    setTimes(file, {1500000000, 5}, {1600000000, 123456789});

    const ARXFileStatus status = ARXFileStatus::lstat(file);
    struct stat st {};
    ASSERT_EQ(::lstat(file.c_str(), &st), 0);
    ASSERT_TRUE(status.exists);
    EXPECT_EQ(status.error, 0);
    EXPECT_TRUE(status.isRegular());
    EXPECT_EQ(status.mode, st.st_mode);
    EXPECT_EQ(status.mode & 07777, 0640u);
    EXPECT_EQ(status.size, 12u);
    EXPECT_EQ(status.uid, ::geteuid());
    EXPECT_EQ(status.linkCount, 1u);
    EXPECT_EQ(status.inode, st.st_ino);
    EXPECT_EQ(status.device, st.st_dev);
    EXPECT_EQ(status.modified, (ARXFileTime{1600000000, 123456789}));
    EXPECT_EQ(status.accessed, (ARXFileTime{1500000000, 5}));
    EXPECT_EQ(status.changed, (ARXFileTime{st.st_ctim.tv_sec, uint32_t(st.st_ctim.tv_nsec)}));
    EXPECT_DOUBLE_EQ(status.modified.secondsSince1970(), 1600000000.123456789);
    if (status.born) {
        // The file was born during this test, long after the times set above.
        EXPECT_GT(*status.born, status.modified);
    }
}

TEST_F(ARXFileStatusTest, LinksAreFollowedByStatOnly) {
    const Path folder = ARXPath::join(root(), "folder");
    makeFolder(folder);
    const Path link = ARXPath::join(root(), "link");
    ASSERT_EQ(::symlink("folder", link.c_str()), 0);

    const ARXFileStatus own = ARXFileStatus::lstat(link);
    EXPECT_TRUE(own.isSymbolicLink());
    EXPECT_EQ(own.size, 6u); // the length of "folder"
    const ARXFileStatus target = ARXFileStatus::stat(link);
    EXPECT_TRUE(target.isDirectory());
    EXPECT_EQ(target.inode, ARXFileStatus::lstat(folder).inode);

    const Path dangling = ARXPath::join(root(), "dangling");
    ASSERT_EQ(::symlink("nowhere", dangling.c_str()), 0);
    EXPECT_TRUE(ARXFileStatus::lstat(dangling).exists);
    const ARXFileStatus gone = ARXFileStatus::stat(dangling);
    EXPECT_FALSE(gone.exists);
    EXPECT_EQ(gone.error, ENOENT);
}

TEST_F(ARXFileStatusTest, FailuresCarryTheirErrno) {
    const Path file = ARXPath::join(root(), "file");
    writeFile(file, "");
    EXPECT_EQ(ARXFileStatus::lstat(ARXPath::join(root(), "missing")).error, ENOENT);
    EXPECT_EQ(ARXFileStatus::stat(ARXPath::join(file, "child")).error, ENOTDIR);
    EXPECT_EQ(ARXFileStatus::stat("").error, ENOENT);
    // A NUL inside would silently name "file" itself.
    const ARXFileStatus nul = ARXFileStatus::stat(file + std::string("\0x", 2));
    EXPECT_FALSE(nul.exists);
    EXPECT_EQ(nul.error, EINVAL);
    EXPECT_EQ(nul.type, ARXFileType::unknown);
}

TEST_F(ARXFileStatusTest, SpecialFilesAndChildrenOfAnOpenFolder) {
    const Path fifo = ARXPath::join(root(), "pipe");
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
    EXPECT_EQ(ARXFileStatus::lstat(fifo).type, ARXFileType::other);
    EXPECT_TRUE(S_ISFIFO(ARXFileStatus::lstat(fifo).mode));

    writeFile(ARXPath::join(root(), "child"), "12345");
    ASSERT_EQ(::symlink("child", ARXPath::join(root(), "alias").c_str()), 0);
    const int dirFd = ::open(root().c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
    ASSERT_GE(dirFd, 0);
    EXPECT_EQ(ARXFileStatus::statAt(dirFd, "child", false).size, 5u);
    EXPECT_TRUE(ARXFileStatus::statAt(dirFd, "alias", false).isSymbolicLink());
    EXPECT_TRUE(ARXFileStatus::statAt(dirFd, "alias", true).isRegular());
    EXPECT_EQ(ARXFileStatus::statAt(dirFd, "absent", false).error, ENOENT);
    ::close(dirFd);
}

} // namespace
