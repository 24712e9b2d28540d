#pragma once

#include "actions/ARXActionType.h"
#include "actions/ARXHotkey.h"
#include "ui/window/ARXWindowState.h"

#include <QObject>
#include <QString>

#include <array>
#include <functional>
#include <optional>
#include <vector>

class QAction;
class QMenu;
class QMenuBar;

// The File, Edit, View, Go and Window menus of a workspace window. Each item stands for an action
// of the catalogue; its object name is its outlet ("menuitem_File_NewWorkspace"), by which the
// rest of the program finds it.
//
// The items show their hotkeys but never own them: the panes act on the hotkey table themselves,
// and a shortcut of the window would take Ctrl+C, the arrows and the rest away from the list
// that has the keyboard. So an item's shortcut only ever matches while the menu bar itself has
// the keyboard (Alt navigation), where nobody else wants the key; the window triggers items
// from its own key handler for the hotkeys nobody used.
class ARXMainMenu : public QObject {
    Q_OBJECT

public:
    // Builds the menus into `bar`, which owns them and this object.
    explicit ARXMainMenu(QMenuBar* bar);

    using Validator = std::function<ARXMenuItemState(ARXActionType)>;
    // Asked for every item with an action as its menu is about to show: enabled, check state,
    // title. Without one every item is enabled and keeps its own title.
    void setValidator(Validator validator);
    // Asks the validator for every item now, as opening all menus would.
    void validateItems();

    // The hotkey each item shows: the user's from `hotkeyOf`, which already falls back to the
    // default table; none clears it.
    void updateHotkeys(const std::function<std::optional<ARXHotkey>(ARXActionType)>& hotkeyOf);

    // Null when the menus have no item for the action.
    QAction* item(ARXActionType type) const;
    // The item that shows this hotkey, Quit and the items without an action included; null when
    // none does. For the window's key handler, which triggers items for keys nobody used.
    QAction* itemShowing(const ARXHotkey& hotkey) const;
    // By outlet name; null for a name no item has.
    QAction* outlet(const QString& name) const;
    QAction* quitItem() const { return _quit; }
    QAction* customizeToolbarItem() const { return _customizeToolbar; }
    QAction* smallToolbarIconsItem() const { return _smallToolbarIcons; }

    // File, Edit, View, Go, Window.
    const std::vector<QMenu*>& menus() const { return _menus; }

    // The item's title when the validator gives none: the catalogue's, and for the Documents,
    // Desktop and Downloads folders their names in the home folder, as the desktop has them
    // ("Dokumente").
    static QString defaultTitle(ARXActionType type);

Q_SIGNALS:
    void triggered(ARXActionType type);

private:
    void validateMenu(QMenu* menu);
    void validate(QAction* action, ARXActionType type);

    std::vector<QMenu*> _menus;
    // By the action's number; the action's number is also each item's data.
    std::array<QAction*, ARXAction::kCount> _items{};
    Validator _validator;
    QAction* _quit = nullptr;
    QAction* _customizeToolbar = nullptr;
    QAction* _smallToolbarIcons = nullptr;
};
