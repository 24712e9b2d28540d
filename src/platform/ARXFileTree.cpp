#include "platform/ARXFileTree.h"

#include "platform/ARXFileDescriptor.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace ARXFileTree {

namespace {

struct Child {
    std::string name;
    unsigned char type; // d_type: DT_DIR, DT_UNKNOWN, ...
};

struct DirCloser {
    void operator()(DIR* dir) const { ::closedir(dir); }
};
using DirHandle = std::unique_ptr<DIR, DirCloser>;

// All names of a folder, read before anything in it is removed: removing while reading can make
// some file systems skip names.
std::vector<Child> readChildren(DIR* dir, const Path& path) {
    std::vector<Child> children;
    for (;;) {
        errno = 0;
        const dirent* entry = ::readdir(dir);
        if (!entry) {
            if (errno != 0) {
                fail(errno, path);
            }
            return children;
        }
        const char* name = entry->d_name;
        if (name[0] == '.' && (name[1] == '\0' || (name[1] == '.' && name[2] == '\0'))) {
            continue;
        }
        children.push_back({name, entry->d_type});
    }
}

// Gives the owner full access to a folder of a tree Atrium made, so that it can be emptied.
// Through an O_PATH descriptor of the folder itself, never following a link.
bool giveOwnerAccess(int dirFd, const std::string& name) {
    ARXFileDescriptor fd(::openat(dirFd, name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    struct stat st {};
    if (!fd.isValid() || ::fstat(fd.get(), &st) != 0 || !S_ISDIR(st.st_mode)) {
        return false;
    }
    const std::string handle = "/proc/self/fd/" + std::to_string(fd.get());
    return ::chmod(handle.c_str(), (st.st_mode & 07777) | 0700) == 0;
}

void removeItem(int dirFd, const Child& item, const Path& path, bool makeWritable, bool isTop);

void removeFolder(int dirFd, const std::string& name, const Path& path, bool makeWritable,
                  bool isTop) {
    int fd = ::openat(dirFd, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (fd < 0 && errno == EACCES && makeWritable && giveOwnerAccess(dirFd, name)) {
        fd = ::openat(dirFd, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    }
    if (fd < 0 && errno == EACCES) {
        // A folder that may not be read can still go when it is empty: that takes only the right
        // to change the folder above.
        if (::unlinkat(dirFd, name.c_str(), AT_REMOVEDIR) == 0) {
            return;
        }
        errno = EACCES;
    }
    if (fd < 0) {
        const int err = errno;
        if (err == ENOTDIR || err == ELOOP) {
            // No longer a folder: a file or a link took its place since we looked. Remove that
            // item itself; a link is never entered.
            if (::unlinkat(dirFd, name.c_str(), 0) == 0 || (errno == ENOENT && !isTop)) {
                return;
            }
            fail(errno, path, ARXFileError::Access::writing);
        }
        if (err == ENOENT && !isTop) {
            return; // someone else removed it meanwhile
        }
        fail(err, path);
    }
    if (makeWritable) {
        struct stat st {};
        if (::fstat(fd, &st) == 0 && (st.st_mode & 0700) != 0700) {
            ::fchmod(fd, (st.st_mode & 07777) | 0700);
        }
    }
    DirHandle dir(::fdopendir(fd));
    if (!dir) {
        const int err = errno;
        ::close(fd);
        fail(err, path);
    }
    const std::vector<Child> children = readChildren(dir.get(), path);
    for (const Child& child : children) {
        removeItem(::dirfd(dir.get()), child, ARXPath::join(path, child.name), makeWritable, false);
    }
    dir.reset();
    if (::unlinkat(dirFd, name.c_str(), AT_REMOVEDIR) != 0 && !(errno == ENOENT && !isTop)) {
        fail(errno, path, ARXFileError::Access::writing);
    }
}

void removeItem(int dirFd, const Child& item, const Path& path, bool makeWritable, bool isTop) {
    if (item.type != DT_DIR) {
        // Most items are no folders: try the one call that removes them first. Linux answers
        // EISDIR for a folder, also when d_type could not tell.
        if (::unlinkat(dirFd, item.name.c_str(), 0) == 0) {
            return;
        }
        const int err = errno;
        if (err == ENOENT && !isTop) {
            return;
        }
        if (err != EISDIR) {
            fail(err, path, ARXFileError::Access::writing);
        }
    }
    removeFolder(dirFd, item.name, path, makeWritable, isTop);
}

bool isSearchable(const Path& folder) {
    return ::faccessat(AT_FDCWD, folder.c_str(), W_OK | X_OK, AT_EACCESS) == 0;
}

bool exists(const Path& path) {
    struct stat st {};
    return ::lstat(path.c_str(), &st) == 0;
}

} // namespace

void fail(int errnum, const Path& path, ARXFileError::Access access) {
    throw ARXFileError::fromErrno(errnum, path, access);
}

void requireKernelPath(const Path& path) {
    if (!ARXIsKernelPath(path)) {
        fail(path.empty() ? ENOENT : EINVAL, path);
    }
    // A relative path would be taken from the working folder by some calls and not by others.
    if (path.front() != '/') {
        fail(EINVAL, path);
    }
}

int renameNoReplace(int fromDir, const char* from, int toDir, const char* to) {
    if (::renameat2(fromDir, from, toDir, to, RENAME_NOREPLACE) == 0) {
        return 0;
    }
    const int err = errno;
    // EINVAL is also the answer for moving a folder into itself; the plain rename below gives the
    // same answer for that, so nothing is lost by trying it.
    if (err != EINVAL && err != ENOSYS && err != EOPNOTSUPP) {
        return err;
    }
    struct stat st {};
    if (::fstatat(toDir, to, &st, AT_SYMLINK_NOFOLLOW) == 0) {
        return EEXIST;
    }
    if (errno != ENOENT) {
        return errno;
    }
    return ::renameat(fromDir, from, toDir, to) == 0 ? 0 : errno;
}

ARXFileError renameError(int errnum, const Path& from, const Path& to) {
    using Access = ARXFileError::Access;
    switch (errnum) {
    case ENOENT:
        // The source is gone, or the folder it should go to is.
        return ARXFileError::fromErrno(errnum, exists(from) ? ARXPath::parentPath(to) : from);
    case EEXIST:
    case ENOTEMPTY:
        return ARXFileError::fromErrno(EEXIST, to);
    case EACCES:
    case EPERM:
        return ARXFileError::fromErrno(errnum, isSearchable(ARXPath::parentPath(from)) ? to : from,
                                       Access::writing);
    case ENOSPC:
    case EDQUOT:
    case EMLINK:
    case ENAMETOOLONG:
        return ARXFileError::fromErrno(errnum, to, Access::writing);
    default:
        return ARXFileError::fromErrno(errnum, from, Access::writing);
    }
}

void removeAt(int dirFd, const std::string& name, const Path& path, bool makeWritable) {
    removeItem(dirFd, {name, DT_UNKNOWN}, path, makeWritable, true);
}

ParentFolder::ParentFolder(const Path& path, ARXFileError::Access access) {
    requireKernelPath(path);
    name = ARXPath::lastComponent(path);
    if (name == "/" || name.empty() || name == "." || name == "..") {
        fail(EINVAL, path, access);
    }
    const Path folder = ARXPath::parentPath(path);
    fd = ::open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) {
        fail(errno, folder, access);
    }
}

ParentFolder::~ParentFolder() {
    if (fd >= 0) {
        ::close(fd);
    }
}

} // namespace ARXFileTree
