#include "app/ARXFavorites.h"

#include "app/ARXConf.h"
#include "app/ARXNotificationNames.h"
#include "platform/ARXNotificationCenter.h"

namespace ARXFavorites {

namespace {

void store(const QStringList& urls) {
    ARXConf::cached_favorite_urls().setValue(urls);
    ARXNotificationCenter::shared().post(ARXNotificationName::rv_cached_favorite_urls_changed);
}

} // namespace

QString normalized(const QString& url) {
    return url.endsWith(u'/') ? url : url + u'/';
}

bool isFavorite(const QString& url) {
    return ARXConf::cached_favorite_urls().value().contains(normalized(url));
}

bool toggleFavorite(const QString& url) {
    const QString entry = normalized(url);
    QStringList urls = ARXConf::cached_favorite_urls().value();
    const bool wasFavorite = urls.removeAll(entry) > 0;
    if (!wasFavorite) {
        urls.append(entry);
    }
    store(urls);
    return !wasFavorite;
}

bool replaceFavorite(const QString& oldUrl, const QString& newUrl) {
    const QString oldEntry = normalized(oldUrl);
    const QString newEntry = normalized(newUrl);
    QStringList urls = ARXConf::cached_favorite_urls().value();
    const qsizetype position = urls.indexOf(oldEntry);
    if (position < 0) {
        return false;
    }
    urls[position] = newEntry;
    for (qsizetype i = urls.size() - 1; i >= 0; --i) {
        if (i != position && urls[i] == newEntry) {
            urls.removeAt(i);
        }
    }
    store(urls);
    return true;
}

} // namespace ARXFavorites
