#pragma once

#include "platform/ARXPath.h"

#include <QByteArray>
#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QSystemTrayIcon>

#include <functional>
#include <optional>
#include <vector>

class QMenu;

// The application's start, its workspaces' windows as a whole, and its end. It keeps no model of
// its own: it starts the process-wide services in a fixed order, brings back the workspaces that
// were open, remembers what was open when the last window closes or the program ends, keeps the
// tray entry, and takes the paths other programs (and a second start) hand to Atrium.
//
// The program does not end with its last window while it has a tray entry to come back from;
// without one it ends there, having remembered that window.
class ARXAppDelegate : public QObject {
    Q_OBJECT
public:
    explicit ARXAppDelegate(QObject* parent = nullptr);
    ~ARXAppDelegate() override;

    void applicationDidFinishLaunching();
    // The end of the program: remembers the open windows and tab groups, and saves each
    // workspace as it stands. Runs as the program is asked to quit (Quit, the tray's Quit, a
    // termination signal, the session ending), before Qt closes the windows one by one, so the
    // last-window rule does not overwrite what it remembered.
    void applicationWillTerminate();
    // The last window closed: remembers it (or its whole tab group), and ends the program when
    // there is no tray entry to come back from.
    void applicationLastWindowClosed();
    // The program started again, or its tray entry clicked: the windows that were open come
    // back, or the one in front comes forward. `token` is the user's action from the program
    // that asked (see ARXWindowActivation), empty for Atrium's own.
    void reopen(const QByteArray& token = {});

    // Brings back the open workspaces (or the first, or a new "Default"). Each window or tab
    // group opens from the event loop, so launching returns first.
    void restoreWorkspaces();
    // Opens the workspaces as one window of tabs in this order.
    void openTabGroup(const QStringList& names);

    // Folders to open and items to show in the workspace in front (the windows that were open
    // come back first when none is).
    void openPaths(const std::vector<Path>& paths, const QByteArray& token = {});
    void revealPaths(const std::vector<Path>& paths, const QByteArray& token = {});
    void showProperties(const std::vector<Path>& paths, const QByteArray& token = {});

    // Every window's menus show the hotkeys of the hotkey table.
    void updateMenuItemHotkeys();
    // The tray entry exists exactly when the setting asks for it and the desktop has a tray.
    void notifyAppStatusbarSettingsChanged();
    QSystemTrayIcon* statusItem() const { return _statusItem; }
    // The workspaces without a window, then "New Workspace".
    void fillDockMenu(QMenu* menu);

    QStringList openWorkspaceNames() const;

    // Tests decide whether the desktop has a tray; nullopt asks the desktop.
    static void setTrayAvailableForTesting(std::optional<bool> available);
    // Tests see the program's end instead of ending; empty restores it.
    static void setQuitForTesting(std::function<void()> quit);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void deliver(const std::vector<Path>& paths, bool reveal, const QByteArray& token);
    // Brings the workspace in front forward with the token, once it has a window.
    static void activateFront(const QByteArray& token);

    QPointer<QSystemTrayIcon> _statusItem;
    QMenu* _statusMenu = nullptr;
    // Between the quit request and the end of the event loop: the windows closing then are the
    // program ending, not the user closing its last window.
    bool _terminating = false;
};
