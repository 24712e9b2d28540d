#pragma once

#include <QString>

#include <array>
#include <cstdint>
#include <optional>

// The small enumerations that panes, content views, entries and the operation engine share. Their
// raw values are stored (workspace files, settings) and never renumbered.

// A column of the content views. Stored as its text ("Date Modified"), never as its number.
enum class ARXSpaceViewColumnId : int {
    name = 0,
    modified = 1,
    size = 2,
    kind = 3,
    lastOpened = 4,
    added = 5,
    created = 6,
    tags = 7,
    dimensions = 8,
    duration = 9,
};

namespace ARXSpaceViewColumn {

// Every column, in raw-value order.
const std::array<ARXSpaceViewColumnId, 10>& all();

// The stored text of a column: "Name", "Date Modified", "Size", "Kind", "Date Last Opened",
// "Date Added", "Date Created", "Tags", "Dimensions", "Duration". These are keys, not screen text.
QString storedString(ARXSpaceViewColumnId column);

// The column a stored text names (exact match); nullopt for any other text.
std::optional<ARXSpaceViewColumnId> parse(const QString& text);

} // namespace ARXSpaceViewColumn

// How a pane shows its folder. `none` is the value of a pane that was never shown.
enum class ARXSpaceViewType : int { none = 0, icons = 1, list = 2, columns = 3 };

// What a pane found when it opened its folder.
enum class ARXSpaceStatus : int { empty = 0, normal = 1, denied = 2, notfound = 3 };

// The kinds of work of the operation engine and the undo records.
enum class ARXFileOperationType : uint8_t {
    rename = 0,
    duplicate = 1,
    copy = 2,
    move = 3,
    trash = 4,
    remove = 5,
};

// The cloud state of an item, for the badge the views draw. Inert on a plain Linux system, where
// nothing is ubiquitous and every entry stays `synced`.
enum class ARXFileUbiquitousState : uint8_t {
    need_upload = 0,
    need_download = 1,
    uploading = 2,
    downloading = 3,
    conflict = 4,
    synced = 5,
};
