#pragma once

#include "actions/ARXHotkey.h"

#include <QKeySequence>

class QKeyEvent;

// Key presses in the stored hotkey form. Ctrl is "cmd", Meta is "ctrl", Alt is "option", as Qt
// maps them; a key typed with Shift is named by its unshifted key ("shift+cmd+." arrives as
// Shift+">" on a US keyboard), so the stored defaults match what the user presses.
namespace ARXKeyEvents {

ARXHotkey hotkeyOf(const QKeyEvent* event);

// The key combination that hotkeyOf names `hotkey`, for showing it the way the desktop writes
// shortcuts ("Ctrl+Backspace"); empty for a key Qt has no code for.
QKeySequence sequenceOf(const ARXHotkey& hotkey);

} // namespace ARXKeyEvents
