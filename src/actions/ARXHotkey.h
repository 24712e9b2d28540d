#pragma once

#include "actions/ARXActionType.h"

#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

// A keyboard shortcut as configuration stores it: a key ("C", "⌫", "↑", "=") and modifier flags.
// The stored names keep their desktop-neutral words: "cmd" is the Control key on Linux, "ctrl"
// the Meta key, "option" Alt (the mapping Qt itself uses).
struct ARXHotkey {
    enum Modifier : uint8_t {
        shift = 1 << 0,
        option = 1 << 1,
        control = 1 << 2,
        command = 1 << 3,
    };

    QString key;
    uint8_t modifier = 0;

    bool operator==(const ARXHotkey&) const = default;

    // "ctrl+option+cmd+1", "cmd+⌫", "shift+cmd+.": modifier names in any order, unknown names
    // dropped; a one-letter key is upper-cased. A text without "+" is a key alone. Nullopt for
    // a text without a key.
    static std::optional<ARXHotkey> parse(const QString& text);
    // "⇧⌥⌃⌘" in that order for the flags set, then the key.
    QString symbolText() const;
};

namespace ARXDefaultHotkeys {

// The hotkeys actions have until the user changes them, in the table's order: each action's first
// key, then the second keys some actions have on Linux.
const std::vector<std::pair<ARXActionType, ARXHotkey>>& table();
// The default hotkey of an action (its first), if it has one.
std::optional<ARXHotkey> hotkey(ARXActionType type);
// The action whose default hotkey this is; None for a combination no action has.
ARXActionType action(const ARXHotkey& hotkey);

} // namespace ARXDefaultHotkeys
