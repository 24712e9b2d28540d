#include "app/ARXTypedPath.h"

#include "platform/ARXFileIO.h"

#include <algorithm>
#include <vector>

namespace {

// The absolute path without empty or "." components, each ".." taking away the component before
// it (".." of "/" is "/"), and no trailing "/": one spelling per place, so that a typed path and
// the same place reached otherwise compare equal. Read as the text stands, as a shell's "cd"
// reads it: "/a/link/.." is "/a" whatever the link points to.
Path lexicallyNormal(std::string_view path) {
    std::vector<std::string_view> parts;
    for (size_t start = 0; start <= path.size();) {
        const size_t end = std::min(path.find('/', start), path.size());
        const std::string_view part = path.substr(start, end - start);
        if (part == "..") {
            if (!parts.empty()) {
                parts.pop_back();
            }
        } else if (!part.empty() && part != ".") {
            parts.push_back(part);
        }
        start = end + 1;
    }
    Path normal;
    for (const std::string_view part : parts) {
        normal += '/';
        normal += part;
    }
    return normal.empty() ? Path("/") : normal;
}

} // namespace

std::optional<Path> ARXTypedPath::resolve(const QString& text, const Path& home,
                                          const Path& defaultFolder,
                                          const std::optional<Path>& current) {
    const QString trimmed = text.trimmed();
    Path path = trimmed.isEmpty() ? defaultFolder : ARXPath::fromText(trimmed);
    // No file name holds a NUL byte; the kernel would read the path only up to it.
    path.erase(std::remove(path.begin(), path.end(), '\0'), path.end());
    if (current && !trimmed.isEmpty() && path == *current) {
        return std::nullopt;
    }
    if (path.rfind('~', 0) == 0) {
        path = ARXPath::join(home, path.substr(1));
    } else if (path.rfind('/', 0) != 0) {
        path = ARXPath::join(home, path);
    }
    path = lexicallyNormal(path);
    if (ARXFileIO::exists(path) && !ARXFileIO::isDirectory(path)) {
        path = ARXPath::parentPath(path);
    }
    if (current && path == *current) {
        return std::nullopt;
    }
    return path;
}
