#include "model/ARXSecurityScopedCache.h"

#include "app/ARXConf.h"
#include "app/ARXDataCenter.h"
#include "app/ARXNotificationNames.h"
#include "app/ARXPathRules.h"
#include "model/ARXFileTagManager.h"
#include "platform/ARXFileIO.h"
#include "platform/ARXNotificationCenter.h"
#include "platform/ARXSystemPaths.h"

#include <QJsonObject>
#include <QVariantList>

namespace {

// No sandbox on a Linux desktop: nothing to bookmark, and access needs no starting.
class SystemBookmarkBackend : public ARXBookmarkBackend {
public:
    std::optional<QByteArray> create(const Path&) override { return std::nullopt; }
    std::optional<Resolved> resolve(const QByteArray&) override { return std::nullopt; }
    bool startAccessing(const Path&) override { return true; }
};

bool liesBelow(const Path& folder, const Path& path) {
    // The prefix test of grants: path + "/" style, lower-cased where the volume ignores case.
    const Path dir = folder.ends_with('/') ? folder : folder + "/";
    if (path.starts_with(dir)) {
        return true;
    }
    const ARXVolumeRef volume = ARXDataCenter::shared().volumeFor(folder);
    return volume && !volume->caseSensitive &&
           ARXPath::caseFolded(path).starts_with(ARXPath::caseFolded(dir));
}

} // namespace

ARXSecurityScopedCache& ARXSecurityScopedCache::shared() {
    static ARXSecurityScopedCache cache = [] {
        ARXSecurityScopedCache c(std::make_unique<SystemBookmarkBackend>());
        // Files in the home folder that were unreadable before the grant are read again.
        c.setHomeGrantedHandler([] { ARXFileTagManager::shared()->refresh(); });
        return c;
    }();
    return cache;
}

ARXSecurityScopedCache::ARXSecurityScopedCache(std::unique_ptr<ARXBookmarkBackend> backend)
    : _backend(std::move(backend)) {
    // Only data is taken; anything else stored under the key is ignored. Nothing is resolved
    // here: access starts the first time the guard needs a grant.
    const QJsonObject stored = ARXConf::cached_bookmarks().value();
    for (auto it = stored.begin(); it != stored.end(); ++it) {
        if (!it.value().isString()) {
            continue;
        }
        const QByteArray data = QByteArray::fromBase64(it.value().toString().toLatin1(),
                                                       QByteArray::AbortOnBase64DecodingErrors);
        if (!data.isEmpty()) {
            _cachedbookmarks[ARXPath::fromStoredText(it.key())] = data;
        }
    }
}

bool ARXSecurityScopedCache::isAccessible(const Path& path) {
    if (ARXFileIO::isReadable(path)) {
        return true;
    }
    // Copy the keys: resolving may drop a stale grant from the map.
    std::vector<Path> keys;
    for (const auto& [key, data] : _cachedbookmarks) {
        keys.push_back(key);
    }
    for (const Path& key : keys) {
        if (ARXPathRules::isSamePath(key, path) || ARXPathRules::isInside(key, path, true)) {
            if (resolve(key)) {
                return true;
            }
        }
    }
    return false;
}

std::optional<Path> ARXSecurityScopedCache::resolve(const Path& key) {
    if (auto it = _cachedurls.find(key); it != _cachedurls.end()) {
        return it->second;
    }
    auto stored = _cachedbookmarks.find(key);
    if (stored == _cachedbookmarks.end()) {
        return std::nullopt;
    }
    const auto resolved = _backend->resolve(stored->second);
    if (!resolved || resolved->stale) {
        // The user has to grant the folder again.
        _cachedbookmarks.erase(stored);
        persist();
        return std::nullopt;
    }
    if (!_backend->startAccessing(resolved->path)) {
        return std::nullopt; // kept: it may work after the next start
    }
    _cachedurls[key] = resolved->path;
    return resolved->path;
}

void ARXSecurityScopedCache::add(const std::vector<Path>& paths) {
    if (paths.empty()) {
        return;
    }
    const Path home = ARXSystemPaths::homeDirectory();
    bool homeGranted = false;
    QVariantList urls;
    for (const Path& path : paths) {
        urls.append(ARXPath::fileURLString(path));
        const auto data = _backend->create(path);
        if (!data) {
            continue;
        }
        std::erase_if(_cachedbookmarks,
                      [&](const auto& entry) { return liesBelow(path, entry.first); });
        std::erase_if(_cachedurls, [&](const auto& entry) { return liesBelow(path, entry.first); });
        if (!homeGranted) {
            homeGranted = ARXPathRules::isSamePath(path, home) || liesBelow(path, home);
        }
        _cachedbookmarks[path] = *data;
        _cachedurls[path] = path;
    }
    persist();
    if (homeGranted && _homeGranted) {
        _homeGranted();
    }
    ARXNotificationCenter::shared().post(ARXNotificationName::rv_cached_security_scoped_updated,
                                         {{QStringLiteral("urls"), urls}});
}

void ARXSecurityScopedCache::persist() {
    QJsonObject stored;
    for (const auto& [path, data] : _cachedbookmarks) {
        stored.insert(ARXPath::toStoredText(path), QString::fromLatin1(data.toBase64()));
    }
    ARXConf::cached_bookmarks().setValue(stored);
}
