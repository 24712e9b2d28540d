#include "platform/ARXFileOperations.h"

#include "platform/ARXConsole.h"
#include "platform/ARXFileTree.h"
#include "platform/ARXTemporaryItems.h"
#include "platform/ARXTrash.h"

#include <QCoreApplication>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace ARXFileOperations {

namespace {

bool exists(const Path& path) {
    struct stat st {};
    return ::lstat(path.c_str(), &st) == 0;
}

// Replacing an item by itself would first change nothing and then remove the only copy.
void refuseSameItem(const Path& existing, const Path& with) {
    if (isSameItem(existing, with)) {
        throw ARXFileError(EINVAL, EINVAL, existing,
                           QCoreApplication::translate("Atrium", "An item cannot replace itself."));
    }
}

void removeQuietly(const Path& path) {
    try {
        removeItem(path);
    } catch (const ARXFileError& error) {
        ARXConsole::line(std::string("Atrium: could not remove an unused copy: ") + error.what());
    }
}

std::optional<Path> replaceOnOneMount(const Path& existing, const Path& with);

} // namespace

bool isSameItem(const Path& a, const Path& b) {
    struct stat x {};
    struct stat y {};
    return ::lstat(a.c_str(), &x) == 0 && ::lstat(b.c_str(), &y) == 0 && x.st_dev == y.st_dev &&
           x.st_ino == y.st_ino;
}

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

bool removeFolderIfEmpty(const Path& path) {
    ARXFileTree::ParentFolder parent(path);
    if (::unlinkat(parent.fd, parent.name.c_str(), AT_REMOVEDIR) == 0) {
        return true;
    }
    if (errno == ENOTEMPTY || errno == EEXIST) {
        return false;
    }
    ARXFileTree::fail(errno, path, ARXFileError::Access::writing);
}

void moveItem(const Path& from, const Path& to, const Building& building) {
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
    copyItem(from, to, building);
    removeItem(from);
}

void replaceItem(const Path& existing, const Path& with) {
    ARXFileTree::requireKernelPath(existing);
    ARXFileTree::requireKernelPath(with);
    refuseSameItem(existing, with);
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
    // The two have changed places: what was `existing` is at `with` now. It leaves that name
    // before it is removed, so that a removal cut short by a crash leaves a temporary that is
    // cleared away later, never half of it under the name of the item that replaced it.
    const Path aside = ARXTemporaryItems::copyBeside(with);
    const bool setAside =
        ARXFileTree::renameNoReplace(AT_FDCWD, with.c_str(), AT_FDCWD, aside.c_str()) == 0;
    try {
        removeItem(setAside ? aside : with);
    } catch (const ARXFileError& error) {
        throw error.relocated(setAside ? aside : with, existing);
    }
}

void replaceItemByHand(const Path& existing, const Path& with) {
    refuseSameItem(existing, with);
    const Path temporary = ARXTemporaryItems::asideOf(existing);
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

std::optional<Path> replaceItemSafely(const Path& existing, const Path& with) {
    ARXFileTree::requireKernelPath(existing);
    ARXFileTree::requireKernelPath(with);
    refuseSameItem(existing, with);
    // A rename that must not replace tells whether `with` can move in by a rename at all (EEXIST)
    // or lies on another mount (EXDEV), which the kernel decides before it looks at the names.
    // Should `existing` have gone meanwhile, this very call has done the whole work.
    const int probe =
        ARXFileTree::renameNoReplace(AT_FDCWD, with.c_str(), AT_FDCWD, existing.c_str());
    if (probe == 0) {
        return std::nullopt;
    }
    if (probe != EEXIST && probe != EXDEV) {
        throw ARXFileTree::renameError(probe, with, existing);
    }
    if (probe == EEXIST) {
        return replaceOnOneMount(existing, with);
    }
    // From another file system: copied beside the destination first, while the destination is
    // still whole, and the source removed only once the copy stands in its place.
    const Path staged = ARXTemporaryItems::copyBeside(existing);
    std::optional<Path> trashed;
    try {
        copyItem(with, staged);
    } catch (const ARXFileError& error) {
        throw error.relocated(staged, existing);
    }
    try {
        trashed = replaceOnOneMount(existing, staged);
    } catch (const ARXFileError&) {
        removeQuietly(staged);
        throw;
    }
    removeItem(with);
    return trashed;
}

namespace {

// `with` can move to `existing` by a rename. The old item goes to the trash first, and `with`
// takes its name right after, so the name is empty only between two renames. Where no trash will
// take the old item, it is replaced for good, as asked.
std::optional<Path> replaceOnOneMount(const Path& existing, const Path& with) {
    Path trashed;
    try {
        trashed = ARXTrash::trashItem(existing);
    } catch (const ARXFileError& refused) {
        try {
            replaceItem(existing, with);
        } catch (const ARXFileError& error) {
            if (error.code != ARXFileError::kReplaceFailed) {
                throw;
            }
            replaceItemByHand(existing, with);
        }
        ARXConsole::line("Atrium: replaced " + existing +
                         " for good, since it could not go to the trash: " + refused.what());
        return std::nullopt;
    }
    if (const int err =
            ARXFileTree::renameNoReplace(AT_FDCWD, with.c_str(), AT_FDCWD, existing.c_str())) {
        // Someone took the name in between: the old item comes back out of the trash, and with it
        // its records there.
        try {
            ARXTrash::moveItem(trashed, existing);
        } catch (const ARXFileError& stays) {
            ARXConsole::line("Atrium: " + existing + " stays in the trash as " + trashed + ": " +
                             stays.what());
        }
        throw ARXFileTree::renameError(err, with, existing);
    }
    return trashed;
}

} // namespace

} // namespace ARXFileOperations
