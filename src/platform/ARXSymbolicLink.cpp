#include "platform/ARXSymbolicLink.h"

#include "platform/ARXFileDescriptor.h"

#include <cerrno>
#include <unistd.h>

namespace ARXSymbolicLink {

int create(const Path& target, const Path& linkPath) {
    if (!ARXIsKernelPath(target) || !ARXIsKernelPath(linkPath)) {
        return EINVAL;
    }
    return ::symlink(target.c_str(), linkPath.c_str()) == 0 ? 0 : errno;
}

} // namespace ARXSymbolicLink
