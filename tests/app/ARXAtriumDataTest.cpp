#include "app/ARXAtriumData.h"

#include <QJsonDocument>

#include <gtest/gtest.h>

namespace {

std::optional<ARXAtriumData> decode(const char* json, QString* error = nullptr) {
    return ARXAtriumData::fromJsonBytes(QByteArray(json), error);
}

ARXSpaceData fullSpace() {
    ARXSpaceData s;
    s.viewType = 3;
    s.lod = 1;
    s.histories = {"/home/u", "/home/u/Docs", std::string("/home/u/caf\xe9")};
    s.historyIndex = 2;
    s.root = std::string("/home/u/caf\xe9");
    s.sortColumn = QStringLiteral("Name");
    s.sortAscend = true;
    s.sortFoldersOnTop = false;
    s.startPath = "/home/u";
    s.expands = std::vector<Path>{"/home/u/Docs/a"};
    s.selections = std::vector<Path>{"/home/u/Docs/a", "/home/u/line\nfeed"};
    s.visibleColumns = QStringList{QStringLiteral("Size"), QStringLiteral("Kind")};
    s.columnWidths = QMap<QString, double>{{QStringLiteral("Name"), 240.5}};
    return s;
}

} // namespace

TEST(ARXAtriumData, FullRecordRoundTripsIncludingPathsThatAreNotUtf8) {
    ARXAtriumData d;
    d.frame = QRectF(10, 20, 1280, 960);
    d.hotkey = QStringLiteral("cmd+1");
    d.fullscreen = false;
    d.pinTop = true;
    d.sidebarWidth = 200;
    d.layoutId = 7;
    d.layoutFactors = QList<double>{0.25, 0.5};
    d.spaces[0] = fullSpace();
    d.spaces[3] = fullSpace();
    const QByteArray json = QJsonDocument(d.toJson()).toJson();
    QString error;
    const auto back = ARXAtriumData::fromJsonBytes(json, &error);
    ASSERT_TRUE(back) << error.toStdString();
    EXPECT_EQ(*back, d);
    // Optional fields that are absent stay out of the file.
    EXPECT_FALSE(d.toJson().contains(QStringLiteral("vd2")));
}

TEST(ARXAtriumData, OnlyAFrameIsAWorkspaceWithoutPanes) {
    const auto d = decode(R"({"frame": [[1, 2], [3, 4]], "unknown": {"x": 1}, "vd1": null})");
    ASSERT_TRUE(d);
    EXPECT_EQ(d->frame, QRectF(1, 2, 3, 4));
    EXPECT_FALSE(d->layoutId);
    for (const auto& s : d->spaces) {
        EXPECT_FALSE(s);
    }
}

TEST(ARXAtriumData, StrictTypesMakeTheWholeRecordUndecodable) {
    QString error;
    EXPECT_FALSE(decode(R"({"frame": [[0,0],[1,1]], "vd3": {"viewType": 2, "historyIndex": 0,
        "root": "/"}})",
                        &error));
    EXPECT_TRUE(error.contains(QStringLiteral("vd3.histories"))) << error.toStdString();
    EXPECT_FALSE(decode(R"({"frame": [[0,0],[1,1]], "layoutId": 2.5})"));
    EXPECT_FALSE(decode(R"({"frame": [[0,0],[1,1]], "layoutFactors": [0.5, "x"]})"));
    EXPECT_FALSE(decode(R"({"frame": [[0,0]]})"));
    EXPECT_FALSE(decode(R"({"frame": [[0,0],[1,1]], "vd1": {"viewType": 2, "histories": [],
        "historyIndex": 0, "root": "/", "columnWidths": {"Name": "wide"}}})"));
    EXPECT_TRUE(decode(R"({"frame": [[0,0],[1,1]], "layoutId": 2.0})"));
}
