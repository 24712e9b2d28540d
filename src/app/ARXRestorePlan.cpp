#include "app/ARXRestorePlan.h"

#include "app/ARXConf.h"
#include "app/ARXDataCenter.h"
#include "platform/ARXFileIO.h"

ARXRestorePlan ARXRestorePlan::make() {
    ARXDataCenter& center = ARXDataCenter::shared();
    auto stored = [&center](const QString& name) { return ARXFileIO::exists(center.path(name)); };

    ARXRestorePlan plan;
    // Names whose files are gone are dropped without a word: the user deleted them on purpose.
    for (const QString& name : ARXConf::cached_open_atrium_names().value()) {
        if (stored(name)) {
            plan.windows.append(name);
        }
    }
    for (const QStringList& group : ARXConf::cached_open_atrium_tab_names().value()) {
        QStringList kept;
        for (const QString& name : group) {
            if (stored(name)) {
                kept.append(name);
            }
        }
        if (!kept.isEmpty()) {
            plan.tabGroups.append(kept);
        }
    }
    if (!plan.isEmpty()) {
        return plan;
    }
    const QStringList names = center.workspaceNames();
    if (!names.isEmpty()) {
        plan.windows.append(names.first());
        return plan;
    }
    const QString first = ARXConf::defaultWorkspaceName();
    center.save(first, ARXDataCenter::emptyWorkspace());
    plan.windows.append(first);
    return plan;
}
