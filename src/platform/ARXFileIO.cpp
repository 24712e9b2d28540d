#include "platform/ARXFileIO.h"

#include "platform/ARXFileDescriptor.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <random>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace ARXFileIO {

namespace {

bool writeAll(int fd, std::string_view data) {
    while (!data.empty()) {
        const ssize_t n = ::write(fd, data.data(), data.size());
        if (n < 0) {
            if (errno == EINTR) {
                continue;
            }
            return false;
        }
        data.remove_prefix(size_t(n));
    }
    return true;
}

std::string randomSuffix() {
    static thread_local std::mt19937 rng{std::random_device{}()};
    static const char kChars[] = "abcdefghijklmnopqrstuvwxyz0123456789";
    std::string s(8, 'x');
    for (char& c : s) {
        c = kChars[rng() % (sizeof(kChars) - 1)];
    }
    return s;
}

} // namespace

std::optional<std::string> readFile(const Path& path, size_t maxBytes, int* error) {
    ARXFileDescriptor fd(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    auto fail = [&](int code) -> std::optional<std::string> {
        if (error) {
            *error = code;
        }
        return std::nullopt;
    };
    if (fd.get() < 0) {
        return fail(errno);
    }
    struct stat st {};
    if (::fstat(fd.get(), &st) != 0) {
        return fail(errno);
    }
    if (S_ISDIR(st.st_mode)) {
        return fail(EISDIR);
    }
    if (st.st_size > 0 && size_t(st.st_size) > maxBytes) {
        return fail(EFBIG);
    }
    std::string data;
    char buffer[65536];
    for (;;) {
        const ssize_t n = ::read(fd.get(), buffer, sizeof buffer);
        if (n < 0) {
            if (errno == EINTR) {
                continue;
            }
            return fail(errno);
        }
        if (n == 0) {
            break;
        }
        if (data.size() + size_t(n) > maxBytes) {
            return fail(EFBIG);
        }
        data.append(buffer, size_t(n));
    }
    return data;
}

int writeAtomically(const Path& requested, std::string_view data) {
    // A file kept as a link (into a dotfiles folder, say) stays a link: the new content replaces
    // the file it points to.
    Path path = requested;
    struct stat linkStatus {};
    if (::lstat(requested.c_str(), &linkStatus) == 0 && S_ISLNK(linkStatus.st_mode)) {
        if (char* resolved = ::realpath(requested.c_str(), nullptr)) {
            path = resolved;
            ::free(resolved);
        }
    }
    const Path dir = ARXPath::parentPath(path);
    const Path temp = ARXPath::join(dir, "." + ARXPath::lastComponent(path) + "." + randomSuffix());
    // Keep the permissions of the file we replace; new files are private to the user.
    mode_t mode = 0600;
    struct stat st {};
    if (::stat(path.c_str(), &st) == 0) {
        mode = st.st_mode & 07777;
    }
    ARXFileDescriptor fd(::open(temp.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode));
    if (fd.get() < 0) {
        return errno;
    }
    int result = 0;
    // open() applied the umask; the replaced file's own mode must survive as it was.
    if (::fchmod(fd.get(), mode) != 0 || !writeAll(fd.get(), data) || ::fsync(fd.get()) != 0) {
        result = errno;
    }
    if (::close(fd.release()) != 0 && result == 0) {
        result = errno;
    }
    if (result == 0 && ::rename(temp.c_str(), path.c_str()) != 0) {
        result = errno;
    }
    if (result != 0) {
        ::unlink(temp.c_str());
    }
    return result;
}

int makeDirectories(const Path& path) {
    if (path.empty() || path == "/") {
        return 0;
    }
    struct stat st {};
    if (::stat(path.c_str(), &st) == 0) {
        return S_ISDIR(st.st_mode) ? 0 : ENOTDIR;
    }
    if (errno != ENOENT) {
        return errno;
    }
    if (int parentError = makeDirectories(ARXPath::parentPath(path))) {
        return parentError;
    }
    if (::mkdir(path.c_str(), 0700) != 0 && errno != EEXIST) {
        return errno;
    }
    return 0;
}

bool exists(const Path& path) {
    struct stat st {};
    return ::lstat(path.c_str(), &st) == 0;
}

bool isDirectory(const Path& path) {
    struct stat st {};
    return ::stat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

bool isReadable(const Path& path) {
    return ::access(path.c_str(), R_OK) == 0;
}

std::optional<std::vector<std::string>> listNames(const Path& dir, int* error) {
    DIR* handle = ::opendir(dir.c_str());
    if (!handle) {
        if (error) {
            *error = errno;
        }
        return std::nullopt;
    }
    std::vector<std::string> names;
    errno = 0;
    while (dirent* entry = ::readdir(handle)) {
        const char* n = entry->d_name;
        if (n[0] == '.' && (n[1] == '\0' || (n[1] == '.' && n[2] == '\0'))) {
            continue;
        }
        names.emplace_back(n);
    }
    const int readError = errno;
    ::closedir(handle);
    if (readError != 0) {
        if (error) {
            *error = readError;
        }
        return std::nullopt;
    }
    return names;
}

Path setAside(const Path& path) {
    for (int n = 1; n < 1000; ++n) {
        const Path candidate = path + (n == 1 ? ".broken" : ".broken-" + std::to_string(n));
        // link+unlink instead of rename: rename would silently replace an earlier broken copy.
        if (::link(path.c_str(), candidate.c_str()) == 0) {
            ::unlink(path.c_str());
            return candidate;
        }
        if (errno != EEXIST) {
            if (errno == EPERM || errno == EXDEV || errno == ENOTSUP || errno == EMLINK) {
                if (!exists(candidate) && ::rename(path.c_str(), candidate.c_str()) == 0) {
                    return candidate;
                }
            }
            return {};
        }
    }
    return {};
}

std::string errorText(int error) {
    return std::strerror(error);
}

std::optional<uint64_t> availableBytes(const Path& path) {
    struct statvfs facts {};
    if (::statvfs(path.c_str(), &facts) != 0) {
        return std::nullopt;
    }
    return uint64_t(facts.f_bavail) * uint64_t(facts.f_frsize);
}

bool isListable(const Path& dir) {
    const int fd = ::open(dir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) {
        return false;
    }
    ::close(fd);
    return true;
}

int makeDirectory(const Path& path) {
    return ::mkdir(path.c_str(), 0777) == 0 ? 0 : errno;
}

} // namespace ARXFileIO
