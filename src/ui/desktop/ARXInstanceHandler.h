#pragma once

#include "platform/ARXPath.h"

#include <QByteArray>

#include <vector>

// What the running application does when it is asked from outside to show something: by a second
// start of Atrium (`atrium ~/Downloads` while it runs) or by another program through the desktop's
// file manager service ("Show in folder"). The application implements it; the D-Bus services call
// it on the main thread, after they have answered their caller, with paths that existed a moment
// before and are absolute and normalized.
//
// `token` is what the asking program passed on of the user's action (an X11 startup id or a
// Wayland activation token; empty when it gave none). The window that answers is brought forward
// with it, which is what lets the desktop give it the focus.
class ARXInstanceHandler {
public:
    virtual ~ARXInstanceHandler() = default;

    // Opens the folders in the front workspace.
    virtual void openFolders(const std::vector<Path>& folders, const QByteArray& token) = 0;
    // Opens the folder holding each item and selects the item; a folder is selected in its parent
    // rather than opened.
    virtual void revealItems(const std::vector<Path>& items, const QByteArray& token) = 0;
    virtual void showItemProperties(const std::vector<Path>& items, const QByteArray& token) = 0;
    // The application was started again with nothing to show: brings the front window forward, or
    // restores the workspaces when no window is open.
    virtual void reopen(const QByteArray& token) = 0;
};
