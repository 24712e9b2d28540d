#include "ui/window/ARXToolBar.h"

#include "app/ARXConf.h"
#include "app/ARXDataCenter.h"
#include "app/ARXToolbarConfiguration.h"
#include "support/ARXFakeVolumes.h"
#include "support/ARXTestEnvironment.h"
#include "support/ARXToolBarItems.h"
#include "ui/window/ARXToolbarIcon.h"
#include "ui/workspace/ARXAtriumViewController.h"
#include "ui/workspace/ARXLayoutsToolbarItem.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QImage>
#include <QMainWindow>
#include <QMenu>
#include <QSignalSpy>
#include <QStyle>
#include <QToolButton>

#include <gtest/gtest.h>

// Readable failure messages for Qt texts.
static void PrintTo(const QStringList& list, std::ostream* out) {
    *out << list.join(QLatin1Char(' ')).toStdString();
}

namespace {

using T = ARXActionType;
namespace Configuration = ARXToolbarConfiguration;

class ARXToolBarTest : public ARXTestEnvironment {
protected:
    // The button of an action, wherever on the bar it is.
    static QToolButton* button(const ARXToolBar& bar, T type) {
        return bar.findChild<QToolButton*>(id(type));
    }

    static QAction* menuAction(const QMenu& menu, const QString& text) {
        for (QAction* action : menu.actions()) {
            if (action->text() == text) {
                return action;
            }
        }
        ADD_FAILURE() << "no menu item " << text.toStdString();
        return nullptr;
    }
};

TEST_F(ARXToolBarTest, TheDefaultBarShowsTheItemsItHasInTheDefaultOrder) {
    ARXToolBar bar;
    EXPECT_EQ(bar.objectName(), QStringLiteral("com.brightmoor.atrium.AtriumWindowToolBar"));
    const QString space = Configuration::space;
    EXPECT_EQ(bar.shownItems(),
              (QStringList{space, id(T::Sidebar), id(T::ViewTypes), space, space,
                           Configuration::flexibleSpace, id(T::WorkspaceName), id(T::Layouts)}));
    EXPECT_TRUE(bar.itemWidget(T::Sidebar));
    EXPECT_TRUE(qobject_cast<ARXLayoutsToolbarItem*>(bar.itemWidget(T::Layouts)));
    EXPECT_EQ(bar.itemWidget(T::Trash), nullptr);
    EXPECT_EQ(bar.itemWidget(T::BackForward), nullptr);

    // The flexible space takes what the items leave over, pushing the name and layouts right.
    bar.resize(900, bar.sizeHint().height());
    bar.show();
    flushEvents();
    const QWidget* layouts = bar.itemWidget(T::Layouts);
    EXPECT_GT(layouts->geometry().right(), 900 - 60);
    EXPECT_LT(bar.itemWidget(T::ViewTypes)->geometry().left(), 200);
}

TEST_F(ARXToolBarTest, EveryAllowedItemIsAnActionOfTheCatalogueOrOneOfItsOwn) {
    for (const QString& item : Configuration::allowed()) {
        const bool own = item == Configuration::quickLauncher || Configuration::isSpace(item);
        EXPECT_EQ(ARXAction::type(item) == T::None, own) << item.toStdString();
        EXPECT_FALSE(ARXToolBar::label(item).isEmpty()) << item.toStdString();
    }
}

TEST_F(ARXToolBarTest, TheStateEnablesChecksAndNamesTheItems) {
    Configuration::setItems(everyItem());
    ARXToolBar bar;
    bar.update(paneState());

    EXPECT_TRUE(button(bar, T::GoBack)->isEnabled());
    EXPECT_FALSE(button(bar, T::GoForward)->isEnabled());
    EXPECT_TRUE(button(bar, T::asColumnsView)->isChecked());
    EXPECT_FALSE(button(bar, T::asListView)->isChecked());
    for (T type : {T::asIconsView, T::HiddenFiles, T::NewFolder, T::Trash, T::GetInfo}) {
        EXPECT_TRUE(button(bar, type)->isEnabled()) << ARXAction::title(type).toStdString();
    }
    EXPECT_FALSE(button(bar, T::Sidebar)->isChecked());
    const auto* name = qobject_cast<QToolButton*>(bar.itemWidget(T::WorkspaceName));
    ASSERT_TRUE(name);
    EXPECT_EQ(name->text(), QStringLiteral("Photos"));

    // A pane whose folder could not be shown: nothing that acts on a folder is offered.
    ARXWindowState state = paneState();
    state.paneNormal = false;
    state.viewType = ARXSpaceViewType::icons;
    state.sidebarVisible = true;
    state.hiddenFiles = true;
    state.pinned = true;
    state.canGoForward = true;
    bar.update(state);
    for (T type : {T::asIconsView, T::asListView, T::asColumnsView, T::HiddenFiles, T::NewFolder,
                   T::Trash, T::GetInfo}) {
        EXPECT_FALSE(button(bar, type)->isEnabled()) << ARXAction::title(type).toStdString();
    }
    EXPECT_TRUE(button(bar, T::GoForward)->isEnabled());
    EXPECT_TRUE(button(bar, T::asIconsView)->isChecked());
    EXPECT_FALSE(button(bar, T::asColumnsView)->isChecked());
    EXPECT_TRUE(button(bar, T::Sidebar)->isChecked());
    EXPECT_TRUE(button(bar, T::HiddenFiles)->isChecked());
    EXPECT_TRUE(button(bar, T::PinTop)->isChecked());

    // No pane at all: no view type is marked.
    ARXWindowState none;
    none.viewType = ARXSpaceViewType::none;
    bar.update(none);
    for (T type : {T::asIconsView, T::asListView, T::asColumnsView}) {
        EXPECT_FALSE(button(bar, type)->isChecked());
    }
    EXPECT_FALSE(button(bar, T::GoBack)->isEnabled());

    // A long name is shortened in the middle, with the whole name as its tooltip.
    state.workspaceName = QString(200, QLatin1Char('w'));
    bar.update(state);
    EXPECT_LT(name->text().size(), 200);
    EXPECT_EQ(name->toolTip(), state.workspaceName);
}

TEST_F(ARXToolBarTest, ClicksAreReportedAndTheWindowDecidesTheMarks) {
    Configuration::setItems(everyItem());
    ARXToolBar bar;
    bar.update(paneState());
    QSignalSpy actions(&bar, &ARXToolBar::actionTriggered);
    QSignalSpy names(&bar, &ARXToolBar::workspaceNameClicked);

    for (T type : {T::GoBack, T::Sidebar, T::asIconsView, T::asListView, T::HiddenFiles, T::PinTop,
                   T::NewFolder, T::Trash, T::GetInfo}) {
        button(bar, type)->click();
        ASSERT_FALSE(actions.isEmpty());
        EXPECT_EQ(actions.takeLast().at(0).value<T>(), type)
            << ARXAction::title(type).toStdString();
    }
    button(bar, T::GoForward)->click();
    EXPECT_TRUE(actions.isEmpty()) << "a disabled button does nothing";

    // A click marks its type at once, and the window's next state has the last word; a click on
    // the type in use keeps its mark.
    button(bar, T::asListView)->click();
    EXPECT_TRUE(button(bar, T::asListView)->isChecked());
    bar.update(paneState());
    EXPECT_TRUE(button(bar, T::asColumnsView)->isChecked());
    button(bar, T::asColumnsView)->click();
    EXPECT_TRUE(button(bar, T::asColumnsView)->isChecked());

    QWidget* name = bar.itemWidget(T::WorkspaceName);
    qobject_cast<QToolButton*>(name)->click();
    ASSERT_EQ(names.size(), 1);
    EXPECT_EQ(names.at(0).at(0).value<QWidget*>(), name);
}

TEST_F(ARXToolBarTest, AChangeInOneWindowShowsInEveryWindowAndIsSaved) {
    ARXToolBar first, second;
    ARXWindowState state = paneState();
    state.paneNormal = false;
    first.update(state);

    std::unique_ptr<QMenu> menu(first.makeCustomizeMenu(nullptr));
    // The menu marks what the bar shows.
    EXPECT_TRUE(menuAction(*menu, "Sidebar")->isChecked());
    EXPECT_FALSE(menuAction(*menu, "Move to Trash")->isChecked());
    EXPECT_FALSE(menuAction(*menu, "Use Small Icons")->isChecked());
    menuAction(*menu, "Move to Trash")->trigger();
    menuAction(*menu, "Sidebar")->trigger(); // takes it away
    // Trash joins the file tools after Share and AirDrop, which this build does not show.
    const QString space = Configuration::space;
    const QStringList expected{space,
                               id(T::ViewTypes),
                               id(T::Trash),
                               space,
                               space,
                               Configuration::flexibleSpace,
                               id(T::WorkspaceName),
                               id(T::Layouts)};
    EXPECT_EQ(first.shownItems(), expected);
    EXPECT_EQ(second.shownItems(), expected);
    EXPECT_TRUE(ARXConf::cached_toolbar_items().value().contains(id(T::Trash)));
    // The new button shows the window's state at once.
    EXPECT_FALSE(button(first, T::Trash)->isEnabled());
    EXPECT_EQ(first.itemWidget(T::Sidebar), nullptr);

    // Items a later Atrium shows stay in the saved list while this one edits it.
    EXPECT_TRUE(ARXConf::cached_toolbar_items().value().contains(id(T::Search)));

    // A new window opens with the changed bar.
    ARXToolBar third;
    EXPECT_EQ(third.shownItems(), expected);

    std::unique_ptr<QMenu> again(second.makeCustomizeMenu(nullptr));
    EXPECT_TRUE(menuAction(*again, "Move to Trash")->isChecked());
    menuAction(*again, "Reset Toolbar")->trigger();
    EXPECT_EQ(first.shownItems(), ARXToolBar().shownItems());
    EXPECT_EQ(first.itemWidget(T::Trash), nullptr);
    EXPECT_EQ(ARXConf::cached_toolbar_items().value(), QStringList());
}

TEST_F(ARXToolBarTest, SmallIconsAreSharedAndSaved) {
    Configuration::setItems(everyItem());
    ARXToolBar first, second;
    const int normal = first.style()->pixelMetric(QStyle::PM_ToolBarIconSize, nullptr, &first);
    const int small = first.style()->pixelMetric(QStyle::PM_SmallIconSize, nullptr, &first);
    ASSERT_LT(small, normal);
    EXPECT_EQ(button(first, T::Trash)->iconSize(), QSize(normal, normal));

    std::unique_ptr<QMenu> menu(first.makeCustomizeMenu(nullptr));
    menuAction(*menu, "Use Small Icons")->trigger();
    for (ARXToolBar* bar : {&first, &second}) {
        EXPECT_TRUE(bar->usesSmallIcons());
        EXPECT_EQ(bar->iconSize(), QSize(small, small));
        EXPECT_EQ(button(*bar, T::GoBack)->iconSize(), QSize(small, small));
        EXPECT_EQ(button(*bar, T::asListView)->iconSize(), QSize(small, small));
    }
    EXPECT_TRUE(ARXConf::cached_toolbar_small_icons().value());
    EXPECT_TRUE(ARXToolBar().usesSmallIcons());

    // Buttons made after the change are small too.
    Configuration::reset();
    Configuration::setItems(Configuration::withItem(Configuration::items(), id(T::GetInfo)));
    EXPECT_EQ(button(first, T::GetInfo)->iconSize(), QSize(small, small));

    second.setUsesSmallIcons(false);
    EXPECT_FALSE(first.usesSmallIcons());
    EXPECT_EQ(button(first, T::GetInfo)->iconSize(), QSize(normal, normal));
}

TEST_F(ARXToolBarTest, ASavedListIsCleanedAndItemsOfLaterVersionsAreSkipped) {
    ARXConf::cached_toolbar_items().setValue(
        {id(T::Layouts), QStringLiteral("com.brightmoor.atrium.copy"), id(T::Search),
         id(T::Layouts), QStringLiteral("garbage"), Configuration::space, id(T::PinTop)});
    ARXToolBar bar;
    EXPECT_EQ(bar.shownItems(), (QStringList{id(T::Layouts), Configuration::space, id(T::PinTop)}));
}

TEST_F(ARXToolBarTest, TheBarsOwnMenuIsTheCustomisation) {
    QMainWindow window;
    auto* bar = new ARXToolBar(&window);
    window.addToolBar(bar);
    window.resize(800, 400);
    window.show();
    flushEvents();

    // The window's menu of bars does not offer to hide it.
    std::unique_ptr<QMenu> windowMenu(window.createPopupMenu());
    if (windowMenu) {
        for (const QAction* action : windowMenu->actions()) {
            EXPECT_FALSE(action->isVisible()) << action->text().toStdString();
        }
    }

    // A right click on an item opens the customisation.
    QWidget* sidebar = bar->itemWidget(T::Sidebar);
    QContextMenuEvent event(QContextMenuEvent::Mouse, QPoint(2, 2),
                            sidebar->mapToGlobal(QPoint(2, 2)));
    QApplication::sendEvent(sidebar, &event);
    auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    ASSERT_TRUE(menu);
    EXPECT_EQ(menu->actions().last()->text(), QStringLiteral("Reset Toolbar"));
    menu->close();
    flushEvents();

    bar->customize();
    menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    ASSERT_TRUE(menu);
    EXPECT_EQ(menu->actions().first()->text(), QStringLiteral("Back/Forward"));
    menu->close();
}

TEST_F(ARXToolBarTest, TheLayoutsItemFollowsTheWorkspaceAcrossRebuilds) {
    ARXDataCenter::setVolumeReaderForTesting([] { return ARXVolumeList{ARXMakeVolume("/")}; });
    ARXAtriumViewController workspace;
    ARXAtriumData data;
    data.layoutId = qint64(ARXAtriumLayoutId::layout_5);
    workspace.build(QStringLiteral("W"), data);

    ARXToolBar bar;
    bar.setController(&workspace);
    auto layouts = [&bar] {
        return qobject_cast<ARXLayoutsToolbarItem*>(bar.itemWidget(T::Layouts));
    };
    ASSERT_TRUE(layouts());
    EXPECT_EQ(layouts()->selectedId(), ARXAtriumLayoutId::layout_5);

    Configuration::setItems(Configuration::withItem(Configuration::items(), id(T::Trash)));
    ASSERT_TRUE(layouts());
    EXPECT_EQ(layouts()->controller(), &workspace);
    layouts()->actionFor(ARXAtriumLayoutId::layout_2)->trigger();
    EXPECT_EQ(workspace.layout()->id, ARXAtriumLayoutId::layout_2);

    bar.setController(nullptr);
    EXPECT_EQ(layouts()->controller(), nullptr);
}

TEST_F(ARXToolBarTest, EveryButtonHasAPictureInTheTextColour) {
    Configuration::setItems(everyItem());
    ARXToolBar bar;
    for (QToolButton* button : bar.findChildren<QToolButton*>()) {
        if (button->defaultAction()) {
            EXPECT_FALSE(button->icon().isNull()) << button->objectName().toStdString();
        }
    }
    // The drawn pictures (used where the theme has none) are never blank and take the palette's
    // button text colour, so that they read on a dark theme.
    QPalette dark;
    dark.setColor(QPalette::ButtonText, QColor(230, 230, 230));
    using Kind = ARXToolbarIcon::Kind;
    for (Kind kind : {Kind::back, Kind::forward, Kind::sidebar, Kind::iconsView, Kind::listView,
                      Kind::columnsView, Kind::hiddenFiles, Kind::pin}) {
        const QImage image =
            ARXToolbarIcon::drawnIcon(kind, dark, bar.style()).pixmap(QSize(24, 24)).toImage();
        int inked = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                const QColor pixel = image.pixelColor(x, y);
                if (pixel.alpha() == 255) {
                    ++inked;
                    EXPECT_EQ(pixel.rgb(), QColor(230, 230, 230).rgb());
                }
            }
        }
        EXPECT_GT(inked, 10) << int(kind);
    }
    for (Kind kind : {Kind::newFolder, Kind::trash, Kind::getInfo}) {
        EXPECT_FALSE(ARXToolbarIcon::drawnIcon(kind, dark, bar.style()).isNull()) << int(kind);
    }
}

TEST_F(ARXToolBarTest, TheLayoutMenuShowsLargeNamedPictures) {
    ARXLayoutsToolbarItem chooser;
    QMenu* menu = chooser.menu();
    ASSERT_EQ(menu->actions().size(), 12);
    EXPECT_TRUE(menu->toolTipsVisible());
    menu->ensurePolished();
    const QSize hint = menu->sizeHint();
    const QRect row = menu->actionGeometry(menu->actions().first());
    EXPECT_GE(row.height(), 36) << "pictures twice the button's size";
    EXPECT_LT(hint.width(), 160) << "no room kept for texts";
}

} // namespace
