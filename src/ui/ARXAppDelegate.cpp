#include "ui/ARXAppDelegate.h"

#include "app/ARXConf.h"
#include "app/ARXDataCenter.h"
#include "app/ARXNotificationNames.h"
#include "app/ARXRestorePlan.h"
#include "app/ARXWindowSession.h"
#include "model/ARXEntryPointManager.h"
#include "model/ARXFileTagManager.h"
#include "platform/ARXMainQueue.h"
#include "platform/ARXNotificationCenter.h"
#include "platform/ARXStartupNotification.h"
#include "ui/ARXAppearance.h"
#include "ui/ARXPropertiesDialog.h"
#include "ui/desktop/ARXWindowActivation.h"
#include "ui/window/ARXAtriumWindow.h"
#include "ui/window/ARXAtriumWindowController.h"
#include "ui/window/ARXOpenWorkspaces.h"
#include "ui/window/ARXWorkspacesMenu.h"

#include <QApplication>
#include <QEvent>
#include <QMenu>
#include <QSystemTrayIcon>
#include <QTimer>

namespace {

std::optional<bool> trayForTesting;
std::function<void()> quitForTesting;

void quitApplication() {
    if (quitForTesting) {
        quitForTesting();
    } else {
        QCoreApplication::quit();
    }
}

bool trayAvailable() {
    return trayForTesting ? *trayForTesting : QSystemTrayIcon::isSystemTrayAvailable();
}

} // namespace

ARXAppDelegate::ARXAppDelegate(QObject* parent) : QObject(parent) {
    // Whether the program ends with its last window is decided here, not by Qt.
    QApplication::setQuitOnLastWindowClosed(false);
    connect(&ARXOpenWorkspaces::shared(), &ARXOpenWorkspaces::lastWindowClosed, this,
            &ARXAppDelegate::applicationLastWindowClosed);
    connect(qApp, &QCoreApplication::aboutToQuit, this, &ARXAppDelegate::applicationWillTerminate);
    // Every way of quitting (QCoreApplication::quit from a menu, the tray or a signal, the
    // session's end) reaches the application object as one Quit event, before Qt closes the
    // windows.
    qApp->installEventFilter(this);
}

ARXAppDelegate::~ARXAppDelegate() {
    delete _statusItem.data();
}

void ARXAppDelegate::applicationDidFinishLaunching() {
    ARXAppearance::apply(ARXConf::appearanceToApply());
    // The services start in this order; each loads its own files at first use. Analytics, the
    // application index, hotkeys and quick launchers join here as they arrive.
    ARXEntryPointManager::shared().refreshHomePoints();
    ARXFileTagManager::shared(); // tag colours for every entry
    // Applications started from Atrium get the time of the user's action in their startup id.
    ARXStartupNotification::followUserTime();
    restoreWorkspaces();
    notifyAppStatusbarSettingsChanged();
    updateMenuItemHotkeys();
    ARXNotificationCenter& center = ARXNotificationCenter::shared();
    center.addObserver(ARXNotificationName::rv_settings_app_status_bar_entry_changed, this,
                       [this](const ARXNotification&) { notifyAppStatusbarSettingsChanged(); });
    center.addObserver(ARXNotificationName::rv_settings_custom_hotkey_changed, this,
                       [this](const ARXNotification&) { updateMenuItemHotkeys(); });
}

// ----- windows

void ARXAppDelegate::restoreWorkspaces() {
    const ARXRestorePlan plan = ARXRestorePlan::make();
    ARXOpenWorkspaces::shared().pendingClose.reset();
    for (const QString& name : plan.windows) {
        ARXMainQueue::async([name] { ARXAtriumWindowController::open(name, false)->showWindow(); });
    }
    for (const QStringList& group : plan.tabGroups) {
        ARXMainQueue::async([this, group] { openTabGroup(group); });
    }
}

void ARXAppDelegate::openTabGroup(const QStringList& names) {
    ARXOpenWorkspaces& open = ARXOpenWorkspaces::shared();
    ARXAtriumWindow* window = nullptr;
    ARXAtriumWindowController* shown = nullptr;
    // From the last name to the first, each new one placed before the others, so the tabs end up
    // in the stored order; the window takes the frame of the workspace it was made for.
    for (auto it = names.crbegin(); it != names.crend(); ++it) {
        if (open.find(*it)) {
            continue;
        }
        ARXAtriumWindowController* controller = ARXAtriumWindowController::open(*it, false);
        if (!window) {
            controller->showWindow();
            window = controller->atriumWindow();
            shown = controller;
        } else {
            window->addTabbedController(controller, 0, false);
        }
    }
    if (window && shown) {
        window->setCurrentController(shown);
    }
}

void ARXAppDelegate::reopen(const QByteArray& token) {
    if (ARXOpenWorkspaces::shared().isEmpty()) {
        restoreWorkspaces();
        // After the windows the restoring queued.
        ARXMainQueue::async([token] { activateFront(token); });
        return;
    }
    if (ARXAtriumWindowController* front = ARXOpenWorkspaces::shared().front()) {
        front->showWindow();
        activateFront(token);
    }
}

void ARXAppDelegate::activateFront(const QByteArray& token) {
    ARXAtriumWindowController* front = ARXOpenWorkspaces::shared().front();
    if (front && !token.isEmpty()) {
        ARXWindowActivation::activate(front->window(), token);
    }
}

void ARXAppDelegate::applicationLastWindowClosed() {
    ARXOpenWorkspaces& open = ARXOpenWorkspaces::shared();
    if (!open.isEmpty() || _terminating) {
        return; // a quit already remembered every window
    }
    ARXWindowSession::rememberLastWindow(open.pendingClose, open.lastClosedName);
    if (!_statusItem) {
        // Nothing to come back from: the program ends, as closing its only window says.
        QTimer::singleShot(0, qApp, quitApplication);
    }
}

void ARXAppDelegate::applicationWillTerminate() {
    if (ARXOpenWorkspaces::shared().isEmpty()) {
        return; // the last window's record stays
    }
    QList<QStringList> windows;
    for (ARXAtriumWindow* window : ARXAtriumWindow::windows()) {
        QStringList tabs;
        for (ARXAtriumWindowController* controller : window->tabbedControllers()) {
            tabs.append(controller->name());
            if (controller->autoSave()) {
                controller->saveDocument();
            }
        }
        if (!tabs.isEmpty()) {
            windows.append(tabs);
        }
    }
    ARXWindowSession::rememberOpenWindows(windows);
}

bool ARXAppDelegate::eventFilter(QObject* watched, QEvent* event) {
    if (watched == qApp && event->type() == QEvent::Quit && !_terminating) {
        applicationWillTerminate();
        _terminating = true;
        // A quit that a window refuses leaves the program running: the next closing of the last
        // window is the user's again.
        QTimer::singleShot(0, this, [this] { _terminating = false; });
    }
    return QObject::eventFilter(watched, event);
}

QStringList ARXAppDelegate::openWorkspaceNames() const {
    return ARXOpenWorkspaces::shared().names();
}

// ----- paths from other programs

void ARXAppDelegate::openPaths(const std::vector<Path>& paths, const QByteArray& token) {
    deliver(paths, false, token);
}

void ARXAppDelegate::revealPaths(const std::vector<Path>& paths, const QByteArray& token) {
    deliver(paths, true, token);
}

void ARXAppDelegate::showProperties(const std::vector<Path>& paths, const QByteArray& token) {
    const std::vector<ARXPropertiesDialog*> dialogs = ARXPropertiesDialog::showFor(paths);
    if (!dialogs.empty() && !token.isEmpty()) {
        ARXWindowActivation::activate(dialogs.back(), token);
    }
}

void ARXAppDelegate::deliver(const std::vector<Path>& paths, bool reveal, const QByteArray& token) {
    if (paths.empty()) {
        return;
    }
    auto open = [paths, reveal, token] {
        ARXAtriumWindowController* front = ARXOpenWorkspaces::shared().front();
        if (!front) {
            return;
        }
        if (reveal) {
            front->viewController()->revealPaths(paths, true);
        } else {
            front->viewController()->openPaths(paths, true);
        }
        front->showWindow();
        activateFront(token);
    };
    if (ARXOpenWorkspaces::shared().front()) {
        open();
        return;
    }
    // No window yet (still starting, or all closed to the tray): the workspaces come back first,
    // from the event loop, and the paths follow them there.
    if (ARXOpenWorkspaces::shared().isEmpty()) {
        restoreWorkspaces();
    }
    ARXMainQueue::async(open);
}

// ----- menus and tray

void ARXAppDelegate::updateMenuItemHotkeys() {
    for (ARXAtriumWindow* window : ARXAtriumWindow::windows()) {
        window->updateMenuItemHotkeys();
    }
}

void ARXAppDelegate::fillDockMenu(QMenu* menu) {
    ARXWorkspacesMenu::fill(
        menu, ARXOpenWorkspaces::shared().names(),
        [](const QString& name) { ARXAtriumWindowController::open(name, false)->showWindow(); },
        [] { ARXAtriumWindowController::openNewWorkspace(); });
}

void ARXAppDelegate::notifyAppStatusbarSettingsChanged() {
    const bool wanted = ARXConf::settings_app_statusbar_entry().value() && trayAvailable();
    if (wanted == bool(_statusItem)) {
        return;
    }
    if (!wanted) {
        delete _statusItem.data();
        delete _statusMenu;
        _statusMenu = nullptr;
        return;
    }
    _statusItem = new QSystemTrayIcon(this);
    QIcon icon = QIcon::fromTheme(QStringLiteral("com.brightmoor.atrium"));
    if (icon.isNull()) {
        icon = QIcon(QStringLiteral(":/icons/com.brightmoor.atrium.svg"));
    }
    _statusItem->setIcon(icon);
    _statusItem->setToolTip(QStringLiteral("Atrium"));
    _statusMenu = new QMenu();
    connect(_statusMenu, &QMenu::aboutToShow, this, [this] {
        fillDockMenu(_statusMenu);
        _statusMenu->addSeparator();
        _statusMenu->addAction(tr("Quit Atrium"), qApp, &QCoreApplication::quit);
    });
    fillDockMenu(_statusMenu);
    _statusItem->setContextMenu(_statusMenu);
    connect(_statusItem, &QSystemTrayIcon::activated, this,
            [this](QSystemTrayIcon::ActivationReason reason) {
                if (reason == QSystemTrayIcon::Trigger) {
                    reopen();
                }
            });
    _statusItem->show();
}

void ARXAppDelegate::setTrayAvailableForTesting(std::optional<bool> available) {
    trayForTesting = available;
}

void ARXAppDelegate::setQuitForTesting(std::function<void()> quit) {
    quitForTesting = std::move(quit);
}
