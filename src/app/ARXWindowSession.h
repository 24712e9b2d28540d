#pragma once

#include "app/ARXCloseTabAction.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

// What the next start (or reopen) brings back, written when the last window closes and when the
// program ends: cached_open_atrium_names for single windows, cached_open_atrium_tab_names for
// tab groups.
namespace ARXWindowSession {

// The last window just closed. A tab group whose tabs all closed together comes back whole;
// otherwise the workspace closed last comes back alone.
void rememberLastWindow(const std::optional<ARXCloseTabAction>& pending,
                        const std::optional<QString>& lastClosedName);

// The program ends with these windows open, each given as its tabs' names in order. Nothing is
// written when no window is open: the last window's record stays.
void rememberOpenWindows(const QList<QStringList>& windows);

} // namespace ARXWindowSession
