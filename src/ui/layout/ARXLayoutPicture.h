#pragma once

#include "ui/layout/ARXAtriumLayout.h"

#include <QIcon>
#include <QPalette>

// The small picture of a layout for the toolbar's layout chooser: an outline divided as the
// layout's split tree divides the panes, at their default shares. Drawn in the palette's text
// colour (by default the application's palette) so that it reads on light and dark themes; the
// icon holds a 1x and a 2x pixmap.
class ARXLayoutPicture {
public:
    static constexpr QSize kSize{24, 18};

    static QIcon icon(ARXAtriumLayoutId id, const QPalette& palette = QPalette());
    static QPixmap pixmap(ARXAtriumLayoutId id, qreal devicePixelRatio,
                          const QPalette& palette = QPalette());
};
