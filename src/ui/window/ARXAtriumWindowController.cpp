#include "ui/window/ARXAtriumWindowController.h"

#include "app/ARXConf.h"
#include "app/ARXDataCenter.h"
#include "app/ARXNotificationNames.h"
#include "app/ARXWindowFrame.h"
#include "ops/ARXFileOperationRecorder.h"
#include "platform/ARXNotificationCenter.h"
#include "ui/ARXKeyEvents.h"
#include "ui/ARXPropertiesDialog.h"
#include "ui/window/ARXAtriumWindow.h"
#include "ui/window/ARXEmptyTrash.h"
#include "ui/window/ARXMainMenu.h"
#include "ui/window/ARXOpenWorkspaces.h"
#include "ui/workspace/ARXWorkspaceStore.h"

#include <QAction>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QScreen>
#include <QTimer>

namespace {

QList<QRectF> availableScreens() {
    QList<QRectF> screens;
    QScreen* primary = QGuiApplication::primaryScreen();
    if (primary) {
        screens.append(QRectF(primary->availableGeometry()));
    }
    for (QScreen* screen : QGuiApplication::screens()) {
        if (screen != primary) {
            screens.append(QRectF(screen->availableGeometry()));
        }
    }
    return screens;
}

} // namespace

// ----- opening

ARXAtriumWindowController* ARXAtriumWindowController::open(const QString& name, bool asTab) {
    if (ARXAtriumWindowController* open = ARXOpenWorkspaces::shared().find(name)) {
        return open;
    }
    auto* controller = new ARXAtriumWindowController(name, ARXWorkspaceStore::record(name), asTab);
    ARXOpenWorkspaces::shared().insert(name, controller);
    return controller;
}

ARXAtriumWindowController* ARXAtriumWindowController::openAsTab(const QString& name,
                                                                ARXAtriumWindow* window) {
    ARXAtriumWindowController* controller = open(name, true);
    if (!window || !controller) {
        return controller;
    }
    if (controller->atriumWindow() != window) {
        if (ARXAtriumWindow* previous = controller->atriumWindow()) {
            previous->removeTabbedController(controller);
        }
        window->addTabbedController(controller);
    }
    controller->showWindow();
    return controller;
}

ARXAtriumWindowController* ARXAtriumWindowController::openNewWorkspace() {
    const QString name = ARXDataCenter::shared().createWorkspace();
    ARXAtriumWindowController* controller = open(name, false);
    controller->showWindow();
    return controller;
}

ARXAtriumWindowController::ARXAtriumWindowController(const QString& name, const ARXAtriumData& data,
                                                     bool asTab)
    : _name(name), _data(data), _asTab(asTab), _view(new ARXAtriumViewController()) {
    _view->setDelegate(this);
}

ARXAtriumViewController* ARXAtriumWindowController::viewController() {
    ensureBuilt();
    return _view;
}

void ARXAtriumWindowController::ensureBuilt() {
    if (_built || !_view) {
        return;
    }
    _built = true;
    _view->build(_name, _data);
    Q_EMIT stateChanged();
}

void ARXAtriumWindowController::buildAfterFirstFrame() {
    if (_built || !_window) {
        return;
    }
    _window->installEventFilter(this);
    // A window that is never painted (hidden at once, a platform without frames) builds anyway.
    QTimer::singleShot(250, this, &ARXAtriumWindowController::ensureBuilt);
}

bool ARXAtriumWindowController::eventFilter(QObject* watched, QEvent* event) {
    if (watched == _window && event->type() == QEvent::Paint) {
        watched->removeEventFilter(this);
        // After this paint is on screen: the event loop flushes it before timers run.
        QTimer::singleShot(0, this, &ARXAtriumWindowController::ensureBuilt);
    }
    return ARXWindowController::eventFilter(watched, event);
}

ARXAtriumWindowController::~ARXAtriumWindowController() {
    if (!_closed) {
        ARXOpenWorkspaces::shared().remove(_name);
    }
    delete _view.data();
}

QWidget* ARXAtriumWindowController::window() const {
    return _window;
}

void ARXAtriumWindowController::setAtriumWindow(ARXAtriumWindow* window) {
    _window = window;
    if (_view && window) {
        _view->setPresenter(window->presenter());
    }
}

void ARXAtriumWindowController::makeOwnWindow() {
    auto* window = new ARXAtriumWindow();
    const ARXWindowPlacement placement = ARXWindowFrame::place(_data, availableScreens(), _asTab);
    // The saved frame is the window's client area (what QWidget::geometry gives when the
    // workspace is saved), so it is restored as one: move() would place the decoration's corner
    // there, and the window would come back lower by its title bar at every reopen.
    if (placement.center) {
        window->resize(placement.frame.size().toSize());
    } else {
        window->setGeometry(placement.frame.toRect());
    }
    setAlignCenter(placement.center);
    if (_data.pinTop.value_or(false)) {
        window->setWindowFlag(Qt::WindowStaysOnTopHint, true);
    }
    window->addTabbedController(this);
    if (placement.fullScreen) {
        // After the window is on screen, as a window manager expects.
        QTimer::singleShot(0, window, [window] { window->showFullScreen(); });
    }
}

void ARXAtriumWindowController::showWindow() {
    if (!_window) {
        makeOwnWindow();
    }
    _window->setCurrentController(this);
    ARXOpenWorkspaces::shared().setActive(this);
    ARXWindowController::showWindow();
    buildAfterFirstFrame();
}

// ----- closing and saving

bool ARXAtriumWindowController::windowShouldClose() {
    ARXOpenWorkspaces& open = ARXOpenWorkspaces::shared();
    const double now = ARXOpenWorkspaces::now();
    const QStringList tabs = _window ? _window->tabbedNames() : QStringList();
    if (tabs.isEmpty()) {
        if (open.pendingClose && !open.pendingClose->check(_name, now)) {
            open.pendingClose.reset();
        }
        return true;
    }
    if (open.pendingClose && open.pendingClose->check(_name, now)) {
        return true;
    }
    open.pendingClose.emplace(tabs, now);
    return true;
}

void ARXAtriumWindowController::windowWillClose() {
    if (_closed) {
        return;
    }
    if (_autoSave) {
        saveDocument();
    }
    _closed = true;
    ARXOpenWorkspaces& open = ARXOpenWorkspaces::shared();
    open.lastClosedName = _name;
    open.remove(_name);
    if (open.active() == this) {
        open.setActive(nullptr);
    }
    if (_built && _view) {
        _view->setStatusItemVisible(false);
    }
}

bool ARXAtriumWindowController::saveDocument() {
    // A workspace never built has not changed: its file stays as it is.
    if (!_built || !_view || _name.isEmpty()) {
        return false;
    }
    return ARXWorkspaceStore::save(*_view);
}

// ----- commands

void ARXAtriumWindowController::perform(ARXActionType action) {
    ensureBuilt();
    using A = ARXActionType;
    if (performWindowAction(action)) {
        return;
    }
    switch (action) {
    case A::NewWorkspace:
        openNewWorkspace();
        return;
    case A::Save:
        saveDocument();
        return;
    case A::Close:
        if (_window) {
            _window->closeTab(this);
        }
        return;
    case A::FullScreen:
        toggleFullScreen();
        return;
    case A::MinimizeWindow:
        if (_window) {
            _window->showMinimized();
        }
        return;
    case A::ZoomWindow:
        if (_window) {
            _window->isMaximized() ? _window->showNormal() : _window->showMaximized();
        }
        return;
    case A::BringAllToFront:
        for (ARXAtriumWindow* window : ARXAtriumWindow::windows()) {
            window->raise();
        }
        if (_window) {
            _window->raise();
            _window->activateWindow();
        }
        return;
    case A::StatusBar: {
        const auto& option = ARXConf::settings_space_bottom_statusbar_visible();
        option.setValue(!option.value());
        // Every pane of every window shows or hides its status bar on hearing it.
        ARXNotificationCenter::shared().post(
            ARXNotificationName::rv_settings_bottom_statusbar_changed);
        return;
    }
    case A::GetInfo:
        if (ARXSpaceSquareView* pane = _view->activePane()) {
            showProperties(*pane, {});
        }
        return;
    default:
        break;
    }
    if (ARXSpaceSquareView* pane = _view ? _view->activePane() : nullptr) {
        pane->perform(action);
    }
    Q_EMIT stateChanged();
}

bool ARXAtriumWindowController::performWindowAction(ARXActionType action) {
    ensureBuilt();
    switch (action) {
    case ARXActionType::HiddenFiles:
        toggleHiddenFiles();
        return true;
    case ARXActionType::PinTop:
        togglePinTop();
        return true;
    case ARXActionType::Sidebar:
        toggleSidebar();
        return true;
    case ARXActionType::Search:
        // The search window joins here when it exists; the key is the window's all the same.
        return true;
    default:
        return false;
    }
}

void ARXAtriumWindowController::toggleHiddenFiles() {
    if (!_view) {
        return;
    }
    ARXSpaceSquareView* active = _view->activePane();
    const bool visible = active ? !active->hiddenVisible() : true;
    // All four panes, placed or not, so that they never differ after this command.
    for (ARXSpaceSquareView* pane : _view->squares()) {
        pane->setHiddenVisible(visible);
    }
    Q_EMIT stateChanged();
}

void ARXAtriumWindowController::togglePinTop() {
    if (!_window) {
        return;
    }
    const bool pinned = !_window->windowFlags().testFlag(Qt::WindowStaysOnTopHint);
    const bool wasVisible = _window->isVisible();
    _window->setWindowFlag(Qt::WindowStaysOnTopHint, pinned);
    if (wasVisible) {
        _window->show(); // changing the flags hides a window
    }
    saveDocument();
    Q_EMIT stateChanged();
}

void ARXAtriumWindowController::toggleSidebar() {
    if (_view) {
        _view->setSidebarVisible(!_view->isSidebarVisible());
    }
    Q_EMIT stateChanged();
}

void ARXAtriumWindowController::toggleFullScreen() {
    if (!_window) {
        return;
    }
    _window->isFullScreen() ? _window->showNormal() : _window->showFullScreen();
    Q_EMIT stateChanged();
}

void ARXAtriumWindowController::emptyTrash() {
    if (!_window) {
        return;
    }
    auto* flow = new ARXEmptyTrash(_window, _window->presenter());
    flow->start();
}

// ----- keys

bool ARXAtriumWindowController::keyDown(QKeyEvent* event) {
    ensureBuilt();
    const ARXHotkey hotkey = ARXKeyEvents::hotkeyOf(event);
    const ARXActionType action = ARXDefaultHotkeys::action(hotkey);
    if (action != ARXActionType::None && performWindowAction(action)) {
        return true;
    }
    const Qt::KeyboardModifiers modifiers = event->modifiers();
    const bool commandShift =
        modifiers.testFlag(Qt::ControlModifier) && modifiers.testFlag(Qt::ShiftModifier);
    const int key = event->key();
    if (key == Qt::Key_Tab || key == Qt::Key_Backtab) {
        if (_view) {
            _view->cyclePanes(key == Qt::Key_Tab && !modifiers.testFlag(Qt::ShiftModifier));
        }
        return true;
    }
    if (commandShift) {
        if (key == Qt::Key_Period || key == Qt::Key_Greater) {
            toggleHiddenFiles();
            return true;
        }
        if (key == Qt::Key_Backspace || key == Qt::Key_Delete) {
            emptyTrash();
            return true;
        }
    }
    if (modifiers == Qt::ControlModifier && key == Qt::Key_S) {
        saveDocument();
        return true;
    }
    if (key == Qt::Key_Escape && _window && _window->isFullScreen()) {
        _window->showNormal();
        Q_EMIT stateChanged();
        return true;
    }
    // The menus show their hotkeys without owning them (they would take keys from the panes):
    // a hotkey nobody took before ends here, with the item as its menu would offer it.
    if (ARXMainMenu* menu = _window ? _window->mainMenu() : nullptr) {
        if (QAction* item = menu->itemShowing(hotkey)) {
            menu->validateItems();
            if (item->isEnabled()) {
                item->trigger();
                return true;
            }
        }
    }
    return false;
}

// ----- state

ARXWindowState ARXAtriumWindowController::state() const {
    ARXWindowState state;
    state.workspaceName = _name;
    if (_window) {
        state.pinned = _window->windowFlags().testFlag(Qt::WindowStaysOnTopHint);
        state.fullScreen = _window->isFullScreen();
    }
    if (!_built || !_view) {
        return state;
    }
    state.sidebarVisible = _view->isSidebarVisible();
    if (ARXSpaceSquareView* pane = _view->activePane()) {
        state.hasPane = true;
        state.paneNormal = pane->status() == ARXSpaceStatus::normal;
        state.viewType = pane->viewType();
        state.hiddenFiles = pane->hiddenVisible();
        state.canGoBack = pane->isActionEnabled(ARXActionType::GoBack);
        state.canGoForward = pane->isActionEnabled(ARXActionType::GoForward);
    }
    return state;
}

ARXMenuItemState ARXAtriumWindowController::validate(ARXActionType action) {
    ensureBuilt();
    using A = ARXActionType;
    ARXMenuItemState item;
    const ARXFileOperationRecorder& recorder = ARXFileOperationRecorder::shared();
    ARXSpaceSquareView* pane = _view ? _view->activePane() : nullptr;
    switch (action) {
    case A::Undo:
        item.enabled = recorder.canUndo();
        return item;
    case A::Redo:
        item.enabled = recorder.canRedo();
        return item;
    case A::Sidebar:
        item.title = _view && _view->isSidebarVisible() ? QObject::tr("Hide Sidebar")
                                                        : QObject::tr("Show Sidebar");
        return item;
    case A::StatusBar:
        item.title = ARXConf::settings_space_bottom_statusbar_visible().value()
                         ? QObject::tr("Hide Status Bar")
                         : QObject::tr("Show Status Bar");
        return item;
    case A::FullScreen:
        item.title = _window && _window->isFullScreen() ? QObject::tr("Exit Full Screen")
                                                        : QObject::tr("Enter Full Screen");
        return item;
    case A::PinTop:
        item.checked = _window && _window->windowFlags().testFlag(Qt::WindowStaysOnTopHint);
        return item;
    case A::NewWorkspace:
    case A::Save:
    case A::Close:
    case A::MinimizeWindow:
    case A::ZoomWindow:
    case A::BringAllToFront:
        return item;
    default:
        break;
    }
    // The rest act on the active pane.
    if (!pane) {
        item.enabled = false;
        return item;
    }
    item.enabled = pane->isActionEnabled(action);
    switch (action) {
    case A::asIconsView:
        item.checked = pane->viewType() == ARXSpaceViewType::icons;
        break;
    case A::asListView:
        item.checked = pane->viewType() == ARXSpaceViewType::list;
        break;
    case A::asColumnsView:
        item.checked = pane->viewType() == ARXSpaceViewType::columns;
        break;
    case A::HiddenFiles:
        item.checked = pane->hiddenVisible();
        break;
    default:
        break;
    }
    return item;
}

// ----- the workspace's calls

bool ARXAtriumWindowController::workspacePerform(ARXAtriumViewController&, ARXSpaceSquareView& pane,
                                                 ARXActionType action,
                                                 const ARXFileEntryList& entries) {
    if (action == ARXActionType::GetInfo) {
        showProperties(pane, entries);
        return true;
    }
    return performWindowAction(action);
}

void ARXAtriumWindowController::showProperties(ARXSpaceSquareView& pane,
                                               const ARXFileEntryList& entries) {
    std::vector<Path> paths;
    const ARXFileEntryList& items =
        !entries.empty() || !pane.contentView() ? entries : pane.contentView()->selectedItems();
    for (const ARXFileEntryRef& entry : items) {
        paths.push_back(entry->path());
    }
    // Nothing selected: the folder the pane shows.
    if (paths.empty() && pane.root()) {
        paths.push_back(pane.root()->path());
    }
    ARXPropertiesDialog::showFor(paths, _window);
}

void ARXAtriumWindowController::workspacePaneActivated(ARXAtriumViewController&,
                                                       ARXSpaceSquareView&) {
    Q_EMIT stateChanged();
}

void ARXAtriumWindowController::workspacePaneRootChanged(ARXAtriumViewController&,
                                                         ARXSpaceSquareView&) {
    Q_EMIT stateChanged();
}

bool ARXAtriumWindowController::workspaceKey(ARXAtriumViewController&, ARXSpaceSquareView&,
                                             QKeyEvent* event) {
    return keyDown(event);
}

void ARXAtriumWindowController::workspaceStatusItemClicked(ARXAtriumViewController&) {
    showWindow();
}
