#pragma once

#include "platform/ARXPath.h"

#include <QString>

#include <functional>
#include <optional>

// Opening files the way the desktop does: with the application the user chose for the item's
// type (GIO's default handler), folders with the default file manager.
namespace ARXDesktopLauncher {

// Opens the item; the reason when it could not be opened ("No application is registered as
// handling this file"), none on success. The application starts on its own in the item's
// folder, and on X11 with the time of the user's last action in its startup id, so that its
// window may take the focus (ARXStartupNotification::followUserTime must have started).
std::optional<QString> openWithDefaultApplication(const Path& path);

// Replaces the launching for tests: while set, openWithDefaultApplication hands it the path
// and answers what it answers.
void setLauncherForTesting(std::function<std::optional<QString>(const Path&)> launcher);

} // namespace ARXDesktopLauncher
