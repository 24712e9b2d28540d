#pragma once

#include <QStringList>

// Recognises the closing of a whole tab group. Closing a window closes its tabs one by one and
// nothing says they belong to one gesture; when every tab of the group closed within half a
// second of the one before, the group counts as closed together (`validated`) and comes back as
// a group at the next start. Times are seconds since 1970, given by the caller.
class ARXCloseTabAction {
public:
    static constexpr double kInterval = 0.5;

    // The group's tab titles in order; the first is taken to be the close that made the action.
    ARXCloseTabAction(QStringList tabs, double now);

    const QStringList& tabs() const { return _tabs; }
    const QStringList& remains() const { return _remains; }
    double lastUpdate() const { return _lastUpdate; }
    bool validated() const { return _validated; }

    // The close of the tab `name` at `now`: true when it belongs to this group's closing.
    bool check(const QString& name, double now);

private:
    QStringList _tabs;
    QStringList _remains;
    double _lastUpdate;
    bool _validated = false;
};
