#pragma once

#include <QList>
#include <QStringList>

// Which workspaces come back at launch or on reopen: the windows and tab groups that were open
// (as far as their files still exist), else the first stored workspace, else a new "Default".
// Making the plan may write that first workspace; opening the windows is the caller's job.
struct ARXRestorePlan {
    QStringList windows;          // each opens as its own window
    QList<QStringList> tabGroups; // each opens as one window with these tabs, in order

    bool isEmpty() const { return windows.isEmpty() && tabGroups.isEmpty(); }

    static ARXRestorePlan make();
};
