#include "platform/ARXTrash.h"

#include "platform/ARXFileError.h"
#include "platform/ARXFileOperations.h"
#include "support/ARXScratchMount.h"
#include "support/ARXTestEnvironment.h"
#include "support/ARXTreeSnapshot.h"

#include <QRegularExpression>
#include <QString>

#include <array>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

bool exists(const Path& path) {
    struct stat st {};
    return ::lstat(path.c_str(), &st) == 0;
}

mode_t modeOf(const Path& path) {
    struct stat st {};
    ::lstat(path.c_str(), &st);
    return st.st_mode & 07777;
}

// The "Key=value" lines of an info file.
std::string infoValue(const std::string& info, const std::string& key) {
    const std::string prefix = "\n" + key + "=";
    const size_t start = info.find(prefix);
    if (start == std::string::npos) {
        return "(none)";
    }
    const size_t from = start + prefix.size();
    return info.substr(from, info.find('\n', from) - from);
}

} // namespace

class ARXTrashTest : public ARXTestEnvironment {
protected:
    Path at(const std::string& name) const { return ARXPath::join(root(), name); }
    Path trash() const { return ARXPath::join(dataHome(), "Trash"); }
    std::string uid() const { return std::to_string(::geteuid()); }
};

TEST_F(ARXTrashTest, ItemGoesToTheHomeTrashWhole) {
    writeFile(at("docs/report.txt"), "quarterly figures");
    ASSERT_EQ(::chmod(at("docs/report.txt").c_str(), 0604), 0);
    const std::array<timespec, 2> times{timespec{1000000000, 0}, timespec{1234567890, 987654321}};
    ASSERT_EQ(::utimensat(AT_FDCWD, at("docs/report.txt").c_str(), times.data(), 0), 0);
    const std::vector<std::string> before = ARXTreeSnapshot(at("docs/report.txt"));

    const Path trashed = ARXFileOperations::trashItem(at("docs/report.txt"));

    EXPECT_EQ(trashed, ARXPath::join(trash(), "files/report.txt"));
    EXPECT_FALSE(exists(at("docs/report.txt")));
    EXPECT_EQ(ARXTreeSnapshot(trashed), before) << "bytes, mode and time stay as they were";
    const std::string info = readFile(ARXPath::join(trash(), "info/report.txt.trashinfo"));
    EXPECT_TRUE(info.starts_with("[Trash Info]\n")) << info;
    EXPECT_EQ(infoValue(info, "Path"), at("docs/report.txt"));
    EXPECT_TRUE(QRegularExpression(QStringLiteral(R"(^\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d$)"))
                    .match(QString::fromStdString(infoValue(info, "DeletionDate")))
                    .hasMatch())
        << info;
    EXPECT_EQ(modeOf(trash()), 0700u);
    EXPECT_EQ(modeOf(ARXPath::join(trash(), "files")), 0700u);
    EXPECT_EQ(ARXTrash::infoFileFor(trashed), ARXPath::join(trash(), "info/report.txt.trashinfo"));
}

TEST_F(ARXTrashTest, SameNamesGetTheirOwnNamesAndOddNamesAreEncoded) {
    writeFile(at("a/report.txt"), "first");
    writeFile(at("b/report.txt"), "second");
    // An info file without its item still holds its name, as does an item without info file.
    writeFile(ARXPath::join(trash(), "info/report.txt.3.trashinfo"), "[Trash Info]\n");
    writeFile(ARXPath::join(trash(), "files/report.txt.4"), "stray");
    writeFile(at("c/report.txt"), "third");
    const Path odd = at(std::string("caf\xe9 100%\nx"));
    writeFile(odd, "odd");

    EXPECT_EQ(ARXFileOperations::trashItem(at("a/report.txt")),
              ARXPath::join(trash(), "files/report.txt"));
    EXPECT_EQ(ARXFileOperations::trashItem(at("b/report.txt")),
              ARXPath::join(trash(), "files/report.txt.2"));
    EXPECT_EQ(ARXFileOperations::trashItem(at("c/report.txt")),
              ARXPath::join(trash(), "files/report.txt.5"));
    EXPECT_FALSE(exists(ARXPath::join(trash(), "info/report.txt.4.trashinfo")))
        << "the info file of a name that turned out to be taken must go again";
    EXPECT_EQ(readFile(ARXPath::join(trash(), "files/report.txt.2")), "second");
    EXPECT_EQ(infoValue(readFile(ARXPath::join(trash(), "info/report.txt.2.trashinfo")), "Path"),
              at("b/report.txt"));

    const Path trashed = ARXFileOperations::trashItem(odd);
    EXPECT_EQ(readFile(trashed), "odd");
    const std::string value = infoValue(readFile(*ARXTrash::infoFileFor(trashed)), "Path");
    EXPECT_TRUE(value.ends_with("/caf%E9%20100%25%0Ax")) << value;
    EXPECT_EQ(ARXTrash::decodePath(value), odd);
}

TEST_F(ARXTrashTest, MovesOutOfAndBackIntoTheTrashKeepItsInfoFilesRight) {
    writeFile(at("docs/report.txt"), "figures");
    const Path trashed = ARXFileOperations::trashItem(at("docs/report.txt"));
    const Path info = *ARXTrash::infoFileFor(trashed);

    // Taken back out: no info file stays behind, so the name is free for the next one.
    ARXTrash::moveItem(trashed, at("docs/report.txt"));
    EXPECT_EQ(readFile(at("docs/report.txt")), "figures");
    EXPECT_FALSE(exists(info));
    writeFile(at("other/report.txt"), "other");
    EXPECT_EQ(ARXFileOperations::trashItem(at("other/report.txt")), trashed);

    // Put back into a free name of the trash: its info file says where it came from.
    const Path again = ARXPath::join(trash(), "files/report.txt.2");
    ARXTrash::moveItem(at("docs/report.txt"), again);
    EXPECT_EQ(infoValue(readFile(*ARXTrash::infoFileFor(again)), "Path"), at("docs/report.txt"));
    // A name whose info file is taken is refused, and nothing moves.
    writeFile(at("docs/report.txt"), "new");
    writeFile(ARXPath::join(trash(), "info/report.txt.3.trashinfo"), "[Trash Info]\n");
    EXPECT_THROW(
        ARXTrash::moveItem(at("docs/report.txt"), ARXPath::join(trash(), "files/report.txt.3")),
        ARXFileError);
    EXPECT_EQ(readFile(at("docs/report.txt")), "new");
    EXPECT_EQ(readFile(ARXPath::join(trash(), "info/report.txt.3.trashinfo")), "[Trash Info]\n");

    // Anywhere else a move is only a move.
    makeFolder(at("files"));
    ARXTrash::moveItem(at("docs/report.txt"), at("files/report.txt"));
    EXPECT_FALSE(exists(at("info")));
}

TEST_F(ARXTrashTest, TrashedFoldersAreListedInDirectorySizes) {
    writeFile(at("folder/a.bin"), std::string(10000, 'a'));
    writeFile(at("folder/sub/b.bin"), std::string(5000, 'b'));
    writeFile(at("plain.txt"), "a file has no line");
    const Path sizes = ARXPath::join(trash(), "directorysizes");
    writeFile(sizes, "4096 1600000000 kept%20by%20another\n");
    uint64_t usage = 0;
    for (const char* name : {"folder", "folder/a.bin", "folder/sub", "folder/sub/b.bin"}) {
        struct stat st {};
        ASSERT_EQ(::lstat(at(name).c_str(), &st), 0);
        usage += uint64_t(st.st_blocks) * 512;
    }

    ARXFileOperations::trashItem(at("plain.txt"));
    const Path trashed = ARXFileOperations::trashItem(at("folder"));
    struct stat info {};
    ASSERT_EQ(::stat(ARXTrash::infoFileFor(trashed)->c_str(), &info), 0);
    EXPECT_EQ(readFile(sizes), "4096 1600000000 kept%20by%20another\n" + std::to_string(usage) +
                                   " " + std::to_string(info.st_mtim.tv_sec) + " folder\n");

    ARXTrash::moveItem(trashed, at("folder"));
    EXPECT_EQ(readFile(sizes), "4096 1600000000 kept%20by%20another\n");
}

TEST_F(ARXTrashTest, NamesTooLongForTheInfoFileAreShortened) {
    const std::string name(240, 'n');
    writeFile(at(name), "long");
    const Path trashed = ARXFileOperations::trashItem(at(name));
    EXPECT_EQ(readFile(trashed), "long");
    EXPECT_LE(ARXPath::lastComponent(trashed).size() + 10, size_t(NAME_MAX));
    EXPECT_EQ(infoValue(readFile(*ARXTrash::infoFileFor(trashed)), "Path"), at(name));
}

TEST_F(ARXTrashTest, ItemsOnAnotherVolumeGoToThatVolumesTrash) {
    ARXScratchMount volume(at("volume"), "8m");
    if (!volume.mounted()) {
        GTEST_SKIP() << "no second file system: " << volume.error();
    }
    const Path top = volume.path();
    writeFile(ARXPath::join(top, "dir/a.txt"), "a");
    writeFile(ARXPath::join(top, "b.txt"), "b");
    writeFile(ARXPath::join(top, "c.txt"), "c");

    // No shared .Trash: the user's own ".Trash-UID", with a path relative to the top.
    const Path first = ARXFileOperations::trashItem(ARXPath::join(top, "dir/a.txt"));
    const Path own = ARXPath::join(top, ".Trash-" + uid());
    EXPECT_EQ(first, ARXPath::join(own, "files/a.txt"));
    EXPECT_EQ(modeOf(own), 0700u);
    EXPECT_EQ(infoValue(readFile(ARXPath::join(own, "info/a.txt.trashinfo")), "Path"), "dir/a.txt");
    EXPECT_FALSE(exists(ARXPath::join(trash(), "files/a.txt")));

    // A shared .Trash that is a link is not trusted, even when it leads to a sticky folder.
    makeFolder(at("sticky"));
    ASSERT_EQ(::chmod(at("sticky").c_str(), 01777), 0);
    ASSERT_EQ(::symlink(at("sticky").c_str(), ARXPath::join(top, ".Trash").c_str()), 0);
    EXPECT_EQ(ARXFileOperations::trashItem(ARXPath::join(top, "b.txt")),
              ARXPath::join(own, "files/b.txt"));

    // A real sticky .Trash made by the administrator is used, with a folder per user.
    ASSERT_EQ(::unlink(ARXPath::join(top, ".Trash").c_str()), 0);
    makeFolder(ARXPath::join(top, ".Trash"));
    ASSERT_EQ(::chmod(ARXPath::join(top, ".Trash").c_str(), 01777), 0);
    EXPECT_EQ(ARXFileOperations::trashItem(ARXPath::join(top, "c.txt")),
              ARXPath::join(top, ".Trash/" + uid() + "/files/c.txt"));
    EXPECT_EQ(readFile(ARXPath::join(top, ".Trash/" + uid() + "/files/c.txt")), "c");
}

TEST_F(ARXTrashTest, AVolumeWithoutAUsableTrashRefusesAndKeepsTheItem) {
    ARXScratchMount volume(at("volume"), "8m");
    if (!volume.mounted()) {
        GTEST_SKIP() << "no second file system: " << volume.error();
    }
    const Path item = ARXPath::join(volume.path(), "keep.txt");
    writeFile(item, "keep");
    writeFile(ARXPath::join(volume.path(), ".Trash-" + uid()), "a file, not a folder");

    try {
        ARXFileOperations::trashItem(item);
        FAIL() << "trashed without a trash";
    } catch (const ARXFileError& error) {
        EXPECT_EQ(error.path, item);
        EXPECT_TRUE(error.message.contains(QStringLiteral("trash"), Qt::CaseInsensitive));
    }
    EXPECT_EQ(readFile(item), "keep");
    EXPECT_FALSE(exists(ARXPath::join(trash(), "files/keep.txt")));
}

TEST_F(ARXTrashTest, EmptyTrashEmptiesTheHomeTrashAndTheVolumesTrash) {
    ARXScratchMount volume(at("volume"), "8m");
    if (!volume.mounted()) {
        GTEST_SKIP() << "no second file system: " << volume.error();
    }
    writeFile(at("folder/sub/deep.txt"), "x");
    ASSERT_EQ(::chmod(at("folder/sub").c_str(), 0500), 0);
    writeFile(at("file.txt"), "y");
    writeFile(ARXPath::join(volume.path(), "v.txt"), "v");
    writeFile(at("outside.txt"), "outside");
    ASSERT_EQ(::symlink(at("outside.txt").c_str(), at("link").c_str()), 0);
    ARXFileOperations::trashItem(at("folder"));
    ARXFileOperations::trashItem(at("file.txt"));
    ARXFileOperations::trashItem(at("link"));
    ARXFileOperations::trashItem(ARXPath::join(volume.path(), "v.txt"));

    ARXTrash::emptyTrash({volume.path()});

    const Path own = ARXPath::join(volume.path(), ".Trash-" + uid());
    for (const Path& folder : {ARXPath::join(trash(), "files"), ARXPath::join(trash(), "info"),
                               ARXPath::join(own, "files"), ARXPath::join(own, "info")}) {
        EXPECT_EQ(ARXTreeSnapshot(folder).size(), 1u) << folder << " is not empty";
    }
    EXPECT_EQ(readFile(at("outside.txt")), "outside");
    EXPECT_EQ(ARXTrash::trashFolders({volume.path()}), (std::vector<Path>{trash(), own}));
}

TEST_F(ARXTrashTest, RemovingFromATrashGetsPastReadOnlyFoldersButNowhereElse) {
    writeFile(at("kept/locked/deep.txt"), "x");
    writeFile(at("gone/locked/deep.txt"), "x");
    ASSERT_EQ(::chmod(at("kept/locked").c_str(), 0500), 0);
    ASSERT_EQ(::chmod(at("gone/locked").c_str(), 0500), 0);
    const Path trashed = ARXTrash::trashItem(at("gone"));
    EXPECT_TRUE(ARXTrash::isInTrash(trashed));
    EXPECT_TRUE(ARXTrash::isInTrash(ARXPath::join(trashed, "locked/deep.txt")));
    EXPECT_FALSE(ARXTrash::isInTrash(ARXPath::join(trash(), "files")));
    EXPECT_FALSE(ARXTrash::isInTrash(at("kept")));
    EXPECT_TRUE(ARXTrash::isInTrash("/media/usb/.Trash-" + uid() + "/files/a"));
    EXPECT_TRUE(ARXTrash::isInTrash("/media/usb/.Trash/" + uid() + "/expunged/a"));
    EXPECT_FALSE(ARXTrash::isInTrash("/media/usb/.Trash-" + uid() + "/info/a.trashinfo/x"));

    const bool ran = runWithoutOverridingPermissions([&] {
        EXPECT_NO_THROW(ARXFileOperations::removeItem(trashed));
        // Outside a trash a read-only folder still holds its items.
        EXPECT_THROW(ARXFileOperations::removeItem(at("kept")), ARXFileError);
    });
    if (!ran) {
        GTEST_SKIP() << "could not give up the permission override";
    }
    EXPECT_FALSE(exists(trashed));
    EXPECT_TRUE(exists(at("kept/locked/deep.txt")));
}

TEST_F(ARXTrashTest, MountTableListsTheRootAndLeavesPseudoFileSystemsOut) {
    const std::vector<Path> roots = ARXTrash::mountedVolumeRoots();
    EXPECT_NE(std::find(roots.begin(), roots.end(), "/"), roots.end());
    EXPECT_EQ(std::find(roots.begin(), roots.end(), "/proc"), roots.end());
}
