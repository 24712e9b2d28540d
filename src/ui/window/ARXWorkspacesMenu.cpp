#include "ui/window/ARXWorkspacesMenu.h"

#include "app/ARXDataCenter.h"

#include <QMenu>

namespace ARXWorkspacesMenu {

void fill(QMenu* menu, const QStringList& exclude, std::function<void(const QString&)> open,
          std::function<void()> newWorkspace) {
    menu->clear();
    bool any = false;
    for (const QString& name : ARXDataCenter::shared().workspaceNames()) {
        if (exclude.contains(name)) {
            continue;
        }
        // The name is the item's data too: its text may gain an accelerator ampersand.
        QAction* item =
            menu->addAction(QString(name).replace(QLatin1Char('&'), QStringLiteral("&&")));
        item->setData(name);
        QObject::connect(item, &QAction::triggered, menu, [open, name] { open(name); });
        any = true;
    }
    if (any) {
        menu->addSeparator();
    }
    QAction* create = menu->addAction(QObject::tr("New Workspace"));
    QObject::connect(create, &QAction::triggered, menu, [newWorkspace] { newWorkspace(); });
}

} // namespace ARXWorkspacesMenu
