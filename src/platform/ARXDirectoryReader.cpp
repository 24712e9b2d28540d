#include "platform/ARXDirectoryReader.h"

#include "platform/ARXFileDescriptor.h"
#include "platform/ARXHiddenList.h"

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <functional>
#include <unistd.h>

namespace ARXDirectoryReader {

namespace {

ARXFileType typeOfDirent(unsigned char type) {
    switch (type) {
    case DT_UNKNOWN:
        return ARXFileType::unknown;
    case DT_REG:
        return ARXFileType::regular;
    case DT_DIR:
        return ARXFileType::directory;
    case DT_LNK:
        return ARXFileType::symlink;
    default:
        return ARXFileType::other;
    }
}

bool isDotOrDotDot(const char* name) {
    return name[0] == '.' && (name[1] == '\0' || (name[1] == '.' && name[2] == '\0'));
}

ARXFileDescriptor openFolder(const Path& folder, int flags, int* error) {
    if (!ARXIsKernelPath(folder)) {
        *error = folder.empty() ? ENOENT : EINVAL;
        return {};
    }
    ARXFileDescriptor fd(::open(folder.c_str(), flags | O_DIRECTORY | O_CLOEXEC));
    if (!fd.isValid()) {
        *error = errno;
    }
    return fd;
}

// Calls visit for every entry but "." and "..", with the folder's descriptor for reads relative
// to it. Returns 0 or the errno that stopped the walk.
int readEntries(const Path& folder, const std::function<void(const dirent&, int)>& visit) {
    int error = 0;
    ARXFileDescriptor fd = openFolder(folder, O_RDONLY, &error);
    if (!fd.isValid()) {
        return error;
    }
    // fdopendir takes the descriptor over; closedir closes it.
    DIR* handle = ::fdopendir(fd.get());
    if (!handle) {
        return errno;
    }
    fd.release();
    for (;;) {
        errno = 0;
        const dirent* entry = ::readdir(handle);
        if (!entry) {
            error = errno;
            break;
        }
        if (!isDotOrDotDot(entry->d_name)) {
            visit(*entry, ::dirfd(handle));
        }
    }
    ::closedir(handle);
    return error;
}

} // namespace

ARXDirectoryListing list(const Path& folder, Options options) {
    ARXDirectoryListing listing;
    std::optional<ARXHiddenList> hidden;
    if (options.skipHidden) {
        hidden = ARXHiddenList::load(folder);
    }
    listing.error = readEntries(folder, [&](const dirent& entry, int) {
        if (hidden && hidden->isHidden(entry.d_name)) {
            return;
        }
        listing.items.push_back({entry.d_name, typeOfDirent(entry.d_type), entry.d_ino, {}});
    });
    if (!listing.ok()) {
        listing.items.clear();
    }
    return listing;
}

ARXDirectoryListing listWithStatus(const Path& folder, Options options) {
    ARXDirectoryListing listing = list(folder, options);
    if (listing.ok()) {
        listing.error = statItems(folder, listing.items);
        if (!listing.ok()) {
            listing.items.clear(); // the folder went away in between
        }
    }
    return listing;
}

int forEachWithStatus(const Path& folder, const std::function<bool(std::string_view)>& skip,
                      const std::function<void(std::string_view, const ARXFileStatus&)>& visit) {
    std::string name;
    return readEntries(folder, [&](const dirent& entry, int dirFd) {
        if (skip && skip(entry.d_name)) {
            return;
        }
        name.assign(entry.d_name);
        visit(name, ARXFileStatus::statAt(dirFd, name, false));
    });
}

int statItems(const Path& folder, std::vector<ARXDirectoryItem>& items) {
    // Status reads need only search permission on the folder, not read permission: O_PATH.
    int error = 0;
    ARXFileDescriptor fd = openFolder(folder, O_PATH, &error);
    if (!fd.isValid()) {
        return error;
    }
    for (ARXDirectoryItem& item : items) {
        item.status = ARXFileStatus::statAt(fd.get(), item.name, false);
    }
    return 0;
}

std::optional<size_t> itemCount(const Path& folder, int* error) {
    size_t count = 0;
    const int result = readEntries(folder, [&](const dirent&, int) { ++count; });
    if (result != 0) {
        if (error) {
            *error = result;
        }
        return std::nullopt;
    }
    return count;
}

} // namespace ARXDirectoryReader
