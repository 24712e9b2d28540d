#include "ops/ARXFileRename.h"

#include "ARXUndoTestPresenter.h"
#include "app/ARXConf.h"
#include "app/ARXDataCenter.h"
#include "app/ARXFavorites.h"
#include "model/ARXFileEntry.h"
#include "ops/ARXFileOperationRecorder.h"
#include "support/ARXFakeVolumes.h"
#include "support/ARXTestEnvironment.h"

#include <sys/stat.h>
#include <unistd.h>

namespace {

bool exists(const Path& path) {
    struct stat st {};
    return ::lstat(path.c_str(), &st) == 0;
}

} // namespace

class ARXFileRenameTest : public ARXTestEnvironment {
protected:
    void SetUp() override {
        ARXTestEnvironment::SetUp();
        ARXDataCenter::setVolumeReaderForTesting([] { return ARXVolumeList{ARXMakeVolume("/")}; });
    }

    Path at(std::string_view name) const { return ARXPath::join(root(), name); }

    ARXFileEntryRef entryAt(std::string_view name) const { return ARXFileEntry::create(at(name)); }

    ARXUndoTestPresenter presenter;
};

TEST_F(ARXFileRenameTest, RefusedNamesChangeNothing) {
    writeFile(at("a.txt"), "a");
    makeFolder(at("sub"));
    const ARXFileEntryRef entry = entryAt("a.txt");
    for (const char* name : {"", ".", "..", "sub/a.txt", "../a.txt"}) {
        EXPECT_FALSE(ARXFileRename::rename(*entry, QString::fromUtf8(name), &presenter)) << name;
    }
    EXPECT_EQ(entry->path(), at("a.txt"));
    EXPECT_EQ(readFile(at("a.txt")), "a");
    EXPECT_TRUE(presenter.alerts.empty());

    // A cloud item that is only a stand-in for its download keeps its name.
    writeFile(at(".b.txt.icloud"), "");
    const ARXFileEntryRef placeholder = entryAt(".b.txt.icloud");
    placeholder->isUbiquitous = true;
    EXPECT_FALSE(ARXFileRename::rename(*placeholder, QString("b.txt"), &presenter));
    EXPECT_TRUE(exists(at(".b.txt.icloud")));
    // The same name on an ordinary item is just a name.
    placeholder->isUbiquitous = false;
    EXPECT_TRUE(ARXFileRename::rename(*placeholder, QString("b.txt"), &presenter));
    EXPECT_TRUE(exists(at("b.txt")));
}

TEST_F(ARXFileRenameTest, TheSameNameSucceedsAndIsNotRecorded) {
    writeFile(at("a.txt"), "a");
    const ARXFileEntryRef entry = entryAt("a.txt");
    EXPECT_TRUE(ARXFileRename::renameRecorded(*entry, QString("a.txt"), &presenter));
    EXPECT_EQ(entry->path(), at("a.txt"));
    EXPECT_TRUE(ARXFileOperationRecorder::shared().records().empty());
}

TEST_F(ARXFileRenameTest, ATakenNameAlertsWithTheNewName) {
    writeFile(at("a.txt"), "a");
    writeFile(at("b.txt"), "b");
    const ARXFileEntryRef entry = entryAt("a.txt");
    EXPECT_FALSE(ARXFileRename::renameRecorded(*entry, QString("b.txt"), &presenter));
    ASSERT_EQ(presenter.alerts.size(), 1u);
    EXPECT_EQ(presenter.alerts[0].style, ARXAlertStyle::critical);
    EXPECT_EQ(presenter.alerts[0].message,
              "“b.txt” already exists. Please choose a different name.");
    EXPECT_EQ(entry->path(), at("a.txt"));
    EXPECT_EQ(readFile(at("b.txt")), "b");
    EXPECT_TRUE(ARXFileOperationRecorder::shared().records().empty());

    // Without a presenter of its own the rename speaks through the main window's, if any.
    EXPECT_FALSE(ARXFileRename::rename(*entry, QString("b.txt")));
    ARXUndoTestPresenter mainWindow;
    ARXMainPresenterScope scope(&mainWindow);
    EXPECT_FALSE(ARXFileRename::rename(*entry, QString("b.txt")));
    EXPECT_EQ(mainWindow.alerts.size(), 1u);
    EXPECT_EQ(presenter.alerts.size(), 1u);
}

TEST_F(ARXFileRenameTest, OtherFailuresAlertWithTheErrorText) {
    writeFile(at("locked/a.txt"), "a");
    const ARXFileEntryRef entry = entryAt("locked/a.txt");
    ASSERT_EQ(::chmod(at("locked").c_str(), 0555), 0);
    bool renamed = true;
    const bool ran = runWithoutOverridingPermissions(
        [&] { renamed = ARXFileRename::rename(*entry, QString("b.txt"), &presenter); });
    ::chmod(at("locked").c_str(), 0755);
    ASSERT_TRUE(ran);
    EXPECT_FALSE(renamed);
    ASSERT_EQ(presenter.alerts.size(), 1u);
    EXPECT_EQ(presenter.alerts[0].style, ARXAlertStyle::critical);
    EXPECT_TRUE(presenter.alerts[0].message.contains(ARXPath::display(at("locked/"))))
        << presenter.alerts[0].message.toStdString();
    EXPECT_TRUE(exists(at("locked/a.txt")));
}

TEST_F(ARXFileRenameTest, NamesThatAreNotUtf8RenameBothWays) {
    const std::string latin1 = "caf\xe9.txt";
    writeFile(at(latin1), "bytes");
    const ARXFileEntryRef entry = entryAt(latin1);
    EXPECT_TRUE(ARXFileRename::rename(*entry, QString("cafe.txt"), &presenter));
    EXPECT_EQ(readFile(at("cafe.txt")), "bytes");
    EXPECT_TRUE(ARXFileRename::rename(*entry, std::string_view("\xff\xfe"), &presenter));
    EXPECT_EQ(entry->path(), at("\xff\xfe"));
    EXPECT_EQ(readFile(at("\xff\xfe")), "bytes");
    EXPECT_TRUE(presenter.alerts.empty());
}

TEST_F(ARXFileRenameTest, AFolderTakesItsFavouriteAndChildrenAlong) {
    writeFile(at("Photos/2023/a.jpg"), "a");
    writeFile(at("Other/x"), "x");
    ARXFavorites::toggleFavorite(ARXPath::fileURLString(at("Other")));
    ARXFavorites::toggleFavorite(ARXPath::fileURLString(at("Photos")));
    const ARXFileEntryRef folder = entryAt("Photos");
    folder->setLocalName(QString("Bilder"));
    ASSERT_TRUE(folder->prepare());
    ASSERT_EQ(folder->children().size(), 1u);
    ASSERT_TRUE(folder->children()[0]->prepare());

    EXPECT_TRUE(ARXFileRename::renameRecorded(*folder, QString("Pictures"), &presenter));
    EXPECT_EQ(folder->path(), at("Pictures"));
    EXPECT_EQ(folder->name(), "Pictures");
    EXPECT_EQ(folder->localName(), std::nullopt);
    EXPECT_EQ(folder->children()[0]->path(), at("Pictures/2023"));
    EXPECT_EQ(folder->children()[0]->children()[0]->path(), at("Pictures/2023/a.jpg"));
    // The favourite keeps its place in the list.
    EXPECT_EQ(
        ARXConf::cached_favorite_urls().value(),
        (QStringList{ARXPath::fileURLString(at("Other")), ARXPath::fileURLString(at("Pictures"))}));

    const ARXFileOperationRecorder& recorder = ARXFileOperationRecorder::shared();
    ASSERT_EQ(recorder.records().size(), 1u);
    const ARXFileOperationRecordGroup& group = *recorder.records()[0];
    EXPECT_EQ(group.action, ARXFileOperationType::rename);
    ASSERT_EQ(group.records.size(), 1u);
    EXPECT_EQ(group.records[0].source, at("Photos"));
    EXPECT_EQ(group.records[0].target, at("Pictures"));
    EXPECT_TRUE(group.records[0].time.isValid());
}

TEST_F(ARXFileRenameTest, AFileLeavesTheFavouritesAlone) {
    writeFile(at("a.txt"), "a");
    // A stored URL of the file's path, as if it had been a folder once.
    ARXFavorites::toggleFavorite(ARXPath::fileURLString(at("a.txt")));
    const ARXFileEntryRef entry = entryAt("a.txt");
    EXPECT_TRUE(ARXFileRename::rename(*entry, QString("b.txt"), &presenter));
    EXPECT_EQ(ARXConf::cached_favorite_urls().value(),
              QStringList{ARXPath::fileURLString(at("a.txt"))});
}

TEST_F(ARXFileRenameTest, ALinkToAFolderIsRenamedItselfAndItsChildrenStay) {
    writeFile(at("real/inner.txt"), "x");
    ASSERT_EQ(::symlink(at("real").c_str(), at("link").c_str()), 0);
    ARXFavorites::toggleFavorite(ARXPath::fileURLString(at("link")));
    const ARXFileEntryRef link = entryAt("link");
    ASSERT_TRUE(link->link());
    ASSERT_TRUE(link->prepare());
    ASSERT_EQ(link->children().size(), 1u);

    EXPECT_TRUE(ARXFileRename::rename(*link, QString("shortcut"), &presenter));
    EXPECT_EQ(link->path(), at("shortcut"));
    EXPECT_EQ(link->children()[0]->path(), at("real/inner.txt"));
    EXPECT_TRUE(exists(at("real/inner.txt")));
    EXPECT_EQ(ARXConf::cached_favorite_urls().value(),
              QStringList{ARXPath::fileURLString(at("shortcut"))});
}

TEST_F(ARXFileRenameTest, ARecordedRenameIsUndoneWithTheMessageOptionOffSilently) {
    ARXUndoTestPresenter mainWindow;
    ARXMainPresenterScope scope(&mainWindow);
    ARXConf::settings_show_file_undo_redo_message().setValue(false);
    writeFile(at("a.txt"), "a");
    const ARXFileEntryRef entry = entryAt("a.txt");
    ASSERT_TRUE(ARXFileRename::renameRecorded(*entry, QString("b.txt"), &presenter));

    ARXFileOperationRecorder& recorder = ARXFileOperationRecorder::shared();
    recorder.undo();
    EXPECT_EQ(readFile(at("a.txt")), "a");
    recorder.redo();
    EXPECT_EQ(readFile(at("b.txt")), "a");
    EXPECT_EQ(recorder.recordIndex(), 0);

    writeFile(at("a.txt"), "someone else's");
    recorder.undo();
    EXPECT_TRUE(mainWindow.toasts.isEmpty());
    EXPECT_TRUE(mainWindow.alerts.empty());
    EXPECT_TRUE(recorder.records().empty());
    EXPECT_EQ(readFile(at("b.txt")), "a");
    EXPECT_EQ(readFile(at("a.txt")), "someone else's");
}
