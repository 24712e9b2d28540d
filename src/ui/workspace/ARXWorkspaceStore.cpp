#include "ui/workspace/ARXWorkspaceStore.h"

#include "app/ARXDataCenter.h"
#include "ui/workspace/ARXAtriumViewController.h"

ARXAtriumData ARXWorkspaceStore::record(const QString& name) {
    ARXDataCenter& center = ARXDataCenter::shared();
    return center.load(center.path(name)).value_or(ARXDataCenter::emptyWorkspace());
}

void ARXWorkspaceStore::restore(ARXAtriumViewController& workspace, const QString& name) {
    workspace.build(name, record(name));
}

bool ARXWorkspaceStore::save(const ARXAtriumViewController& workspace) {
    if (!workspace.name()) {
        return false;
    }
    return ARXDataCenter::shared().save(*workspace.name(), workspace.makeData());
}
