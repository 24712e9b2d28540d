#pragma once

#include "platform/ARXPath.h"

#include <QJsonObject>
#include <QList>
#include <QMap>
#include <QRectF>
#include <QString>
#include <QStringList>

#include <array>
#include <optional>
#include <vector>

// The saved record of one pane. Paths are bytes; in the file they are text (see
// ARXPath::toStoredText), so a folder whose name is not UTF-8 survives a save and a load.
struct ARXSpaceData {
    qint64 viewType = 0; // ARXSpaceViewType raw value
    std::optional<qint64> lod;
    std::vector<Path> histories; // oldest first
    qint64 historyIndex = 0;
    Path root;
    std::optional<QString> sortColumn;
    std::optional<bool> sortAscend;
    std::optional<bool> sortFoldersOnTop;
    std::optional<Path> startPath;
    std::optional<std::vector<Path>> expands;
    std::optional<std::vector<Path>> selections;
    std::optional<QStringList> visibleColumns;
    std::optional<QMap<QString, double>> columnWidths;

    bool operator==(const ARXSpaceData&) const = default;
};

// The saved record of one workspace: one JSON document in the spaces folder. Its name is not in
// the file; it comes from the file name.
struct ARXAtriumData {
    QRectF frame; // window frame in screen coordinates
    std::optional<QString> hotkey;
    std::optional<bool> fullscreen;
    std::optional<bool> pinTop;
    std::optional<double> sidebarWidth;
    std::optional<qint64> layoutId;
    std::optional<QList<double>> layoutFactors;
    std::array<std::optional<ARXSpaceData>, 4> spaces; // "vd1" to "vd4"

    bool operator==(const ARXAtriumData&) const = default;

    QJsonObject toJson() const;

    // Strict decoding: a missing required key, or any key (required or optional) holding a value
    // of the wrong JSON type, makes the whole record undecodable, and *error says which key and
    // why. null counts as absent for optional keys. Unknown keys are ignored.
    static std::optional<ARXAtriumData> fromJson(const QJsonObject& object, QString* error);
    static std::optional<ARXAtriumData> fromJsonBytes(const QByteArray& bytes, QString* error);
};
