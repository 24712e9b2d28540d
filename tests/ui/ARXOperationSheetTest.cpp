#include "ui/ARXOperationSheet.h"

#include "support/ARXTestEnvironment.h"
#include "ui/ARXElidedLabel.h"

#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

namespace {

class ARXOperationSheetTest : public ARXTestEnvironment {
protected:
    void SetUp() override {
        ARXTestEnvironment::SetUp();
        window.resize(600, 400);
        window.show();
    }
    QWidget window;
};

TEST_F(ARXOperationSheetTest, ShowsTheItemTitleAndProgress) {
    writeFile(root() + "/movie.mkv", "x");
    ARXOperationSheet sheet(&window);
    sheet.present();
    ASSERT_TRUE(waitUntil([&] { return sheet.isVisible(); }));
    EXPECT_EQ(sheet.windowModality(), Qt::WindowModal);
    EXPECT_FALSE(sheet.windowFlags() & Qt::WindowCloseButtonHint);
    EXPECT_FALSE(sheet.cancelButton()->isVisible());

    sheet.setItemPath(root() + "/movie.mkv");
    sheet.setTitle(QStringLiteral("Copying “movie.mkv”..."));
    sheet.setProgress(250, 1000);
    EXPECT_FALSE(sheet.iconImageView()->pixmap().isNull());
    EXPECT_EQ(sheet.titleLabel()->fullText(), QStringLiteral("Copying “movie.mkv”..."));
    EXPECT_EQ(sheet.titleLabel()->text(), QStringLiteral("Copying “movie.mkv”..."));
    EXPECT_EQ(sheet.progressIndicator()->value(), ARXOperationSheet::kProgressSteps / 4);

    // Nothing to measure shows an empty bar; a target that outgrows its measure stays full.
    sheet.setProgress(0, 0);
    EXPECT_EQ(sheet.progressIndicator()->value(), 0);
    sheet.setProgress(1500, 1000);
    EXPECT_EQ(sheet.progressIndicator()->value(), ARXOperationSheet::kProgressSteps);
}

TEST_F(ARXOperationSheetTest, LongTitlesAreShortenedNotWidened) {
    ARXOperationSheet sheet(&window);
    sheet.present();
    ASSERT_TRUE(waitUntil([&] { return sheet.isVisible(); }));
    const int width = sheet.width();
    sheet.setTitle(QStringLiteral("Copying “%1.txt”...").arg(QString(300, QLatin1Char('n'))));
    QApplication::processEvents();
    EXPECT_EQ(sheet.width(), width);
    EXPECT_TRUE(sheet.titleLabel()->text().contains(QChar(0x2026)));
    EXPECT_TRUE(sheet.titleLabel()->text().endsWith(QStringLiteral(".txt”...")));
}

TEST_F(ARXOperationSheetTest, OnlyItsOwnerTakesItAway) {
    ARXOperationSheet sheet(&window);
    QSignalSpy cancelled(&sheet, &ARXOperationSheet::cancelled);
    sheet.present();
    ASSERT_TRUE(waitUntil([&] { return sheet.isVisible(); }));
    QTest::keyClick(&sheet, Qt::Key_Escape);
    EXPECT_FALSE(sheet.close());
    EXPECT_TRUE(sheet.isVisible());

    sheet.setCancelVisible(true);
    QTest::mouseClick(sheet.cancelButton(), Qt::LeftButton);
    EXPECT_EQ(cancelled.count(), 1);
    EXPECT_TRUE(sheet.isVisible());

    sheet.dismiss();
    EXPECT_FALSE(sheet.isVisible());
}

} // namespace
