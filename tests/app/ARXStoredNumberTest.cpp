#include "app/ARXStoredNumber.h"

#include "app/ARXAtriumData.h"
#include "app/ARXOption.h"
#include "support/ARXTestEnvironment.h"

#include <QJsonDocument>

using ARXStoredNumber::kLimit;

// Numbers a file holds are clamped as they are read, before anything turns them into an int.
TEST(ARXStoredNumber, AWorkspaceRecordHoldsOnlyNumbersAWindowCanTake) {
    QString error;
    const auto d = ARXAtriumData::fromJsonBytes(
        R"({"frame": [[-1e300, 1e300], [1e300, 5]], "sidebarWidth": 1e300, "layoutId": 1e300,
            "layoutFactors": [7, -1, 0.25],
            "vd1": {"viewType": 1e300, "lod": -1e300, "histories": [], "historyIndex": 1e300,
                    "root": "/", "columnWidths": {"Name": 1e300}}})",
        &error);
    ASSERT_TRUE(d) << error.toStdString();
    EXPECT_EQ(d->frame, QRectF(-kLimit, kLimit, kLimit, 5));
    EXPECT_EQ(d->sidebarWidth, kLimit);
    EXPECT_EQ(d->layoutId, qint64(kLimit));
    EXPECT_EQ(d->layoutFactors, (QList<double>{1, 0, 0.25}));
    const ARXSpaceData& pane = *d->spaces[0];
    EXPECT_EQ(pane.viewType, qint64(kLimit));
    EXPECT_EQ(pane.lod, -qint64(kLimit));
    EXPECT_EQ(pane.historyIndex, qint64(kLimit));
    EXPECT_EQ(pane.columnWidths->value(QStringLiteral("Name")), kLimit);
}

class ARXStoredNumberOptionTest : public ARXTestEnvironment {};

TEST_F(ARXStoredNumberOptionTest, SettingsReadClampedNumbers) {
    const Path file = ARXPath::join(root(), "defaults.json");
    writeFile(file, R"({"size": 1e300, "count": -1e300, "list": [1e300, 2], "when": 1e300})");
    ARXSettingsStore store(file);
    EXPECT_EQ(ARXOption<double>("size", 12, &store).value(), kLimit);
    EXPECT_EQ(ARXOption<qint64>("count", 0, &store).value(), -qint64(kLimit));
    EXPECT_EQ(ARXOption<QList<qint64>>("list", {}, &store).value(),
              (QList<qint64>{qint64(kLimit), 2}));
    EXPECT_TRUE(ARXOption<QDateTime>("when", QDateTime(), &store).value().isValid());
}
