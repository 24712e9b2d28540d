#include "app/ARXTypedPath.h"

#include "platform/ARXFileIO.h"

std::optional<Path> ARXTypedPath::resolve(const QString& text, const Path& home,
                                          const Path& defaultFolder,
                                          const std::optional<Path>& current) {
    const QString trimmed = text.trimmed();
    Path path = trimmed.isEmpty() ? defaultFolder : ARXPath::fromText(trimmed);
    if (current && !trimmed.isEmpty() && path == *current) {
        return std::nullopt;
    }
    if (path.rfind('~', 0) == 0) {
        path = ARXPath::join(home, path.substr(1));
    } else if (path.rfind('/', 0) != 0) {
        path = ARXPath::join(home, path);
    }
    path = ARXPath::normalized(path);
    if (ARXFileIO::exists(path) && !ARXFileIO::isDirectory(path)) {
        path = ARXPath::parentPath(path);
    }
    if (current && path == *current) {
        return std::nullopt;
    }
    return path;
}
