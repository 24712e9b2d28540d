#pragma once

#include <QString>
#include <QStringList>

#include <functional>

class QMenu;

// The menu of workspaces the tray, the tab bar's "+" and the workspace name offer: one item per
// stored workspace not in `exclude`, in the stored order, a separator when there is one, then
// "New Workspace".
namespace ARXWorkspacesMenu {

void fill(QMenu* menu, const QStringList& exclude, std::function<void(const QString&)> open,
          std::function<void()> newWorkspace);

} // namespace ARXWorkspacesMenu
