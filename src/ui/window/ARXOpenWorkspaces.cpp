#include "ui/window/ARXOpenWorkspaces.h"

#include "ui/window/ARXAtriumWindowController.h"

#include <QDateTime>

namespace {
std::optional<double> testClock;
}

ARXOpenWorkspaces& ARXOpenWorkspaces::shared() {
    static ARXOpenWorkspaces instance;
    return instance;
}

ARXAtriumWindowController* ARXOpenWorkspaces::find(const QString& name) const {
    for (const auto& [key, controller] : _table) {
        if (key == name) {
            return controller;
        }
    }
    return nullptr;
}

void ARXOpenWorkspaces::insert(const QString& name, ARXAtriumWindowController* controller) {
    for (auto& entry : _table) {
        if (entry.first == name) {
            entry.second = controller;
            return;
        }
    }
    _table.append({name, controller});
}

void ARXOpenWorkspaces::remove(const QString& name) {
    _table.removeIf([&](const auto& entry) { return entry.first == name || !entry.second; });
}

QStringList ARXOpenWorkspaces::names() const {
    QStringList result;
    for (const auto& [key, controller] : _table) {
        if (controller) {
            result.append(key);
        }
    }
    return result;
}

ARXAtriumWindowController* ARXOpenWorkspaces::front() const {
    if (_active) {
        return _active;
    }
    for (const auto& [key, controller] : _table) {
        if (controller) {
            return controller;
        }
    }
    return nullptr;
}

double ARXOpenWorkspaces::now() {
    return testClock ? *testClock : double(QDateTime::currentMSecsSinceEpoch()) / 1000.0;
}

void ARXOpenWorkspaces::setClockForTesting(std::optional<double> seconds) {
    testClock = seconds;
}
