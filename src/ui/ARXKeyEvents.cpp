#include "ui/ARXKeyEvents.h"

#include <QKeyEvent>

namespace {

// Shifted symbols of the US layout back to their keys.
QChar unshifted(QChar c) {
    static const QString shiftedKeys = QStringLiteral("~!@#$%^&*()_+{}|:\"<>?");
    static const QString plainKeys = QStringLiteral("`1234567890-=[]\\;',./");
    const qsizetype at = shiftedKeys.indexOf(c);
    return at >= 0 ? plainKeys[at] : c;
}

QString keyName(const QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_Backspace:
        return QStringLiteral("⌫");
    case Qt::Key_Delete:
        return QStringLiteral("⌦");
    case Qt::Key_Up:
        return QStringLiteral("↑");
    case Qt::Key_Down:
        return QStringLiteral("↓");
    case Qt::Key_Left:
        return QStringLiteral("←");
    case Qt::Key_Right:
        return QStringLiteral("→");
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return QStringLiteral("↩");
    case Qt::Key_Escape:
        return QStringLiteral("⎋");
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
        return QStringLiteral("⇥");
    case Qt::Key_Space:
        return QStringLiteral("SPACE");
    case Qt::Key_Home:
        return QStringLiteral("↖");
    case Qt::Key_End:
        return QStringLiteral("↘");
    case Qt::Key_PageUp:
        return QStringLiteral("⇞");
    case Qt::Key_PageDown:
        return QStringLiteral("⇟");
    default:
        break;
    }
    const int key = event->key();
    if (key >= Qt::Key_F1 && key <= Qt::Key_F35) {
        return QStringLiteral("F%1").arg(key - Qt::Key_F1 + 1);
    }
    // Qt names printable keys by their Latin-1 code; letters come upper-cased.
    if (key >= 0x20 && key <= 0xff) {
        return QString(unshifted(QChar(key))).toUpper();
    }
    return {};
}

} // namespace

ARXHotkey ARXKeyEvents::hotkeyOf(const QKeyEvent* event) {
    ARXHotkey hotkey;
    hotkey.key = keyName(event);
    const Qt::KeyboardModifiers modifiers = event->modifiers();
    if (modifiers & Qt::ShiftModifier) {
        hotkey.modifier |= ARXHotkey::shift;
    }
    if (modifiers & Qt::AltModifier) {
        hotkey.modifier |= ARXHotkey::option;
    }
    if (modifiers & Qt::MetaModifier) {
        hotkey.modifier |= ARXHotkey::control;
    }
    if (modifiers & Qt::ControlModifier) {
        hotkey.modifier |= ARXHotkey::command;
    }
    return hotkey;
}
