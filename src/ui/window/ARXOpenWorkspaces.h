#pragma once

#include "app/ARXCloseTabAction.h"

#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>

#include <optional>
#include <utility>

class ARXAtriumWindowController;

// The process-wide window state: which workspaces have a window (by name, in the order they
// opened), the controller of the window in front, the name of the workspace closed last and the
// tab group whose closing is being recognised. The application reads it when the last window
// closes and when it ends.
class ARXOpenWorkspaces : public QObject {
    Q_OBJECT

public:
    static ARXOpenWorkspaces& shared();

    ARXAtriumWindowController* find(const QString& name) const;
    void insert(const QString& name, ARXAtriumWindowController* controller);
    void remove(const QString& name);
    bool isEmpty() const { return _table.isEmpty(); }
    QStringList names() const;
    // The workspace in front: the one whose window was active last, else the first open.
    ARXAtriumWindowController* front() const;

    ARXAtriumWindowController* active() const { return _active; }
    void setActive(ARXAtriumWindowController* controller) { _active = controller; }

    std::optional<QString> lastClosedName;
    std::optional<ARXCloseTabAction> pendingClose;

    // Seconds since 1970, the clock of the close-tab check; tests move it.
    static double now();
    static void setClockForTesting(std::optional<double> seconds);

Q_SIGNALS:
    // A workspace's window closed and none is left.
    void lastWindowClosed();

private:
    QList<std::pair<QString, QPointer<ARXAtriumWindowController>>> _table;
    QPointer<ARXAtriumWindowController> _active;
};
