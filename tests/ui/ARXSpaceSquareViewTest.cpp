#include "ui/spaceviews/ARXSpaceSquareView.h"

#include "app/ARXConf.h"
#include "app/ARXDataCenter.h"
#include "support/ARXFakeVolumes.h"
#include "support/ARXTestEnvironment.h"
#include "ui/spaceviews/ARXSpaceListView.h"
#include "ui/spaceviews/ARXSpaceMessageView.h"

#include <QCoreApplication>
#include <QFileDialog>
#include <QPushButton>
#include <QToolButton>

#include <gtest/gtest.h>

#include <memory>
#include <sys/stat.h>

namespace {

class ARXSpaceSquareViewTest : public ARXTestEnvironment {
protected:
    void SetUp() override {
        ARXTestEnvironment::SetUp();
        ARXDataCenter::setVolumeReaderForTesting([] { return ARXVolumeList{ARXMakeVolume("/")}; });
        writeFile(in("Folder/Sub/deep.txt"), "x");
        writeFile(in("note.txt"), "x");
        writeFile(ARXPath::join(home(), "Music/song.ogg"), "x");
        ARXConf::settings_default_directory().setValue(ARXPath::toStoredText(in("")));
        pane = std::make_unique<ARXSpaceSquareView>();
        pane->resize(800, 500);
        pane->show();
        pane->resetToDefaults();
    }

    void TearDown() override {
        pane.reset();
        ARXTestEnvironment::TearDown();
    }

    Path in(std::string_view relative) const {
        return ARXPath::normalized(ARXPath::join(ARXPath::join(root(), "pane"), relative));
    }

    Path shown() const { return pane->root() ? pane->root()->path() : Path(); }

    std::vector<Path> historyPaths() const {
        std::vector<Path> paths;
        for (const ARXFileEntryRef& entry : pane->history().entries()) {
            paths.push_back(entry->path());
        }
        return paths;
    }

    std::unique_ptr<ARXSpaceSquareView> pane;
};

TEST_F(ARXSpaceSquareViewTest, BackForwardAndUpFollowTheHistory) {
    EXPECT_EQ(shown(), in(""));
    EXPECT_EQ(pane->viewType(), ARXSpaceViewType::list);
    EXPECT_FALSE(pane->backButton()->isEnabled());
    pane->goBack(); // nothing to go back to
    EXPECT_EQ(shown(), in(""));

    pane->openPath(in("Folder"));
    pane->openPath(in("Folder/Sub"));
    EXPECT_TRUE(pane->backButton()->isEnabled());
    EXPECT_FALSE(pane->forwardButton()->isEnabled());
    pane->goBack();
    EXPECT_EQ(shown(), in("Folder"));
    EXPECT_TRUE(pane->forwardButton()->isEnabled());
    // A refresh of the folder shown leaves the list and the index alone.
    pane->refreshRoot();
    EXPECT_EQ(historyPaths(), (std::vector<Path>{in(""), in("Folder"), in("Folder/Sub")}));
    EXPECT_EQ(pane->history().index(), 1);

    // Up from the sub-folder: the folder just left is the selection, and the forward part goes.
    pane->goForward();
    pane->goEnclosingFolder();
    EXPECT_EQ(shown(), in("Folder"));
    ASSERT_EQ(pane->contentView()->selectedItems().size(), 1u);
    EXPECT_EQ(pane->contentView()->selectedItems().front()->path(), in("Folder/Sub"));
    EXPECT_EQ(pane->history().entries().size(), 4u);

    pane->openPath("/");
    EXPECT_FALSE(pane->isActionEnabled(ARXActionType::GoEnclosingFolder));
    pane->goEnclosingFolder();
    EXPECT_EQ(shown(), "/");
    EXPECT_TRUE(pane->contentView()->selectedItems().empty());
}

TEST_F(ARXSpaceSquareViewTest, TypedPathsOpenFoldersParentsOrSayNotFound) {
    pane->pathEntered(QStringLiteral("Music"));
    EXPECT_EQ(shown(), ARXPath::join(home(), "Music"));
    pane->pathEntered(QStringLiteral("~"));
    EXPECT_EQ(shown(), home());
    pane->pathEntered(QString::fromStdString(in("note.txt")));
    EXPECT_EQ(shown(), in(""));
    pane->pathEntered(QString());
    EXPECT_EQ(shown(), in(""));

    pane->pathEntered(QStringLiteral("/no/such/folder"));
    EXPECT_EQ(shown(), "/no/such/folder");
    EXPECT_EQ(pane->status(), ARXSpaceStatus::notfound);
    EXPECT_TRUE(pane->isMessageShown());
    EXPECT_EQ(pane->messageText(), QStringLiteral("Directory not found."));
    // Back at a folder that exists, the list is shown again.
    pane->goBack();
    EXPECT_FALSE(pane->isMessageShown());
    EXPECT_EQ(pane->status(), ARXSpaceStatus::normal);
}

TEST_F(ARXSpaceSquareViewTest, AFolderDeletedWhileShownSaysSo) {
    pane->openPath(in("Folder"));
    ARXRemoveTree(in("Folder"));
    ASSERT_TRUE(waitUntil([&] { return pane->isMessageShown(); }));
    EXPECT_EQ(pane->messageText(), QStringLiteral("Directory not found."));
}

TEST_F(ARXSpaceSquareViewTest, AFolderTheSystemRefusesAsksForNoChooserUntilTheButton) {
    if (!stopOverridingPermissions()) {
        GTEST_SKIP() << "cannot give up the permission override";
    }
    makeFolder(in("Locked"));
    ASSERT_EQ(::chmod(in("Locked").c_str(), 0), 0);
    pane->openPath(in("Locked"));
    EXPECT_EQ(pane->status(), ARXSpaceStatus::denied);
    EXPECT_TRUE(pane->messageText().contains(QString::fromStdString(in("Locked"))))
        << pane->messageText().toStdString();
    EXPECT_TRUE(pane->messageText().contains(QStringLiteral("Permission denied")))
        << pane->messageText().toStdString();
    EXPECT_EQ(pane->chooseButtonTitle(), QStringLiteral("Authorize"));
    QCoreApplication::processEvents(); // what the status put off until after this event
    EXPECT_EQ(pane->chooser(), nullptr);
    // The button asks.
    pane->findChild<ARXSpaceMessageView*>()->chooseButton()->click();
    ASSERT_NE(pane->chooser(), nullptr);
    pane->chooser()->reject();

    // A folder whose permission goes while it is shown.
    pane->openPath(in("Folder"));
    ASSERT_FALSE(pane->isMessageShown());
    ASSERT_EQ(::chmod(in("Folder").c_str(), 0), 0);
    ASSERT_TRUE(waitUntil([&] { return pane->isMessageShown(); }));
    EXPECT_EQ(pane->status(), ARXSpaceStatus::denied);
    ::chmod(in("Folder").c_str(), 0755);
    ::chmod(in("Locked").c_str(), 0755);
}

TEST_F(ARXSpaceSquareViewTest, OneChooserAtATime) {
    pane->choosePath(false);
    ASSERT_NE(pane->chooser(), nullptr);
    QFileDialog* first = pane->chooser();
    pane->choosePath(true);
    EXPECT_EQ(pane->chooser(), first);
    first->reject();
    ASSERT_TRUE(waitUntil([&] { return pane->chooser() == nullptr; }));
    EXPECT_EQ(shown(), in(""));
}

TEST_F(ARXSpaceSquareViewTest, TheSavedRecordComesBackAndAStartPathWins) {
    pane->openPath(in("Folder"));
    pane->contentView()->setVisibleColumns(QStringList{"Size"});
    pane->setStartPath(in("Folder/Sub"));
    pane->openPath(in(""));
    const std::optional<ARXSpaceData> data = pane->makeData();
    ASSERT_TRUE(data);
    EXPECT_EQ(data->root, in(""));
    EXPECT_EQ(data->historyIndex, 2);

    ARXSpaceSquareView other;
    other.applyData(*data);
    EXPECT_EQ(other.root()->path(), in("Folder/Sub"));
    // The saved places come back in their order; the start path is where the pane now stands.
    const std::vector<Path> saved = data->histories;
    std::vector<Path> restored;
    for (const ARXFileEntryRef& entry : other.history().entries()) {
        restored.push_back(entry->path());
    }
    EXPECT_EQ(restored, (std::vector<Path>{saved[0], saved[1], saved[2], in("Folder/Sub")}));
    EXPECT_EQ(other.history().index(), 3);
    EXPECT_EQ(other.contentView()->visibleColumns(), QStringList{"Size"});
    EXPECT_EQ(other.root()->sortColumn, pane->root()->sortColumn);

    // A record from a broken file: unknown view type, index past the end, no start path.
    ARXSpaceData odd = *data;
    odd.viewType = 9;
    odd.historyIndex = 40;
    odd.startPath.reset();
    ARXSpaceSquareView third;
    third.applyData(odd);
    EXPECT_EQ(third.viewType(), ARXSpaceViewType::list);
    EXPECT_EQ(third.root()->path(), in(""));
    EXPECT_EQ(third.history().index(), int(third.history().entries().size()) - 1);

    ARXSpaceSquareView unused;
    EXPECT_FALSE(unused.makeData());
}

TEST_F(ARXSpaceSquareViewTest, HiddenFilesComeAndGoWithTheSelectionKept) {
    writeFile(in(".hidden-file"), "x");
    pane->refreshRoot();
    pane->contentView()->selectPaths({in("note.txt")});
    pane->setHiddenVisible(true);
    ASSERT_TRUE(pane->root()->find(in(".hidden-file")));
    ASSERT_EQ(pane->contentView()->selectedItems().size(), 1u);
    pane->contentView()->selectPaths({in("note.txt"), in(".hidden-file")});
    pane->setHiddenVisible(false);
    EXPECT_EQ(pane->root()->find(in(".hidden-file")), nullptr);
    ASSERT_EQ(pane->contentView()->selectedItems().size(), 1u);
    EXPECT_EQ(pane->contentView()->selectedItems().front()->path(), in("note.txt"));
}

} // namespace
