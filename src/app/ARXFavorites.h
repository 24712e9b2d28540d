#pragma once

#include <QString>

// The user's bookmarked folders, kept in cached_favorite_urls as file URL strings that end in "/"
// (the form ARXPath::fileURLString gives). Every operation brings its argument into that form
// first, so "file:///a" and "file:///a/" are one favourite. Changes are stored and announced with
// rv_cached_favorite_urls_changed.
namespace ARXFavorites {

// The URL string with a "/" appended when it has none.
QString normalized(const QString& url);

bool isFavorite(const QString& url);

// Removes the URL if it is a favourite, else appends it. Answers whether it is one now.
bool toggleFavorite(const QString& url);

// After a folder was renamed or moved: the old URL's place in the list takes the new URL (and an
// earlier copy of the new URL goes, so that no folder is listed twice). Answers false, storing and
// posting nothing, when the old URL is no favourite.
bool replaceFavorite(const QString& oldUrl, const QString& newUrl);

} // namespace ARXFavorites
