#include "ui/workspace/ARXAtriumViewController.h"

#include "app/ARXConf.h"
#include "app/ARXDataCenter.h"
#include "app/ARXNotificationNames.h"
#include "platform/ARXFileIO.h"
#include "platform/ARXNotificationCenter.h"
#include "platform/ARXSoundPlayer.h"
#include "support/ARXFakeVolumes.h"
#include "support/ARXTestEnvironment.h"
#include "ui/layout/ARXHandySplitView.h"
#include "ui/spaceviews/ARXSpaceListView.h"
#include "ui/workspace/ARXLayoutsToolbarItem.h"
#include "ui/workspace/ARXWorkspaceStore.h"

#include <QAction>
#include <QApplication>
#include <QLineEdit>
#include <QMenu>
#include <QSplitterHandle>
#include <QTest>
#include <QTreeView>

#include <gtest/gtest.h>

#include <memory>

namespace {

using Id = ARXAtriumLayoutId;
using Dir = ARXSpaceSquareViewMoveDirection;
using Builder = ARXAtriumLayoutBuilder;

class ARXAtriumViewControllerTest : public ARXTestEnvironment {
protected:
    void SetUp() override {
        ARXTestEnvironment::SetUp();
        ARXDataCenter::setVolumeReaderForTesting([] { return ARXVolumeList{ARXMakeVolume("/")}; });
        for (const char* name : {"A/a.txt", "A/b.txt", "B/c.txt", "C/x", "D/x", "E/x"}) {
            writeFile(in(name), "x");
        }
        ARXConf::settings_default_directory().setValue(ARXPath::toStoredText(in("")));
        ARXSoundPlayer::setSink([](ARXSoundEffect) {});
        workspace = std::make_unique<ARXAtriumViewController>();
        workspace->resize(kWidth, kHeight);
    }

    void TearDown() override {
        workspace.reset();
        ARXSoundPlayer::setSink({});
        ARXTestEnvironment::TearDown();
    }

    Path in(std::string_view relative) const {
        return ARXPath::normalized(ARXPath::join(ARXPath::join(root(), "ws"), relative));
    }

    static ARXSpaceData record(const Path& folder) {
        ARXSpaceData data;
        data.viewType = 2;
        data.histories = {folder};
        data.root = folder;
        return data;
    }

    // A workspace of the layout with panes on A, B, C, D, shown and laid out.
    void buildShown(Id id, std::optional<double> sidebar = {}) {
        ARXAtriumData data;
        data.layoutId = qint64(id);
        data.sidebarWidth = sidebar;
        const char* folders[] = {"A", "B", "C", "D"};
        for (size_t i = 0; i < 4; ++i) {
            data.spaces[i] = record(in(folders[i]));
        }
        workspace->build(QStringLiteral("Test"), data);
        show();
    }
    void show() { showLaidOut(*workspace); }
    // Shown, on screen, and every placed pane in its place.
    static void showLaidOut(ARXAtriumViewController& controller) {
        controller.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&controller));
        waitLaidOut(controller);
    }
    // The last build's tree fills the content area: the root split, or the lone pane.
    static void waitLaidOut(const ARXAtriumViewController& controller) {
        ASSERT_TRUE(waitUntil([&] {
            QWidget* content = controller.contentView();
            QWidget* top = Builder::rootSplit(content);
            if (!top) {
                top = controller.squares()[0];
            }
            return top->isVisible() && top->geometry() == content->rect();
        }));
    }
    void waitLaidOut() const { waitLaidOut(*workspace); }
    // The window takes the keyboard, as a window the user brought up does.
    void activateWindow() const {
        workspace->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(workspace.get()));
    }
    // The pane whose widgets hold the keyboard.
    ARXSpaceSquareView* focusedPane() const {
        for (ARXSpaceSquareView* square : workspace->squares()) {
            if (square->isAncestorOf(QApplication::focusWidget())) {
                return square;
            }
        }
        return nullptr;
    }

    ARXSpaceSquareView* pane(size_t index) const { return workspace->squares()[index]; }
    static Path shown(const ARXSpaceSquareView* pane) {
        return pane->root() ? pane->root()->path() : Path();
    }
    std::vector<Path> shownFolders() const {
        std::vector<Path> folders;
        for (ARXSpaceSquareView* square : workspace->squares()) {
            folders.push_back(shown(square));
        }
        return folders;
    }
    int activeIndex() const {
        for (size_t i = 0; i < 4; ++i) {
            if (pane(i)->isActivated()) {
                return int(i);
            }
        }
        return -1;
    }
    static int activeCount(const ARXAtriumViewController& controller) {
        int count = 0;
        for (ARXSpaceSquareView* square : controller.squares()) {
            count += square->isActivated() ? 1 : 0;
        }
        return count;
    }
    static QTreeView* keyTarget(ARXSpaceSquareView* square) {
        return square->contentView()->findChild<QTreeView*>();
    }

    // A drag of a split's divider by the mouse, `delta` pixels along the split.
    static void drag(QSplitter* split, int handle, int delta) {
        QSplitterHandle* grip = split->handle(handle);
        const QPoint start = grip->rect().center();
        const QPoint end =
            start + (split->orientation() == Qt::Horizontal ? QPoint(delta, 0) : QPoint(0, delta));
        const QList<int> before = split->sizes();
        QTest::mousePress(grip, Qt::LeftButton, {}, start);
        QTest::mouseMove(grip, end);
        QTest::mouseRelease(grip, Qt::LeftButton, {}, end);
        ASSERT_TRUE(waitUntil([&] { return split->sizes() != before; }));
    }

    static constexpr int kWidth = 1201;
    static constexpr int kHeight = 801;
    std::unique_ptr<ARXAtriumViewController> workspace;
};

// ----- building and changing layouts

TEST_F(ARXAtriumViewControllerTest, BuildReadsTheLayoutSidebarAndPaneRecords) {
    ARXConf::settings_default_layout().setValue(6);
    ARXAtriumData data;
    data.sidebarWidth = 0;
    data.spaces[0] = record(in("A"));
    data.spaces[2] = record(in("C")); // the gap before it closes up
    data.layoutFactors = QList<double>{0.8};
    workspace->build(QStringLiteral("W"), data);
    show();
    ASSERT_NE(workspace->layout(), nullptr);
    EXPECT_EQ(workspace->layout()->id, Id::layout_6);
    // A saved list of the wrong length stays, but the panes take the default halves.
    EXPECT_EQ(workspace->layout()->factors, QList<double>{0.8});
    EXPECT_NEAR(pane(0)->height(), pane(1)->height(), 1);
    EXPECT_EQ(shownFolders(), (std::vector<Path>{in("A"), in("C"), "", ""}));
    EXPECT_FALSE(workspace->isSidebarVisible());
    EXPECT_EQ(workspace->makeData().sidebarWidth, 0.0);
    EXPECT_EQ(activeIndex(), 0);

    // An id past the twelve is layout_0; a sidebar width is held to its limits.
    for (auto [id, width, expectedWidth] : {std::tuple{12, 500.0, 300}, {40, 100.0, 150}}) {
        ARXAtriumViewController other;
        other.resize(kWidth, kHeight);
        ARXAtriumData wide;
        wide.layoutId = id;
        wide.sidebarWidth = width;
        other.build(QStringLiteral("X"), wide);
        showLaidOut(other);
        EXPECT_EQ(other.layout()->id, Id::layout_0);
        EXPECT_EQ(other.placedPanes().size(), 4u);
        EXPECT_EQ(other.sidebarView()->width(), expectedWidth);
        EXPECT_EQ(activeCount(other), 1);
    }
}

TEST_F(ARXAtriumViewControllerTest, TheActivePaneStaysInSightAndLeavingPanesLoseTheirFolder) {
    buildShown(Id::layout_0);
    ARXSpaceSquareView* fourth = pane(3);
    workspace->activate(fourth);
    ASSERT_EQ(activeIndex(), 3);

    // The layout in use: nothing moves, the active pane stays active.
    workspace->setLayout(workspace->layoutMember(Id::layout_0));
    EXPECT_EQ(activeIndex(), 3);
    EXPECT_EQ(shownFolders(), (std::vector<Path>{in("A"), in("B"), in("C"), in("D")}));

    workspace->setLayout(workspace->layoutMember(Id::layout_7));
    waitLaidOut();
    EXPECT_EQ(pane(0), fourth);
    EXPECT_EQ(shownFolders(), (std::vector<Path>{in("D"), "", "", ""}));
    EXPECT_TRUE(fourth->isActivated());
    EXPECT_EQ(workspace->placedPanes(), std::vector<ARXSpaceSquareView*>{fourth});
    EXPECT_EQ(fourth->size(), workspace->contentView()->size());
    EXPECT_TRUE(fourth->canMoveDirs.empty());
    EXPECT_TRUE(workspace->currentFactors()->isEmpty());

    // Panes that come back start fresh, with the active pane's hidden files.
    fourth->setHiddenVisible(true);
    workspace->setLayout(workspace->layoutMember(Id::layout_1));
    EXPECT_EQ(shownFolders(), (std::vector<Path>{in("D"), in(""), "", ""}));
    EXPECT_TRUE(pane(1)->hiddenVisible());
    EXPECT_EQ(pane(1)->canMoveDirs, std::vector<Dir>{Dir::left});
    EXPECT_EQ(pane(1)->coord, QPoint(1, 0));
}

TEST_F(ARXAtriumViewControllerTest, AnActivePaneOutOfPlacePushesTheLastPlacedOneOut) {
    buildShown(Id::layout_0);
    ARXSpaceSquareView* first = pane(0);
    ARXSpaceSquareView* second = pane(1);
    ARXSpaceSquareView* third = pane(2);
    workspace->activate(third);
    workspace->setLayout(workspace->layoutMember(Id::layout_1));
    EXPECT_EQ(pane(0), first);
    EXPECT_EQ(pane(1), third);
    EXPECT_EQ(pane(2), second);
    EXPECT_EQ(shownFolders(), (std::vector<Path>{in("A"), in("C"), "", ""}));
    // After a change of layout the first pane is the active one.
    EXPECT_EQ(activeIndex(), 0);
    EXPECT_EQ(activeCount(*workspace), 1);
}

TEST_F(ARXAtriumViewControllerTest, TheFirstPaneHoldsTheKeyboardAtStartAndAfterPanesArrive) {
    buildShown(Id::layout_0);
    activateWindow();
    ASSERT_TRUE(waitUntil([&] { return focusedPane() != nullptr; }));
    EXPECT_EQ(focusedPane(), pane(0));
    EXPECT_EQ(activeIndex(), 0);
    // One folder opens in the active pane: the first.
    workspace->openPaths({in("E")}, true);
    EXPECT_EQ(shown(pane(0)), in("E"));

    // Three panes come into use one after another; none takes the keyboard from the first.
    workspace->setLayout(workspace->layoutMember(Id::layout_7));
    workspace->setLayout(workspace->layoutMember(Id::layout_0));
    waitLaidOut();
    ASSERT_TRUE(waitUntil([&] { return focusedPane() == pane(0); }));
    EXPECT_EQ(activeIndex(), 0);
    EXPECT_EQ(activeCount(*workspace), 1);
}

TEST_F(ARXAtriumViewControllerTest, TheClickedPaneHoldsTheKeyboardAfterARenameElsewhere) {
    buildShown(Id::layout_1);
    activateWindow();
    ARXSpaceView* left = pane(0)->contentView();
    ASSERT_TRUE(waitUntil([&] { return focusedPane() == pane(0); }));
    // A rename in the left pane, ended by a click on a row of the right one.
    ASSERT_TRUE(left->beginEditingName(left->find(in("A/a.txt"))));
    auto* editor = keyTarget(pane(0))->findChild<QLineEdit*>();
    ASSERT_TRUE(editor);
    ASSERT_TRUE(waitUntil([&] { return editor->hasFocus(); }));
    editor->setText(QStringLiteral("renamed.txt"));
    QTreeView* right = keyTarget(pane(1));
    const QModelIndex row = right->model()->index(0, 0);
    ASSERT_EQ(row.data().toString(), QStringLiteral("c.txt"));
    QTest::mouseClick(right->viewport(), Qt::LeftButton, {}, right->visualRect(row).center());
    ASSERT_TRUE(waitUntil([&] {
        return ARXFileIO::exists(in("A/renamed.txt")) && left->selectedItems().size() == 1 &&
               left->selectedItems().front()->name() == "renamed.txt";
    }));
    EXPECT_EQ(workspace->activePane(), pane(1));
    EXPECT_EQ(focusedPane(), pane(1));
    // Only the right pane's selection looks current, whether the window is active or not.
    for (const QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive}) {
        EXPECT_NE(keyTarget(pane(0))->palette().color(group, QPalette::Highlight),
                  right->palette().color(group, QPalette::Highlight));
    }

    // The next command acts on what was clicked.
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backspace, Qt::ControlModifier);
    ASSERT_TRUE(waitUntil([&] { return !ARXFileIO::exists(in("B/c.txt")); }));
    EXPECT_TRUE(ARXFileIO::exists(in("A/renamed.txt")));
}

TEST_F(ARXAtriumViewControllerTest, TheChooserFollowsTheLayoutAndChangesIt) {
    buildShown(Id::layout_3);
    ARXLayoutsToolbarItem chooser;
    chooser.setController(workspace.get());
    EXPECT_EQ(chooser.selectedId(), Id::layout_3);
    ASSERT_EQ(chooser.menu()->actions().size(), 12);

    chooser.actionFor(Id::layout_9)->trigger();
    EXPECT_EQ(workspace->layout()->id, Id::layout_9);
    EXPECT_EQ(workspace->placedPanes().size(), 4u);
    EXPECT_EQ(chooser.selectedId(), Id::layout_9);

    workspace->setLayout(workspace->layoutMember(Id::layout_10));
    EXPECT_EQ(chooser.selectedId(), Id::layout_10);

    // Another workspace (another tab) takes the chooser over.
    ARXAtriumViewController other;
    other.build(QStringLiteral("O"), ARXAtriumData{});
    chooser.setController(&other);
    chooser.actionFor(Id::layout_6)->trigger();
    EXPECT_EQ(other.layout()->id, Id::layout_6);
    EXPECT_EQ(workspace->layout()->id, Id::layout_10);
}

TEST_F(ARXAtriumViewControllerTest, TheStatusBarShowsAndHidesInEveryPaneAtOnce) {
    buildShown(Id::layout_0);
    // Three panes leave use for a while, keeping their views.
    workspace->setLayout(workspace->layoutMember(Id::layout_7));
    const auto statusShown = [&](size_t index) {
        auto* list = qobject_cast<ARXSpaceListView*>(pane(index)->contentView());
        return list && list->isBottomStatusVisible();
    };
    EXPECT_FALSE(statusShown(0));
    // As View ▸ Show Status Bar sets it.
    ARXConf::settings_space_bottom_statusbar_visible().setValue(true);
    ARXNotificationCenter::shared().post(ARXNotificationName::rv_settings_bottom_statusbar_changed);
    EXPECT_TRUE(statusShown(0));
    ASSERT_TRUE(waitUntil([&] {
        return qobject_cast<ARXSpaceListView*>(pane(0)->contentView())
            ->bottomStatusText()
            .startsWith(QStringLiteral("2 items, "));
    }));
    // Panes that come back into use have it too.
    workspace->setLayout(workspace->layoutMember(Id::layout_0));
    for (size_t i = 0; i < 4; ++i) {
        EXPECT_TRUE(statusShown(i)) << i;
    }
    ARXConf::settings_space_bottom_statusbar_visible().setValue(false);
    ARXNotificationCenter::shared().post(ARXNotificationName::rv_settings_bottom_statusbar_changed);
    for (size_t i = 0; i < 4; ++i) {
        EXPECT_FALSE(statusShown(i)) << i;
    }
}

// ----- swaps and moves

TEST_F(ARXAtriumViewControllerTest, ASwapKeepsTheSizesOfThePlaces) {
    buildShown(Id::layout_1);
    QSplitter* root = Builder::rootSplit(workspace->contentView());
    ASSERT_TRUE(root);
    drag(root, 1, -250);
    const int leftWidth = pane(0)->width();
    ASSERT_LT(leftWidth, pane(1)->width() - 300);

    ARXSpaceSquareView* first = pane(0);
    ARXSpaceSquareView* second = pane(1);
    workspace->swap(first, second);
    waitLaidOut();
    EXPECT_EQ(pane(0), second);
    EXPECT_EQ(pane(1), first);
    EXPECT_NEAR(second->width(), leftWidth, 1);
    EXPECT_TRUE(first->isActivated());
    EXPECT_EQ(activeCount(*workspace), 1);
    // Both keep their folders.
    EXPECT_EQ(shownFolders(), (std::vector<Path>{in("B"), in("A"), "", ""}));
    ASSERT_TRUE(workspace->layout()->factors);
    EXPECT_EQ(workspace->layout()->factors->size(), 2);

    // The offered layouts start with their default sizes, and keep what a swap stores in them.
    workspace->setLayout(workspace->layoutMember(Id::layout_0));
    workspace->setLayout(workspace->layoutMember(Id::layout_1));
    waitLaidOut();
    EXPECT_NEAR(workspace->currentFactors()->front(), 0.5, 0.01);
    drag(Builder::rootSplit(workspace->contentView()), 1, -250);
    workspace->swap(pane(0), pane(1));
    const double stored = workspace->layout()->factors->front();
    EXPECT_LT(stored, 0.4);
    workspace->setLayout(workspace->layoutMember(Id::layout_6));
    workspace->setLayout(workspace->layoutMember(Id::layout_1));
    waitLaidOut();
    EXPECT_NEAR(workspace->currentFactors()->front(), stored, 0.01);
    // A drag alone is not kept by a change of layout.
    drag(Builder::rootSplit(workspace->contentView()), 1, 300);
    workspace->setLayout(workspace->layoutMember(Id::layout_6));
    workspace->setLayout(workspace->layoutMember(Id::layout_1));
    waitLaidOut();
    EXPECT_NEAR(workspace->currentFactors()->front(), stored, 0.01);
}

TEST_F(ARXAtriumViewControllerTest, ProbesFindTheNeighbourInEachDirection) {
    struct Probe {
        Id layout;
        int from;
        Dir direction;
        int found; // -1: nothing there
    };
    const std::vector<Probe> probes = {
        {Id::layout_0, 0, Dir::right, 1},
        {Id::layout_0, 0, Dir::down, 2},
        {Id::layout_0, 0, Dir::rightDown, 3},
        {Id::layout_2, 1, Dir::leftUp, 0},
        {Id::layout_3, 0, Dir::rightDown, 2},
        {Id::layout_4, 0, Dir::leftDown, 1},
        {Id::layout_5, 2, Dir::rightUp, 1},
        {Id::layout_10, 1, Dir::up, 0},
        {Id::layout_9, 2, Dir::left, 1},
        // Beside a split column the probe runs along the top, clear of the divider.
        {Id::layout_3, 0, Dir::right, 1},
        {Id::layout_2, 1, Dir::left, 0},
        // At a window edge the probe stays inside the pane: it finds itself.
        {Id::layout_0, 0, Dir::up, 0},
        {Id::layout_8, 1, Dir::up, 1},
        // Sideways out of the window, or into the sidebar, there is nothing.
        {Id::layout_0, 1, Dir::right, -1},
        {Id::layout_10, 1, Dir::left, -1},
    };
    for (Id id : {Id::layout_0, Id::layout_2, Id::layout_3, Id::layout_4, Id::layout_5,
                  Id::layout_8, Id::layout_9, Id::layout_10}) {
        ARXAtriumViewController controller;
        controller.resize(kWidth, kHeight);
        ARXAtriumData data;
        data.layoutId = qint64(id);
        data.sidebarWidth = 200;
        controller.build(QStringLiteral("P"), data);
        showLaidOut(controller);
        for (const Probe& probe : probes) {
            if (probe.layout != id) {
                continue;
            }
            SCOPED_TRACE(testing::Message() << "layout " << int(id) << " from " << probe.from
                                            << " direction " << int(probe.direction));
            // Another pane is active first, so that "nothing found" shows as no change.
            ARXSpaceSquareView* bystander = nullptr;
            for (int i = 0; i <= ARXAtriumLayout::lastIndex(id) && !bystander; ++i) {
                if (i != probe.from && i != probe.found) {
                    bystander = controller.squares()[size_t(i)];
                }
            }
            controller.activate(bystander);
            controller.moveFocus(controller.squares()[size_t(probe.from)], probe.direction, false);
            ARXSpaceSquareView* expected =
                probe.found < 0 ? bystander : controller.squares()[size_t(probe.found)];
            EXPECT_TRUE(expected->isActivated());
            EXPECT_EQ(activeCount(controller), 1);
        }
    }
}

TEST_F(ARXAtriumViewControllerTest, KeysMoveTheFocusOrThePaneAndTheMenuSwaps) {
    buildShown(Id::layout_0);
    workspace->activate(pane(0));
    ARXSpaceSquareView* first = pane(0);
    QTest::keyClick(keyTarget(first), Qt::Key_Right, Qt::ControlModifier | Qt::AltModifier);
    EXPECT_EQ(activeIndex(), 1);
    EXPECT_EQ(pane(0), first);

    // With Meta the pane itself moves, and stays active at its new place.
    QTest::keyClick(keyTarget(first), Qt::Key_Down,
                    Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
    EXPECT_EQ(pane(2), first);
    EXPECT_EQ(shown(pane(0)), in("C"));
    EXPECT_TRUE(first->isActivated());

    // The "Move to" menu: a direction's tag swaps; a tag past the directions does nothing.
    workspace->moveTo(first, qint64(Dir::right));
    EXPECT_EQ(pane(3), first);
    workspace->moveTo(first, 8);
    EXPECT_EQ(pane(3), first);
    EXPECT_EQ(shownFolders(), (std::vector<Path>{in("C"), in("B"), in("D"), in("A")}));
}

TEST_F(ARXAtriumViewControllerTest, TabCyclesThroughThePlacedPanes) {
    buildShown(Id::layout_0);
    workspace->activate(pane(0));
    std::vector<int> visited;
    for (int i = 0; i < 4; ++i) {
        QTest::keyClick(keyTarget(workspace->activePane()), Qt::Key_Tab);
        visited.push_back(activeIndex());
    }
    EXPECT_EQ(visited, (std::vector<int>{1, 2, 3, 0}));
    QTest::keyClick(keyTarget(workspace->activePane()), Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(activeIndex(), 3);
    QTest::keyClick(keyTarget(workspace->activePane()), Qt::Key_Tab, Qt::ControlModifier);
    EXPECT_EQ(activeIndex(), 0);

    // None active: from the first place.
    workspace->activate(nullptr);
    workspace->cyclePanes(true);
    EXPECT_EQ(activeIndex(), 1);

    // Only placed panes count, and a single pane stays active.
    workspace->setLayout(workspace->layoutMember(Id::layout_6));
    workspace->cyclePanes(true);
    workspace->cyclePanes(true);
    EXPECT_EQ(activeIndex(), 0);
    workspace->setLayout(workspace->layoutMember(Id::layout_7));
    QTest::keyClick(keyTarget(pane(0)), Qt::Key_Tab);
    EXPECT_EQ(activeIndex(), 0);
}

// ----- opening paths

TEST_F(ARXAtriumViewControllerTest, OpeningPathsMakesRoomWhenAllowed) {
    buildShown(Id::layout_7);
    // Not allowed: one pane, only the first path opens.
    workspace->openPaths({in("B"), in("C")}, false);
    EXPECT_EQ(workspace->layout()->id, Id::layout_7);
    EXPECT_EQ(shownFolders(), (std::vector<Path>{in("B"), "", "", ""}));

    workspace->openPaths({in("B"), in("C")}, true);
    EXPECT_EQ(workspace->layout()->id, Id::layout_1);
    EXPECT_EQ(shown(pane(0)), in("B"));
    EXPECT_EQ(shown(pane(1)), in("C"));

    // One path: the active pane, whatever the layout.
    workspace->activate(pane(1));
    workspace->openPaths({in("E")}, true);
    EXPECT_EQ(workspace->layout()->id, Id::layout_1);
    EXPECT_EQ(shown(pane(1)), in("E"));

    workspace->openPaths({in("A"), in("B"), in("C")}, true);
    EXPECT_EQ(workspace->layout()->id, Id::layout_2);
    // Five paths: four panes, the fifth dropped.
    workspace->openPaths({in("A"), in("B"), in("C"), in("D"), in("E")}, true);
    EXPECT_EQ(workspace->layout()->id, Id::layout_0);
    EXPECT_EQ(shownFolders(), (std::vector<Path>{in("A"), in("B"), in("C"), in("D")}));
}

TEST_F(ARXAtriumViewControllerTest, RevealingGroupsItemsByTheirFolder) {
    buildShown(Id::layout_7);
    workspace->revealPaths({in("A/a.txt"), in("B/c.txt"), in("A/b.txt")}, true);
    EXPECT_EQ(workspace->layout()->id, Id::layout_1);
    EXPECT_EQ(shown(pane(0)), in("A"));
    EXPECT_EQ(shown(pane(1)), in("B"));
    EXPECT_EQ(pane(0)->contentView()->selectedItems().size(), 2u);
    ASSERT_EQ(pane(1)->contentView()->selectedItems().size(), 1u);
    EXPECT_EQ(pane(1)->contentView()->selectedItems().front()->path(), in("B/c.txt"));

    // One folder: the active pane.
    workspace->activate(pane(1));
    workspace->revealPaths({in("A/b.txt")}, true);
    EXPECT_EQ(shown(pane(1)), in("A"));
    EXPECT_EQ(workspace->layout()->id, Id::layout_1);
}

// ----- the record

TEST_F(ARXAtriumViewControllerTest, AFourPaneWorkspaceComesBackWithItsDraggedSizes) {
    buildShown(Id::layout_0, 220.0);
    workspace->setName(QStringLiteral("Round Trip"), QStringLiteral("cmd+1"));
    QSplitter* root = Builder::rootSplit(workspace->contentView());
    ASSERT_TRUE(root);
    drag(root, 1, 130);
    drag(qobject_cast<QSplitter*>(root->widget(0)), 1, -200);
    drag(qobject_cast<QSplitter*>(root->widget(1)), 1, 170);
    drag(workspace->mainSplitView(), 1, 40);
    pane(2)->openPath(in("E"));

    std::vector<QRect> frames;
    for (ARXSpaceSquareView* square : workspace->squares()) {
        frames.emplace_back(square->mapTo(workspace.get(), QPoint(0, 0)), square->size());
    }
    const int sidebar = workspace->sidebarView()->width();
    EXPECT_GT(sidebar, 250);
    ASSERT_NE(frames[0].width(), frames[2].width());
    ASSERT_TRUE(ARXWorkspaceStore::save(*workspace));
    const ARXAtriumData saved = workspace->makeData();
    workspace.reset();

    ARXAtriumViewController restored;
    restored.resize(kWidth, kHeight);
    ARXWorkspaceStore::restore(restored, QStringLiteral("Round Trip"));
    showLaidOut(restored);
    EXPECT_EQ(restored.layout()->id, Id::layout_0);
    EXPECT_EQ(restored.hotkey(), QStringLiteral("cmd+1"));
    EXPECT_EQ(restored.sidebarView()->width(), sidebar);
    for (size_t i = 0; i < 4; ++i) {
        ARXSpaceSquareView* square = restored.squares()[i];
        const QRect frame(square->mapTo(&restored, QPoint(0, 0)), square->size());
        SCOPED_TRACE(i);
        EXPECT_NEAR(frame.left(), frames[i].left(), 1);
        EXPECT_NEAR(frame.top(), frames[i].top(), 1);
        EXPECT_NEAR(frame.width(), frames[i].width(), 1);
        EXPECT_NEAR(frame.height(), frames[i].height(), 1);
        EXPECT_EQ(square->makeData(), saved.spaces[i]);
    }
    EXPECT_EQ(shown(restored.squares()[2]), in("E"));
}

TEST_F(ARXAtriumViewControllerTest, TheSidebarAndTheRecordOfAWindowNeverShown) {
    ARXAtriumData data;
    data.layoutId = 7;
    data.sidebarWidth = 180;
    workspace->build(std::nullopt, data);
    // Not on screen yet: no frame, no window state; layout_7 has no factors.
    ARXAtriumData record = workspace->makeData();
    EXPECT_EQ(record.frame, QRectF());
    EXPECT_EQ(record.fullscreen, std::nullopt);
    EXPECT_EQ(record.layoutId, 7);
    EXPECT_EQ(record.layoutFactors, QList<double>());
    EXPECT_EQ(record.sidebarWidth, 180.0);
    EXPECT_TRUE(record.spaces[0]);
    EXPECT_FALSE(record.spaces[1]);
    EXPECT_FALSE(ARXWorkspaceStore::save(*workspace)); // no name, no file

    show();
    EXPECT_EQ(workspace->makeData().frame.size(), QSizeF(kWidth, kHeight));
    const int withSidebar = workspace->minimumWidth();
    workspace->setSidebarVisible(false);
    EXPECT_EQ(workspace->minimumWidth(), withSidebar - 150);
    EXPECT_EQ(workspace->makeData().sidebarWidth, 0.0);
    // Shown again, it has the width it had.
    workspace->setSidebarVisible(true);
    ASSERT_TRUE(waitUntil([&] { return workspace->sidebarView()->width() == 180; }));
    EXPECT_EQ(workspace->sidebarView()->width(), 180);

    // A drag of its divider stops at 150 and at 300.
    drag(workspace->mainSplitView(), 1, -100);
    EXPECT_EQ(workspace->sidebarView()->width(), 150);
    drag(workspace->mainSplitView(), 1, 400);
    EXPECT_EQ(workspace->sidebarView()->width(), 300);
}

} // namespace
