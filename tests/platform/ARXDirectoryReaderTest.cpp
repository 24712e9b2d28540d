#include "platform/ARXDirectoryReader.h"

#include "support/ARXTestEnvironment.h"

#include <algorithm>
#include <sys/stat.h>
#include <unistd.h>

namespace {

class ARXDirectoryReaderTest : public ARXTestEnvironment {
protected:
    Path at(std::string_view name) const { return ARXPath::join(root(), name); }
    static std::vector<std::string> names(const ARXDirectoryListing& listing) {
        std::vector<std::string> result;
        for (const ARXDirectoryItem& item : listing.items) {
            result.push_back(item.name);
        }
        std::sort(result.begin(), result.end());
        return result;
    }
    static const ARXDirectoryItem* find(const ARXDirectoryListing& listing, std::string_view name) {
        for (const ARXDirectoryItem& item : listing.items) {
            if (item.name == name) {
                return &item;
            }
        }
        return nullptr;
    }
    void makeMixedFolder() {
        writeFile(at("dir/plain.txt"), "abc");
        writeFile(at("dir/caf\xe9"), "");
        writeFile(at("dir/line\nfeed"), "");
        writeFile(at("dir/.dot"), "");
        writeFile(at("dir/listed"), "");
        writeFile(at("dir/.hidden"), "listed\n");
        makeFolder(at("dir/sub"));
        ASSERT_EQ(::symlink("nowhere", at("dir/dangling").c_str()), 0);
    }
};

TEST_F(ARXDirectoryReaderTest, ListsEveryNameAsBytes) {
    makeMixedFolder();
    const ARXDirectoryListing listing = ARXDirectoryReader::list(at("dir"));
    ASSERT_TRUE(listing.ok());
    EXPECT_EQ(names(listing),
              (std::vector<std::string>{".dot", ".hidden", "caf\xe9", "dangling", "line\nfeed",
                                        "listed", "plain.txt", "sub"}));
    for (const ARXDirectoryItem& item : listing.items) {
        EXPECT_FALSE(item.status);
        EXPECT_NE(item.inode, 0u);
    }
    // d_type, where the file system fills it in (ext4, tmpfs, btrfs and xfs do).
    const auto typeOf = [&](std::string_view name) { return find(listing, name)->type; };
    if (typeOf("sub") != ARXFileType::unknown) {
        EXPECT_EQ(typeOf("sub"), ARXFileType::directory);
        EXPECT_EQ(typeOf("plain.txt"), ARXFileType::regular);
        EXPECT_EQ(typeOf("dangling"), ARXFileType::symlink);
    }
    EXPECT_EQ(ARXDirectoryReader::itemCount(at("dir")), 8u);
}

TEST_F(ARXDirectoryReaderTest, SkipsHiddenItemsOnRequest) {
    makeMixedFolder();
    const ARXDirectoryListing listing = ARXDirectoryReader::list(at("dir"), {.skipHidden = true});
    ASSERT_TRUE(listing.ok());
    EXPECT_EQ(names(listing),
              (std::vector<std::string>{"caf\xe9", "dangling", "line\nfeed", "plain.txt", "sub"}));
}

TEST_F(ARXDirectoryReaderTest, StatusOfEachItemWithoutFollowingLinks) {
    makeMixedFolder();
    ASSERT_EQ(::symlink("dir", at("dir-link").c_str()), 0);
    // The folder may be reached through a link; its items are not followed.
    const ARXDirectoryListing listing = ARXDirectoryReader::listWithStatus(at("dir-link"));
    ASSERT_TRUE(listing.ok());
    ASSERT_EQ(listing.items.size(), 8u);
    for (const ARXDirectoryItem& item : listing.items) {
        ASSERT_TRUE(item.status);
        EXPECT_TRUE(item.status->exists) << item.name;
        EXPECT_EQ(item.status->inode, item.inode) << item.name;
    }
    EXPECT_EQ(find(listing, "plain.txt")->status->size, 3u);
    EXPECT_TRUE(find(listing, "dangling")->status->isSymbolicLink());
    EXPECT_TRUE(find(listing, "sub")->status->isDirectory());
}

TEST_F(ARXDirectoryReaderTest, AnItemThatVanishesIsMarked) {
    writeFile(at("dir/stays"), "");
    writeFile(at("dir/goes"), "");
    ARXDirectoryListing listing = ARXDirectoryReader::list(at("dir"));
    ASSERT_EQ(::unlink(at("dir/goes").c_str()), 0);
    ASSERT_EQ(ARXDirectoryReader::statItems(at("dir"), listing.items), 0);
    EXPECT_FALSE(find(listing, "stays")->vanished());
    EXPECT_TRUE(find(listing, "goes")->vanished());
    EXPECT_EQ(find(listing, "goes")->status->error, ENOENT);

    ARXRemoveTree(at("dir"));
    EXPECT_EQ(ARXDirectoryReader::statItems(at("dir"), listing.items), ENOENT);
}

TEST_F(ARXDirectoryReaderTest, FailuresSayWhy) {
    writeFile(at("file"), "");
    EXPECT_EQ(ARXDirectoryReader::list(at("missing")).error, ENOENT);
    EXPECT_EQ(ARXDirectoryReader::list(at("file")).error, ENOTDIR);
    EXPECT_EQ(ARXDirectoryReader::list("").error, ENOENT);
    int error = 0;
    EXPECT_FALSE(ARXDirectoryReader::itemCount(at("missing"), &error));
    EXPECT_EQ(error, ENOENT);
    makeFolder(at("empty"));
    EXPECT_EQ(ARXDirectoryReader::itemCount(at("empty")), 0u);
    EXPECT_TRUE(ARXDirectoryReader::list(at("empty")).ok());
}

TEST_F(ARXDirectoryReaderTest, AFolderWithoutReadPermissionIsReportedAsSuch) {
    writeFile(at("locked/inside"), "");
    writeFile(at("searchable/inside"), "abc");
    ASSERT_EQ(::chmod(at("locked").c_str(), 0), 0);
    ASSERT_EQ(::chmod(at("searchable").c_str(), 0300), 0); // may enter, may not list

    const auto check = [&] {
        const ARXDirectoryListing locked = ARXDirectoryReader::list(at("locked"));
        EXPECT_EQ(locked.error, EACCES);
        EXPECT_TRUE(locked.items.empty());
        int error = 0;
        EXPECT_FALSE(ARXDirectoryReader::itemCount(at("locked"), &error));
        EXPECT_EQ(error, EACCES);
        EXPECT_EQ(ARXDirectoryReader::listWithStatus(at("searchable")).error, EACCES);
        // Status reads need only the right to enter.
        std::vector<ARXDirectoryItem> known{{"inside", ARXFileType::unknown, 0, {}}};
        EXPECT_EQ(ARXDirectoryReader::statItems(at("searchable"), known), 0);
        EXPECT_EQ(known[0].status->size, 3u);
    };
    if (::geteuid() != 0) {
        check();
    } else if (!ARXTestEnvironment::runWithoutOverridingPermissions(check)) {
        GTEST_SKIP() << "running as root and cannot give up CAP_DAC_OVERRIDE here; permission "
                        "bits do not stop root";
    }
}

} // namespace
