#pragma once

#include <QHash>
#include <QList>
#include <QMainWindow>
#include <QPointer>
#include <QStringList>

class ARXAtriumWindowController;
class ARXMainMenu;
class ARXOperationPresenter;
class ARXToolBar;
class ARXWidgetOperationPresenter;
class QTabWidget;
class QToolButton;

// A workspace window: one or more workspaces as tabs, a toolbar and menus that follow the
// current tab, and the sheet for its file operations. Closing the window closes its tabs one by
// one, first to last, as closing each on its own would, so the application can tell a whole tab
// group closed together from tabs closed one at a time.
class ARXAtriumWindow : public QMainWindow {
    Q_OBJECT

public:
    ARXAtriumWindow();
    ~ARXAtriumWindow() override;

    // Takes the workspace as a tab at `index` (the last place when -1), the current one unless
    // it is to wait in the background.
    void addTabbedController(ARXAtriumWindowController* controller, int index = -1,
                             bool makeCurrent = true);
    // Lets the workspace go without closing it (it moves to another window). A window left
    // without tabs goes away quietly.
    void removeTabbedController(ARXAtriumWindowController* controller);
    // Closes one workspace's tab as its own window would close; the last tab closes the window.
    void closeTab(ARXAtriumWindowController* controller);

    // The workspaces in tab order.
    QList<ARXAtriumWindowController*> tabbedControllers() const;
    // The names of the tabs, in order, while the window holds two or more; a single workspace
    // stands alone and has none.
    QStringList tabbedNames() const;
    ARXAtriumWindowController* currentController() const;
    void setCurrentController(ARXAtriumWindowController* controller);

    ARXOperationPresenter* presenter() const;
    ARXToolBar* atriumToolBar() const { return _toolBar; }
    ARXMainMenu* mainMenu() const { return _menu; }

    // Title, tab names, toolbar and the presenter in use follow the current workspace.
    void refresh();
    // The menus show the hotkeys of the hotkey table.
    void updateMenuItemHotkeys();

    // The "+" of the tab bar: the stored workspaces that are not tabs here, then "New Workspace".
    void showAddTabMenu();

    // Every workspace window, in the order they were made.
    static QList<ARXAtriumWindow*> windows();

protected:
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void changeEvent(QEvent* event) override;
    QMenu* createPopupMenu() override;

private:
    ARXAtriumWindowController* controllerAt(int index) const;
    // Takes the workspace's tab out, and the window's ties to it.
    void detach(ARXAtriumWindowController* controller);
    // A window left without tabs goes; one with tabs shows its current one.
    void closeIfEmpty();
    void becameActive();

    QTabWidget* _tabs = nullptr;
    // Each tab's page and the workspace it shows.
    QHash<QWidget*, QPointer<ARXAtriumWindowController>> _pages;
    QToolButton* _addTabButton = nullptr;
    ARXToolBar* _toolBar = nullptr;
    ARXMainMenu* _menu = nullptr;
    ARXWidgetOperationPresenter* _presenter = nullptr;
    bool _closing = false;
};
