#include "platform/ARXFileStatus.h"

#include "platform/ARXFileDescriptor.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

namespace {

ARXFileType typeOfMode(uint32_t mode) {
    switch (mode & S_IFMT) {
    case S_IFREG:
        return ARXFileType::regular;
    case S_IFDIR:
        return ARXFileType::directory;
    case S_IFLNK:
        return ARXFileType::symlink;
    default:
        return ARXFileType::other;
    }
}

ARXFileTime fromStatx(const struct statx_timestamp& t) {
    return {t.tv_sec, t.tv_nsec};
}
ARXFileTime fromTimespec(const struct timespec& t) {
    return {t.tv_sec, uint32_t(t.tv_nsec)};
}

ARXFileStatus failure(int error) {
    ARXFileStatus status;
    status.error = error;
    return status;
}

// The same record from fstatat, for kernels or sandboxes that refuse statx. There is no birth time
// on this path.
ARXFileStatus statWithFstatat(int dirFd, const char* name, int flags) {
    struct stat st {};
    if (::fstatat(dirFd, name, &st, flags) != 0) {
        return failure(errno);
    }
    ARXFileStatus status;
    status.exists = true;
    status.mode = st.st_mode;
    status.type = typeOfMode(st.st_mode);
    status.size = uint64_t(st.st_size);
    status.uid = st.st_uid;
    status.gid = st.st_gid;
    status.linkCount = st.st_nlink;
    status.inode = st.st_ino;
    status.device = st.st_dev;
    status.modified = fromTimespec(st.st_mtim);
    status.accessed = fromTimespec(st.st_atim);
    status.changed = fromTimespec(st.st_ctim);
    return status;
}

ARXFileStatus statItem(int dirFd, const char* name, bool followLinks) {
    const int flags = AT_STATX_SYNC_AS_STAT | (followLinks ? 0 : AT_SYMLINK_NOFOLLOW);
    struct statx stx {};
    if (::statx(dirFd, name, flags, STATX_BASIC_STATS | STATX_BTIME, &stx) != 0) {
        if (errno == ENOSYS || errno == EPERM) {
            // EPERM is how some seccomp filters refuse an unknown call; a real permission
            // problem gives EACCES, and fstatat will say so again.
            return statWithFstatat(dirFd, name, followLinks ? 0 : AT_SYMLINK_NOFOLLOW);
        }
        return failure(errno);
    }
    ARXFileStatus status;
    status.exists = true;
    status.mode = stx.stx_mode;
    status.type = typeOfMode(stx.stx_mode);
    status.size = stx.stx_size;
    status.uid = stx.stx_uid;
    status.gid = stx.stx_gid;
    status.linkCount = stx.stx_nlink;
    status.inode = stx.stx_ino;
    status.device = makedev(stx.stx_dev_major, stx.stx_dev_minor);
    status.modified = fromStatx(stx.stx_mtime);
    status.accessed = fromStatx(stx.stx_atime);
    status.changed = fromStatx(stx.stx_ctime);
    if (stx.stx_mask & STATX_BTIME) {
        status.born = fromStatx(stx.stx_btime);
    }
    return status;
}

ARXFileStatus statPath(const Path& path, bool followLinks) {
    if (!ARXIsKernelPath(path)) {
        return failure(path.empty() ? ENOENT : EINVAL);
    }
    return statItem(AT_FDCWD, path.c_str(), followLinks);
}

} // namespace

ARXFileStatus ARXFileStatus::stat(const Path& path) {
    return statPath(path, true);
}

ARXFileStatus ARXFileStatus::lstat(const Path& path) {
    return statPath(path, false);
}

ARXFileStatus ARXFileStatus::statAt(int dirFd, const std::string& name, bool followLinks) {
    if (!ARXIsKernelPath(name)) {
        return failure(name.empty() ? ENOENT : EINVAL);
    }
    return statItem(dirFd, name.c_str(), followLinks);
}
