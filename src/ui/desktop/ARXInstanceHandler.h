#pragma once

#include "platform/ARXPath.h"

#include <vector>

// What the running application does when it is asked from outside to show something: by a second
// start of Atrium (`atrium ~/Downloads` while it runs) or by another program through the desktop's
// file manager service ("Show in folder"). The application implements it; the D-Bus services call
// it on the main thread, after they have answered their caller, with paths that existed a moment
// before and are absolute and normalized.
class ARXInstanceHandler {
public:
    virtual ~ARXInstanceHandler() = default;

    // Opens the folders in the front workspace.
    virtual void openFolders(const std::vector<Path>& folders) = 0;
    // Opens the folder holding each item and selects the item; a folder is selected in its parent
    // rather than opened.
    virtual void revealItems(const std::vector<Path>& items) = 0;
    virtual void showItemProperties(const std::vector<Path>& items) = 0;
    // The application was started again with nothing to show: brings the front window forward, or
    // restores the workspaces when no window is open.
    virtual void reopen() = 0;
};
