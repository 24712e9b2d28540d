#include "ui/window/ARXAtriumWindow.h"

#include "app/ARXConf.h"
#include "app/ARXDataCenter.h"
#include "platform/ARXTerminationSignals.h"
#include "support/ARXFakeVolumes.h"
#include "support/ARXTestEnvironment.h"
#include "ui/ARXAppDelegate.h"
#include "ui/ARXPropertiesDialog.h"
#include "ui/window/ARXAtriumWindowController.h"
#include "ui/window/ARXMainMenu.h"
#include "ui/window/ARXOpenWorkspaces.h"
#include "ui/workspace/ARXWorkspaceStore.h"

#include <QApplication>
#include <QGuiApplication>
#include <QMenu>
#include <QScreen>
#include <QTest>

#include <gtest/gtest.h>

#include <csignal>
#include <functional>

namespace {

class ARXAtriumWindowTest : public ARXTestEnvironment {
protected:
    void SetUp() override {
        ARXTestEnvironment::SetUp();
        ARXDataCenter::setVolumeReaderForTesting([] { return ARXVolumeList{ARXMakeVolume("/")}; });
        makeFolder(home() + "/Work");
        ARXConf::settings_default_directory().setValue(ARXPath::toStoredText(home() + "/Work"));
        for (const char* name : {"A", "B", "C"}) {
            ARXDataCenter::shared().save(QString::fromLatin1(name),
                                         ARXDataCenter::emptyWorkspace());
        }
        ARXAppDelegate::setTrayAvailableForTesting(false);
        ARXAppDelegate::setQuitForTesting([this] { ++quits; });
        clock = 1000.0;
        ARXOpenWorkspaces::setClockForTesting(clock);
    }

    void TearDown() override {
        for (ARXAtriumWindow* window : ARXAtriumWindow::windows()) {
            window->close();
        }
        flushEvents(); // closed controllers and windows are deleted from the event loop
        ARXOpenWorkspaces& open = ARXOpenWorkspaces::shared();
        open.lastClosedName.reset();
        open.pendingClose.reset();
        ARXOpenWorkspaces::setClockForTesting(std::nullopt);
        ARXAppDelegate::setTrayAvailableForTesting(std::nullopt);
        ARXAppDelegate::setQuitForTesting({});
        ARXTestEnvironment::TearDown();
    }

    void advance(double seconds) {
        clock += seconds;
        ARXOpenWorkspaces::setClockForTesting(clock);
    }

    // A window with the workspaces as tabs, in this order.
    static ARXAtriumWindow* tabGroup(const QStringList& names) {
        ARXAtriumWindowController* first = ARXAtriumWindowController::open(names.first(), false);
        first->showWindow();
        for (qsizetype i = 1; i < names.size(); ++i) {
            ARXAtriumWindowController::openAsTab(names[i], first->atriumWindow());
        }
        return first->atriumWindow();
    }

    static QStringList tabNames(ARXAtriumWindow* window) {
        QStringList names;
        for (ARXAtriumWindowController* controller : window->tabbedControllers()) {
            names.append(controller->name());
        }
        return names;
    }

    double clock = 0;
    int quits = 0;
};

TEST_F(ARXAtriumWindowTest, AWholeTabGroupClosedTogetherIsRememberedAsAGroup) {
    ARXAppDelegate delegate;
    ARXAtriumWindow* window = tabGroup({"A", "B", "C"});
    ASSERT_EQ(tabNames(window), (QStringList{"A", "B", "C"}));
    EXPECT_EQ(window->tabbedNames(), (QStringList{"A", "B", "C"}));

    window->close();
    ARXOpenWorkspaces& open = ARXOpenWorkspaces::shared();
    EXPECT_TRUE(open.isEmpty());
    ASSERT_TRUE(open.pendingClose.has_value());
    EXPECT_TRUE(open.pendingClose->validated());
    EXPECT_EQ(ARXConf::cached_open_atrium_tab_names().value(),
              (QList<QStringList>{{"A", "B", "C"}}));
    EXPECT_TRUE(ARXConf::cached_open_atrium_names().value().isEmpty());
    // Without a tray there is nothing to come back from: the program ends.
    EXPECT_TRUE(waitUntil([&] { return quits == 1; }));
}

TEST_F(ARXAtriumWindowTest, TabsClosedOneByOneLeaveOnlyTheLastWorkspace) {
    ARXAppDelegate delegate;
    ARXAtriumWindow* window = tabGroup({"A", "B", "C"});
    auto controllers = window->tabbedControllers();

    window->closeTab(controllers[0]);
    advance(1.0); // longer than a gesture: the next close is a new one
    window->closeTab(controllers[1]);
    advance(1.0);
    window->closeTab(controllers[2]); // the last tab takes its window with it

    EXPECT_TRUE(ARXOpenWorkspaces::shared().isEmpty());
    EXPECT_EQ(ARXConf::cached_open_atrium_names().value(), QStringList{"C"});
    EXPECT_EQ(ARXConf::cached_open_atrium_tab_names().value(), QList<QStringList>{QStringList()});
}

TEST_F(ARXAtriumWindowTest, ClosingAWindowSavesItsWorkspacesAndStartingAgainRestoresTheGroup) {
    {
        ARXAppDelegate delegate;
        ARXAtriumWindow* window = tabGroup({"B", "A"});
        ARXAtriumWindowController* b = window->tabbedControllers().first();
        b->viewController()->setLayout(b->viewController()->layoutMember(ARXAtriumLayoutId(3)));
        window->close();
        EXPECT_EQ(ARXWorkspaceStore::record("B").layoutId, 3);
    }
    flushEvents();
    // A tab group naming a workspace whose file is gone opens the rest of it.
    QList<QStringList> groups = ARXConf::cached_open_atrium_tab_names().value();
    groups.first().append("Gone");
    ARXConf::cached_open_atrium_tab_names().setValue(groups);

    ARXAppDelegate delegate;
    delegate.applicationDidFinishLaunching();
    ASSERT_TRUE(waitUntil([] { return !ARXAtriumWindow::windows().isEmpty(); }));
    ARXAtriumWindow* window = ARXAtriumWindow::windows().first();
    EXPECT_EQ(tabNames(window), (QStringList{"B", "A"}));
    EXPECT_EQ(window->tabbedControllers().first()->viewController()->layout()->id,
              ARXAtriumLayoutId(3));
    EXPECT_EQ(ARXAtriumWindow::windows().size(), 1);
}

TEST_F(ARXAtriumWindowTest, AWorkspaceWaitingInTheBackgroundIsBuiltWhenItsTabComesForward) {
    ARXAtriumData data = ARXDataCenter::emptyWorkspace();
    data.layoutId = 5;
    data.sidebarWidth = 222;
    ARXDataCenter::shared().save("B", data);
    const std::string before = readFile(ARXDataCenter::shared().path("B"));
    ARXAppDelegate delegate;
    ARXAtriumWindow* window = tabGroup({"A"});
    ARXAtriumWindowController* b = ARXAtriumWindowController::open("B", false);
    window->addTabbedController(b, -1, false);
    EXPECT_FALSE(b->isBuilt());
    EXPECT_EQ(window->currentController()->name(), "A");

    window->setCurrentController(b);
    ASSERT_TRUE(b->isBuilt());
    EXPECT_EQ(b->viewController()->layout()->id, ARXAtriumLayoutId(5));

    // One that never came forward is closed without touching its file.
    ARXAtriumWindowController* c = ARXAtriumWindowController::open("C", false);
    const std::string stored = readFile(ARXDataCenter::shared().path("C"));
    window->addTabbedController(c, -1, false);
    window->closeTab(c);
    EXPECT_EQ(readFile(ARXDataCenter::shared().path("C")), stored);
    EXPECT_EQ(readFile(ARXDataCenter::shared().path("B")), before);
}

TEST_F(ARXAtriumWindowTest, QuittingRemembersEveryWindowAndItsTabsAndTheNextStartBringsThemBack) {
    // The real ways to quit: the menu's Quit (Ctrl+Q, as the tray's Quit) and a termination
    // signal, each ending a running event loop that then closes the windows one by one.
    ARXTerminationSignals::quitApplicationOnTermination();
    const std::vector<std::function<void(ARXAtriumWindow*)>> quits{
        [](ARXAtriumWindow* window) { window->mainMenu()->quitItem()->trigger(); },
        [](ARXAtriumWindow*) { ::raise(SIGTERM); },
    };
    for (const auto& quit : quits) {
        ARXConf::cached_open_atrium_names().reset();
        ARXConf::cached_open_atrium_tab_names().reset();
        {
            ARXAppDelegate delegate;
            ARXAtriumWindow* group = tabGroup({"A", "C"});
            ARXAtriumWindowController::open("B", false)->showWindow();
            QTimer::singleShot(0, group, [&quit, group] { quit(group); });
            QApplication::exec();
            EXPECT_TRUE(ARXOpenWorkspaces::shared().isEmpty());
            EXPECT_EQ(ARXConf::cached_open_atrium_tab_names().value(),
                      (QList<QStringList>{{"A", "C"}}));
            EXPECT_EQ(ARXConf::cached_open_atrium_names().value(), QStringList{"B"});
        }
        ASSERT_TRUE(waitUntil([] { return ARXAtriumWindow::windows().isEmpty(); }));

        ARXAppDelegate delegate;
        delegate.applicationDidFinishLaunching();
        ASSERT_TRUE(waitUntil([] { return ARXAtriumWindow::windows().size() == 2; }));
        QList<QStringList> windows;
        for (ARXAtriumWindow* window : ARXAtriumWindow::windows()) {
            windows.append(tabNames(window));
        }
        EXPECT_EQ(windows, (QList<QStringList>{{"B"}, {"A", "C"}}));
        for (ARXAtriumWindow* window : ARXAtriumWindow::windows()) {
            window->close();
        }
        ASSERT_TRUE(waitUntil([] { return ARXAtriumWindow::windows().isEmpty(); }));
    }
}

TEST_F(ARXAtriumWindowTest, AnOpenWorkspaceAddedAsATabMovesIntoTheWindow) {
    ARXAppDelegate delegate;
    ARXAtriumWindowController::open("B", false)->showWindow();
    ARXAtriumWindow* window = tabGroup({"A"});
    ASSERT_EQ(ARXAtriumWindow::windows().size(), 2);

    ARXAtriumWindowController::openAsTab("B", window);
    EXPECT_EQ(tabNames(window), (QStringList{"A", "B"}));
    // The window B left had nothing else and went away, without closing B.
    EXPECT_TRUE(waitUntil([] { return ARXAtriumWindow::windows().size() == 1; }));
    EXPECT_EQ(ARXOpenWorkspaces::shared().names(), (QStringList{"B", "A"}));
    // Asking again only brings the tab forward.
    ARXAtriumWindowController::openAsTab("A", window);
    EXPECT_EQ(tabNames(window), (QStringList{"A", "B"}));
    EXPECT_EQ(window->currentController()->name(), "A");
}

TEST_F(ARXAtriumWindowTest, TheAddTabMenuOffersOnlyTheOtherWorkspaces) {
    ARXAppDelegate delegate;
    ARXAtriumWindow* window = tabGroup({"A", "B"});
    QTimer::singleShot(0, [&] {
        for (QWidget* popup : QApplication::topLevelWidgets()) {
            if (auto* shown = qobject_cast<QMenu*>(popup); shown && shown->isVisible()) {
                QStringList titles;
                for (QAction* item : shown->actions()) {
                    titles.append(item->isSeparator() ? QStringLiteral("-") : item->text());
                }
                EXPECT_EQ(titles, (QStringList{"C", "-", "New Workspace"}));
                shown->close();
            }
        }
    });
    window->showAddTabMenu();
}

TEST_F(ARXAtriumWindowTest, HiddenFilesFollowTheActivePaneInAllFourPanes) {
    ARXAppDelegate delegate;
    ARXAtriumWindow* window = tabGroup({"A"});
    ARXAtriumWindowController* controller = window->currentController();
    ARXAtriumViewController* workspace = controller->viewController();
    workspace->setLayout(workspace->layoutMember(ARXAtriumLayoutId(4)));
    workspace->squares()[1]->setHiddenVisible(true); // panes may differ before the command

    QKeyEvent key(QEvent::KeyPress, Qt::Key_Greater, Qt::ControlModifier | Qt::ShiftModifier, ">");
    EXPECT_TRUE(controller->keyDown(&key));
    for (ARXSpaceSquareView* pane : workspace->squares()) {
        EXPECT_TRUE(pane->hiddenVisible());
    }
    EXPECT_TRUE(controller->state().hiddenFiles);
    controller->perform(ARXActionType::HiddenFiles);
    for (ARXSpaceSquareView* pane : workspace->squares()) {
        EXPECT_FALSE(pane->hiddenVisible());
    }
}

TEST_F(ARXAtriumWindowTest, TheKeyboardSettlesInOnePaneAfterALayoutChange) {
    ARXAppDelegate delegate;
    ARXAtriumWindow* window = tabGroup({"A"});
    window->activateWindow();
    QApplication::setActiveWindow(window);
    ARXAtriumViewController* workspace = window->currentController()->viewController();
    workspace->onLayoutClicked(ARXAtriumLayoutId(0));
    flushEvents();
    workspace->onLayoutClicked(ARXAtriumLayoutId(1));
    ASSERT_TRUE(waitUntil([&] {
        return workspace->activePane() &&
               workspace->activePane()->isAncestorOf(QApplication::focusWidget());
    }));
    // Two panes activated in one event once handed the keyboard to each other without end: once
    // it has settled, delivering what is pending moves it no more.
    int changes = 0;
    QObject counting;
    QObject::connect(qApp, &QApplication::focusChanged, &counting, [&] { ++changes; });
    flushEvents();
    EXPECT_EQ(changes, 0);
    EXPECT_TRUE(workspace->activePane()->isAncestorOf(QApplication::focusWidget()));
}

TEST_F(ARXAtriumWindowTest, MenuHotkeysThatNoPaneTookActThroughTheMenus) {
    ARXAppDelegate delegate;
    ARXAtriumWindow* window = tabGroup({"A"});
    QKeyEvent newWorkspace(QEvent::KeyPress, Qt::Key_N, Qt::ControlModifier, "n");
    EXPECT_TRUE(window->currentController()->keyDown(&newWorkspace));
    ASSERT_EQ(ARXAtriumWindow::windows().size(), 2);
    ARXAtriumWindow* created = ARXAtriumWindow::windows().last();
    EXPECT_EQ(created->currentController()->name(), "My Workspace 1");

    QKeyEvent close(QEvent::KeyPress, Qt::Key_W, Qt::ControlModifier, "w");
    EXPECT_TRUE(created->currentController()->keyDown(&close));
    EXPECT_EQ(ARXOpenWorkspaces::shared().names(), QStringList{"A"});
    // A key no item shows is left to others.
    QKeyEvent plain(QEvent::KeyPress, Qt::Key_J, Qt::NoModifier, "j");
    EXPECT_FALSE(window->currentController()->keyDown(&plain));
}

TEST_F(ARXAtriumWindowTest, GetInfoShowsTheSelectionOrElseThePanesFolder) {
    ARXAppDelegate delegate;
    ARXAtriumWindow* window = tabGroup({"A"});
    window->currentController()->perform(ARXActionType::GetInfo);
    QList<ARXPropertiesDialog*> dialogs = window->findChildren<ARXPropertiesDialog*>();
    ASSERT_EQ(dialogs.size(), 1);
    EXPECT_EQ(dialogs.first()->facts().path, home() + "/Work");
    // Other programs ask for items of their own, with no workspace involved.
    writeFile(home() + "/Work/a.txt", "a");
    delegate.showProperties({home() + "/Work/a.txt", home() + "/Work"});
    int open = 0;
    for (QWidget* top : QApplication::topLevelWidgets()) {
        open += qobject_cast<ARXPropertiesDialog*>(top) && top->isVisible() ? 1 : 0;
    }
    EXPECT_EQ(open, 3);
}

TEST_F(ARXAtriumWindowTest, StickyWindowStaysOnTopAndIsSavedAtOnce) {
    ARXAppDelegate delegate;
    ARXAtriumWindow* window = tabGroup({"A"});
    ARXAtriumWindowController* controller = window->currentController();
    controller->perform(ARXActionType::PinTop);
    EXPECT_TRUE(window->windowFlags().testFlag(Qt::WindowStaysOnTopHint));
    EXPECT_TRUE(window->isVisible());
    EXPECT_TRUE(controller->validate(ARXActionType::PinTop).checked.value_or(false));
    EXPECT_EQ(ARXWorkspaceStore::record("A").pinTop, true);

    QKeyEvent save(QEvent::KeyPress, Qt::Key_S, Qt::ControlModifier, "s");
    controller->viewController()->setSidebarVisible(false);
    EXPECT_TRUE(controller->keyDown(&save));
    EXPECT_EQ(ARXWorkspaceStore::record("A").sidebarWidth, 0.0);
}

TEST_F(ARXAtriumWindowTest, AFrameOffEveryScreenOpensCentredAtTheDefaultSize) {
    ARXAtriumData data = ARXDataCenter::emptyWorkspace();
    data.frame = QRectF(40000, 40000, 800, 600);
    ARXDataCenter::shared().save("Far", data);
    ARXAppDelegate delegate;
    ARXAtriumWindowController* controller = ARXAtriumWindowController::open("Far", false);
    controller->showWindow();
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    EXPECT_TRUE(screen.contains(controller->window()->geometry().center()));
    EXPECT_LE(controller->window()->width(), screen.width());
}

TEST_F(ARXAtriumWindowTest, AWindowClosedAndOpenedAgainComesBackWhereItWas) {
    ARXAtriumData data = ARXDataCenter::emptyWorkspace();
    data.frame = QRectF(60, 70, 500, 400);
    ARXDataCenter::shared().save("Here", data);
    ARXAppDelegate delegate;
    for (int round = 0; round < 3; ++round) {
        ARXAtriumWindowController* controller = ARXAtriumWindowController::open("Here", false);
        controller->showWindow();
        // The decorated platform draws a frame around the client area; the saved frame is the
        // client area, and is where it comes back.
        EXPECT_EQ(controller->window()->geometry(), QRect(60, 70, 500, 400)) << round;
        controller->atriumWindow()->close();
        ASSERT_TRUE(waitUntil([] { return ARXAtriumWindow::windows().isEmpty(); }));
        EXPECT_EQ(ARXWorkspaceStore::record("Here").frame, QRectF(60, 70, 500, 400)) << round;
    }
}

TEST_F(ARXAtriumWindowTest, PathsHandedOverOpenInTheFrontWorkspaceEvenBeforeItsWindow) {
    makeFolder(home() + "/Downloads");
    writeFile(home() + "/Work/report.txt", "x");
    ARXAppDelegate delegate;
    // Nothing is open yet: the workspaces come back first, then the folder opens in front.
    delegate.openPaths({home() + "/Downloads"});
    ASSERT_TRUE(waitUntil([] { return !ARXOpenWorkspaces::shared().isEmpty(); }));
    ARXAtriumWindowController* front = ARXOpenWorkspaces::shared().front();
    ASSERT_TRUE(waitUntil([&] {
        ARXSpaceSquareView* pane = front->viewController()->activePane();
        return pane && pane->root() && pane->root()->path() == home() + "/Downloads";
    }));

    // A path that does not exist leaves the pane with its message, and nothing breaks.
    ARXSpaceSquareView* pane = front->viewController()->activePane();
    delegate.openPaths({home() + "/Nowhere"});
    EXPECT_TRUE(waitUntil([&] { return pane->status() == ARXSpaceStatus::notfound; }));
    delegate.revealPaths({home() + "/Work/report.txt"});
    EXPECT_TRUE(waitUntil([&] {
        ARXSpaceSquareView* active = front->viewController()->activePane();
        return active && active->root() && active->root()->path() == home() + "/Work";
    }));
}

TEST_F(ARXAtriumWindowTest, WithoutATrayThereIsNoStatusItemAndWithOneItListsClosedWorkspaces) {
    ARXAppDelegate::setTrayAvailableForTesting(true);
    ARXAppDelegate delegate;
    delegate.notifyAppStatusbarSettingsChanged();
    ASSERT_NE(delegate.statusItem(), nullptr);
    ARXAtriumWindowController::open("B", false)->showWindow();
    QMenu menu;
    delegate.fillDockMenu(&menu);
    QStringList titles;
    for (QAction* item : menu.actions()) {
        titles.append(item->isSeparator() ? QStringLiteral("-") : item->text());
    }
    EXPECT_EQ(titles, (QStringList{"A", "C", "-", "New Workspace"}));

    ARXConf::settings_app_statusbar_entry().setValue(false);
    delegate.notifyAppStatusbarSettingsChanged();
    EXPECT_EQ(delegate.statusItem(), nullptr);
}

} // namespace
