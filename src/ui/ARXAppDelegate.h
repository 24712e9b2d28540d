#pragma once

#include <QObject>
#include <QPointer>
#include <QStringList>

#include <map>

class QWidget;

// The application's start and its workspaces' windows. It keeps no model of its own: it starts
// the process-wide services in a fixed order and brings back the workspaces that were open.
class ARXAppDelegate : public QObject {
    Q_OBJECT
public:
    explicit ARXAppDelegate(QObject* parent = nullptr);

    void applicationDidFinishLaunching();

    // Brings back the open workspaces (or the first, or a new "Default"). Each window opens from
    // the event loop, so launching returns first.
    void restoreWorkspaces();

    QStringList openWorkspaceNames() const;

private:
    void openWorkspace(const QString& name);

    std::map<QString, QPointer<QWidget>> _openWindows;
};
