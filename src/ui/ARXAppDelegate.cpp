#include "ui/ARXAppDelegate.h"

#include "app/ARXConf.h"
#include "app/ARXDataCenter.h"
#include "app/ARXRestorePlan.h"
#include "model/ARXEntryPointManager.h"
#include "model/ARXFileTagManager.h"
#include "platform/ARXMainQueue.h"
#include "ui/ARXAppearance.h"
#include "ui/ARXWorkspacePlaceholderWindow.h"

ARXAppDelegate::ARXAppDelegate(QObject* parent) : QObject(parent) {}

void ARXAppDelegate::applicationDidFinishLaunching() {
    ARXAppearance::apply(ARXConf::settings_appearance().value());
    // The services start in this order; each loads its own files at first use. Analytics, the
    // application index, hotkeys and quick launchers join here as they arrive.
    ARXEntryPointManager::shared().refreshHomePoints();
    ARXFileTagManager::shared(); // tag colours for every entry
    restoreWorkspaces();
}

void ARXAppDelegate::restoreWorkspaces() {
    const ARXRestorePlan plan = ARXRestorePlan::make();
    for (const QString& name : plan.windows) {
        ARXMainQueue::async([this, name] { openWorkspace(name); });
    }
    // Until windows hold tabs, each workspace of a group opens in its own window, in order.
    for (const QStringList& group : plan.tabGroups) {
        ARXMainQueue::async([this, group] {
            for (const QString& name : group) {
                openWorkspace(name);
            }
        });
    }
}

void ARXAppDelegate::openWorkspace(const QString& name) {
    auto it = _openWindows.find(name);
    if (it == _openWindows.end() || !it->second) {
        ARXDataCenter& center = ARXDataCenter::shared();
        auto data = center.load(center.path(name));
        auto* window =
            new ARXWorkspacePlaceholderWindow(name, data.value_or(ARXDataCenter::emptyWorkspace()));
        window->setAttribute(Qt::WA_DeleteOnClose);
        it = _openWindows.insert_or_assign(name, window).first;
    }
    it->second->show();
    it->second->raise();
    it->second->activateWindow();
}

QStringList ARXAppDelegate::openWorkspaceNames() const {
    QStringList names;
    for (const auto& [name, window] : _openWindows) {
        if (window) {
            names.append(name);
        }
    }
    return names;
}
