#include "ui/window/ARXAtriumWindow.h"

#include "actions/ARXHotkey.h"
#include "app/ARXDataCenter.h"
#include "ui/ARXWidgetOperationPresenter.h"
#include "ui/window/ARXAtriumWindowController.h"
#include "ui/window/ARXMainMenu.h"
#include "ui/window/ARXOpenWorkspaces.h"
#include "ui/window/ARXToolBar.h"
#include "ui/window/ARXWorkspacesMenu.h"

#include <QApplication>
#include <QCloseEvent>
#include <QMenu>
#include <QMenuBar>
#include <QTabBar>
#include <QTabWidget>
#include <QToolButton>

namespace {

QList<ARXAtriumWindow*>& allWindows() {
    static QList<ARXAtriumWindow*> windows;
    return windows;
}

} // namespace

ARXAtriumWindow::ARXAtriumWindow() : _presenter(new ARXWidgetOperationPresenter(this)) {
    setAttribute(Qt::WA_DeleteOnClose);
    allWindows().append(this);
    if (!ARXOperationPresenter::main()) {
        ARXOperationPresenter::setMain(_presenter);
    }

    _tabs = new QTabWidget(this);
    _tabs->setDocumentMode(true);
    _tabs->setTabsClosable(true);
    _tabs->setMovable(true);
    _tabs->setElideMode(Qt::ElideRight);
    _tabs->tabBar()->setExpanding(false);
    _addTabButton = new QToolButton(_tabs);
    _addTabButton->setAutoRaise(true);
    _addTabButton->setIcon(
        QIcon::fromTheme(QStringLiteral("tab-new"), QIcon::fromTheme(QStringLiteral("list-add"))));
    _addTabButton->setText(QStringLiteral("+"));
    _addTabButton->setToolTip(tr("Open a workspace as a tab"));
    _tabs->setCornerWidget(_addTabButton, Qt::TopRightCorner);
    setCentralWidget(_tabs);
    connect(_addTabButton, &QToolButton::clicked, this, &ARXAtriumWindow::showAddTabMenu);
    connect(_tabs, &QTabWidget::tabCloseRequested, this, [this](int index) {
        if (ARXAtriumWindowController* controller = controllerAt(index)) {
            closeTab(controller);
        }
    });
    connect(_tabs, &QTabWidget::currentChanged, this, [this] {
        if (ARXAtriumWindowController* current = currentController()) {
            // A tab brought forward in a window on screen shows its panes; a window on its way
            // to the screen leaves that to after its first frame.
            if (isVisible()) {
                current->ensureBuilt();
            }
            if (isActiveWindow()) {
                ARXOpenWorkspaces::shared().setActive(current);
            }
        }
        refresh();
    });

    _toolBar = new ARXToolBar(this);
    addToolBar(Qt::TopToolBarArea, _toolBar);
    connect(_toolBar, &ARXToolBar::actionTriggered, this, [this](ARXActionType action) {
        if (ARXAtriumWindowController* current = currentController()) {
            current->perform(action);
        }
    });
    connect(_toolBar, &ARXToolBar::workspaceNameClicked, this, [](QWidget* button) {
        QMenu menu;
        ARXWorkspacesMenu::fill(
            &menu, {},
            [](const QString& name) { ARXAtriumWindowController::open(name, false)->showWindow(); },
            [] { ARXAtriumWindowController::openNewWorkspace(); });
        menu.exec(button->mapToGlobal(QPoint(0, button->height())));
    });

    _menu = new ARXMainMenu(menuBar());
    _menu->setValidator([this](ARXActionType action) {
        ARXAtriumWindowController* current = currentController();
        return current ? current->validate(action) : ARXMenuItemState{false, {}, {}};
    });
    connect(_menu, &ARXMainMenu::triggered, this, [this](ARXActionType action) {
        if (ARXAtriumWindowController* current = currentController()) {
            current->perform(action);
        } else if (action == ARXActionType::NewWorkspace) {
            ARXAtriumWindowController::openNewWorkspace();
        }
    });
    connect(_menu->quitItem(), &QAction::triggered, qApp, &QApplication::quit);
    connect(_menu->customizeToolbarItem(), &QAction::triggered, _toolBar, &ARXToolBar::customize);
    connect(_menu->smallToolbarIconsItem(), &QAction::toggled, _toolBar,
            &ARXToolBar::setUsesSmallIcons);
    updateMenuItemHotkeys();
}

ARXAtriumWindow::~ARXAtriumWindow() {
    allWindows().removeAll(this);
}

QList<ARXAtriumWindow*> ARXAtriumWindow::windows() {
    return allWindows();
}

ARXOperationPresenter* ARXAtriumWindow::presenter() const {
    return _presenter;
}

// ----- tabs

ARXAtriumWindowController* ARXAtriumWindow::controllerAt(int index) const {
    return _pages.value(_tabs->widget(index));
}

QList<ARXAtriumWindowController*> ARXAtriumWindow::tabbedControllers() const {
    QList<ARXAtriumWindowController*> controllers;
    for (int i = 0; i < _tabs->count(); ++i) {
        if (ARXAtriumWindowController* controller = controllerAt(i)) {
            controllers.append(controller);
        }
    }
    return controllers;
}

QStringList ARXAtriumWindow::tabbedNames() const {
    QStringList names;
    if (_tabs->count() < 2) {
        return names;
    }
    for (int i = 0; i < _tabs->count(); ++i) {
        names.append(_tabs->tabText(i));
    }
    return names;
}

ARXAtriumWindowController* ARXAtriumWindow::currentController() const {
    return controllerAt(_tabs->currentIndex());
}

void ARXAtriumWindow::setCurrentController(ARXAtriumWindowController* controller) {
    const int index = _tabs->indexOf(controller->page());
    if (index >= 0) {
        _tabs->setCurrentIndex(index);
    }
}

void ARXAtriumWindow::addTabbedController(ARXAtriumWindowController* controller, int index,
                                          bool makeCurrent) {
    controller->setAtriumWindow(this);
    _pages.insert(controller->page(), controller);
    index = _tabs->insertTab(index, controller->page(), controller->name());
    connect(controller, &ARXAtriumWindowController::stateChanged, this, [this, controller] {
        if (controller == currentController()) {
            refresh();
        }
    });
    if (makeCurrent) {
        _tabs->setCurrentIndex(index);
    }
    refresh();
}

void ARXAtriumWindow::removeTabbedController(ARXAtriumWindowController* controller) {
    detach(controller);
    controller->page()->setParent(nullptr);
    closeIfEmpty();
}

void ARXAtriumWindow::closeTab(ARXAtriumWindowController* controller) {
    controller->windowShouldClose();
    controller->windowWillClose();
    detach(controller);
    controller->close();
    closeIfEmpty();
    if (_tabs->count() == 0 && ARXOpenWorkspaces::shared().isEmpty()) {
        Q_EMIT ARXOpenWorkspaces::shared().lastWindowClosed();
    }
}

void ARXAtriumWindow::detach(ARXAtriumWindowController* controller) {
    disconnect(controller, nullptr, this, nullptr);
    const int index = _tabs->indexOf(controller->page());
    if (index >= 0) {
        _tabs->removeTab(index);
    }
    _pages.remove(controller->page());
    controller->setAtriumWindow(nullptr);
}

void ARXAtriumWindow::closeIfEmpty() {
    if (_closing) {
        return; // already on its way, closing its tabs one by one
    }
    if (_tabs->count() > 0) {
        refresh();
        return;
    }
    _closing = true;
    close();
}

void ARXAtriumWindow::showAddTabMenu() {
    QStringList present = tabbedNames();
    if (present.isEmpty()) {
        present.append(windowTitle());
    }
    QMenu menu(this);
    ARXWorkspacesMenu::fill(
        &menu, present,
        [this](const QString& name) { ARXAtriumWindowController::openAsTab(name, this); },
        [this] {
            ARXAtriumWindowController::openAsTab(ARXDataCenter::shared().createWorkspace(), this);
        });
    const QPoint corner = _addTabButton->mapToGlobal(QPoint(0, _addTabButton->height()));
    menu.exec(corner);
}

// ----- window

void ARXAtriumWindow::refresh() {
    ARXAtriumWindowController* current = currentController();
    if (!current) {
        _toolBar->setController(nullptr);
        return;
    }
    setWindowTitle(current->name());
    _toolBar->setController(current->isBuilt() ? current->page() : nullptr);
    _toolBar->update(current->state());
}

void ARXAtriumWindow::updateMenuItemHotkeys() {
    _menu->updateHotkeys([](ARXActionType action) { return ARXDefaultHotkeys::hotkey(action); });
}

void ARXAtriumWindow::becameActive() {
    ARXOperationPresenter::setMain(_presenter);
    if (ARXAtriumWindowController* current = currentController()) {
        ARXOpenWorkspaces::shared().setActive(current);
    }
}

void ARXAtriumWindow::closeEvent(QCloseEvent* event) {
    _closing = true;
    // First to last, each as if closed on its own: the close-tab check sees a whole group close.
    for (ARXAtriumWindowController* controller : tabbedControllers()) {
        closeTab(controller);
    }
    event->accept();
}

void ARXAtriumWindow::keyPressEvent(QKeyEvent* event) {
    ARXAtriumWindowController* current = currentController();
    if (current && current->keyDown(event)) {
        event->accept();
        return;
    }
    QMainWindow::keyPressEvent(event);
}

void ARXAtriumWindow::changeEvent(QEvent* event) {
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::ActivationChange && isActiveWindow()) {
        becameActive();
    } else if (event->type() == QEvent::WindowStateChange) {
        refresh();
    }
}

QMenu* ARXAtriumWindow::createPopupMenu() {
    return nullptr; // the toolbar has its own menu for customising it
}
