#pragma once

#include "actions/ARXActionType.h"
#include "ui/window/ARXWindowState.h"

#include <QPointer>
#include <QStringList>
#include <QToolBar>

#include <map>
#include <vector>

class ARXAtriumViewController;
class ARXLayoutsToolbarItem;
class QActionGroup;
class QMenu;
class QToolButton;
class QWidgetAction;

// The toolbar at the top of a workspace window. Its items and icon size are the user's, shared by
// all windows (ARXToolbarConfiguration): a change made in one window's toolbar menu shows in every
// window at once. The toolbar only shows the window's state and reports clicks; the window decides
// what they do.
class ARXToolBar : public QToolBar {
    Q_OBJECT

public:
    // "com.brightmoor.atrium.AtriumWindowToolBar"; also the QToolBar objectName.
    static const QString kIdentifier;

    explicit ARXToolBar(QWidget* parent = nullptr);
    ~ARXToolBar() override;

    // The workspace of the current tab; the layouts item follows it (may be null).
    void setController(ARXAtriumViewController* controller);
    // Enables, checks and names the items from the window's state. Called often: it only touches
    // the items, it never rebuilds the bar.
    void update(const ARXWindowState& state);

    // The item's widget for an action (BackForward, Sidebar, ViewTypes, WorkspaceName, Layouts,
    // HiddenFiles, PinTop, NewFolder, Trash, GetInfo); null when it is not on the bar.
    QWidget* itemWidget(ARXActionType type) const;
    // The identifiers of the items on the bar, spaces included, in their order.
    QStringList shownItems() const;

    bool usesSmallIcons() const { return _small; }
    // Saved, and followed by every window's toolbar.
    void setUsesSmallIcons(bool small);

    // Pops up the customisation menu below the bar's left end.
    void customize();
    // A new customisation menu: every item the bar can show, checked when shown, then "Use Small
    // Icons" and "Reset Toolbar". Its choices are saved at once.
    QMenu* makeCustomizeMenu(QWidget* parent);

    // Whether this build has a widget for the item.
    static bool canShow(const QString& identifier);
    // The item's name in the customisation menu.
    static QString label(const QString& identifier);

Q_SIGNALS:
    // GoBack, GoForward, Sidebar, asIconsView, asListView, asColumnsView, HiddenFiles, PinTop,
    // NewFolder, Trash, GetInfo.
    void actionTriggered(ARXActionType action);
    // The workspace-name button was clicked; the window shows its workspace menu below `button`.
    void workspaceNameClicked(QWidget* button);

protected:
    void contextMenuEvent(QContextMenuEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    struct Placed {
        QString identifier;
        QWidgetAction* action;
    };

    void makeActions();
    QAction* makeAction(ARXActionType type, bool checkable);
    void updateIcons();
    // Reads the shared configuration and follows it.
    void follow();
    void rebuild(const QStringList& items);
    QWidget* makeItem(const QString& identifier);
    QToolButton* makeButton(QAction* action, QWidget* parent);
    QWidget* makeViewTypes();
    QWidget* makeWorkspaceName();
    void applyIconSize();
    void showWorkspaceName();

    std::map<ARXActionType, QAction*> _actions;
    QActionGroup* _viewTypes = nullptr;
    std::vector<Placed> _placed;
    QStringList _configured;
    QPointer<QToolButton> _nameButton;
    QPointer<ARXLayoutsToolbarItem> _layouts;
    QPointer<ARXAtriumViewController> _controller;
    ARXWindowState _state;
    bool _small = false;
};
