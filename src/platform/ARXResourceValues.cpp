#include "platform/ARXResourceValues.h"

#include "platform/ARXFileDescriptor.h"
#include "platform/ARXHiddenList.h"

#include <cerrno>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <sys/xattr.h>
#include <unistd.h>

namespace {

constexpr const char* kTagAttribute = "user.xdg.tags";

std::mutex gCloudMutex;
std::shared_ptr<const ARXCloudProvider> gCloudProvider;

ARXCloudValues cloudValues(const Path& path) {
    std::shared_ptr<const ARXCloudProvider> provider;
    {
        std::lock_guard lock(gCloudMutex);
        provider = gCloudProvider;
    }
    return provider ? (*provider)(path) : ARXCloudValues{};
}

template <typename T>
std::optional<T> failWith(int* error, int code) {
    if (error) {
        *error = code;
    }
    return std::nullopt;
}

} // namespace

std::optional<ARXResourceValues> ARXResourceValues::read(const Path& path, int* error) {
    return read(path, ARXFileStatus::lstat(path), nullptr, error);
}

std::optional<ARXResourceValues> ARXResourceValues::read(const Path& path,
                                                         const ARXFileStatus& linkStatus,
                                                         const ARXHiddenList* hiddenList,
                                                         int* error) {
    if (!linkStatus.exists) {
        return failWith<ARXResourceValues>(error, linkStatus.error ? linkStatus.error : ENOENT);
    }
    ARXResourceValues values;
    values.isSymbolicLink = linkStatus.isSymbolicLink();
    values.addedDate = linkStatus.born;
    values.totalFileSize = linkStatus.size;

    const std::string name = ARXPath::lastComponent(path);
    const Path folder = ARXPath::parentPath(path);
    if (path == "/") {
        values.isHidden = false;
    } else if (hiddenList && hiddenList->folder() == folder) {
        values.isHidden = hiddenList->isHidden(name);
    } else if (!name.empty() && name.front() == '.') {
        values.isHidden = true; // no need to read the folder's list
    } else {
        values.isHidden = ARXHiddenList::load(folder).contains(name);
    }

    values.cloud = cloudValues(path);
    return values;
}

ARXLinkResolution ARXResourceValues::resolveLink(const Path& path) {
    ARXLinkResolution result;
    const ARXFileStatus status = ARXFileStatus::lstat(path);
    if (!status.isSymbolicLink()) {
        result.error = status.exists ? EINVAL : status.error;
        return result;
    }
    // realpath(3) is the well-tried walk: it expands each link it meets, keeps count against
    // loops (ELOOP) and treats the names as bytes.
    std::unique_ptr<char, decltype(&std::free)> resolved(::realpath(path.c_str(), nullptr),
                                                         &std::free);
    if (resolved) {
        result.outcome = ARXLinkResolution::Outcome::resolved;
        result.target = Path(resolved.get());
        return result;
    }
    result.error = errno;
    switch (result.error) {
    case ENOENT:
    case ENOTDIR:
        result.outcome = ARXLinkResolution::Outcome::dangling;
        break;
    case ELOOP:
        result.outcome = ARXLinkResolution::Outcome::loop;
        break;
    default:
        result.outcome = ARXLinkResolution::Outcome::failed;
        break;
    }
    return result;
}

std::optional<Path> ARXResourceValues::readLink(const Path& path, int* error) {
    if (!ARXIsKernelPath(path)) {
        return failWith<Path>(error, path.empty() ? ENOENT : EINVAL);
    }
    // The size from lstat is only a hint: the link may change between the calls, so grow until
    // the text fits with room to spare.
    const ARXFileStatus status = ARXFileStatus::lstat(path);
    size_t capacity = status.exists && status.size > 0 ? size_t(status.size) + 1 : 256;
    for (;;) {
        std::string buffer(capacity, '\0');
        const ssize_t n = ::readlink(path.c_str(), buffer.data(), buffer.size());
        if (n < 0) {
            return failWith<Path>(error, errno);
        }
        if (size_t(n) < buffer.size()) {
            buffer.resize(size_t(n));
            return buffer;
        }
        capacity *= 2;
    }
}

std::optional<QStringList> ARXResourceValues::readTags(const Path& path, int* error) {
    const std::optional<std::string> value = readTagAttribute(path, error);
    if (!value) {
        return std::nullopt;
    }
    const QStringList tags = parseTags(*value);
    if (tags.isEmpty()) {
        return std::nullopt;
    }
    return tags;
}

std::optional<std::string> ARXResourceValues::readTagAttribute(const Path& path, int* error) {
    if (error) {
        *error = 0;
    }
    if (!ARXIsKernelPath(path)) {
        return failWith<std::string>(error, path.empty() ? ENOENT : EINVAL);
    }
    std::string value;
    for (int attempt = 0; attempt < 4; ++attempt) {
        const ssize_t size = ::lgetxattr(path.c_str(), kTagAttribute, nullptr, 0);
        if (size < 0) {
            const int code = errno;
            // No attribute, or no user attributes on this file system: simply no tags.
            if (code == ENODATA || code == ENOTSUP) {
                return std::string();
            }
            return failWith<std::string>(error, code);
        }
        value.resize(size_t(size));
        const ssize_t n = ::lgetxattr(path.c_str(), kTagAttribute, value.data(), value.size());
        if (n >= 0) {
            value.resize(size_t(n));
            return value;
        }
        if (errno == ENODATA) {
            return std::string(); // removed between the two calls
        }
        if (errno != ERANGE) { // ERANGE: it grew between the two calls; ask again
            return failWith<std::string>(error, errno);
        }
    }
    return failWith<std::string>(error, ERANGE);
}

int ARXResourceValues::setTags(const Path& path, const QStringList& tags) {
    const std::optional<std::string> value = formatTags(tags);
    return value ? writeTagAttribute(path, *value) : EINVAL;
}

int ARXResourceValues::writeTagAttribute(const Path& path, std::string_view value) {
    if (!ARXIsKernelPath(path)) {
        return path.empty() ? ENOENT : EINVAL;
    }
    if (value.empty()) {
        // Nothing to remove is success, also where the file system has no user attributes.
        if (::lremovexattr(path.c_str(), kTagAttribute) != 0 && errno != ENODATA &&
            errno != ENOTSUP) {
            return errno;
        }
        return 0;
    }
    if (::lsetxattr(path.c_str(), kTagAttribute, value.data(), value.size(), 0) != 0) {
        return errno;
    }
    return 0;
}

QStringList ARXResourceValues::parseTags(std::string_view attribute) {
    QStringList tags;
    while (!attribute.empty()) {
        const auto end = attribute.find_first_of(std::string_view(",\0", 2));
        const std::string_view part = attribute.substr(0, end);
        attribute.remove_prefix(end == std::string_view::npos ? attribute.size() : end + 1);
        const QString tag = QString::fromUtf8(part.data(), qsizetype(part.size())).trimmed();
        if (!tag.isEmpty() && !tags.contains(tag)) {
            tags.append(tag);
        }
    }
    return tags;
}

std::optional<std::string> ARXResourceValues::formatTags(const QStringList& tags) {
    QStringList names;
    for (const QString& tag : tags) {
        const QString name = tag.trimmed();
        if (name.contains(QLatin1Char(',')) || name.contains(QChar(0))) {
            return std::nullopt;
        }
        if (!name.isEmpty() && !names.contains(name)) {
            names.append(name);
        }
    }
    return names.join(QLatin1Char(',')).toStdString();
}

void ARXResourceValues::setCloudProvider(ARXCloudProvider provider) {
    std::lock_guard lock(gCloudMutex);
    gCloudProvider =
        provider ? std::make_shared<const ARXCloudProvider>(std::move(provider)) : nullptr;
}
