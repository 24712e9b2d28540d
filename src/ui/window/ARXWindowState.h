#pragma once

#include "actions/ARXActionType.h"
#include "model/ARXSpaceViewTypes.h"

#include <QIcon>
#include <QString>

#include <optional>

// What the toolbar shows of a workspace window: its name, its window-wide switches and the
// active pane. The window makes one whenever its current tab, active pane or that pane's folder
// changes.
struct ARXWindowState {
    QString workspaceName;
    bool sidebarVisible = false;
    bool pinned = false;
    bool fullScreen = false;
    // The active pane, if there is one.
    bool hasPane = false;
    // Its folder is shown (status normal): the items that act on a folder are enabled.
    bool paneNormal = false;
    ARXSpaceViewType viewType = ARXSpaceViewType::list;
    bool hiddenFiles = false;
    bool canGoBack = false;
    bool canGoForward = false;
};

// How a menu item shows as its menu opens: the window answers for each item.
struct ARXMenuItemState {
    bool enabled = true;
    std::optional<bool> checked; // nullopt: not a checkable item
    QString title;               // empty: the item's own title
};
