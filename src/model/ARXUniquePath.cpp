#include "model/ARXUniquePath.h"

#include "app/ARXConf.h"
#include "platform/ARXFileStatus.h"
#include "platform/ARXMimeTypes.h"

#include <algorithm>
#include <string>

namespace {

// Anything at the path, links not followed: a name taken by a dangling link is still taken.
bool occupied(const Path& path) {
    return ARXFileStatus::lstat(path).exists;
}

// Whether the text after a folder's dot names a type, so that the folder counts as having an
// extension. Package extensions count, since such folders are documents of that type.
bool isKnownExtension(const std::string& extension) {
    // Text with a "/" is the rest of a path below a dotted folder, never a type.
    if (extension.empty() || extension.find('/') != std::string::npos) {
        return false;
    }
    if (ARXConf::isPackageExtension(ARXPath::extension("x." + extension))) {
        return true;
    }
    return ARXMimeTypes::typeForExtension(extension) != QLatin1String(ARXMimeTypes::kDataType);
}

// The stem of a name that ends in " N" (N a number without leading zero): the text before that
// blank. nullopt when the base does not end so.
std::optional<std::string> stemBeforeNumber(const std::string& base) {
    size_t digits = base.size();
    while (digits > 0 && base[digits - 1] >= '0' && base[digits - 1] <= '9') {
        --digits;
    }
    if (digits == base.size() || base[digits] == '0' || digits == 0 || base[digits - 1] != ' ') {
        return std::nullopt;
    }
    return base.substr(0, digits - 1);
}

} // namespace

Path uniquePath(const Path& path, const std::vector<Path>& taken) {
    if (!occupied(path)) {
        return path;
    }

    std::string base = path;
    std::string ext;
    const size_t dot = path.rfind('.');
    if (dot != Path::npos && dot + 1 < path.size()) {
        const std::string after = path.substr(dot + 1);
        const bool isFolder = ARXFileStatus::stat(path).isDirectory();
        if (!isFolder || isKnownExtension(after)) {
            base = path.substr(0, dot);
            ext = path.substr(dot);
        }
    }

    // "a 2" whose " 2" is taken again restarts from the stem; "a 3" with a free "a 2" stays whole.
    if (const std::optional<std::string> stem = stemBeforeNumber(base)) {
        if (occupied(*stem + " 2" + ext)) {
            base = *stem;
        }
    }

    for (unsigned long long counter = 2;; ++counter) {
        Path candidate = base + " " + std::to_string(counter) + ext;
        if (std::find(taken.begin(), taken.end(), candidate) == taken.end() &&
            !occupied(candidate)) {
            return candidate;
        }
    }
}
