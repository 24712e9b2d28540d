#include "platform/ARXFileOperations.h"

#include "platform/ARXConsole.h"
#include "platform/ARXFileTree.h"
#include "platform/ARXTrash.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>

namespace ARXFileOperations {

namespace {

bool exists(const Path& path) {
    struct stat st {};
    return ::lstat(path.c_str(), &st) == 0;
}

} // namespace

void removeItem(const Path& path) {
    ARXFileTree::ParentFolder parent(path);
    struct stat st {};
    if (::fstatat(parent.fd, parent.name.c_str(), &st, AT_SYMLINK_NOFOLLOW) != 0) {
        ARXFileTree::fail(errno, path);
    }
    // In a trash, a read-only folder of the user's own is emptied as the trash itself does;
    // anywhere else its permissions stand.
    ARXFileTree::removeAt(parent.fd, parent.name, path, ARXTrash::isInTrash(path));
}

void moveItem(const Path& from, const Path& to) {
    ARXFileTree::requireKernelPath(from);
    ARXFileTree::requireKernelPath(to);
    const int err = ARXFileTree::renameNoReplace(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str());
    if (err == 0) {
        return;
    }
    if (err != EXDEV) {
        throw ARXFileTree::renameError(err, from, to);
    }
    // Another file system: the source may go only once its copy is complete. copyItem removes
    // what it made if it fails, so a failure here leaves everything as it was.
    copyItem(from, to);
    removeItem(from);
}

void replaceItem(const Path& existing, const Path& with) {
    ARXFileTree::requireKernelPath(existing);
    ARXFileTree::requireKernelPath(with);
    if (::renameat2(AT_FDCWD, with.c_str(), AT_FDCWD, existing.c_str(), RENAME_EXCHANGE) != 0) {
        const int err = errno;
        if (err == EINVAL || err == ENOSYS || err == EOPNOTSUPP || err == EXDEV) {
            throw ARXFileError(err, ARXFileError::kReplaceFailed, existing,
                               QString::fromLocal8Bit(std::strerror(err)));
        }
        if (err == ENOENT) {
            ARXFileTree::fail(err, exists(with) ? existing : with);
        }
        throw ARXFileTree::renameError(err, with, existing);
    }
    // The two have changed places: what was `existing` is at `with` now.
    removeItem(with);
}

void replaceItemByHand(const Path& existing, const Path& with) {
    const Path temporary = existing + ".atrium-temp";
    moveItem(existing, temporary);
    try {
        moveItem(with, existing);
    } catch (const ARXFileError&) {
        try {
            moveItem(temporary, existing);
        } catch (const ARXFileError& back) {
            ARXConsole::line("Atrium: could not put " + temporary +
                             " back in its place: " + back.what());
        }
        throw;
    }
    removeItem(temporary);
}

void replaceItemSafely(const Path& existing, const Path& with) {
    try {
        replaceItem(existing, with);
    } catch (const ARXFileError& error) {
        if (error.code != ARXFileError::kReplaceFailed) {
            throw;
        }
        replaceItemByHand(existing, with);
    }
}

} // namespace ARXFileOperations
