#include "app/ARXWindowFrame.h"

#include <algorithm>

namespace ARXWindowFrame {

bool isValid(const QRectF& frame, const QList<QRectF>& screens) {
    if (screens.isEmpty() || frame.isEmpty()) {
        return false;
    }
    QRectF screen = screens.front();
    for (const QRectF& candidate : screens) {
        if (candidate.contains(frame.center())) {
            screen = candidate;
            break;
        }
    }
    return screen.contains(frame.center()) && frame.width() >= kMinimumWidth &&
           frame.width() <= screen.width() && frame.height() >= kMinimumHeight &&
           frame.height() <= screen.height();
}

ARXWindowPlacement place(const ARXAtriumData& data, const QList<QRectF>& screens, bool asTab) {
    ARXWindowPlacement placement;
    const QRectF main = screens.isEmpty() ? QRectF(QPointF(0, 0), kStandardSize) : screens.front();
    if (!asTab && data.fullscreen.value_or(false)) {
        placement.frame = QRectF(QPointF(0, 0), kStandardSize);
        placement.center = true;
        placement.fullScreen = true;
        return placement;
    }
    if (isValid(data.frame, screens)) {
        placement.frame = data.frame;
        return placement;
    }
    const QSizeF size(std::min(kStandardSize.width(), main.width() * 0.75),
                      std::min(kStandardSize.height(), main.height() * 0.85));
    placement.frame = QRectF(main.topLeft(), size);
    placement.frame.moveCenter(main.center());
    placement.center = true;
    return placement;
}

} // namespace ARXWindowFrame
