#pragma once

#include <QString>
#include <QStringList>

// Which items the workspace windows' toolbar shows, in which order, and at which icon size. All
// windows share one configuration, kept in the settings: `cached_toolbar_items` (empty means the
// default list) and `cached_toolbar_small_icons`. Items are named by their identifiers, which are
// those of the action catalogue ("com.brightmoor.atrium.sidebar") plus the quick launchers and
// the two kinds of space. A list may hold items the toolbar has no widget for yet: they are kept,
// and the toolbar shows the ones it can make.
namespace ARXToolbarConfiguration {

// Posted (on the main thread) after either setting is written through this namespace; every open
// toolbar follows it at once.
inline const QString changedNotification = QStringLiteral("rv_toolbar_configuration_changed");

// The identifiers that are not actions of the catalogue.
inline const QString quickLauncher = QStringLiteral("com.brightmoor.atrium.quick_launcher");
inline const QString space = QStringLiteral("com.brightmoor.atrium.space");
inline const QString flexibleSpace = QStringLiteral("com.brightmoor.atrium.flexible_space");

// Every item the toolbar may hold, in the order a customisation offers them; the two spaces last.
const QStringList& allowed();
bool isAllowed(const QString& identifier);
// A fixed or flexible space: the only items that may appear more than once.
bool isSpace(const QString& identifier);

// The default list. "Open in Terminal" and "Open in Editor" are in it only when a terminal and an
// editor are set: without one the button could do nothing.
QStringList defaultItems(bool hasTerminal, bool hasEditor);
// The same with the terminal and editor settings as they are now.
QStringList defaultItems();

// A list as read from the settings, made safe: identifiers the toolbar doesn't know (written by
// another version, or edited by hand) and repeats of an item are dropped; spaces may repeat.
QStringList cleaned(const QStringList& items);

// The user's list, cleaned, or the default when none is saved (or nothing in it is known).
QStringList items();
// Saves the user's list and tells every toolbar. A list equal to the default is saved as "the
// default", so that it keeps following the terminal and editor settings.
void setItems(const QStringList& items);
// Back to the default list.
void reset();

// The list with an item added where it belongs. It keeps to its side of the flexible space (the
// side it has in the default list; the left for items the default lacks) and goes right after the
// nearest item there that comes before it in the allowed order, else right before the nearest one
// after it, else at the end of its side. An item already there leaves the list as it is; spaces
// are added at the end.
QStringList withItem(const QStringList& items, const QString& identifier);
// The list without any occurrence of the item.
QStringList withoutItem(const QStringList& items, const QString& identifier);

bool usesSmallIcons();
// Saves the icon size and tells every toolbar.
void setUsesSmallIcons(bool small);

} // namespace ARXToolbarConfiguration
