#include "app/ARXPathRules.h"

#include "app/ARXDataCenter.h"

namespace ARXPathRules {

namespace {

Path withSlash(const Path& p) {
    return p.ends_with('/') ? p : p + "/";
}

bool ignoresCase(const Path& path) {
    const ARXVolumeRef volume = ARXDataCenter::shared().volumeFor(path);
    return volume && !volume->caseSensitive;
}

} // namespace

bool isSamePath(const Path& a, const Path& b) {
    const Path x = withSlash(a);
    const Path y = withSlash(b);
    if (x == y) {
        return true;
    }
    return ignoresCase(x) && ARXPath::caseFolded(x) == ARXPath::caseFolded(y);
}

bool isInside(const Path& folder, const Path& path, bool anyDepth) {
    if (folder.empty()) {
        return false;
    }
    const Path dir = withSlash(folder);
    if (!anyDepth) {
        return isSamePath(ARXPath::parentPath(path), dir);
    }
    if (dir == "/") {
        return true;
    }
    if (path.size() <= dir.size()) {
        return false;
    }
    if (path.starts_with(dir)) {
        return true;
    }
    return ignoresCase(dir) && ARXPath::caseFolded(path).starts_with(ARXPath::caseFolded(dir));
}

Path joinPath(const Path& dir, const Path& name) {
    return ARXPath::join(dir, name);
}

} // namespace ARXPathRules
