#include "ui/desktop/ARXWindowActivation.h"

#include "platform/ARXStartupNotification.h"

#include <QGuiApplication>
#include <QWidget>

namespace ARXWindowActivation {

void activate(QWidget* window, const QByteArray& token) {
    if (!window) {
        return;
    }
    const bool wayland = QGuiApplication::platformName().startsWith(QStringLiteral("wayland"));
    if (wayland && !token.isEmpty()) {
        qputenv("XDG_ACTIVATION_TOKEN", token);
    }
    window->raise();
    window->activateWindow();
    if (!wayland && !token.isEmpty() && ARXStartupNotification::isX11()) {
        // After Qt's own request, which carries the older time of Atrium's last input.
        ARXStartupNotification::activateWindow(uint32_t(window->winId()), token);
    }
}

} // namespace ARXWindowActivation
