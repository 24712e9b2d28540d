#include "ui/window/ARXMainMenu.h"

#include "app/ARXConf.h"
#include "support/ARXTestEnvironment.h"
#include "ui/ARXKeyEvents.h"

#include <QAction>
#include <QApplication>
#include <QKeyEvent>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QSignalSpy>
#include <QTest>

#include <set>

namespace {

using A = ARXActionType;

// A widget that has the keyboard and writes down every key that reaches it (the modifier keys
// pressed on the way left out).
class KeyRecorder : public QWidget {
public:
    KeyRecorder() { setFocusPolicy(Qt::StrongFocus); }
    std::vector<QKeyCombination> keys;

protected:
    void keyPressEvent(QKeyEvent* event) override {
        const int key = event->key();
        if (key != Qt::Key_Shift && key != Qt::Key_Control && key != Qt::Key_Alt &&
            key != Qt::Key_Meta) {
            keys.push_back(event->keyCombination());
        }
        event->accept();
    }
};

class ARXMainMenuTest : public ARXTestEnvironment {
protected:
    void SetUp() override {
        ARXTestEnvironment::SetUp();
        window = std::make_unique<QMainWindow>();
        recorder = new KeyRecorder;
        window->setCentralWidget(recorder);
        menu = new ARXMainMenu(window->menuBar());
        window->resize(700, 500);
        window->show();
    }
    void TearDown() override {
        window.reset();
        ARXTestEnvironment::TearDown();
    }

    // Opens a menu as a click on its title would, and closes it again.
    static void openAndClose(QMenu* shown) {
        shown->popup(QPoint(0, 0));
        ASSERT_TRUE(waitUntil([&] { return shown->isVisible(); }));
        shown->hide();
    }

    QMenu* menuTitled(const QString& title) const {
        for (QMenu* each : menu->menus()) {
            if (each->title() == title) {
                return each;
            }
        }
        return nullptr;
    }

    std::unique_ptr<QMainWindow> window;
    KeyRecorder* recorder = nullptr;
    ARXMainMenu* menu = nullptr;
};

TEST_F(ARXMainMenuTest, EveryOutletIsAnItemOfItsMenuWithTheCatalogueTitle) {
    QStringList titles;
    for (QAction* title : window->menuBar()->actions()) {
        titles.append(title->text());
    }
    EXPECT_EQ(titles, QStringList({"&File", "&Edit", "&View", "&Go", "&Window"}));

    // Outlets are "menuitem_<menu>_<item>", each in its menu, each action in one item.
    std::set<A> types;
    for (QMenu* each : menu->menus()) {
        const QString prefix = "menuitem_" + each->title().mid(1) + "_";
        for (QAction* item : each->actions()) {
            if (item->isSeparator()) {
                continue;
            }
            EXPECT_TRUE(item->objectName().startsWith(prefix)) << item->objectName().toStdString();
            EXPECT_EQ(menu->outlet(item->objectName()), item);
            if (item->data().isValid()) {
                const A type = A(item->data().toInt());
                EXPECT_TRUE(types.insert(type).second);
                EXPECT_EQ(menu->item(type), item);
            }
        }
    }
    // The thirty-nine outlets of the hotkey table, and Hidden Files and Sticky Window.
    EXPECT_EQ(types.size(), 41u);
    EXPECT_EQ(menu->outlet(QStringLiteral("menuitem_File_NoSuchItem")), nullptr);
    EXPECT_EQ(menu->item(A::CopyPath), nullptr);
    EXPECT_EQ(menu->quitItem()->shortcut(), QKeySequence(Qt::ControlModifier | Qt::Key_Q));
}

TEST_F(ARXMainMenuTest, ItemsShowTheirHotkeysAsTheDesktopWritesThem) {
    EXPECT_EQ(menu->item(A::NewFolder)->shortcut().toString(QKeySequence::PortableText),
              QStringLiteral("Ctrl+Shift+N"));
    EXPECT_EQ(menu->item(A::GoEnclosingFolder)->shortcut(),
              QKeySequence(Qt::ControlModifier | Qt::Key_Up));
    EXPECT_TRUE(menu->item(A::ZoomWindow)->shortcut().isEmpty());

    // The user's choice, and an action whose hotkey went.
    const ARXHotkey mine = *ARXHotkey::parse(QStringLiteral("option+cmd+k"));
    menu->updateHotkeys([&](A type) -> std::optional<ARXHotkey> {
        if (type == A::Copy) {
            return mine;
        }
        if (type == A::Paste) {
            return std::nullopt;
        }
        return ARXDefaultHotkeys::hotkey(type);
    });
    EXPECT_EQ(menu->item(A::Copy)->shortcut(),
              QKeySequence(Qt::AltModifier | Qt::ControlModifier | Qt::Key_K));
    EXPECT_TRUE(menu->item(A::Paste)->shortcut().isEmpty());
    EXPECT_EQ(menu->item(A::Cut)->shortcut(), QKeySequence(Qt::ControlModifier | Qt::Key_X));

    EXPECT_EQ(menu->itemShowing(mine), menu->item(A::Copy));
    EXPECT_EQ(menu->itemShowing(*ARXHotkey::parse(QStringLiteral("cmd+q"))), menu->quitItem());
    EXPECT_EQ(menu->itemShowing(*ARXHotkey::parse(QStringLiteral("cmd+v"))), nullptr);
}

TEST_F(ARXMainMenuTest, KeysStayWithTheWidgetThatHasTheKeyboard) {
    QApplication::setActiveWindow(window.get());
    recorder->setFocus();
    ASSERT_TRUE(waitUntil([&] { return recorder->hasFocus(); }));
    QSignalSpy fired(menu, &ARXMainMenu::triggered);
    bool quit = false;
    QObject::connect(menu->quitItem(), &QAction::triggered, [&] { quit = true; });

    std::vector<QKeyCombination> shown;
    for (QMenu* each : menu->menus()) {
        for (QAction* item : each->actions()) {
            if (!item->shortcut().isEmpty()) {
                shown.push_back(item->shortcut()[0]);
            }
        }
    }
    ASSERT_GT(shown.size(), 30u);
    for (const QKeyCombination key : shown) {
        QTest::keyClick(recorder, key.key(), key.keyboardModifiers());
    }
    EXPECT_EQ(recorder->keys, shown);
    EXPECT_EQ(fired.count(), 0);
    EXPECT_FALSE(quit);

    // The same presses are taken from the widget by an ordinary window shortcut: the check above
    // would see a menu that took them.
    QAction stealing;
    stealing.setShortcut(QKeySequence(Qt::ControlModifier | Qt::Key_C));
    window->addAction(&stealing);
    recorder->keys.clear();
    QTest::keyClick(recorder, Qt::Key_C, Qt::ControlModifier);
    EXPECT_TRUE(recorder->keys.empty());
}

TEST_F(ARXMainMenuTest, TheValidatorDecidesAsEachMenuOpens) {
    std::vector<A> asked;
    menu->setValidator([&](A type) {
        asked.push_back(type);
        ARXMenuItemState state;
        switch (type) {
        case A::Paste:
            state.enabled = false;
            break;
        case A::asListView:
            state.checked = true;
            break;
        case A::asIconsView:
            state.checked = false;
            break;
        case A::Sidebar:
            state.title = QStringLiteral("Hide Sidebar");
            break;
        default:
            break;
        }
        return state;
    });
    QMenu* edit = menuTitled(QStringLiteral("&Edit"));
    openAndClose(edit);
    EXPECT_EQ(asked, std::vector<A>({A::Undo, A::Redo, A::Cut, A::Copy, A::Paste, A::SelectAll}));
    EXPECT_FALSE(menu->item(A::Paste)->isEnabled());
    EXPECT_TRUE(menu->item(A::Copy)->isEnabled());
    // Other menus wait for their own opening.
    EXPECT_EQ(menu->item(A::Sidebar)->text(), QStringLiteral("Sidebar"));

    openAndClose(menuTitled(QStringLiteral("&View")));
    EXPECT_TRUE(menu->item(A::asListView)->isCheckable());
    EXPECT_TRUE(menu->item(A::asListView)->isChecked());
    EXPECT_TRUE(menu->item(A::asIconsView)->isCheckable());
    EXPECT_FALSE(menu->item(A::asIconsView)->isChecked());
    EXPECT_FALSE(menu->item(A::FullScreen)->isCheckable());
    EXPECT_EQ(menu->item(A::Sidebar)->text(), QStringLiteral("Hide Sidebar"));
    // An item the validator gives no title keeps its own.
    EXPECT_EQ(menu->item(A::StatusBar)->text(), QStringLiteral("Status Bar"));

    asked.clear();
    menu->validateItems();
    EXPECT_EQ(std::set<A>(asked.begin(), asked.end()).size(), 39u + 2u); // with the two toggles
}

TEST_F(ARXMainMenuTest, TheHomeFoldersAreCalledAsTheDesktopNamedThem) {
    writeFile(ARXPath::join(configHome(), "user-dirs.dirs"),
              "XDG_DOCUMENTS_DIR=\"$HOME/Dokumente\"\n"
              "XDG_DESKTOP_DIR=\"$HOME/Rock & Roll\"\n"
              "XDG_DOWNLOAD_DIR=\"$HOME/\"\n");
    openAndClose(menuTitled(QStringLiteral("&Go")));
    EXPECT_EQ(menu->item(A::GoDocuments)->text(), QStringLiteral("Dokumente"));
    // An "&" of a name is shown, not taken for a mnemonic.
    EXPECT_EQ(menu->item(A::GoDesktop)->text(), QStringLiteral("Rock && Roll"));
    // A folder set to the home itself is switched off: the plain word.
    EXPECT_EQ(menu->item(A::GoDownloads)->text(), QStringLiteral("Downloads"));
    EXPECT_EQ(menu->item(A::GoHome)->text(), QStringLiteral("Home"));

    // A title from the validator wins; an empty one leaves the folder's name.
    menu->setValidator([](A type) {
        ARXMenuItemState state;
        if (type == A::GoHome) {
            state.title = QStringLiteral("Start");
        }
        return state;
    });
    menu->validateItems();
    EXPECT_EQ(menu->item(A::GoHome)->text(), QStringLiteral("Start"));
    EXPECT_EQ(menu->item(A::GoDocuments)->text(), QStringLiteral("Dokumente"));
}

TEST_F(ARXMainMenuTest, TheCloudDriveItemStandsInTheMenuOnlyWhileTheDriveExists) {
    QAction* cloud = menu->item(A::GoiCloudDrive);
    EXPECT_FALSE(cloud->isVisible());
    openAndClose(menuTitled(QStringLiteral("&Go")));
    EXPECT_FALSE(cloud->isVisible());
    EXPECT_FALSE(cloud->isEnabled()); // its hotkey does nothing either

    makeFolder(ARXConf::cloudDrivePath());
    openAndClose(menuTitled(QStringLiteral("&Go")));
    EXPECT_TRUE(cloud->isVisible());
    EXPECT_TRUE(cloud->isEnabled());
}

TEST_F(ARXMainMenuTest, ChoosingAnItemNamesItsAction) {
    QSignalSpy fired(menu, &ARXMainMenu::triggered);
    menu->item(A::NewFolder)->trigger();
    menu->outlet(QStringLiteral("menuitem_Go_Home"))->trigger();
    ASSERT_EQ(fired.count(), 2);
    EXPECT_EQ(fired[0][0].value<A>(), A::NewFolder);
    EXPECT_EQ(fired[1][0].value<A>(), A::GoHome);

    // The window wires the items without an action itself.
    menu->customizeToolbarItem()->trigger();
    EXPECT_EQ(fired.count(), 2);
}

} // namespace
