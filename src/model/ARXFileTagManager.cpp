#include "model/ARXFileTagManager.h"

#include "app/ARXConf.h"
#include "app/ARXNotificationNames.h"
#include "app/ARXStoredNumber.h"
#include "platform/ARXFileIO.h"
#include "platform/ARXNotificationCenter.h"
#include "platform/ARXResourceValues.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

const std::vector<ARXTagColor>& ARXFileTagManager::colors() const {
    static const std::vector<ARXTagColor> table = {0x000000, 0x9C9CA0, 0x5DCF64, 0xB370D5,
                                                   0x438DF8, 0xF7CF51, 0xF86056, 0xF7A24C};
    return table;
}

const QStringList& ARXFileTagManager::labelNames() {
    static const QStringList names = {QCoreApplication::translate("Atrium", "Gray"),
                                      QCoreApplication::translate("Atrium", "Green"),
                                      QCoreApplication::translate("Atrium", "Purple"),
                                      QCoreApplication::translate("Atrium", "Blue"),
                                      QCoreApplication::translate("Atrium", "Yellow"),
                                      QCoreApplication::translate("Atrium", "Red"),
                                      QCoreApplication::translate("Atrium", "Orange")};
    return names;
}

std::shared_ptr<ARXFileTagManager> ARXFileTagManager::shared() {
    static const std::shared_ptr<ARXFileTagManager> manager = [] {
        auto m =
            std::make_shared<ARXFileTagManager>(ARXPath::join(ARXConf::dataRoot(), "tags.json"));
        m->refresh();
        ARXTagColorSource::install(m);
        return m;
    }();
    return manager;
}

ARXFileTagManager::ARXFileTagManager(Path tableFile) : _tableFile(std::move(tableFile)) {}

void ARXFileTagManager::refresh() {
    const ARXFileStatus status = ARXFileStatus::stat(_tableFile);
    const ARXFileTime modified = status.exists ? status.modified : ARXFileTime{};
    if (status.exists && _tableMTime == modified && !_tagColorIndexes.isEmpty()) {
        return;
    }
    _tableMTime = modified;
    _tagColorIndexes.clear();
    // A missing or broken table leaves every tag without colour; nothing to tell the user.
    const auto data = ARXFileIO::readFile(_tableFile, 4u << 20);
    if (!data) {
        return;
    }
    const QJsonDocument doc =
        QJsonDocument::fromJson(QByteArray::fromRawData(data->data(), qsizetype(data->size())));
    for (const QJsonValue& item : doc.array()) {
        const QJsonObject entry = item.toObject();
        const QJsonValue name = entry.value(QStringLiteral("n"));
        const std::optional<qint64> number =
            ARXStoredNumber::integer(entry.value(QStringLiteral("l")));
        if (!name.isString() || !number) {
            continue;
        }
        _tagColorIndexes.insert(name.toString(), int(*number));
    }
}

std::optional<std::string> ARXFileTagManager::mergedTags(std::string_view present,
                                                         const QStringList& tags) {
    const std::optional<std::string> formatted = ARXResourceValues::formatTags(tags);
    if (!formatted) {
        return std::nullopt;
    }
    // The names as the file's tags are shown; a present tag is kept when its name stays.
    const QStringList wanted = ARXResourceValues::parseTags(*formatted);
    std::string merged;
    QStringList kept;
    auto append = [&merged](std::string_view part) {
        if (!merged.empty()) {
            merged.push_back(',');
        }
        merged.append(part);
    };
    // The same split as the reading of tags, so that each part is one tag as shown.
    while (!present.empty()) {
        const size_t end = present.find_first_of(std::string_view(",\0", 2));
        const std::string_view part = present.substr(0, end);
        present.remove_prefix(end == std::string_view::npos ? present.size() : end + 1);
        const QStringList name = ARXResourceValues::parseTags(part);
        if (!name.isEmpty() && wanted.contains(name.front())) {
            append(part);
            kept.append(name.front());
        }
    }
    for (const QString& name : wanted) {
        if (!kept.contains(name)) {
            append(*ARXResourceValues::formatTags({name}));
        }
    }
    return merged;
}

int ARXFileTagManager::setTags(const Path& path, const QStringList& tags) {
    int error = 0;
    const std::optional<std::string> present = ARXResourceValues::readTagAttribute(path, &error);
    if (!present) {
        return error;
    }
    const std::optional<std::string> merged = mergedTags(*present, tags);
    if (!merged) {
        return EINVAL;
    }
    if (const int failed = ARXResourceValues::writeTagAttribute(path, *merged)) {
        return failed;
    }
    ARXNotificationCenter::shared().post(ARXNotificationName::rv_file_tags_changed,
                                         {{ARXNotificationKey::url, ARXPath::fileURLString(path)},
                                          {ARXNotificationKey::path, ARXPath::toStoredText(path)},
                                          {ARXNotificationKey::tags, tags}});
    return 0;
}
