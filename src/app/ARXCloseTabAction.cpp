#include "app/ARXCloseTabAction.h"

#include <cmath>

ARXCloseTabAction::ARXCloseTabAction(QStringList tabs, double now)
    : _tabs(std::move(tabs)), _remains(_tabs.mid(1)), _lastUpdate(now) {}

bool ARXCloseTabAction::check(const QString& name, double now) {
    if (std::fabs(now - _lastUpdate) > kInterval) {
        return false;
    }
    // One title is taken off per close, so a title that appears twice needs two closes.
    if (const qsizetype at = _remains.indexOf(name); at >= 0) {
        _remains.removeAt(at);
        _lastUpdate = now;
        if (_remains.isEmpty()) {
            _validated = true;
        }
        return true;
    }
    if (_tabs.contains(name)) {
        if (_remains.isEmpty()) {
            _validated = true;
        }
        return true;
    }
    return false;
}
