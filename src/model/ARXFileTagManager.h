#pragma once

#include "model/ARXTagColorSource.h"
#include "platform/ARXFileStatus.h"
#include "platform/ARXPath.h"

#include <QHash>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <optional>

// Tag colours and tag writing. Tags themselves live on the files (user.xdg.tags); the colour of a
// tag comes from tags.json in the data root, a list of {"n": name, "l": colour number}, read again
// only when its modification time changes, so that every reload of a view may call refresh().
// Main thread only.
class ARXFileTagManager : public ARXTagColorSource {
public:
    static std::shared_ptr<ARXFileTagManager> shared();

    explicit ARXFileTagManager(Path tableFile);

    // The shared manager, installed as the entries' colour source on first use.

    // The names of the seven labels, for colour number 1 to 7.
    static const QStringList& labelNames();

    void refresh();

    // A tag's colour number; 0 for a tag without colour.
    int colorIndex(const QString& tag) const override { return _tagColorIndexes.value(tag, 0); }

    // The seven label colours by number, as 0xRRGGBB; index 0 stands for no colour.
    const std::vector<ARXTagColor>& colors() const override;

    // Writes a file's tags (an empty list removes them) and posts "rv_file_tags_changed" with
    // "url" (the file's URL) and "tags". On failure answers the errno and posts nothing; the caller
    // shows the alert unless it was asked to stay silent. Tags the file keeps keep their bytes as
    // other programs wrote them (not UTF-8, a byte-order mark, blanks): only what changes is
    // written anew.
    int setTags(const Path& path, const QStringList& tags);

    // The attribute's bytes for `tags` over the `present` bytes: each present tag that stays
    // keeps its bytes and its place, new tags follow in UTF-8. nullopt if a name holds a comma.
    static std::optional<std::string> mergedTags(std::string_view present, const QStringList& tags);

    Path tableFile() const { return _tableFile; }

private:
    const Path _tableFile;
    QHash<QString, int> _tagColorIndexes;
    // Compared to the nanosecond, so a table rewritten within the same second is read again.
    std::optional<ARXFileTime> _tableMTime;
};
