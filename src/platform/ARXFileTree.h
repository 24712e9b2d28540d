#pragma once

#include "platform/ARXFileError.h"
#include "platform/ARXPath.h"

#include <string>

// The building blocks the file operations share: error raising, a rename that never replaces,
// and the removal of a tree relative to an open folder. Internal to the file operations; the
// rest of Atrium calls ARXFileOperations.
namespace ARXFileTree {

[[noreturn]] void fail(int errnum, const Path& path,
                       ARXFileError::Access access = ARXFileError::Access::reading);

// Throws for a path that is empty (ENOENT), relative or holds a NUL byte (EINVAL).
void requireKernelPath(const Path& path);

// rename(2) that fails with EEXIST instead of replacing what is at `to`. Where the file system
// refuses RENAME_NOREPLACE, the target is tested first, which leaves a short window a rival
// could slip into; no file system Atrium meets every day is in that case. Returns 0 or an errno.
int renameNoReplace(int fromDir, const char* from, int toDir, const char* to);

// The error of a failed rename of `from` to `to`, blamed on the side that caused it: the missing
// source, the folder without write permission, the taken name.
ARXFileError renameError(int errnum, const Path& from, const Path& to);

// Removes the item `name` of the folder open as `dirFd`, and for a folder everything in it.
// Symbolic links are removed as links, never followed: every folder is opened relative to the
// one above with O_NOFOLLOW, so a link swapped in for a folder mid-way is unlinked rather than
// entered. `path` is the item's full path, for the error of the first failure, which stops the
// removal. With `makeWritable`, folders that refuse (because a copy already gave them their
// final read-only mode) are given owner permissions first; only for trees Atrium just made.
void removeAt(int dirFd, const std::string& name, const Path& path, bool makeWritable = false);

// The folder holding a path, opened (O_PATH, so a folder without read permission will do) for
// the *at calls, and the item's name in it. Throws with `path` when the folder cannot be opened,
// and EINVAL for "/", which lies in no folder.
struct ParentFolder {
    int fd = -1;
    std::string name;

    explicit ParentFolder(const Path& path,
                          ARXFileError::Access access = ARXFileError::Access::writing);
    ~ParentFolder();
    ParentFolder(const ParentFolder&) = delete;
    ParentFolder& operator=(const ParentFolder&) = delete;
};

} // namespace ARXFileTree
