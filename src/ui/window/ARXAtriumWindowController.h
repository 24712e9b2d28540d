#pragma once

#include "app/ARXAtriumData.h"
#include "ui/ARXWindowController.h"
#include "ui/window/ARXAtriumWindow.h"
#include "ui/window/ARXWindowState.h"
#include "ui/workspace/ARXAtriumViewController.h"

#include <QPointer>
#include <QString>

class QKeyEvent;

// One workspace as a window, or as a tab of a window: its workspace controller, where and how
// its window opens, the window-wide commands (hidden files for all panes, sticky window, the
// sidebar, empty trash), its keys, and saving. Commands that are not window-wide go to the
// active pane.
class ARXAtriumWindowController : public ARXWindowController,
                                  public ARXAtriumViewControllerDelegate {
    Q_OBJECT

public:
    // The open workspace's controller, or a new one built from the workspace's file (a missing
    // or unreadable file gives a new workspace). `asTab`: it is to join a tab group, so it never
    // opens in full screen.
    static ARXAtriumWindowController* open(const QString& name, bool asTab);
    // Adds the workspace to `window` as a tab, or brings its tab forward when it is one already.
    static ARXAtriumWindowController* openAsTab(const QString& name, ARXAtriumWindow* window);
    // A new workspace in the data centre, shown in its own window.
    static ARXAtriumWindowController* openNewWorkspace();

    ARXAtriumWindowController(const QString& name, const ARXAtriumData& data, bool asTab);
    ~ARXAtriumWindowController() override;

    const QString& name() const { return _name; }
    // The workspace, built from its record at the first need.
    ARXAtriumViewController* viewController();
    // The workspace's widget as it stands, built or not: the window's page for it.
    ARXAtriumViewController* page() const { return _view; }
    bool isBuilt() const { return _built; }
    // Builds the workspace from its record (its panes list their folders) unless it is built.
    void ensureBuilt();
    ARXAtriumWindow* atriumWindow() const { return _window; }
    QWidget* window() const override;

    // Joins the window that holds it (done by the window); a controller that isn't in a window
    // yet gets one of its own at its first showWindow().
    void setAtriumWindow(ARXAtriumWindow* window);

    // Brings its window forward with this workspace as the current tab.
    void showWindow() override;

    // Recognises the closing of a whole tab group; always lets the tab close.
    bool windowShouldClose();
    // Saves (unless autoSave is off), remembers the name as the last closed one and leaves the
    // open-window table; the controller then goes away.
    void windowWillClose();

    bool autoSave() const { return _autoSave; }
    void setAutoSave(bool autoSave) { _autoSave = autoSave; }
    bool saveDocument();

    // ----- commands

    // A command of the menus or the toolbar: the window's own, or the active pane's.
    void perform(ARXActionType action);
    // Hidden files, sticky window, search and the sidebar: true when the action is one of them.
    bool performWindowAction(ARXActionType action);
    void toggleHiddenFiles();
    void togglePinTop();
    void toggleSidebar();
    void toggleFullScreen();
    void emptyTrash();
    // The properties windows of the entries, or of the pane's selection, or of its folder.
    void showProperties(ARXSpaceSquareView& pane, const ARXFileEntryList& entries);

    // The window's keys: window-wide hotkeys, Tab, Shift+Ctrl+. (hidden files),
    // Shift+Ctrl+Backspace (empty trash), Ctrl+S, Escape out of full screen, and the menus'
    // hotkeys that nothing before took. True when the key was used.
    bool keyDown(QKeyEvent* event);

    ARXWindowState state() const;
    ARXMenuItemState validate(ARXActionType action);

    // ----- ARXAtriumViewControllerDelegate

    bool workspacePerform(ARXAtriumViewController& workspace, ARXSpaceSquareView& pane,
                          ARXActionType action, const ARXFileEntryList& entries) override;
    void workspacePaneActivated(ARXAtriumViewController& workspace,
                                ARXSpaceSquareView& pane) override;
    void workspacePaneRootChanged(ARXAtriumViewController& workspace,
                                  ARXSpaceSquareView& pane) override;
    bool workspaceKey(ARXAtriumViewController& workspace, ARXSpaceSquareView& pane,
                      QKeyEvent* event) override;
    void workspaceStatusItemClicked(ARXAtriumViewController& workspace) override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

Q_SIGNALS:
    // The toolbar, the menus and the title follow the workspace.
    void stateChanged();

private:
    // The window of its own, placed by the saved frame (or centred), sticky and full screen as
    // it was left.
    void makeOwnWindow();
    // The window comes up first and the panes list their folders right after its first frame:
    // the user sees the window sooner, and the lists a frame later.
    void buildAfterFirstFrame();

    QString _name;
    ARXAtriumData _data;
    bool _asTab;
    bool _autoSave = true;
    bool _closed = false;
    bool _built = false;
    QPointer<ARXAtriumViewController> _view;
    QPointer<ARXAtriumWindow> _window;
};
