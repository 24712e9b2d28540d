#pragma once

#include "app/ARXAtriumData.h"

#include <QList>
#include <QRectF>
#include <QSizeF>

// Where a workspace window opens: its saved frame when that still fits a screen, else a default
// size centred; full screen when it was left so (never for a tab).
struct ARXWindowPlacement {
    QRectF frame;
    bool center = false;
    bool fullScreen = false;
};

namespace ARXWindowFrame {

inline constexpr QSizeF kStandardSize{1280, 960};
inline constexpr double kMinimumWidth = 418;
inline constexpr double kMinimumHeight = 98;

// `screens` are the screens' available areas, the main screen first. A frame is valid when a
// screen holds its centre (else the main screen is judged) and it is at least the minimum and at
// most that screen in each dimension.
bool isValid(const QRectF& frame, const QList<QRectF>& screens);

ARXWindowPlacement place(const ARXAtriumData& data, const QList<QRectF>& screens, bool asTab);

} // namespace ARXWindowFrame
