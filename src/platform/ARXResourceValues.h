#pragma once

#include "platform/ARXFileStatus.h"
#include "platform/ARXPath.h"

#include <QStringList>

#include <functional>
#include <optional>

class ARXHiddenList;

// The cloud state of an item, as a cloud-storage client would report it. Linux has no such
// client that Atrium asks, so every value is absent on a real system; the cloud rules of the file
// entry are still there and are exercised by tests through ARXResourceValues::setCloudProvider.
enum class ARXDownloadingStatus : uint8_t { notDownloaded, downloaded, current };

struct ARXCloudValues {
    std::optional<bool> isUbiquitous;
    std::optional<bool> hasUnresolvedConflicts;
    std::optional<bool> isUploading;
    std::optional<bool> isUploaded;
    std::optional<ARXDownloadingStatus> downloadingStatus;
    std::optional<bool> isDownloading;
};

// Answers the cloud values of a path. Called on whatever thread reads resource values.
using ARXCloudProvider = std::function<ARXCloudValues(const Path& path)>;

// Where a symbolic link finally leads.
struct ARXLinkResolution {
    enum class Outcome : uint8_t {
        resolved, // `target` is set
        notALink, // the path is no symbolic link (or does not exist: see `error`)
        dangling, // some link on the way names nothing (ENOENT, ENOTDIR)
        loop,     // the links lead round in a circle, or too deep (ELOOP)
        failed,   // anything else: a folder on the way not searchable (EACCES), ...
    };
    Outcome outcome = Outcome::notALink;
    std::optional<Path> target;
    int error = 0; // errno behind every outcome but `resolved`
};

// The resource values Atrium reads for one item in one go, the Linux answers to what the file
// entry asks: link flag, added date, hidden flag, total size and the cloud values. Tags have their
// own calls below, since the entry reads them at another moment.
struct ARXResourceValues {
    // The item is a symbolic link (the only kind of alias on Linux). resolveLink follows it.
    bool isSymbolicLink = false;
    // When the item came into this folder: the birth time where the file system records one,
    // else none. A move within a file system keeps the inode and so the old date; a copy is new.
    std::optional<ARXFileTime> addedDate;
    // The name starts with "." or the folder's `.hidden` lists it.
    bool isHidden = false;
    // st_size of the item itself; for a link, the length of the text it holds.
    std::optional<uint64_t> totalFileSize;
    ARXCloudValues cloud;

    // Reads the values of `path`. Fails (nullopt, *error set) only when the item cannot be
    // status-read at all, e.g. because it is gone.
    static std::optional<ARXResourceValues> read(const Path& path, int* error = nullptr);

    // The same from an lstat the caller already made (ARXFileStatus::lstat of `path`), so a
    // listing costs one status call per child. `hiddenList` is the `.hidden` of the folder holding
    // `path`, loaded once for the whole listing; without it, or if it belongs to another folder,
    // the folder's `.hidden` is read for this one call.
    static std::optional<ARXResourceValues> read(const Path& path, const ARXFileStatus& linkStatus,
                                                 const ARXHiddenList* hiddenList,
                                                 int* error = nullptr);

    // Follows a symbolic link, and every further link on the way, to the item it finally names,
    // as realpath does: the answer is the canonical path, with links in the folders above resolved
    // too. Works on the bytes, so names that are not UTF-8 resolve like any other.
    static ARXLinkResolution resolveLink(const Path& path);

    // The text a link holds, unresolved (readlink). nullopt with *error for a non-link (EINVAL).
    static std::optional<Path> readLink(const Path& path, int* error = nullptr);

    // The item's tags: the extended attribute `user.xdg.tags`, names separated by commas. nullopt
    // when the item has none: no attribute, an empty one, a file system without user attributes,
    // or a read failure (then *error says which; it is 0 for the plain "no tags").
    // Symbolic links never carry tags of their own on Linux; ask the link's target.
    static std::optional<QStringList> readTags(const Path& path, int* error = nullptr);

    // Replaces the item's tags. An empty list removes the attribute. Returns 0 or an errno: ENOTSUP
    // on a file system without user attributes, EPERM for a symbolic link, EINVAL for a name that
    // holds a comma (it could not be read back as one name).
    static int setTags(const Path& path, const QStringList& tags);

    // The attribute's bytes as they stand, for a writer that keeps what it does not change: ""
    // when the item has none (as readTags), nullopt with *error on a read failure.
    static std::optional<std::string> readTagAttribute(const Path& path, int* error = nullptr);
    // Writes the bytes as they are; empty removes the attribute. Returns 0 or an errno.
    static int writeTagAttribute(const Path& path, std::string_view bytes);

    // The attribute's bytes as tag names: split at "," (and at NUL bytes, which some writers
    // leave at the end), trimmed, empty names and repeats dropped. Bytes that are not UTF-8 are
    // shown as U+FFFD.
    static QStringList parseTags(std::string_view attribute);
    // The bytes for a list of names, or nullopt if one holds a comma.
    static std::optional<std::string> formatTags(const QStringList& tags);

    // Installs (or, with an empty function, removes) the source of cloud values. For tests.
    static void setCloudProvider(ARXCloudProvider provider);
};
