#pragma once

#include <QByteArray>

class QWidget;

// Bringing a window forward for another program's request. A desktop that prevents focus
// stealing lets a window take the focus only for a recent action of the user; the asking program
// passes that action on as a token (an X11 startup id, a Wayland activation token), and the
// window comes forward with it.
namespace ARXWindowActivation {

// Raises and activates the top-level `window`, with `token` when there is one: on Wayland Qt
// hands it to the compositor (XDG_ACTIVATION_TOKEN is read and cleared at the activation); on
// X11 the id goes on the window and the window manager is asked with the id's time, and the
// asking program's launch feedback ends.
void activate(QWidget* window, const QByteArray& token);

} // namespace ARXWindowActivation
