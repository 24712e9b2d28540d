#include "platform/ARXFileOperations.h"

#include "platform/ARXTemporaryItems.h"
#include "platform/ARXTrash.h"
#include "support/ARXScratchMount.h"
#include "support/ARXTestEnvironment.h"
#include "support/ARXTreeSnapshot.h"

#include <array>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/xattr.h>
#include <unistd.h>

using namespace ARXFileOperations;

namespace {

// Bytes that a text-mode or NUL-terminated copy would spoil.
std::string binaryContent(size_t size, unsigned seed) {
    std::string bytes(size, '\0');
    for (size_t i = 0; i < size; ++i) {
        bytes[i] = char((i * 131 + seed * 17 + (i >> 7)) & 0xff);
    }
    return bytes;
}

void setTimes(const Path& path, timespec accessed, timespec modified) {
    const std::array<timespec, 2> times{accessed, modified};
    ASSERT_EQ(::utimensat(AT_FDCWD, path.c_str(), times.data(), AT_SYMLINK_NOFOLLOW), 0) << path;
}

struct stat statOf(const Path& path) {
    struct stat st {};
    ::lstat(path.c_str(), &st);
    return st;
}

bool exists(const Path& path) {
    struct stat st {};
    return ::lstat(path.c_str(), &st) == 0;
}

} // namespace

class ARXFileOperationsTest : public ARXTestEnvironment {
protected:
    Path at(const std::string& name) const { return ARXPath::join(root(), name); }

    // A tree with what a copy must keep: binary bytes, modes, times to the nanosecond, a user
    // attribute, links (relative, absolute, dangling) kept as links, a FIFO, names that are not
    // UTF-8 or hold a line feed, and folders of their own mode and time.
    Path makeRichTree(const std::string& name) {
        const Path tree = at(name);
        writeFile(ARXPath::join(tree, "file.bin"), binaryContent(300 * 1024 + 7, 1));
        writeFile(ARXPath::join(tree, "sub/inner/deep.txt"), "deep");
        writeFile(ARXPath::join(tree, "sub/empty"), "");
        writeFile(ARXPath::join(tree, std::string("caf\xe9")), "latin-1 name");
        writeFile(ARXPath::join(tree, "line\nfeed"), "line feed name");
        makeFolder(ARXPath::join(tree, "vacant"));
        writeFile(at("outside.txt"), "outside");
        EXPECT_EQ(::symlink("file.bin", ARXPath::join(tree, "rel-link").c_str()), 0);
        EXPECT_EQ(::symlink(at("outside.txt").c_str(), ARXPath::join(tree, "abs-link").c_str()), 0);
        EXPECT_EQ(::symlink("nowhere", ARXPath::join(tree, "dangling").c_str()), 0);
        EXPECT_EQ(::symlink("..", ARXPath::join(tree, "sub/up").c_str()), 0);
        EXPECT_EQ(::mkfifo(ARXPath::join(tree, "pipe").c_str(), 0600), 0);
        EXPECT_EQ(::chmod(ARXPath::join(tree, "pipe").c_str(), 0620), 0);
        // A device where this process may make one (root); the copy must make it anew.
        ::mknod(ARXPath::join(tree, "null-device").c_str(), S_IFCHR | 0600, makedev(1, 3));

        const Path file = ARXPath::join(tree, "file.bin");
        EXPECT_EQ(::chmod(file.c_str(), 0640), 0);
        EXPECT_EQ(::setxattr(file.c_str(), "user.xdg.tags", "Red,Blue", 8, 0), 0);
        EXPECT_EQ(::setxattr(ARXPath::join(tree, "sub").c_str(), "user.note", "x", 1, 0), 0);
        EXPECT_EQ(::chmod(ARXPath::join(tree, "sub/inner").c_str(), 0750), 0);
        setTimes(file, {1000000000, 5}, {1234567890, 123456789});
        setTimes(ARXPath::join(tree, "rel-link"), {1200000000, 1}, {1300000000, 999999999});
        setTimes(ARXPath::join(tree, "sub/inner"), {1100000000, 0}, {1400000000, 42});
        setTimes(ARXPath::join(tree, "sub"), {1100000000, 0}, {1500000000, 7});
        setTimes(tree, {1100000000, 0}, {1600000000, 8});
        return tree;
    }
};

TEST_F(ARXFileOperationsTest, CopyKeepsBytesModesTimesAttributesLinksAndOddNames) {
    const Path source = makeRichTree("source");
    const std::vector<std::string> before = ARXTreeSnapshot(source);
    // The snapshot read the file; give it back its old access time.
    setTimes(ARXPath::join(source, "file.bin"), {1000000000, 5}, {1234567890, 123456789});

    copyItem(source, at("copy"));

    // The access time as it was before the copy read the file (and before the snapshot reads
    // the copy).
    EXPECT_EQ(statOf(at("copy/file.bin")).st_atim.tv_sec, 1000000000);
    EXPECT_EQ(statOf(at("copy/file.bin")).st_atim.tv_nsec, 5);
    EXPECT_EQ(ARXTreeSnapshot(at("copy")), before);
    EXPECT_EQ(ARXTreeSnapshot(source), before) << "the source must not change";
    EXPECT_TRUE(S_ISFIFO(statOf(at("copy/pipe")).st_mode));
}

TEST_F(ARXFileOperationsTest, CopyOfOneItemKeepsItWholeAndLeavesNothingElse) {
    const Path tree = makeRichTree("source");
    makeFolder(at("dest"));

    copyItem(ARXPath::join(tree, "file.bin"), at("dest/file.bin"));
    // A link at the top is copied as the link, not as what it names.
    copyItem(ARXPath::join(tree, "rel-link"), at("dest/link"));
    copyItem(ARXPath::join(tree, "pipe"), at("dest/pipe"));

    const std::vector<std::string> names = ARXTreeSnapshot(at("dest"));
    ASSERT_EQ(names.size(), 4u) << "no temporary files may stay behind";
    EXPECT_EQ(readFile(at("dest/file.bin")), readFile(ARXPath::join(tree, "file.bin")));
    EXPECT_EQ(statOf(at("dest/file.bin")).st_mode & 07777, 0640u);
    EXPECT_EQ(statOf(at("dest/file.bin")).st_mtim.tv_nsec, 123456789);
    EXPECT_TRUE(S_ISLNK(statOf(at("dest/link")).st_mode));
    EXPECT_EQ(statOf(at("dest/link")).st_mtim.tv_nsec, 999999999);
    EXPECT_TRUE(S_ISFIFO(statOf(at("dest/pipe")).st_mode));
    EXPECT_EQ(statOf(at("dest/pipe")).st_mode & 07777, 0620u);
}

TEST_F(ARXFileOperationsTest, CopyNeverReplacesAndNeverCopiesAFolderIntoItself) {
    writeFile(at("a.txt"), "new");
    writeFile(at("b.txt"), "old");
    makeFolder(at("folder/sub"));
    makeFolder(at("other"));
    try {
        copyItem(at("a.txt"), at("b.txt"));
        FAIL() << "copied over an existing file";
    } catch (const ARXFileError& error) {
        EXPECT_EQ(error.code, ARXFileError::kAlreadyExists);
        EXPECT_EQ(error.path, at("b.txt"));
    }
    EXPECT_EQ(readFile(at("b.txt")), "old");
    EXPECT_THROW(copyItem(at("folder"), at("other")), ARXFileError);

    EXPECT_THROW(copyItem(at("folder"), at("folder/sub/copy")), ARXFileError);
    EXPECT_FALSE(exists(at("folder/sub/copy")));
    try {
        copyItem(at("missing"), at("x"));
        FAIL();
    } catch (const ARXFileError& error) {
        EXPECT_EQ(error.errnum, ENOENT);
        EXPECT_EQ(error.path, at("missing"));
    }
}

TEST_F(ARXFileOperationsTest, CopyWithUnreadableSubfolderFailsOnItAndLeavesNoPartialTree) {
    for (int i = 0; i < 20; ++i) {
        writeFile(at("source/a" + std::to_string(i) + "/f.txt"), "content");
    }
    writeFile(at("source/locked/secret.txt"), "secret");
    ASSERT_EQ(::chmod(at("source/locked").c_str(), 0), 0);
    const std::vector<std::string> before = ARXTreeSnapshot(at("source"));

    std::optional<ARXFileError> failure;
    const bool ran = runWithoutOverridingPermissions([&] {
        try {
            copyItem(at("source"), at("copy"));
        } catch (const ARXFileError& error) {
            failure = error;
        }
    });
    if (!ran) {
        GTEST_SKIP() << "cannot give up the permission override of root here";
    }
    ASSERT_TRUE(failure.has_value());
    EXPECT_EQ(failure->path, at("source/locked"));
    EXPECT_EQ(failure->code, ARXFileError::kNoReadPermission);
    EXPECT_FALSE(exists(at("copy")));
    EXPECT_EQ(ARXTreeSnapshot(at("source")), before);
}

TEST_F(ARXFileOperationsTest, CopyOntoAFullDiskFailsOnTheFileAndLeavesNothing) {
    ARXScratchMount disk(at("disk"), "1m");
    if (!disk.mounted()) {
        GTEST_SKIP() << "no small file system to fill: " << disk.error();
    }
    writeFile(at("big.bin"), binaryContent(3 << 20, 2));
    for (int i = 0; i < 4; ++i) {
        writeFile(at("tree/part" + std::to_string(i)), binaryContent(400 << 10, 3));
    }

    try {
        copyItem(at("big.bin"), ARXPath::join(disk.path(), "big.bin"));
        FAIL() << "a 3 MiB file fitted on a 1 MiB disk";
    } catch (const ARXFileError& error) {
        EXPECT_EQ(error.errnum, ENOSPC);
        EXPECT_EQ(error.path, ARXPath::join(disk.path(), "big.bin"));
    }
    try {
        copyItem(at("tree"), ARXPath::join(disk.path(), "tree"));
        FAIL() << "1.6 MiB fitted on a 1 MiB disk";
    } catch (const ARXFileError& error) {
        EXPECT_EQ(error.errnum, ENOSPC);
        EXPECT_EQ(ARXPath::parentPath(error.path), ARXPath::join(disk.path(), "tree"));
    }
    EXPECT_EQ(ARXTreeSnapshot(disk.path()).size(), 1u) << "the disk must be as empty as before";
}

TEST_F(ARXFileOperationsTest, MoveRenamesButNeverReplaces) {
    writeFile(at("a/file.txt"), "a");
    writeFile(at("b.txt"), "b");
    const ino_t inode = statOf(at("a/file.txt")).st_ino;

    moveItem(at("a/file.txt"), at("moved.txt"));
    EXPECT_EQ(statOf(at("moved.txt")).st_ino, inode);
    EXPECT_FALSE(exists(at("a/file.txt")));

    try {
        moveItem(at("moved.txt"), at("b.txt"));
        FAIL();
    } catch (const ARXFileError& error) {
        EXPECT_EQ(error.code, ARXFileError::kAlreadyExists);
        EXPECT_EQ(error.path, at("b.txt"));
    }
    EXPECT_EQ(readFile(at("moved.txt")), "a");
    EXPECT_EQ(readFile(at("b.txt")), "b");
    try {
        moveItem(at("gone"), at("c.txt"));
        FAIL();
    } catch (const ARXFileError& error) {
        EXPECT_EQ(error.path, at("gone"));
    }
}

TEST_F(ARXFileOperationsTest, MoveAcrossFileSystemsCopiesThenRemovesTheSource) {
    ARXScratchMount other(at("other"), "64m");
    if (!other.mounted()) {
        GTEST_SKIP() << "no second file system: " << other.error();
    }
    const Path source = makeRichTree("source");
    const std::vector<std::string> before = ARXTreeSnapshot(source);

    moveItem(source, ARXPath::join(other.path(), "moved"));

    EXPECT_FALSE(exists(source));
    EXPECT_EQ(ARXTreeSnapshot(ARXPath::join(other.path(), "moved")), before);
    // And back, a single file this time.
    moveItem(ARXPath::join(other.path(), "moved/file.bin"), at("file.bin"));
    EXPECT_EQ(statOf(at("file.bin")).st_mtim.tv_nsec, 123456789);
}

TEST_F(ARXFileOperationsTest, MoveAcrossFileSystemsThatFailsLeavesTheSourceWhole) {
    ARXScratchMount disk(at("disk"), "1m");
    if (!disk.mounted()) {
        GTEST_SKIP() << "no small second file system: " << disk.error();
    }
    for (int i = 0; i < 4; ++i) {
        writeFile(at("source/sub/part" + std::to_string(i)), binaryContent(400 << 10, 4));
    }
    const std::vector<std::string> before = ARXTreeSnapshot(at("source"));

    try {
        moveItem(at("source"), ARXPath::join(disk.path(), "source"));
        FAIL();
    } catch (const ARXFileError& error) {
        EXPECT_EQ(error.errnum, ENOSPC);
    }
    EXPECT_EQ(ARXTreeSnapshot(at("source")), before);
    EXPECT_FALSE(exists(ARXPath::join(disk.path(), "source")));
}

TEST_F(ARXFileOperationsTest, RemoveTakesLinksAwayWithoutFollowingThem) {
    writeFile(at("outside/keep.txt"), "keep");
    writeFile(at("tree/sub/file.txt"), "x");
    ASSERT_EQ(::symlink(at("outside").c_str(), at("tree/to-outside").c_str()), 0);
    ASSERT_EQ(::symlink(at("outside/keep.txt").c_str(), at("tree/sub/to-file").c_str()), 0);
    ASSERT_EQ(::symlink(at("outside").c_str(), at("link-to-folder").c_str()), 0);

    removeItem(at("tree"));
    removeItem(at("link-to-folder"));

    EXPECT_FALSE(exists(at("tree")));
    EXPECT_FALSE(exists(at("link-to-folder")));
    EXPECT_EQ(readFile(at("outside/keep.txt")), "keep");
    try {
        removeItem(at("tree"));
        FAIL();
    } catch (const ARXFileError& error) {
        EXPECT_EQ(error.errnum, ENOENT);
        EXPECT_EQ(error.path, at("tree"));
    }
}

TEST_F(ARXFileOperationsTest, RemoveStopsAtTheFirstItemThatCannotGo) {
    writeFile(at("tree/locked/file.txt"), "x");
    ASSERT_EQ(::chmod(at("tree/locked").c_str(), 0555), 0);
    std::optional<ARXFileError> failure;
    const bool ran = runWithoutOverridingPermissions([&] {
        try {
            removeItem(at("tree"));
        } catch (const ARXFileError& error) {
            failure = error;
        }
    });
    if (!ran) {
        GTEST_SKIP() << "cannot give up the permission override of root here";
    }
    ASSERT_TRUE(failure.has_value());
    EXPECT_EQ(failure->path, at("tree/locked/file.txt"));
    EXPECT_EQ(failure->code, ARXFileError::kNoWritePermission);
    EXPECT_EQ(readFile(at("tree/locked/file.txt")), "x");
}

TEST_F(ARXFileOperationsTest, ReplaceExchangesAFolderForAFileAndRemovesTheOld) {
    writeFile(at("dest/existing/old.txt"), "old");
    writeFile(at("incoming"), "new");

    replaceItem(at("dest/existing"), at("incoming"));

    EXPECT_EQ(readFile(at("dest/existing")), "new");
    EXPECT_FALSE(exists(at("incoming")));
}

TEST_F(ARXFileOperationsTest, ReplaceAcrossFileSystemsIsRefusedThenDoneByHand) {
    ARXScratchMount other(at("other"), "16m");
    if (!other.mounted()) {
        GTEST_SKIP() << "no second file system: " << other.error();
    }
    const Path existing = ARXPath::join(other.path(), "doc.txt");
    writeFile(existing, "old");
    writeFile(at("doc.txt"), "new");

    try {
        replaceItem(existing, at("doc.txt"));
        FAIL();
    } catch (const ARXFileError& error) {
        EXPECT_EQ(error.code, ARXFileError::kReplaceFailed);
    }
    EXPECT_EQ(readFile(existing), "old");
    EXPECT_EQ(readFile(at("doc.txt")), "new");

    const std::optional<Path> trashed = replaceItemSafely(existing, at("doc.txt"));
    EXPECT_EQ(readFile(existing), "new");
    EXPECT_FALSE(exists(at("doc.txt")));
    ASSERT_TRUE(trashed.has_value()); // the volume's own trash
    EXPECT_EQ(readFile(*trashed), "old");
    EXPECT_EQ(ARXTreeSnapshot(other.path()).size(), 7u) << "the item and the volume's trash";
}

// What Replace replaced can be taken back out of the trash, to the place it came from.
TEST_F(ARXFileOperationsTest, ReplaceSendsTheReplacedItemToTheTrash) {
    writeFile(at("dest/doc.txt"), "old");
    writeFile(at("doc.txt"), "new");

    const std::optional<Path> trashed = replaceItemSafely(at("dest/doc.txt"), at("doc.txt"));

    EXPECT_EQ(readFile(at("dest/doc.txt")), "new");
    ASSERT_EQ(trashed, ARXPath::join(ARXTrash::homeTrash(), "files/doc.txt"));
    EXPECT_EQ(readFile(*trashed), "old");
    EXPECT_NE(readFile(*ARXTrash::infoFileFor(*trashed))
                  .find("Path=" + ARXTrash::encodePath(at("dest/doc.txt")) + "\n"),
              std::string::npos);
    EXPECT_EQ(ARXTreeSnapshot(at("dest")).size(), 2u) << "nothing left behind";
}

// Two spellings of one item: an exchange of the item with itself would change nothing, and the
// removal after it would take the only copy.
TEST_F(ARXFileOperationsTest, ReplaceRefusesTwoSpellingsOfOneItem) {
    writeFile(at("a/x"), "only copy");
    ASSERT_EQ(::symlink(at("a").c_str(), at("link").c_str()), 0);
    EXPECT_TRUE(isSameItem(at("link/x"), at("a/x")));
    EXPECT_TRUE(isSameItem(at("a/../a/./x"), at("a//x")));
    EXPECT_FALSE(isSameItem(at("link"), at("a")));

    for (const Path& spelling : {at("link/x"), at("a/./x"), at("a/../a/x")}) {
        for (auto replace : {replaceItem, replaceItemByHand}) {
            EXPECT_THROW(replace(spelling, at("a/x")), ARXFileError) << spelling;
        }
        try {
            replaceItemSafely(spelling, at("a/x"));
            ADD_FAILURE() << spelling;
        } catch (const ARXFileError& error) {
            EXPECT_EQ(error.errnum, EINVAL);
        }
        EXPECT_EQ(readFile(at("a/x")), "only copy");
    }
    EXPECT_EQ(ARXTreeSnapshot(at("a")).size(), 2u);
}

TEST_F(ARXFileOperationsTest, ReplaceByHandKeepsTheDestinationWhenTheMoveFails) {
    ARXScratchMount disk(at("disk"), "1m");
    if (!disk.mounted()) {
        GTEST_SKIP() << "no small second file system: " << disk.error();
    }
    const Path existing = ARXPath::join(disk.path(), "doc.bin");
    writeFile(existing, "old");
    writeFile(at("doc.bin"), binaryContent(3 << 20, 5));
    const std::vector<std::string> source = ARXTreeSnapshot(at("doc.bin"));

    try {
        replaceItemByHand(existing, at("doc.bin"));
        FAIL();
    } catch (const ARXFileError& error) {
        EXPECT_EQ(error.errnum, ENOSPC);
    }
    EXPECT_EQ(readFile(existing), "old");
    EXPECT_FALSE(exists(ARXTemporaryItems::asideOf(existing)));
    EXPECT_EQ(ARXTreeSnapshot(at("doc.bin")), source);

    // A source that has gone: the same.
    EXPECT_THROW(replaceItemByHand(existing, at("missing")), ARXFileError);
    EXPECT_EQ(readFile(existing), "old");
    EXPECT_FALSE(exists(ARXTemporaryItems::asideOf(existing)));
}
