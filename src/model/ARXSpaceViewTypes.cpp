#include "model/ARXSpaceViewTypes.h"

namespace ARXSpaceViewColumn {

namespace {

constexpr const char* kStoredStrings[] = {
    "Name",       "Date Modified", "Size", "Kind",       "Date Last Opened",
    "Date Added", "Date Created",  "Tags", "Dimensions", "Duration",
};

} // namespace

const std::array<ARXSpaceViewColumnId, 10>& all() {
    static const std::array<ARXSpaceViewColumnId, 10> columns = {
        ARXSpaceViewColumnId::name,       ARXSpaceViewColumnId::modified,
        ARXSpaceViewColumnId::size,       ARXSpaceViewColumnId::kind,
        ARXSpaceViewColumnId::lastOpened, ARXSpaceViewColumnId::added,
        ARXSpaceViewColumnId::created,    ARXSpaceViewColumnId::tags,
        ARXSpaceViewColumnId::dimensions, ARXSpaceViewColumnId::duration,
    };
    return columns;
}

QString storedString(ARXSpaceViewColumnId column) {
    const int raw = int(column);
    if (raw < 0 || raw >= int(std::size(kStoredStrings))) {
        return QString::fromLatin1(kStoredStrings[0]);
    }
    return QString::fromLatin1(kStoredStrings[raw]);
}

std::optional<ARXSpaceViewColumnId> parse(const QString& text) {
    for (ARXSpaceViewColumnId column : all()) {
        if (text == QLatin1String(kStoredStrings[int(column)])) {
            return column;
        }
    }
    return std::nullopt;
}

} // namespace ARXSpaceViewColumn
