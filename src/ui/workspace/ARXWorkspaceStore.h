#pragma once

#include "app/ARXAtriumData.h"

#include <QString>

class ARXAtriumViewController;

// Workspaces to and from their files in the data centre, by name.
namespace ARXWorkspaceStore {

// The stored record of a workspace; the record of a new workspace when its file is missing or
// cannot be read (the next save then replaces the file).
ARXAtriumData record(const QString& name);

// Builds the workspace from its stored record.
void restore(ARXAtriumViewController& workspace, const QString& name);

// Stores the workspace as it stands under its name; false for a workspace without a name or when
// the file could not be written (the previous file then stays).
bool save(const ARXAtriumViewController& workspace);

} // namespace ARXWorkspaceStore
