#include "app/ARXToolbarConfiguration.h"

#include "app/ARXConf.h"
#include "platform/ARXNotificationCenter.h"

#include <QSet>

namespace ARXToolbarConfiguration {

namespace {

QString item(const char* word) {
    return QStringLiteral("com.brightmoor.atrium.") + QLatin1String(word);
}

} // namespace

const QStringList& allowed() {
    static const QStringList list = [] {
        QStringList built;
        for (const char* word : {"backforward", "sidebar", "viewtypes", "actions", "edit_tag",
                                 "open_in_terminal", "open_in_editor", "search", "workspace_name",
                                 "layouts", "getinfo", "quicklook", "share", "share_airdrop",
                                 "trash", "newfolder", "newfile", "hidden_files", "pintop"}) {
            built.append(item(word));
        }
        built << quickLauncher << flexibleSpace << space;
        return built;
    }();
    return list;
}

bool isAllowed(const QString& identifier) {
    static const QSet<QString> set(allowed().begin(), allowed().end());
    return set.contains(identifier);
}

bool isSpace(const QString& identifier) {
    return identifier == space || identifier == flexibleSpace;
}

QStringList defaultItems(bool hasTerminal, bool hasEditor) {
    QStringList list = {space,         item("sidebar"),       item("viewtypes"), item("actions"),
                        item("share"), item("share_airdrop"), item("edit_tag"),  space};
    if (hasTerminal) {
        list.append(item("open_in_terminal"));
    }
    if (hasEditor) {
        list.append(item("open_in_editor"));
    }
    list << quickLauncher << space << item("search") << flexibleSpace << item("workspace_name")
         << item("layouts");
    return list;
}

QStringList defaultItems() {
    return defaultItems(!ARXConf::settings_terminal_app().value().isEmpty(),
                        !ARXConf::settings_editor_app().value().isEmpty());
}

QStringList cleaned(const QStringList& items) {
    QStringList result;
    QSet<QString> seen;
    for (const QString& identifier : items) {
        if (!isAllowed(identifier)) {
            continue;
        }
        if (!isSpace(identifier)) {
            if (seen.contains(identifier)) {
                continue;
            }
            seen.insert(identifier);
        }
        result.append(identifier);
    }
    return result;
}

QStringList items() {
    const QStringList saved = cleaned(ARXConf::cached_toolbar_items().value());
    return saved.isEmpty() ? defaultItems() : saved;
}

void setItems(const QStringList& list) {
    const QStringList clean = cleaned(list);
    ARXConf::cached_toolbar_items().setValue(clean == defaultItems() ? QStringList() : clean);
    ARXNotificationCenter::shared().post(changedNotification);
}

void reset() {
    setItems(defaultItems());
}

QStringList withItem(const QStringList& items, const QString& identifier) {
    QStringList result = items;
    if (!isAllowed(identifier)) {
        return result;
    }
    if (isSpace(identifier)) {
        result.append(identifier);
        return result;
    }
    if (items.contains(identifier)) {
        return result;
    }
    // The side of the flexible space the item has in the default list; an item the default lacks
    // joins the tools on the left.
    const QStringList full = defaultItems(true, true);
    const bool rightSide =
        full.indexOf(identifier) > full.indexOf(flexibleSpace) && full.contains(identifier);
    const qsizetype flexible = items.indexOf(flexibleSpace);
    qsizetype first = 0, last = items.size();
    if (flexible >= 0) {
        first = rightSide ? flexible + 1 : 0;
        last = rightSide ? items.size() : flexible;
    }
    // The closest neighbours on that side in the allowed order (spaces have no rank: they stay
    // where the user put them).
    const qsizetype rank = allowed().indexOf(identifier);
    qsizetype after = -1, afterRank = -1;
    qsizetype before = -1, beforeRank = allowed().size();
    for (qsizetype i = first; i < last; ++i) {
        if (isSpace(items[i])) {
            continue;
        }
        const qsizetype other = allowed().indexOf(items[i]);
        if (other < rank && other > afterRank) {
            after = i;
            afterRank = other;
        } else if (other > rank && other < beforeRank) {
            before = i;
            beforeRank = other;
        }
    }
    if (after >= 0) {
        result.insert(after + 1, identifier);
    } else if (before >= 0) {
        result.insert(before, identifier);
    } else {
        result.insert(last, identifier);
    }
    return result;
}

QStringList withoutItem(const QStringList& items, const QString& identifier) {
    QStringList result = items;
    result.removeAll(identifier);
    return result;
}

bool usesSmallIcons() {
    return ARXConf::cached_toolbar_small_icons().value();
}

void setUsesSmallIcons(bool small) {
    ARXConf::cached_toolbar_small_icons().setValue(small);
    ARXNotificationCenter::shared().post(changedNotification);
}

} // namespace ARXToolbarConfiguration
