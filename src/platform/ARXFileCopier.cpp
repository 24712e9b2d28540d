// copyItem: the recursive copy of the file layer.

#include "platform/ARXConsole.h"
#include "platform/ARXFileDescriptor.h"
#include "platform/ARXFileOperations.h"
#include "platform/ARXFileTree.h"
#include "platform/ARXTemporaryItems.h"

#include <QCoreApplication>

#include <array>
#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <functional>
#include <linux/fs.h>
#include <linux/magic.h>
#include <memory>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/sysmacros.h>
#include <sys/xattr.h>
#include <unistd.h>
#include <vector>

namespace {

using ARXFileTree::fail;
using Access = ARXFileError::Access;

constexpr size_t kBufferSize = size_t(1) << 20;
// From this size on, a file on a file system that cannot copy by itself is read and written here.
constexpr off_t kLargeFile = off_t(1) << 20;
// copy_file_range moves at most this much per call; larger files take several calls.
constexpr size_t kCopyRangeChunk = size_t(1) << 30;

struct DirCloser {
    void operator()(DIR* dir) const { ::closedir(dir); }
};
using DirHandle = std::unique_ptr<DIR, DirCloser>;

bool isDotOrDotDot(const char* name) {
    return name[0] == '.' && (name[1] == '\0' || (name[1] == '.' && name[2] == '\0'));
}

// File systems that have no copy of their own (no reflinks, no server-side copy): there the
// kernel's copy_file_range moves the bytes through a pipe in 64 KiB pieces, which for a large
// file is measurably slower (about an eighth, on ext4 from the page cache) than reading and
// writing MiB pieces here. For small files it still saves calls. Everywhere else it is the way
// that lets NFS and SMB copy on the server and Btrfs and XFS share blocks.
bool copiesThroughPipe(int folderFd) {
    struct statfs fs {};
    if (::fstatfs(folderFd, &fs) != 0) {
        return false;
    }
    constexpr unsigned long kNtfs3Magic = 0x7366746e;
    switch (static_cast<unsigned long>(fs.f_type)) {
    case EXT4_SUPER_MAGIC: // also ext2 and ext3
    case TMPFS_MAGIC:
    case RAMFS_MAGIC:
    case F2FS_SUPER_MAGIC:
    case MSDOS_SUPER_MAGIC:
    case EXFAT_SUPER_MAGIC:
    case kNtfs3Magic:
        return true;
    default:
        return false;
    }
}

// Errors of a transfer that come from the writing side.
bool isDestinationError(int err) {
    return err == ENOSPC || err == EDQUOT || err == EFBIG || err == EROFS;
}

// A device pair on which a way of copying data was refused, so that the following files of the
// same copy skip straight to the next way instead of asking the kernel again for each.
struct RefusedPair {
    bool set = false;
    dev_t from = 0;
    dev_t to = 0;

    bool matches(dev_t a, dev_t b) const { return set && from == a && to == b; }
    void remember(dev_t a, dev_t b) { *this = {true, a, b}; }
};

Path readLinkAt(int dirFd, const std::string& name, off_t sizeHint, const Path& path) {
    size_t capacity = sizeHint > 0 ? size_t(sizeHint) + 1 : 256;
    for (;;) {
        std::string buffer(capacity, '\0');
        const ssize_t n = ::readlinkat(dirFd, name.c_str(), buffer.data(), buffer.size());
        if (n < 0) {
            fail(errno, path);
        }
        if (size_t(n) < buffer.size()) {
            buffer.resize(size_t(n));
            return buffer;
        }
        capacity *= 2;
    }
}

// One copy of one item, with what it learns on the way (which data calls the file systems
// refuse) and the buffer of the last resort.
class Copier {
public:
    Copier(const Path& from, const Path& to, const ARXFileOperations::Building& building)
        : _from(from), _to(to), _building(building) {}

    void run();

private:
    void copyTopFile(int src, const struct stat& st, const ARXFileTree::ParentFolder& dest);
    void copyTopFolder(int src, const struct stat& st, const ARXFileTree::ParentFolder& dest);
    void refuseCopyIntoItself(const struct stat& st, int destFolder);
    std::string createTemporary(const std::function<bool(const char*)>& create);
    void announceBuilding(const std::string& temporary) const;

    void copyChild(int srcDir, const char* name, unsigned char type, int dstDir, const Path& from,
                   const Path& to);
    void copyFolder(int src, const struct stat& st, int dst, const Path& from, const Path& to);
    void copyLink(int srcDir, const std::string& name, const struct stat& st, int dstDir,
                  const Path& from, const Path& to);
    void copySpecial(const struct stat& st, int dstDir, const std::string& name, const Path& to);

    void copyData(int src, int dst, const struct stat& st, const Path& from, const Path& to);
    void readWrite(int src, int dst, const Path& from, const Path& to);
    void copyAttributes(int src, int dst, const Path& from, const Path& to);
    void finish(int src, int dst, const struct stat& st, const Path& from, const Path& to);
    void finishByName(int dstDir, const std::string& name, const struct stat& st);
    bool keepOwner(const struct stat& st, const std::function<int(uid_t, gid_t)>& chown);

    const Path& _from;
    const Path& _to;
    const ARXFileOperations::Building& _building;
    uid_t _uid = ::geteuid();
    gid_t _gid = ::getegid();
    // New items in a set-group-ID folder take the folder's group, not ours.
    bool _setgidFolder = false;
    // Everything new lies on the file system of the destination folder.
    dev_t _destinationDevice = 0;
    bool _destinationCopiesThroughPipe = false;
    RefusedPair _noClone;
    RefusedPair _noCopyRange;
    std::unique_ptr<char[]> _buffer;
};

void Copier::run() {
    ARXFileTree::requireKernelPath(_from);
    ARXFileTree::ParentFolder dest(_to);
    struct stat st {};
    if (::fstatat(AT_FDCWD, _from.c_str(), &st, AT_SYMLINK_NOFOLLOW) != 0) {
        fail(errno, _from);
    }
    struct stat existing {};
    if (::fstatat(dest.fd, dest.name.c_str(), &existing, AT_SYMLINK_NOFOLLOW) == 0) {
        fail(EEXIST, _to, Access::writing);
    }
    struct stat folder {};
    if (::fstat(dest.fd, &folder) == 0) {
        _setgidFolder = (folder.st_mode & S_ISGID) != 0;
        _destinationDevice = folder.st_dev;
    }
    _destinationCopiesThroughPipe = copiesThroughPipe(dest.fd);

    if (S_ISLNK(st.st_mode)) {
        copyLink(AT_FDCWD, _from, st, dest.fd, _from, _to);
        return;
    }
    if (!S_ISREG(st.st_mode) && !S_ISDIR(st.st_mode)) {
        copySpecial(st, dest.fd, dest.name, _to);
        return;
    }
    // O_NONBLOCK: should a FIFO have taken the file's place since the status read, opening it
    // must not wait for a writer; the type check below then refuses it.
    const int flags =
        O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC | (S_ISDIR(st.st_mode) ? O_DIRECTORY : 0);
    ARXFileDescriptor src(::open(_from.c_str(), flags));
    if (!src.isValid() || ::fstat(src.get(), &st) != 0) {
        fail(errno, _from);
    }
    if (S_ISDIR(st.st_mode)) {
        copyTopFolder(src.release(), st, dest);
    } else if (S_ISREG(st.st_mode)) {
        copyTopFile(src.get(), st, dest);
    } else {
        fail(EAGAIN, _from); // it changed under our hands
    }
}

// A single file is written unnamed (O_TMPFILE) and linked in when complete, so no reader, and no
// crash, ever finds half a file under the name. Where the file system cannot make unnamed files,
// a hidden temporary name takes that role.
void Copier::copyTopFile(int src, const struct stat& st, const ARXFileTree::ParentFolder& dest) {
    ARXFileDescriptor dst(::openat(dest.fd, ".", O_TMPFILE | O_WRONLY | O_CLOEXEC, 0600));
    if (dst.isValid()) {
        copyData(src, dst.get(), st, _from, _to);
        finish(src, dst.get(), st, _from, _to);
        // Linking an unnamed file in goes through its /proc handle; where /proc is not mounted,
        // AT_EMPTY_PATH does the same for a process allowed to use it.
        const std::string handle = "/proc/self/fd/" + std::to_string(dst.get());
        if (::linkat(AT_FDCWD, handle.c_str(), dest.fd, dest.name.c_str(), AT_SYMLINK_FOLLOW) !=
            0) {
            const int err = errno;
            if (err != ENOENT ||
                ::linkat(dst.get(), "", dest.fd, dest.name.c_str(), AT_EMPTY_PATH) != 0) {
                fail(err, _to, Access::writing);
            }
        }
        return;
    }
    if (errno != EOPNOTSUPP && errno != EISDIR && errno != EINVAL) {
        fail(errno, _to, Access::writing);
    }

    const std::string temporary = createTemporary([&](const char* name) {
        dst.reset(::openat(dest.fd, name, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
        return dst.isValid();
    });
    announceBuilding(temporary);
    try {
        copyData(src, dst.get(), st, _from, _to);
        finish(src, dst.get(), st, _from, _to);
        dst.reset();
        if (const int err = ARXFileTree::renameNoReplace(dest.fd, temporary.c_str(), dest.fd,
                                                         dest.name.c_str())) {
            fail(err, _to, Access::writing);
        }
    } catch (...) {
        ::unlinkat(dest.fd, temporary.c_str(), 0);
        throw;
    }
}

// A folder is built under a hidden name and renamed into place only when complete, as a single
// file is: a copy killed half way (a power loss, a SIGKILL) leaves the real name as it was, and
// the hidden rest is cleared away the next time the folder is listed (ARXTemporaryItems).
void Copier::copyTopFolder(int src, const struct stat& st, const ARXFileTree::ParentFolder& dest) {
    ARXFileDescriptor source(src);
    refuseCopyIntoItself(st, dest.fd);
    // Made for the owner alone while it fills; its own mode comes last.
    const std::string temporary =
        createTemporary([&](const char* name) { return ::mkdirat(dest.fd, name, 0700) == 0; });
    announceBuilding(temporary);
    try {
        ARXFileDescriptor dst(
            ::openat(dest.fd, temporary.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
        if (!dst.isValid()) {
            fail(errno, _to, Access::writing);
        }
        // Errors name the items under the destination the user chose, never the hidden name.
        copyFolder(source.release(), st, dst.get(), _from, _to);
        if (const int err = ARXFileTree::renameNoReplace(dest.fd, temporary.c_str(), dest.fd,
                                                         dest.name.c_str())) {
            fail(err, _to, Access::writing);
        }
    } catch (...) {
        try {
            ARXFileTree::removeAt(dest.fd, temporary,
                                  ARXPath::join(ARXPath::parentPath(_to), temporary), true);
        } catch (const ARXFileError& cleanup) {
            ARXConsole::line("Atrium: could not remove the unfinished copy " + _to + ": " +
                             cleanup.what());
        }
        throw;
    }
}

// Makes a new item under a fresh temporary name with `create`, which answers false with errno set
// when it fails; EEXIST means the name was taken and another is tried.
std::string Copier::createTemporary(const std::function<bool(const char*)>& create) {
    for (int attempt = 0;; ++attempt) {
        std::string name = ARXTemporaryItems::copyName();
        if (create(name.c_str())) {
            return name;
        }
        if (errno != EEXIST || attempt > 100) {
            fail(errno, _to, Access::writing);
        }
    }
}

void Copier::announceBuilding(const std::string& temporary) const {
    if (_building) {
        _building(ARXPath::join(ARXPath::parentPath(_to), temporary));
    }
}

// Copying a folder into itself would never end: every folder copied would be copied again.
void Copier::refuseCopyIntoItself(const struct stat& st, int destFolder) {
    ARXFileDescriptor folder(::openat(destFolder, ".", O_PATH | O_DIRECTORY | O_CLOEXEC));
    struct stat current {};
    if (!folder.isValid() || ::fstat(folder.get(), &current) != 0) {
        return;
    }
    for (;;) {
        if (current.st_dev == st.st_dev && current.st_ino == st.st_ino) {
            throw ARXFileError(
                EINVAL, EINVAL, _to,
                QCoreApplication::translate("Atrium", "A folder cannot be copied into itself."));
        }
        ARXFileDescriptor up(::openat(folder.get(), "..", O_PATH | O_DIRECTORY | O_CLOEXEC));
        struct stat above {};
        if (!up.isValid() || ::fstat(up.get(), &above) != 0 ||
            (above.st_dev == current.st_dev && above.st_ino == current.st_ino)) {
            return; // the root, or a folder above we may not look at
        }
        folder = std::move(up);
        current = above;
    }
}

void Copier::copyFolder(int src, const struct stat& st, int dst, const Path& from, const Path& to) {
    DirHandle dir(::fdopendir(src));
    if (!dir) {
        const int err = errno;
        ::close(src);
        fail(err, from);
    }
    const int srcFd = ::dirfd(dir.get());
    for (;;) {
        errno = 0;
        const dirent* entry = ::readdir(dir.get());
        if (!entry) {
            if (errno != 0) {
                fail(errno, from);
            }
            break;
        }
        if (isDotOrDotDot(entry->d_name)) {
            continue;
        }
        copyChild(srcFd, entry->d_name, entry->d_type, dst, ARXPath::join(from, entry->d_name),
                  ARXPath::join(to, entry->d_name));
    }
    // Last, because every child made above changed the folder's times.
    finish(srcFd, dst, st, from, to);
}

void Copier::copyChild(int srcDir, const char* name, unsigned char type, int dstDir,
                       const Path& from, const Path& to) {
    struct stat st {};
    ARXFileDescriptor src;
    if (type == DT_REG || type == DT_DIR) {
        // The common case costs one open and one fstat; the descriptor is what gets copied, so a
        // swap after the status read cannot redirect the copy.
        const int flags =
            O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC | (type == DT_DIR ? O_DIRECTORY : 0);
        src.reset(::openat(srcDir, name, flags));
        if (!src.isValid() && errno != ELOOP && errno != ENOTDIR) {
            fail(errno, from);
        }
    }
    if (src.isValid() ? ::fstat(src.get(), &st) != 0
                      : ::fstatat(srcDir, name, &st, AT_SYMLINK_NOFOLLOW) != 0) {
        fail(errno, from);
    }
    if (!src.isValid() && (S_ISREG(st.st_mode) || S_ISDIR(st.st_mode))) {
        const int flags = O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC |
                          (S_ISDIR(st.st_mode) ? O_DIRECTORY : 0);
        src.reset(::openat(srcDir, name, flags));
        if (!src.isValid() || ::fstat(src.get(), &st) != 0) {
            fail(errno, from);
        }
    }

    if (S_ISDIR(st.st_mode)) {
        if (::mkdirat(dstDir, name, 0700) != 0) {
            fail(errno, to, Access::writing);
        }
        ARXFileDescriptor dst(
            ::openat(dstDir, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
        if (!dst.isValid()) {
            fail(errno, to, Access::writing);
        }
        copyFolder(src.release(), st, dst.get(), from, to);
    } else if (S_ISREG(st.st_mode)) {
        // Inside a new folder a file is written under its own name: should anything fail, the
        // whole new folder goes.
        ARXFileDescriptor dst(
            ::openat(dstDir, name, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
        if (!dst.isValid()) {
            fail(errno, to, Access::writing);
        }
        copyData(src.get(), dst.get(), st, from, to);
        finish(src.get(), dst.get(), st, from, to);
    } else if (S_ISLNK(st.st_mode)) {
        copyLink(srcDir, name, st, dstDir, from, to);
    } else {
        copySpecial(st, dstDir, name, to);
    }
}

void Copier::copyLink(int srcDir, const std::string& name, const struct stat& st, int dstDir,
                      const Path& from, const Path& to) {
    const Path target = readLinkAt(srcDir, name, st.st_size, from);
    const std::string newName = ARXPath::lastComponent(to);
    if (::symlinkat(target.c_str(), dstDir, newName.c_str()) != 0) {
        fail(errno, to, Access::writing);
    }
    finishByName(dstDir, newName, st);
}

void Copier::copySpecial(const struct stat& st, int dstDir, const std::string& name,
                         const Path& to) {
    // Devices need the privilege to make them; without it the copy fails on this item.
    if (::mknodat(dstDir, name.c_str(), st.st_mode & (S_IFMT | 0777), st.st_rdev) != 0) {
        fail(errno, to, Access::writing);
    }
    finishByName(dstDir, name, st);
}

void Copier::copyData(int src, int dst, const struct stat& st, const Path& from, const Path& to) {
    const dev_t srcDev = st.st_dev;
    const dev_t dstDev = _destinationDevice;

    if (st.st_size > 0 && !_noClone.matches(srcDev, dstDev)) {
        if (::ioctl(dst, FICLONE, src) == 0) {
            return;
        }
        // Whatever the reason (no reflinks on this file system, two file systems, flags that
        // differ), the bytes can still be copied.
        if (errno == EOPNOTSUPP || errno == ENOTTY || errno == EXDEV || errno == EINVAL ||
            errno == ENOSYS) {
            _noClone.remember(srcDev, dstDev);
        }
    }

    off_t copied = 0;
    bool complete = false;
    const bool copyRange = st.st_size > 0 && !_noCopyRange.matches(srcDev, dstDev) &&
                           !(_destinationCopiesThroughPipe && st.st_size >= kLargeFile);
    if (copyRange) {
        while (copied < st.st_size) {
            const size_t length = std::min<size_t>(size_t(st.st_size - copied), kCopyRangeChunk);
            const ssize_t n = ::copy_file_range(src, nullptr, dst, nullptr, length, 0);
            if (n > 0) {
                copied += n;
                continue;
            }
            if (n == 0) {
                break; // the file is shorter than it was; read on to its real end below
            }
            if (errno == EINTR) {
                continue;
            }
            if (errno == EXDEV || errno == EINVAL || errno == ENOSYS || errno == EOPNOTSUPP ||
                errno == EBADF) {
                // Not between these file systems (or not on them at all): read and write from
                // where it stopped, since the offsets moved with what was copied.
                _noCopyRange.remember(srcDev, dstDev);
                break;
            }
            fail(errno, isDestinationError(errno) ? to : from,
                 isDestinationError(errno) ? Access::writing : Access::reading);
        }
        complete = copied == st.st_size;
    }
    // Also for files that say they are empty: files of the kernel's pseudo file systems have a
    // size of 0 and content all the same.
    if (!complete) {
        readWrite(src, dst, from, to);
    }
}

void Copier::readWrite(int src, int dst, const Path& from, const Path& to) {
    if (!_buffer) {
        _buffer = std::make_unique<char[]>(kBufferSize);
    }
    for (;;) {
        const ssize_t n = ::read(src, _buffer.get(), kBufferSize);
        if (n == 0) {
            return;
        }
        if (n < 0) {
            if (errno == EINTR) {
                continue;
            }
            fail(errno, from);
        }
        for (ssize_t done = 0; done < n;) {
            const ssize_t w = ::write(dst, _buffer.get() + done, size_t(n - done));
            if (w < 0) {
                if (errno == EINTR) {
                    continue;
                }
                fail(errno, to, Access::writing);
            }
            done += w;
        }
    }
}

// Extended attributes: user.* is the user's data (tags, comments) and must come along or the
// copy fails; the system's name spaces (security labels, ACLs, trusted.*) come where this process
// may set them. A destination without extended attributes at all (ENOTSUP) loses them quietly,
// as every other copy tool does.
void Copier::copyAttributes(int src, int dst, const Path& from, const Path& to) {
    std::array<char, 1024> small{};
    std::vector<char> large;
    char* names = small.data();
    ssize_t length = ::flistxattr(src, names, small.size());
    while (length < 0 && errno == ERANGE) {
        const ssize_t needed = ::flistxattr(src, nullptr, 0);
        if (needed < 0) {
            break;
        }
        large.resize(size_t(needed) + 256);
        names = large.data();
        length = ::flistxattr(src, names, large.size());
    }
    if (length < 0) {
        if (errno == ENOTSUP || errno == ENODATA) {
            return;
        }
        fail(errno, from);
    }
    std::vector<char> value(256);
    for (const char* name = names; name < names + length; name += std::strlen(name) + 1) {
        const bool userData = std::strncmp(name, "user.", 5) == 0;
        ssize_t size = ::fgetxattr(src, name, value.data(), value.size());
        while (size < 0 && errno == ERANGE) {
            const ssize_t needed = ::fgetxattr(src, name, nullptr, 0);
            if (needed < 0) {
                break;
            }
            value.resize(size_t(needed) + 256);
            size = ::fgetxattr(src, name, value.data(), value.size());
        }
        if (size < 0) {
            if (userData && errno != ENODATA && errno != ENOTSUP) {
                fail(errno, from);
            }
            continue;
        }
        if (::fsetxattr(dst, name, value.data(), size_t(size), 0) != 0 && userData &&
            errno != ENOTSUP) {
            fail(errno, to, Access::writing);
        }
    }
}

// Gives the new item the source's owner and group where permitted (only root may give files
// away; an owner may still pass a file to one of its own groups). Answers whether both were kept.
bool Copier::keepOwner(const struct stat& st, const std::function<int(uid_t, gid_t)>& chown) {
    if (st.st_uid == _uid && st.st_gid == _gid && !_setgidFolder) {
        return true;
    }
    if (chown(st.st_uid, st.st_gid) == 0) {
        return true;
    }
    return st.st_uid == _uid && chown(uid_t(-1), st.st_gid) == 0;
}

void Copier::finish(int src, int dst, const struct stat& st, const Path& from, const Path& to) {
    copyAttributes(src, dst, from, to);
    mode_t mode = st.st_mode & 07777;
    if (!keepOwner(st, [dst](uid_t u, gid_t g) { return ::fchown(dst, u, g); })) {
        // A set-ID program must not run as someone else than its owner meant.
        mode &= ~mode_t(S_ISUID | S_ISGID);
    }
    if (::fchmod(dst, mode) != 0) {
        fail(errno, to, Access::writing);
    }
    const std::array<timespec, 2> times{st.st_atim, st.st_mtim};
    if (::futimens(dst, times.data()) != 0 && errno != EPERM && errno != EOPNOTSUPP) {
        fail(errno, to, Access::writing);
    }
}

// For links and special files, which are not opened: owner, mode (not for links, which have
// none of their own) and times, by name in the folder Atrium made and nobody else writes to.
void Copier::finishByName(int dstDir, const std::string& name, const struct stat& st) {
    const char* n = name.c_str();
    const bool keptOwner = keepOwner(st, [dstDir, n](uid_t u, gid_t g) {
        return ::fchownat(dstDir, n, u, g, AT_SYMLINK_NOFOLLOW);
    });
    if (!S_ISLNK(st.st_mode)) {
        mode_t mode = st.st_mode & 07777;
        if (!keptOwner) {
            mode &= ~mode_t(S_ISUID | S_ISGID);
        }
        ::fchmodat(dstDir, n, mode, 0);
    }
    const std::array<timespec, 2> times{st.st_atim, st.st_mtim};
    ::utimensat(dstDir, n, times.data(), AT_SYMLINK_NOFOLLOW);
}

} // namespace

void ARXFileOperations::copyItem(const Path& from, const Path& to, const Building& building) {
    Copier(from, to, building).run();
}
