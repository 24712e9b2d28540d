#include "model/ARXFileTagManager.h"

#include "app/ARXNotificationNames.h"
#include "app/ARXStoredNumber.h"
#include "model/ARXFileEntry.h"
#include "platform/ARXNotificationCenter.h"
#include "platform/ARXResourceValues.h"
#include "support/ARXTestEnvironment.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/time.h>

class ARXFileTagManagerTest : public ARXTestEnvironment {
protected:
    Path table() const { return ARXPath::join(root(), "tags.json"); }
    // Gives the table a chosen modification time, so that tests can rewrite it "unchanged".
    void touch(int64_t seconds, long nanoseconds = 0) {
        const timespec times[2] = {{seconds, nanoseconds}, {seconds, nanoseconds}};
        ASSERT_EQ(::utimensat(AT_FDCWD, table().c_str(), times, 0), 0);
    }
};

TEST_F(ARXFileTagManagerTest, ReadsColourNumbersAndSkipsIncompleteEntries) {
    writeFile(table(), R"([{"n": "Work", "l": 4}, {"n": "Plain", "l": 0}, {"n": "NoNumber"},
                          {"l": 6}, "junk", {"n": "Urgent", "l": 6}, {"n": "Huge", "l": 1e300}])");
    ARXFileTagManager manager(table());
    manager.refresh();
    EXPECT_EQ(manager.colorIndex(QStringLiteral("Work")), 4);
    EXPECT_EQ(manager.colorIndex(QStringLiteral("Urgent")), 6);
    EXPECT_EQ(manager.colorIndex(QStringLiteral("Plain")), 0);
    EXPECT_EQ(manager.colorIndex(QStringLiteral("NoNumber")), 0);
    EXPECT_EQ(manager.colorIndex(QStringLiteral("Unknown")), 0);
    EXPECT_EQ(manager.colorIndex(QStringLiteral("Huge")), int(ARXStoredNumber::kLimit));
    EXPECT_EQ(manager.colors()[4], 0x438DF8u);
    EXPECT_EQ(ARXFileTagManager::labelNames().size(), 7);
}

TEST_F(ARXFileTagManagerTest, AnUnchangedTableIsNotReadAgain) {
    writeFile(table(), R"([{"n": "A", "l": 1}])");
    touch(1000);
    ARXFileTagManager manager(table());
    manager.refresh();
    writeFile(table(), R"([{"n": "A", "l": 2}])");
    touch(1000);
    manager.refresh();
    EXPECT_EQ(manager.colorIndex(QStringLiteral("A")), 1);
    touch(1000, 5); // rewritten within the same second
    manager.refresh();
    EXPECT_EQ(manager.colorIndex(QStringLiteral("A")), 2);
}

TEST_F(ARXFileTagManagerTest, BrokenOrMissingTablesLeaveTagsWithoutColour) {
    ARXFileTagManager manager(table());
    manager.refresh();
    EXPECT_EQ(manager.colorIndex(QStringLiteral("A")), 0);
    writeFile(table(), "{not json");
    manager.refresh();
    EXPECT_EQ(manager.colorIndex(QStringLiteral("A")), 0);
    writeFile(table(), R"({"n": "A", "l": 1})");
    manager.refresh();
    EXPECT_EQ(manager.colorIndex(QStringLiteral("A")), 0);
}

TEST_F(ARXFileTagManagerTest, SetTagsWritesAndAnnouncesOnlyOnSuccess) {
    const Path file = ARXPath::join(root(), std::string("caf\xe9.txt"));
    writeFile(file, "x");
    ARXFileTagManager manager(table());
    QVariantMap heard;
    int posts = 0;
    ARXNotificationCenter::shared().addObserver(ARXNotificationName::rv_file_tags_changed, nullptr,
                                                [&](const ARXNotification& n) {
                                                    heard = n.userInfo;
                                                    ++posts;
                                                });
    const QStringList tags{QStringLiteral("Work"), QStringLiteral("Ünï")};
    const int error = manager.setTags(file, tags);
    if (error == ENOTSUP) {
        GTEST_SKIP() << "this file system keeps no user extended attributes";
    }
    ASSERT_EQ(error, 0);
    EXPECT_EQ(ARXResourceValues::readTags(file), tags);
    EXPECT_EQ(posts, 1);
    EXPECT_EQ(heard.value(QStringLiteral("tags")).toStringList(), tags);
    EXPECT_EQ(ARXPath::fromStoredText(heard.value(QStringLiteral("path")).toString()), file);

    EXPECT_NE(manager.setTags(ARXPath::join(root(), "missing"), tags), 0);
    EXPECT_EQ(posts, 1);
}

TEST_F(ARXFileTagManagerTest, TagsLeftAsTheyWereKeepTheBytesOtherProgramsWrote) {
    const Path file = ARXPath::join(root(), "tagged");
    writeFile(file, "x");
    // A byte-order mark, a name that is not UTF-8 with blanks around it, and one to remove.
    const std::string foreign = "\xEF\xBB\xBFWork, caf\xE9 ,Old";
    if (ARXResourceValues::writeTagAttribute(file, foreign) == ENOTSUP) {
        GTEST_SKIP() << "this file system keeps no user extended attributes";
    }
    ARXFileTagManager manager(table());
    QStringList tags = ARXResourceValues::readTags(file).value_or(QStringList());
    ASSERT_EQ(tags.size(), 3);
    tags.removeAll(QStringLiteral("Old"));
    tags.append(QStringLiteral("Ünï"));
    ASSERT_EQ(manager.setTags(file, tags), 0);
    EXPECT_EQ(ARXResourceValues::readTagAttribute(file),
              "\xEF\xBB\xBFWork, caf\xE9 ,\xC3\x9Cn\xC3\xAF");

    EXPECT_EQ(manager.setTags(file, {QStringLiteral("a,b")}), EINVAL);
    ASSERT_EQ(manager.setTags(file, {}), 0);
    EXPECT_EQ(ARXResourceValues::readTagAttribute(file), "");
}

TEST_F(ARXFileTagManagerTest, TheSharedManagerColoursEntriesFromTheDataRootTable) {
    writeFile(dataHome() + "/Atrium/tags.json",
              R"([{"n": "Work", "l": 4}, {"n": "Home", "l": 2}])");
    const Path file = ARXPath::join(root(), "tagged");
    writeFile(file, "x");
    if (ARXResourceValues::setTags(file, {QStringLiteral("Home"), QStringLiteral("Odd"),
                                          QStringLiteral("Work")}) == ENOTSUP) {
        GTEST_SKIP() << "this file system keeps no user extended attributes";
    }
    ARXFileTagManager::shared();
    const ARXFileEntryRef entry = ARXFileEntry::create(file);
    // The first tag's colour is drawn last, on top.
    EXPECT_EQ(entry->tagColors(), (std::vector<ARXTagColor>{0x438DF8, 0x5DCF64}));
}
