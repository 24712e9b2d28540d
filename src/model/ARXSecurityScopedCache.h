#pragma once

#include "platform/ARXPath.h"

#include <QByteArray>

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <vector>

// How grants are kept. Linux desktops have no sandbox and no bookmarks: the system backend makes
// none, so the store stays empty and every decision falls to the plain readability test. A
// sandboxed build (a portal, say) plugs in a backend that makes and resolves real ones.
class ARXBookmarkBackend {
public:
    struct Resolved {
        Path path;
        bool stale = false;
    };
    virtual ~ARXBookmarkBackend() = default;
    virtual std::optional<QByteArray> create(const Path& path) = 0;
    virtual std::optional<Resolved> resolve(const QByteArray& bookmark) = 0;
    virtual bool startAccessing(const Path& path) = 0;
};

// The one guard in front of every listing: may this path be read? A folder that fails it shows
// as "denied" with the authorise flow; nothing else keeps permission state. Main thread only.
class ARXSecurityScopedCache {
public:
    static ARXSecurityScopedCache& shared();

    explicit ARXSecurityScopedCache(std::unique_ptr<ARXBookmarkBackend> backend);

    // True when the system lets us read the path, or when a stored grant covers it (the granted
    // folder itself or anything below it).
    bool isAccessible(const Path& path);

    // Stores grants for folders the user picked. A new grant replaces the grants below it. Posts
    // "rv_cached_security_scoped_updated" with "urls", the granted folders' file URLs.
    void add(const std::vector<Path>& paths);

    // Called after a grant made the home folder readable: readers of files in the home folder
    // (tag colours, cloud libraries) read again.
    void setHomeGrantedHandler(std::function<void()> handler) { _homeGranted = std::move(handler); }

    const std::map<Path, QByteArray>& cachedbookmarks() const { return _cachedbookmarks; }
    const std::map<Path, Path>& cachedurls() const { return _cachedurls; }

private:
    std::optional<Path> resolve(const Path& key);
    void persist();

    std::unique_ptr<ARXBookmarkBackend> _backend;
    std::map<Path, QByteArray> _cachedbookmarks; // persisted in "cached_bookmarks"
    std::map<Path, Path> _cachedurls;            // grants whose access has started
    std::function<void()> _homeGranted;
};
