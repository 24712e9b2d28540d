#include "actions/ARXHotkey.h"

#include <QStringList>

#include <utility>

std::optional<ARXHotkey> ARXHotkey::parse(const QString& text) {
    ARXHotkey hotkey;
    if (!text.contains(u'+')) {
        hotkey.key = text.toUpper();
        return hotkey.key.isEmpty() ? std::nullopt : std::optional(hotkey);
    }
    const QStringList parts = text.split(u'+', Qt::SkipEmptyParts);
    if (parts.isEmpty()) {
        return std::nullopt;
    }
    for (qsizetype i = 0; i + 1 < parts.size(); ++i) {
        const QString name = parts[i].toLower();
        if (name == u"cmd" || name == u"command") {
            hotkey.modifier |= command;
        } else if (name == u"shift") {
            hotkey.modifier |= shift;
        } else if (name == u"option") {
            hotkey.modifier |= option;
        } else if (name == u"ctrl" || name == u"control") {
            hotkey.modifier |= control;
        }
    }
    hotkey.key = parts.last().toUpper();
    return hotkey;
}

QString ARXHotkey::symbolText() const {
    QString text;
    if (modifier & shift) {
        text += u'⇧';
    }
    if (modifier & option) {
        text += u'⌥';
    }
    if (modifier & control) {
        text += u'⌃';
    }
    if (modifier & command) {
        text += u'⌘';
    }
    return text + key;
}

const std::vector<std::pair<ARXActionType, ARXHotkey>>& ARXDefaultHotkeys::table() {
    static const std::vector<std::pair<ARXActionType, ARXHotkey>> rows = [] {
        using A = ARXActionType;
        const std::vector<std::pair<A, const char*>> texts{
            {A::ActivateWorkspaces, "option+cmd+g"},
            {A::NewWorkspace, "cmd+n"},
            {A::NewFolder, "shift+cmd+n"},
            {A::NewFolderWithSelection, "ctrl+cmd+n"},
            {A::Open, "cmd+o"},
            {A::OpenInTerminal, "cmd+t"},
            {A::OpenInEditor, "cmd+e"},
            {A::RefreshView, "cmd+r"},
            {A::Save, "cmd+s"},
            {A::Search, "cmd+f"},
            {A::Close, "cmd+w"},
            {A::GetInfo, "cmd+i"},
            {A::Duplicate, "cmd+d"},
            {A::QuickLook, "cmd+y"},
            {A::Trash, "cmd+⌫"},
            // Ctrl+Alt+Backspace is the X server's kill key on some systems: deleting for good is
            // Shift+Delete, as in every Linux file manager.
            {A::Remove, "shift+⌦"},
            {A::Undo, "cmd+z"},
            {A::Redo, "shift+cmd+z"},
            {A::Cut, "cmd+x"},
            {A::Copy, "cmd+c"},
            {A::CopyPath, "cmd+option+c"},
            {A::Paste, "cmd+v"},
            {A::MoveCopied, "option+cmd+v"},
            {A::SelectAll, "cmd+a"},
            {A::asIconsView, "cmd+1"},
            {A::asListView, "cmd+2"},
            {A::asColumnsView, "cmd+3"},
            {A::Sidebar, "option+cmd+s"},
            {A::StatusBar, "cmd+/"},
            {A::FullScreen, "ctrl+cmd+f"},
            {A::GoBack, "cmd+["},
            {A::GoForward, "cmd+]"},
            {A::GoEnclosingFolder, "cmd+↑"},
            {A::GoDocuments, "shift+cmd+o"},
            {A::GoDesktop, "shift+cmd+d"},
            {A::GoDownloads, "option+cmd+l"},
            {A::GoHome, "shift+cmd+h"},
            {A::GoiCloudDrive, "shift+cmd+i"},
            {A::GoToLocation, "cmd+l"},
            {A::MinimizeWindow, "cmd+m"},
            {A::HiddenFiles, "shift+cmd+."},
            {A::ZoomIn, "cmd+="},
            {A::ZoomOut, "cmd+-"},
            {A::SortByName, "ctrl+option+cmd+1"},
            {A::SortByKind, "ctrl+option+cmd+2"},
            {A::SortByDateLastOpened, "ctrl+option+cmd+3"},
            {A::SortByDateAdded, "ctrl+option+cmd+4"},
            {A::SortByDateModified, "ctrl+option+cmd+5"},
            {A::SortBySize, "ctrl+option+cmd+6"},
            {A::SortByTags, "ctrl+option+cmd+7"},
            // Second keys: what Linux users type from habit. They follow the first ones, so an
            // action's first row stays the one its menu item shows.
            {A::Trash, "⌦"},
            {A::Rename, "F2"},
            {A::GoBack, "option+←"},
            {A::GoBack, "⌫"},
            {A::GoForward, "option+→"},
            {A::GoEnclosingFolder, "option+↑"},
            {A::RefreshView, "F5"},
            {A::HiddenFiles, "cmd+H"},
        };
        std::vector<std::pair<A, ARXHotkey>> parsed;
        parsed.reserve(texts.size());
        for (const auto& [type, text] : texts) {
            parsed.emplace_back(type, *ARXHotkey::parse(QString::fromUtf8(text)));
        }
        return parsed;
    }();
    return rows;
}

std::optional<ARXHotkey> ARXDefaultHotkeys::hotkey(ARXActionType type) {
    for (const auto& [action, hotkey] : table()) {
        if (action == type) {
            return hotkey;
        }
    }
    return std::nullopt;
}

ARXActionType ARXDefaultHotkeys::action(const ARXHotkey& hotkey) {
    for (const auto& [action, key] : table()) {
        if (key == hotkey) {
            return action;
        }
    }
    return ARXActionType::None;
}
