#pragma once

#include "platform/ARXPath.h"

#include <compare>
#include <cstdint>
#include <optional>

// A moment as the file system stores it: seconds and nanoseconds since 1970 (UTC). Compared
// exactly, field by field, so that "the modification time is still the same" is an equality test
// that no rounding can fool.
struct ARXFileTime {
    int64_t seconds = 0;
    uint32_t nanoseconds = 0;

    auto operator<=>(const ARXFileTime&) const = default;

    // Seconds since 1970 as one number (seconds + nanoseconds * 1e-9), the form dates take above
    // the platform layer.
    double secondsSince1970() const { return double(seconds) + double(nanoseconds) * 1e-9; }
};

// What kind of item a path names. `unknown` only where nothing was read (see ARXDirectoryItem).
enum class ARXFileType : uint8_t { unknown, regular, directory, symlink, other };

// One status read of a path, the Linux counterpart of stat/lstat, taken with statx. When `exists`
// is false, `error` holds the errno of the failed call and every other field is its default.
struct ARXFileStatus {
    bool exists = false;
    int error = 0;

    ARXFileType type = ARXFileType::unknown;
    uint32_t mode = 0; // the whole st_mode: type bits and permissions
    uint64_t size = 0;
    uint32_t uid = 0;
    uint32_t gid = 0;
    uint64_t linkCount = 0;
    uint64_t inode = 0;
    uint64_t device = 0; // dev_t of the file system holding the item

    ARXFileTime modified; // stx_mtime
    ARXFileTime accessed; // stx_atime
    // stx_ctime, the last change of the inode (content or metadata). This, not the birth time, is
    // what Atrium shows and sorts as "Date Created".
    ARXFileTime changed;
    // stx_btime, only where the file system records it (ext4, btrfs, xfs, tmpfs on new kernels);
    // none on others (older NFS, FAT through some drivers, ...).
    std::optional<ARXFileTime> born;

    bool isDirectory() const { return type == ARXFileType::directory; }
    bool isSymbolicLink() const { return type == ARXFileType::symlink; }
    bool isRegular() const { return type == ARXFileType::regular; }

    // stat: follows symbolic links, so a link answers for its final target (and a dangling link
    // fails with ENOENT).
    static ARXFileStatus stat(const Path& path);
    // lstat: the item itself; a symbolic link answers as a link.
    static ARXFileStatus lstat(const Path& path);

    // A child of an open folder, by name relative to its descriptor. Saves the kernel the walk
    // down the path for every child of a listing.
    static ARXFileStatus statAt(int dirFd, const std::string& name, bool followLinks);
};
