#include "ui/window/ARXEmptyTrash.h"

#include "app/ARXConf.h"
#include "app/ARXDataCenter.h"
#include "ops/ARXFileOperationFixture.h"
#include "platform/ARXFileIO.h"
#include "support/ARXFakeVolumes.h"

#include <QApplication>
#include <QFileDialog>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

#include <linux/capability.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

// Makes permission bits hold for this thread, also for root. access(2), which the access guard
// asks, lets root read by its permitted capabilities, so those go too; for the rest of the
// test's process, which is its own.
bool obeyPermissionBits() {
    __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct data[2]{};
    if (::syscall(SYS_capget, &header, data) != 0) {
        return false;
    }
    const uint32_t overriding = (1u << CAP_DAC_OVERRIDE) | (1u << CAP_DAC_READ_SEARCH);
    data[0].effective &= ~overriding;
    data[0].permitted &= ~overriding;
    data[0].inheritable &= ~overriding;
    return ::syscall(SYS_capset, &header, data) == 0;
}

using Folder = ARXEmptyTrash::TrashFolder;

// Trashes in a private home: the home trash, the trash of a "volume" (a folder standing for a
// mount point) and the cloud drive's. A flow only ever sees these.
class ARXEmptyTrashTest : public ARXFileOperationFixture {
protected:
    void SetUp() override {
        ARXFileOperationFixture::SetUp();
        ARXDataCenter::setVolumeReaderForTesting([] { return ARXVolumeList{ARXMakeVolume("/")}; });
        volume = at("volume");
        makeFolder(volume);
        window.resize(600, 400);
        window.show();
    }

    Path homeTrash() const { return ARXPath::join(dataHome(), "Trash"); }
    Path volumeTrash() const {
        return ARXPath::join(volume, ".Trash-" + std::to_string(::geteuid()));
    }
    Path cloudTrash() const { return ARXConf::cloudTrashPath(); }

    // A trash as another program leaves it: each item with its info file.
    static void fillTrash(const Path& trash, const std::vector<std::string>& names) {
        makeFolder(ARXPath::join(trash, "files"));
        makeFolder(ARXPath::join(trash, "info"));
        for (const std::string& name : names) {
            writeFile(ARXPath::join(trash, "files/" + name + "/inner.txt"), "x");
            writeFile(ARXPath::join(trash, "info/" + name + ".trashinfo"),
                      "[Trash Info]\nPath=/x\nDeletionDate=2024-01-01T00:00:00\n");
        }
    }

    static std::vector<std::string> namesIn(const Path& folder) {
        std::vector<std::string> names = ARXFileIO::listNames(folder).value_or(Names{});
        std::sort(names.begin(), names.end());
        return names;
    }

    ARXEmptyTrash* flow() {
        auto* made = new ARXEmptyTrash(&window, &presenter);
        made->setVolumeRoots({volume});
        return made;
    }

    static QMessageBox* shownBox() {
        QMessageBox* found = nullptr;
        waitUntil(
            [&] {
                for (QWidget* widget : QApplication::topLevelWidgets()) {
                    if (auto* box = qobject_cast<QMessageBox*>(widget); box && box->isVisible()) {
                        found = box;
                    }
                }
                return found != nullptr;
            },
            1000);
        return found;
    }

    static void click(QMessageBox* box, const QString& text) {
        for (QAbstractButton* button : box->buttons()) {
            if (button->text() == text) {
                QTest::mouseClick(button, Qt::LeftButton);
                return;
            }
        }
        ADD_FAILURE() << "no button " << text.toStdString();
    }

    // Picks a folder in the chooser and confirms it.
    static void choose(QFileDialog* chooser, const Path& folder) {
        chooser->setDirectory(ARXPath::display(ARXPath::parentPath(folder)));
        chooser->selectFile(ARXPath::display(folder));
        // As the Authorize button does (QFileDialog keeps its accept() to itself).
        static_cast<QDialog*>(chooser)->accept();
    }

    using Names = std::vector<std::string>;
    Path volume;
    QWidget window;
};

TEST_F(ARXEmptyTrashTest, TheTrashesAreTheHomeTheVolumesAndTheCloudFolders) {
    EXPECT_TRUE(ARXEmptyTrash::trashFolders({volume}).empty());

    fillTrash(homeTrash(), {});
    fillTrash(volumeTrash(), {});
    makeFolder(cloudTrash());
    // A pinned cloud folder whose ".Trash" is a link is left alone.
    makeFolder(at("elsewhere"));
    makeFolder(at("pinned"));
    ASSERT_EQ(::symlink(at("elsewhere").c_str(), at("pinned/.Trash").c_str()), 0);
    ARXConf::settings_pin_icloud_urls().setValue(
        {ARXPath::fileURLString(at("pinned")), ARXPath::fileURLString(ARXConf::cloudDrivePath())});

    EXPECT_EQ(
        ARXEmptyTrash::trashFolders({volume}),
        (std::vector<Folder>{{homeTrash(), true}, {volumeTrash(), true}, {cloudTrash(), false}}));
}

TEST_F(ARXEmptyTrashTest, ContentsAreEveryPartOfEachTrashAndNothingOfOneThatCannotBeRead) {
    fillTrash(homeTrash(), {"b", "a"});
    writeFile(ARXPath::join(homeTrash(), "expunged/old"), "x");
    writeFile(ARXPath::join(homeTrash(), "directorysizes"), "");
    fillTrash(volumeTrash(), {"c"});
    writeFile(ARXPath::join(cloudTrash(), "cloud.txt"), "x");
    const std::vector<Folder> folders = ARXEmptyTrash::trashFolders({volume});

    const Path h = homeTrash();
    const Path v = volumeTrash();
    EXPECT_EQ(
        ARXEmptyTrash::trashContents(folders),
        (std::vector<Path>{h + "/files/a", h + "/files/b", h + "/expunged/old",
                           h + "/info/a.trashinfo", h + "/info/b.trashinfo", h + "/directorysizes",
                           v + "/files/c", v + "/info/c.trashinfo", cloudTrash() + "/cloud.txt"}));

    // A trash whose items cannot be listed gives nothing, not even its info files; the others
    // still count.
    ASSERT_EQ(::chmod(ARXPath::join(h, "files").c_str(), 0), 0);
    std::vector<Path> readable;
    ASSERT_TRUE(
        runWithoutOverridingPermissions([&] { readable = ARXEmptyTrash::trashContents(folders); }));
    EXPECT_EQ(readable, (std::vector<Path>{v + "/files/c", v + "/info/c.trashinfo",
                                           cloudTrash() + "/cloud.txt"}));
}

TEST_F(ARXEmptyTrashTest, AnEmptyTrashEndsWithoutAQuestion) {
    fillTrash(homeTrash(), {});
    QPointer<ARXEmptyTrash> running = flow();
    QSignalSpy ended(running.data(), &ARXEmptyTrash::ended);
    running->start();
    ASSERT_TRUE(waitUntil([&] { return running.isNull(); }));
    ASSERT_EQ(ended.count(), 1);
    EXPECT_FALSE(ended[0][0].toBool());
    EXPECT_EQ(shownBox(), nullptr);
    EXPECT_EQ(presenter.presented, 0);
}

TEST_F(ARXEmptyTrashTest, EmptyTrashRemovesEveryItemAndItsInfo) {
    fillTrash(homeTrash(), {"a", "b"});
    fillTrash(volumeTrash(), {"c"});
    writeFile(ARXPath::join(cloudTrash(), "cloud.txt"), "x");
    flow()->start();

    QMessageBox* box = shownBox();
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(box->text(),
              QStringLiteral("Are you sure you want to permanently erase the items in the Trash?"));
    EXPECT_EQ(box->windowModality(), Qt::WindowModal);
    // Only one flow asks at a time.
    QPointer<ARXEmptyTrash> second = flow();
    second->start();
    EXPECT_TRUE(waitUntil([&] { return second.isNull(); }));

    click(box, QStringLiteral("Empty Trash"));
    // Nor while the removal runs.
    QPointer<ARXEmptyTrash> during = flow();
    QSignalSpy duringEnded(during.data(), &ARXEmptyTrash::ended);
    during->start();
    ASSERT_EQ(duringEnded.count(), 1);
    EXPECT_FALSE(duringEnded[0][0].toBool());
    ASSERT_TRUE(waitUntil(
        [&] {
            return namesIn(ARXPath::join(homeTrash(), "files")).empty() &&
                   namesIn(ARXPath::join(homeTrash(), "info")).empty() &&
                   namesIn(ARXPath::join(volumeTrash(), "info")).empty() &&
                   namesIn(cloudTrash()).empty() && sounds.size() == 1;
        },
        10000));
    // The trashes themselves stay, ready for the next item.
    EXPECT_TRUE(exists(ARXPath::join(volumeTrash(), "files")));
    EXPECT_EQ(sounds, std::vector<ARXSoundEffect>{ARXSoundEffect::empty_trash});
    EXPECT_GT(presenter.presented, 0);
    EXPECT_TRUE(presenter.alerts.empty());
}

TEST_F(ARXEmptyTrashTest, CancelLeavesTheTrashAsItWas) {
    fillTrash(homeTrash(), {"a"});
    QPointer<ARXEmptyTrash> running = flow();
    running->start();
    QMessageBox* box = shownBox();
    ASSERT_NE(box, nullptr);
    QTest::keyClick(box, Qt::Key_Escape);
    ASSERT_TRUE(waitUntil([&] { return running.isNull(); }));
    flushEvents();
    EXPECT_EQ(namesIn(ARXPath::join(homeTrash(), "files")), Names{"a"});
    EXPECT_EQ(namesIn(ARXPath::join(homeTrash(), "info")), Names{"a.trashinfo"});
    EXPECT_EQ(presenter.presented, 0);
}

TEST_F(ARXEmptyTrashTest, AnUnreadableTrashAsksToBeAuthorised) {
    fillTrash(homeTrash(), {"a"});
    writeFile(ARXPath::join(cloudTrash(), "cloud.txt"), "x");
    ASSERT_EQ(::chmod(cloudTrash().c_str(), 0), 0);
    ASSERT_TRUE(obeyPermissionBits());

    // Closing the chooser ends the flow.
    QPointer<ARXEmptyTrash> running = flow();
    running->start();
    ASSERT_TRUE(waitUntil([&] { return running && running->chooser(); }));
    running->chooser()->reject();
    ASSERT_TRUE(waitUntil([&] { return running.isNull(); }));
    EXPECT_EQ(shownBox(), nullptr);

    // Another folder than the one asked for: the user is told which one, and the flow ends.
    running = flow();
    running->start();
    ASSERT_TRUE(waitUntil([&] { return running && running->chooser(); }));
    QFileDialog* chooser = running->chooser();
    EXPECT_EQ(chooser->labelText(QFileDialog::Accept), QStringLiteral("Authorize"));
    EXPECT_EQ(chooser->directory().absolutePath(), ARXPath::display(ARXConf::cloudDrivePath()));
    EXPECT_EQ(chooser->windowModality(), Qt::WindowModal);
    choose(chooser, volume);
    QMessageBox* box = shownBox();
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(box->text(), QStringLiteral("Please select “.Trash” to authorize!"));
    click(box, QStringLiteral("OK"));
    ASSERT_TRUE(waitUntil([&] { return running.isNull(); }));

    // The folder itself, or a folder holding it: the flow goes on. The system still refuses, so
    // that trash adds nothing, nobody is asked twice, and the question is about the others.
    for (const Path& granted : {cloudTrash(), ARXConf::cloudDrivePath()}) {
        running = flow();
        running->start();
        ASSERT_TRUE(waitUntil([&] { return running && running->chooser(); }));
        choose(running->chooser(), granted);
        box = shownBox();
        ASSERT_NE(box, nullptr) << granted;
        EXPECT_EQ(box->text(),
                  QStringLiteral("Are you sure you want to permanently erase the items in the "
                                 "Trash?"));
        click(box, QStringLiteral("Cancel"));
        ASSERT_TRUE(waitUntil([&] { return running.isNull(); }));
    }
    ::chmod(cloudTrash().c_str(), 0700);
    EXPECT_EQ(namesIn(cloudTrash()), Names{"cloud.txt"});
    EXPECT_EQ(namesIn(ARXPath::join(homeTrash(), "files")), Names{"a"});
}

} // namespace
