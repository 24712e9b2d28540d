#include "platform/ARXFileDescriptor.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

void ARXFileDescriptor::reset(int fd) {
    if (_fd >= 0) {
        ::close(_fd);
    }
    _fd = fd;
}

ARXFileDescriptor ARXFileDescriptor::openRegularFile(const Path& path, int* error) {
    auto fail = [&](int code) {
        if (error) {
            *error = code;
        }
        return ARXFileDescriptor();
    };
    if (!ARXIsKernelPath(path)) {
        return fail(path.empty() ? ENOENT : EINVAL);
    }
    struct stat st {};
    if (::stat(path.c_str(), &st) != 0) {
        return fail(errno);
    }
    if (!S_ISREG(st.st_mode)) {
        return fail(S_ISDIR(st.st_mode) ? EISDIR : EINVAL);
    }
    // O_NONBLOCK keeps the open itself from waiting should a FIFO have taken the file's place
    // since the check; it has no effect on reading a regular file.
    ARXFileDescriptor fd(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK));
    if (!fd.isValid()) {
        return fail(errno);
    }
    if (::fstat(fd.get(), &st) != 0) {
        return fail(errno);
    }
    if (!S_ISREG(st.st_mode)) {
        return fail(S_ISDIR(st.st_mode) ? EISDIR : EINVAL);
    }
    return fd;
}

bool ARXFileDescriptor::readPrefix(int fd, size_t maxBytes, std::string& out, int* error) {
    // Grows with what is there rather than reserving maxBytes: most files read this way are far
    // smaller than their cap.
    out.clear();
    char buffer[65536];
    while (out.size() < maxBytes) {
        const size_t want = std::min(sizeof buffer, maxBytes - out.size());
        const ssize_t n = ::pread(fd, buffer, want, off_t(out.size()));
        if (n < 0) {
            if (errno == EINTR) {
                continue;
            }
            if (error) {
                *error = errno;
            }
            out.clear();
            return false;
        }
        if (n == 0) {
            break;
        }
        out.append(buffer, size_t(n));
    }
    return true;
}
