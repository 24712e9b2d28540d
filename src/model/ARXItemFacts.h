#pragma once

#include "platform/ARXPath.h"

#include <QString>

#include <cstdint>
#include <optional>

// What the properties window says about one item: read once from the disk, without widgets.
// A folder's size is not part of it; it is measured apart, since a large tree takes a while.
struct ARXItemFacts {
    Path path;
    QString name;  // the item's name for display ("/" for the root)
    QString where; // the folder that holds it, for display
    QString kind;  // "Plain Text Document", "Folder", "Symbolic Link to Folder", ...
    bool isFolder = false;
    uint64_t size = 0;             // a file's logical size; see sizeText
    std::optional<double> created; // birth time, where the file system records it
    std::optional<double> modified;
    std::optional<double> accessed;
    QString permissions; // "rwxr-xr-x (755)"
    QString owner;       // user name, or the number when the system has no name for it
    QString group;
    std::optional<QString> linkTarget; // the text a symbolic link holds
    // Set when the item could not be read: the path and the reason. Nothing else is then known.
    std::optional<QString> error;

    static ARXItemFacts read(const Path& path);

    // "rwxr-xr-x (755)", with the set-id and sticky bits in their usual letters.
    static QString permissionsText(uint32_t mode);
    // "12 KB (12,345 bytes)": the short size the lists show, then the exact count.
    static QString sizeText(uint64_t size);
};
