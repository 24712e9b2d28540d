#include "ui/window/ARXMainMenu.h"

#include "app/ARXConf.h"
#include "platform/ARXFileStatus.h"
#include "platform/ARXPath.h"
#include "platform/ARXSystemPaths.h"
#include "ui/ARXKeyEvents.h"

#include <QAction>
#include <QCoreApplication>
#include <QIcon>
#include <QMenu>
#include <QMenuBar>

namespace {

using A = ARXActionType;

// One row of a menu. An item without an action (Quit, the toolbar's two items) is wired by the
// window itself and titled here.
struct Entry {
    const char* outlet = nullptr; // nullptr: a separator
    A type = A::None;
    const char* icon = nullptr; // freedesktop icon name
    const char* title = nullptr;
    bool checkable = false;
};

struct MenuTable {
    const char* title;
    std::vector<Entry> entries;
};

constexpr Entry separator{};

// The menus grouped the way Linux file managers group theirs: what makes things, what opens them,
// what acts on the selection, and what leaves, each a group of its own.
const std::vector<MenuTable>& tables() {
    static const std::vector<MenuTable> menus{
        {QT_TRANSLATE_NOOP("ARXMainMenu", "&File"),
         {
             {"menuitem_File_NewWorkspace", A::NewWorkspace, "window-new"},
             {"menuitem_File_NewFolder", A::NewFolder, "folder-new"},
             {"menuitem_File_NewFolderWithSelection", A::NewFolderWithSelection},
             separator,
             {"menuitem_File_Open", A::Open, "document-open"},
             {"menuitem_File_OpenInTerminal", A::OpenInTerminal, "utilities-terminal"},
             {"menuitem_File_OpenInEditor", A::OpenInEditor, "accessories-text-editor"},
             separator,
             {"menuitem_File_GetInfo", A::GetInfo, "document-properties"},
             {"menuitem_File_Rename", A::Rename, "edit-rename"},
             {"menuitem_File_Compress", A::Compress, "package-x-generic"},
             {"menuitem_File_Duplicate", A::Duplicate},
             {"menuitem_File_QuickLook", A::QuickLook, "document-preview"},
             separator,
             {"menuitem_File_Trash", A::Trash, "user-trash"},
             separator,
             {"menuitem_File_Refresh", A::RefreshView, "view-refresh"},
             {"menuitem_File_Save", A::Save, "document-save"},
             separator,
             {"menuitem_File_Close", A::Close, "window-close"},
             {"menuitem_File_Quit", A::None, "application-exit",
              QT_TRANSLATE_NOOP("ARXMainMenu", "Quit")},
         }},
        {QT_TRANSLATE_NOOP("ARXMainMenu", "&Edit"),
         {
             {"menuitem_Edit_Undo", A::Undo, "edit-undo"},
             {"menuitem_Edit_Redo", A::Redo, "edit-redo"},
             separator,
             {"menuitem_Edit_Cut", A::Cut, "edit-cut"},
             {"menuitem_Edit_Copy", A::Copy, "edit-copy"},
             {"menuitem_Edit_Paste", A::Paste, "edit-paste"},
             separator,
             {"menuitem_Edit_SelectAll", A::SelectAll, "edit-select-all"},
         }},
        {QT_TRANSLATE_NOOP("ARXMainMenu", "&View"),
         {
             {"menuitem_View_asIcons", A::asIconsView, "view-list-icons", nullptr, true},
             {"menuitem_View_asList", A::asListView, "view-list-details", nullptr, true},
             {"menuitem_View_asColumns", A::asColumnsView, "view-file-columns", nullptr, true},
             separator,
             {"menuitem_View_HiddenFiles", A::HiddenFiles, "view-hidden", nullptr, true},
             separator,
             {"menuitem_View_Sidebar", A::Sidebar, "view-sidetree"},
             {"menuitem_View_StatusBar", A::StatusBar},
             separator,
             {"menuitem_View_CustomizeToolbar", A::None, "configure-toolbars",
              QT_TRANSLATE_NOOP("ARXMainMenu", "Customize Toolbar…")},
             {"menuitem_View_SmallToolbarIcons", A::None, nullptr,
              QT_TRANSLATE_NOOP("ARXMainMenu", "Use Small Toolbar Icons"), true},
             separator,
             {"menuitem_View_StickyWindow", A::PinTop, "window-pin", nullptr, true},
             {"menuitem_View_FullScreen", A::FullScreen, "view-fullscreen"},
         }},
        {QT_TRANSLATE_NOOP("ARXMainMenu", "&Go"),
         {
             {"menuitem_Go_Back", A::GoBack, "go-previous"},
             {"menuitem_Go_Forward", A::GoForward, "go-next"},
             {"menuitem_Go_EnclosingFolder", A::GoEnclosingFolder, "go-up"},
             separator,
             {"menuitem_Go_Documents", A::GoDocuments, "folder-documents"},
             {"menuitem_Go_Desktop", A::GoDesktop, "user-desktop"},
             {"menuitem_Go_Downloads", A::GoDownloads, "folder-download"},
             {"menuitem_Go_Home", A::GoHome, "user-home"},
             {"menuitem_Go_iCloudDrive", A::GoiCloudDrive, "folder-cloud"},
             separator,
             {"menuitem_Go_GoToLocation", A::GoToLocation},
         }},
        {QT_TRANSLATE_NOOP("ARXMainMenu", "&Window"),
         {
             {"menuitem_Window_Minimize", A::MinimizeWindow},
             {"menuitem_Window_Zoom", A::ZoomWindow},
             separator,
             {"menuitem_Window_BringAllToFront", A::BringAllToFront},
         }},
    };
    return menus;
}

QString localized(const char* text) {
    return QCoreApplication::translate("ARXMainMenu", text);
}

// A title as a menu item's text: an "&" in a folder's name is shown, not taken as a mnemonic.
QString itemText(QString title) {
    return title.replace(u'&', QStringLiteral("&&"));
}

// The name of one of the home's folders as the desktop made it, which is in the user's
// language; the catalogue's word where the folder has no name of its own.
QString userFolderTitle(const char* kind, ARXActionType type) {
    const Path folder = ARXSystemPaths::userDirectory(kind);
    const std::string name = ARXPath::lastComponent(folder);
    if (folder == ARXSystemPaths::homeDirectory() || name.empty() || name == "/") {
        return ARXAction::title(type);
    }
    return ARXPath::display(name);
}

// Items for what a Linux computer usually lacks stand in the menus only while it is there: the
// cloud drive exists only in a home brought over from a Mac, where its folder is present.
bool isAvailable(ARXActionType type) {
    if (type == A::GoiCloudDrive) {
        return ARXFileStatus::stat(ARXConf::cloudDrivePath()).isDirectory();
    }
    return true;
}

} // namespace

ARXMainMenu::ARXMainMenu(QMenuBar* bar) : QObject(bar) {
    for (const MenuTable& table : tables()) {
        QMenu* menu = bar->addMenu(localized(table.title));
        _menus.push_back(menu);
        for (const Entry& entry : table.entries) {
            if (!entry.outlet) {
                menu->addSeparator();
                continue;
            }
            QAction* action = menu->addAction(entry.title ? localized(entry.title)
                                                          : itemText(defaultTitle(entry.type)));
            action->setObjectName(QString::fromLatin1(entry.outlet));
            action->setCheckable(entry.checkable);
            if (entry.icon) {
                action->setIcon(QIcon::fromTheme(QString::fromLatin1(entry.icon)));
            }
            // Shown, never taken from the widget that has the keyboard (see the class comment).
            action->setShortcutContext(Qt::WidgetShortcut);
            if (entry.type == A::None) {
                continue;
            }
            action->setData(int(entry.type));
            action->setVisible(isAvailable(entry.type));
            _items[size_t(entry.type)] = action;
            const ARXActionType type = entry.type;
            connect(action, &QAction::triggered, this, [this, type] { Q_EMIT triggered(type); });
        }
        connect(menu, &QMenu::aboutToShow, this, [this, menu] { validateMenu(menu); });
    }
    _quit = outlet(QStringLiteral("menuitem_File_Quit"));
    _quit->setShortcut(QKeySequence(Qt::ControlModifier | Qt::Key_Q));
    _customizeToolbar = outlet(QStringLiteral("menuitem_View_CustomizeToolbar"));
    _smallToolbarIcons = outlet(QStringLiteral("menuitem_View_SmallToolbarIcons"));
    updateHotkeys([](ARXActionType type) { return ARXDefaultHotkeys::hotkey(type); });
}

void ARXMainMenu::setValidator(Validator validator) {
    _validator = std::move(validator);
}

void ARXMainMenu::validateItems() {
    for (QMenu* menu : _menus) {
        validateMenu(menu);
    }
}

void ARXMainMenu::validateMenu(QMenu* menu) {
    for (QAction* action : menu->actions()) {
        if (action->data().isValid()) {
            validate(action, ARXActionType(action->data().toInt()));
        }
    }
}

void ARXMainMenu::validate(QAction* action, ARXActionType type) {
    // A hidden item is also off, so that its hotkey does nothing either.
    const bool available = isAvailable(type);
    action->setVisible(available);
    if (!_validator) {
        // The folder names may have changed since the menu was made.
        action->setEnabled(available);
        action->setText(itemText(defaultTitle(type)));
        return;
    }
    const ARXMenuItemState state = _validator(type);
    action->setEnabled(state.enabled && available);
    action->setCheckable(state.checked.has_value());
    if (state.checked) {
        action->setChecked(*state.checked);
    }
    action->setText(itemText(state.title.isEmpty() ? defaultTitle(type) : state.title));
}

void ARXMainMenu::updateHotkeys(
    const std::function<std::optional<ARXHotkey>(ARXActionType)>& hotkeyOf) {
    for (QAction* action : _items) {
        if (!action) {
            continue;
        }
        const std::optional<ARXHotkey> hotkey = hotkeyOf(ARXActionType(action->data().toInt()));
        action->setShortcut(hotkey ? ARXKeyEvents::sequenceOf(*hotkey) : QKeySequence());
    }
}

QAction* ARXMainMenu::item(ARXActionType type) const {
    return _items[size_t(type)];
}

QAction* ARXMainMenu::itemShowing(const ARXHotkey& hotkey) const {
    const QKeySequence sequence = ARXKeyEvents::sequenceOf(hotkey);
    if (sequence.isEmpty()) {
        return nullptr;
    }
    for (QMenu* menu : _menus) {
        for (QAction* action : menu->actions()) {
            if (action->shortcut() == sequence) {
                return action;
            }
        }
    }
    return nullptr;
}

QAction* ARXMainMenu::outlet(const QString& name) const {
    for (QMenu* menu : _menus) {
        for (QAction* action : menu->actions()) {
            if (action->objectName() == name) {
                return action;
            }
        }
    }
    return nullptr;
}

QString ARXMainMenu::defaultTitle(ARXActionType type) {
    switch (type) {
    case A::GoDocuments:
        return userFolderTitle("DOCUMENTS", type);
    case A::GoDesktop:
        return userFolderTitle("DESKTOP", type);
    case A::GoDownloads:
        return userFolderTitle("DOWNLOAD", type);
    default:
        return ARXAction::title(type);
    }
}
