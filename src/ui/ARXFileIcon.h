#pragma once

#include "platform/ARXPath.h"

#include <QIcon>

// Icons for items on disk, from the desktop's icon theme.
namespace ARXFileIcon {

// The icon of the item at `path`: the theme's icon for its MIME type, else the generic icon of the
// type's family, else the style's own file or folder icon, so that there is always something to
// show, also without an icon theme. Reads the item's first bytes when its name says nothing.
QIcon forPath(const Path& path);
// The icon of a MIME type, made once and shared. Main thread only.
QIcon forType(const QString& type);

} // namespace ARXFileIcon
