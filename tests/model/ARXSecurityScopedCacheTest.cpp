#include "model/ARXSecurityScopedCache.h"

#include "app/ARXConf.h"
#include "app/ARXDataCenter.h"
#include "app/ARXNotificationNames.h"
#include "platform/ARXNotificationCenter.h"
#include "platform/ARXSystemPaths.h"
#include "support/ARXFakeVolumes.h"
#include "support/ARXTestEnvironment.h"

#include <QJsonObject>

#include <set>

namespace {

// Grants paths in memory the way a sandbox would; tests mark bookmarks stale or unstartable.
struct FakeBackend : ARXBookmarkBackend {
    std::set<Path> stale, unstartable;
    int resolves = 0;
    std::optional<QByteArray> create(const Path& path) override {
        if (path.find("refuse") != std::string::npos) {
            return std::nullopt;
        }
        return QByteArray::fromStdString("bm:" + path);
    }
    std::optional<Resolved> resolve(const QByteArray& bookmark) override {
        ++resolves;
        const Path path = bookmark.toStdString().substr(3);
        return Resolved{path, stale.count(path) != 0};
    }
    bool startAccessing(const Path& path) override { return unstartable.count(path) == 0; }
};

} // namespace

class ARXSecurityScopedCacheTest : public ARXTestEnvironment {
protected:
    void SetUp() override {
        ARXTestEnvironment::SetUp();
        ARXDataCenter::setVolumeReaderForTesting([] {
            return ARXVolumeList{ARXMakeVolume("/"), ARXMakeVolume("/media/fat", false)};
        });
    }
    std::unique_ptr<ARXSecurityScopedCache> makeCache() {
        auto b = std::make_unique<FakeBackend>();
        backend = b.get();
        return std::make_unique<ARXSecurityScopedCache>(std::move(b));
    }
    QStringList storedKeys() { return ARXConf::cached_bookmarks().value().keys(); }
    FakeBackend* backend = nullptr;
};

TEST_F(ARXSecurityScopedCacheTest, ReadablePathsNeverConsultTheGrants) {
    auto cache = makeCache();
    cache->add({"/secret"});
    EXPECT_TRUE(cache->isAccessible(home()));
    EXPECT_EQ(backend->resolves, 0);
    EXPECT_TRUE(ARXSecurityScopedCache::shared().isAccessible(home()));
    EXPECT_FALSE(ARXSecurityScopedCache::shared().isAccessible("/no/such/place"));
}

TEST_F(ARXSecurityScopedCacheTest, AGrantCoversItsFolderAndBelowButNotTheParent) {
    auto cache = makeCache();
    cache->add({"/granted/inner", "/media/fat/Photos"});
    auto fresh = makeCache(); // a later start: nothing resolved yet
    EXPECT_TRUE(fresh->isAccessible("/granted/inner"));
    EXPECT_TRUE(fresh->isAccessible("/granted/inner/deep/file"));
    EXPECT_FALSE(fresh->isAccessible("/granted/innerx"));
    EXPECT_FALSE(fresh->isAccessible("/granted"));
    EXPECT_EQ(backend->resolves, 1); // started once, then kept
    EXPECT_TRUE(fresh->isAccessible("/media/fat/PHOTOS/x"));
    EXPECT_FALSE(fresh->isAccessible("/media/fatter/Photos/x"));
}

TEST_F(ARXSecurityScopedCacheTest, NewGrantsReplaceTheGrantsBelowThem) {
    auto cache = makeCache();
    cache->add({"/data/deep"});
    cache->add({"/data"});
    EXPECT_EQ(storedKeys(), QStringList{QStringLiteral("/data")});
    cache->add({"/data/deeper"});
    EXPECT_EQ(storedKeys(), (QStringList{QStringLiteral("/data"), QStringLiteral("/data/deeper")}));
    cache->add({"/media/fat/Photos/a"});
    cache->add({"/media/fat/photos"});
    EXPECT_FALSE(storedKeys().contains(QStringLiteral("/media/fat/Photos/a")));
}

TEST_F(ARXSecurityScopedCacheTest, StaleGrantsAreDroppedAndUnstartableOnesKept) {
    auto cache = makeCache();
    cache->add({"/old", "/later"});
    auto fresh = makeCache();
    backend->stale.insert("/old");
    backend->unstartable.insert("/later");
    EXPECT_FALSE(fresh->isAccessible("/old/x"));
    EXPECT_FALSE(storedKeys().contains(QStringLiteral("/old")));
    EXPECT_FALSE(fresh->isAccessible("/later/x"));
    EXPECT_TRUE(storedKeys().contains(QStringLiteral("/later")));
}

TEST_F(ARXSecurityScopedCacheTest, AddNotifiesWithEveryUrlAndReReadsAfterAHomeGrant) {
    auto cache = makeCache();
    int homeGrants = 0;
    cache->setHomeGrantedHandler([&] { ++homeGrants; });
    QVariantList urls;
    ARXNotificationCenter::shared().addObserver(
        ARXNotificationName::rv_cached_security_scoped_updated, nullptr,
        [&](const ARXNotification& n) {
            urls = n.userInfo.value(QStringLiteral("urls")).toList();
        });
    cache->add({"/refuse/this", "/ok"});
    EXPECT_EQ(urls.size(), 2);
    EXPECT_EQ(storedKeys(), QStringList{QStringLiteral("/ok")});
    EXPECT_EQ(homeGrants, 0);
    cache->add({ARXPath::parentPath(home())});
    EXPECT_EQ(homeGrants, 1);
    cache->add({});
    EXPECT_EQ(homeGrants, 1);
}

TEST_F(ARXSecurityScopedCacheTest, ForeignValuesInTheStoreAreIgnored) {
    QJsonObject stored;
    stored.insert(QStringLiteral("/a"), 5);
    stored.insert(QStringLiteral("/b"), QString::fromLatin1(QByteArray("bm:/b").toBase64()));
    ARXConf::cached_bookmarks().setValue(stored);
    auto cache = makeCache();
    EXPECT_EQ(cache->cachedbookmarks().size(), 1u);
    EXPECT_TRUE(cache->isAccessible("/b/c"));
}
