#pragma once

#include <QByteArray>
#include <QList>
#include <QPair>

#include <cstdint>

// The X11 side of launching with focus (the freedesktop startup-notification protocol): an id
// that carries the time of the user's action travels from the program that asks to the window
// that answers, so that the window manager lets that window come to the front. Everything here
// does nothing where the display is not X11 (Wayland passes its activation token through Qt).
namespace ARXStartupNotification {

// Whether Atrium runs on an X11 display.
bool isX11();

// The X server time of the user's last key or button press in Atrium; 0 before the first one.
// Followed from the first call of followUserTime().
uint32_t lastUserTime();
// Starts following the user's key and button presses (once; later calls do nothing).
void followUserTime();

// "…_TIME12345" gives 12345, the time of the action that made the id; 0 when it has none.
uint32_t timeOf(const QByteArray& startupId);

// A protocol message, "new: ID=… NAME=…" or "remove: ID=…", its values quoted where they hold
// a space, a quote or a backslash.
QByteArray message(const char* kind, const QList<QPair<QByteArray, QByteArray>>& keys);
// The message as the window manager reads it: pieces of 20 bytes, the last padded with zeros,
// the whole ending in a zero byte.
QList<QByteArray> pieces(const QByteArray& message);

// A new id for a launch the user asked for now, announced to the desktop ("new:") so that it can
// show launch feedback; `name` and `binary` describe the program being started.
QByteArray beginLaunch(const QByteArray& name, const QByteArray& binary, const QByteArray& icon);
// Ends a launch or an activation ("remove:"): the desktop stops its launch feedback.
void endLaunch(const QByteArray& startupId);

// Brings the X11 window `window` forward for the action behind `startupId`: the id goes on the
// window (_NET_STARTUP_ID), the window manager is asked to activate it with the id's time, and
// the asking program's launch feedback ends.
void activateWindow(uint32_t window, const QByteArray& startupId);

} // namespace ARXStartupNotification
