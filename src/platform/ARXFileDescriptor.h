#pragma once

#include "platform/ARXPath.h"

#include <utility>

// An owned file descriptor, closed when it goes. Move-only.
class ARXFileDescriptor {
public:
    ARXFileDescriptor() = default;
    explicit ARXFileDescriptor(int fd) : _fd(fd) {}
    ~ARXFileDescriptor() { reset(); }
    ARXFileDescriptor(ARXFileDescriptor&& other) noexcept : _fd(other.release()) {}
    ARXFileDescriptor& operator=(ARXFileDescriptor&& other) noexcept {
        if (this != &other) {
            reset(other.release());
        }
        return *this;
    }
    ARXFileDescriptor(const ARXFileDescriptor&) = delete;
    ARXFileDescriptor& operator=(const ARXFileDescriptor&) = delete;

    int get() const { return _fd; }
    bool isValid() const { return _fd >= 0; }
    int release() { return std::exchange(_fd, -1); }
    void reset(int fd = -1);

    // Opens an existing regular file for reading, following symbolic links. Readers of content
    // (hidden lists, type sniffing, media headers) go through here, because opening anything else
    // is unsafe for them: a FIFO blocks the opener until a writer comes, a device may have side
    // effects. The item is checked before opening and the descriptor again after, so a swap in
    // between is caught too. Fails with EISDIR for a folder, EINVAL for any other non-regular item
    // and for a path holding a NUL byte, or the errno of stat/open.
    static ARXFileDescriptor openRegularFile(const Path& path, int* error = nullptr);

    // Reads up to maxBytes from the start of the file (fewer at its end). Answers false with
    // *error on a read failure.
    static bool readPrefix(int fd, size_t maxBytes, std::string& out, int* error = nullptr);

private:
    int _fd = -1;
};

// Whether a Path can be handed to the kernel as a C string: a NUL byte inside would silently name
// another file.
inline bool ARXIsKernelPath(const Path& path) {
    return !path.empty() && path.find('\0') == Path::npos;
}
