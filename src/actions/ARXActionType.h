#pragma once

#include <QString>

#include <cstdint>

// Every command of Atrium: in menus, toolbars, context menus and hotkeys. The number is stored
// and never renumbered; the identifier ("com.brightmoor.atrium.copy") is what configuration
// files hold.
enum class ARXActionType : uint8_t {
    None = 0,
    ActivateWorkspaces,
    Bookmark,
    Compress,
    Copy,
    CopyPath,
    CopyFilename,
    Cut,
    Duplicate,
    EditTag,
    GetInfo,
    MakeAlias,
    Trash,
    MoveViewTo,
    NewWorkspace,
    NewFile,
    NewFolder,
    NewFolderWithSelection,
    Open,
    OpenInEditor,
    OpenInTerminal,
    OpenWith,
    RefreshView,
    Save,
    Close,
    Paste,
    MoveCopied,
    QuickLook,
    Remove,
    Rename,
    Separator,
    Services,
    Share,
    ShowInEnclosingFolder,
    ShowInFinder,
    ShowPackageContents,
    SortBy,
    StartPath,
    Tags,
    VisibleColumns,
    Undo,
    Redo,
    SelectAll,
    HiddenFiles,
    PinTop,
    Search,
    AirDrop,
    Sidebar,
    StatusBar,
    GoBack,
    GoForward,
    GoEnclosingFolder,
    GoDocuments,
    GoDesktop,
    GoDownloads,
    GoHome,
    GoiCloudDrive,
    GoToLocation,
    asListView,
    asIconsView,
    asColumnsView,
    FullScreen,
    MinimizeWindow,
    ZoomWindow,
    BringAllToFront,
    Layouts,
    ViewTypes,
    ZoomIn,
    ZoomOut,
    SortByName,
    SortByKind,
    SortByDateLastOpened,
    SortByDateAdded,
    SortByDateModified,
    SortByDateCreated,
    SortBySize,
    SortByTags,
    SortByDimensions,
    SortByDuration,
    Actions,
    BackForward,
    WorkspaceName,
};

namespace ARXAction {

constexpr int kCount = int(ARXActionType::WorkspaceName) + 1;

// "com.brightmoor.atrium." followed by the action's word.
QString identifier(ARXActionType type);
// The action an identifier names; None for any text the catalogue does not know.
ARXActionType type(const QString& identifier);
// The localised title; empty for the actions that have none (None, Separator, the sort cases,
// WorkspaceName).
QString title(ARXActionType type);

} // namespace ARXAction
