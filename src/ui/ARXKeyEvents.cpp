#include "ui/ARXKeyEvents.h"

#include <QKeyEvent>

#include <optional>

namespace {

// Shifted symbols of the US layout back to their keys.
QChar unshifted(QChar c) {
    static const QString shiftedKeys = QStringLiteral("~!@#$%^&*()_+{}|:\"<>?");
    static const QString plainKeys = QStringLiteral("`1234567890-=[]\\;',./");
    const qsizetype at = shiftedKeys.indexOf(c);
    return at >= 0 ? plainKeys[at] : c;
}

// The keys named by a symbol or a word rather than by their character. Where two keys share a
// name (Return and Enter, Tab and Backtab) the first is the one a name stands for.
struct NamedKey {
    Qt::Key key;
    const char16_t* name;
};

constexpr NamedKey kNamedKeys[] = {
    {Qt::Key_Backspace, u"⌫"}, {Qt::Key_Delete, u"⌦"},  {Qt::Key_Up, u"↑"},
    {Qt::Key_Down, u"↓"},      {Qt::Key_Left, u"←"},    {Qt::Key_Right, u"→"},
    {Qt::Key_Return, u"↩"},    {Qt::Key_Enter, u"↩"},   {Qt::Key_Escape, u"⎋"},
    {Qt::Key_Tab, u"⇥"},       {Qt::Key_Backtab, u"⇥"}, {Qt::Key_Space, u"SPACE"},
    {Qt::Key_Home, u"↖"},      {Qt::Key_End, u"↘"},     {Qt::Key_PageUp, u"⇞"},
    {Qt::Key_PageDown, u"⇟"},
};

QString keyName(const QKeyEvent* event) {
    const int key = event->key();
    for (const NamedKey& named : kNamedKeys) {
        if (named.key == key) {
            return QString::fromUtf16(named.name);
        }
    }
    if (key >= Qt::Key_F1 && key <= Qt::Key_F35) {
        return QStringLiteral("F%1").arg(key - Qt::Key_F1 + 1);
    }
    // Qt names printable keys by their Latin-1 code; letters come upper-cased.
    if (key >= 0x20 && key <= 0xff) {
        return QString(unshifted(QChar(key))).toUpper();
    }
    return {};
}

std::optional<Qt::Key> keyOf(const QString& name) {
    for (const NamedKey& named : kNamedKeys) {
        if (name == QStringView(named.name)) {
            return named.key;
        }
    }
    if (name.size() > 1 && name.startsWith(u'F')) {
        bool isNumber = false;
        const int number = name.mid(1).toInt(&isNumber);
        if (isNumber && number >= 1 && number <= 35) {
            return Qt::Key(Qt::Key_F1 + number - 1);
        }
    }
    // A character is its own key code, upper-cased as Qt gives letters.
    if (name.size() == 1 && name[0].isPrint()) {
        return Qt::Key(name[0].toUpper().unicode());
    }
    return std::nullopt;
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

QKeySequence ARXKeyEvents::sequenceOf(const ARXHotkey& hotkey) {
    const std::optional<Qt::Key> key = keyOf(hotkey.key);
    if (!key) {
        return {};
    }
    Qt::KeyboardModifiers modifiers;
    if (hotkey.modifier & ARXHotkey::shift) {
        modifiers |= Qt::ShiftModifier;
    }
    if (hotkey.modifier & ARXHotkey::option) {
        modifiers |= Qt::AltModifier;
    }
    if (hotkey.modifier & ARXHotkey::control) {
        modifiers |= Qt::MetaModifier;
    }
    if (hotkey.modifier & ARXHotkey::command) {
        modifiers |= Qt::ControlModifier;
    }
    return QKeySequence(QKeyCombination(modifiers, *key));
}
