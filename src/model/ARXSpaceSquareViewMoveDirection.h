#pragma once

#include <QString>
#include <QtGlobal>

#include <array>
#include <optional>

// Where a pane can send the focus, or itself, among the panes of a workspace: the "Move to" menu
// of a pane and the keyboard's pane moves name these. The raw values are the menu items' tags and
// are never renumbered.
enum class ARXSpaceSquareViewMoveDirection : int {
    left = 0,
    right = 1,
    up = 2,
    down = 3,
    leftUp = 4,
    leftDown = 5,
    rightUp = 6,
    rightDown = 7,
};

namespace ARXSpaceSquareViewMove {

// Every direction, in raw-value order.
const std::array<ARXSpaceSquareViewMoveDirection, 8>& all();

// The direction of a raw value (a menu item's tag); nullopt for a negative value or one of 8 or
// more, which a menu item must then ignore.
std::optional<ARXSpaceSquareViewMoveDirection> fromRaw(qint64 raw);

// The translated menu title: "Left", "Right", "Up", "Down", "Left Up", "Left Down", "Right Up",
// "Right Down".
QString title(ARXSpaceSquareViewMoveDirection direction);

} // namespace ARXSpaceSquareViewMove
