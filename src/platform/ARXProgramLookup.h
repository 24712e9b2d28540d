#pragma once

#include "platform/ARXPath.h"

#include <string_view>

// Whether a program is installed, the way the desktop decides it: an executable on $PATH, or a
// desktop entry in the applications folders of the XDG data directories.
namespace ARXProgramLookup {

// A regular file (links followed) that this process may execute.
bool isExecutableFile(const Path& path);

// The full path of the first executable of that name on $PATH, or empty. A name holding a "/"
// is taken as a path and answered when it is executable.
Path findInPath(std::string_view name);

// Whether a desktop entry of that id ("org.kde.kate.desktop") is installed and usable: not
// hidden, and its TryExec, if any, found.
bool hasDesktopEntry(std::string_view desktopId);

} // namespace ARXProgramLookup
