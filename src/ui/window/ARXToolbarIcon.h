#pragma once

#include <QIcon>
#include <QPalette>

class QStyle;

// The pictures of the toolbar's buttons. Each comes from the desktop's icon theme when the theme
// has one of its names, else it is drawn here (or, for the pictures every style has, taken from
// the style), so that no button is ever blank. Symbolic theme icons and the drawn ones take the
// palette's button text colour, which keeps them readable on dark themes, and its highlight colour
// when their switch is on: make the icons again when the palette changes.
namespace ARXToolbarIcon {

enum class Kind {
    back,
    forward,
    sidebar,
    iconsView,
    listView,
    columnsView,
    hiddenFiles,
    pin,
    newFolder,
    trash,
    getInfo,
};

QIcon icon(Kind kind, const QPalette& palette, const QStyle* style);

// The same without the theme, for tests and for themes whose icons do not fit.
QIcon drawnIcon(Kind kind, const QPalette& palette, const QStyle* style);

} // namespace ARXToolbarIcon
