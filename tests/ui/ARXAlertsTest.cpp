#include "ui/ARXAlerts.h"

#include "support/ARXTestEnvironment.h"

#include <QApplication>
#include <QLabel>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <optional>

namespace {

class ARXAlertsTest : public ARXTestEnvironment {
protected:
    void SetUp() override {
        ARXTestEnvironment::SetUp();
        window.resize(600, 400);
        window.show();
    }

    static QPushButton* buttonNamed(QMessageBox* box, const QString& text) {
        for (QAbstractButton* button : box->buttons()) {
            if (button->text() == text) {
                return qobject_cast<QPushButton*>(button);
            }
        }
        return nullptr;
    }

    static QMessageBox* shownBox() {
        QMessageBox* found = nullptr;
        waitUntil([&] {
            for (QWidget* widget : QApplication::topLevelWidgets()) {
                if (auto* box = qobject_cast<QMessageBox*>(widget); box && box->isVisible()) {
                    found = box;
                }
            }
            return found != nullptr;
        });
        return found;
    }

    QWidget window;
};

TEST_F(ARXAlertsTest, DeleteConfirmationTextsForOneAndSeveralItems) {
    std::unique_ptr<QMessageBox> one(ARXAlerts::makeDeleteConfirmation(&window, 1, "a.txt"));
    EXPECT_EQ(one->text(), QStringLiteral("Are you sure you want to delete “a.txt”?"));
    EXPECT_EQ(one->informativeText(),
              QStringLiteral("This item will be deleted immediately. You can’t undo this action."));
    EXPECT_EQ(one->icon(), QMessageBox::Warning);
    EXPECT_EQ(one->windowModality(), Qt::WindowModal);

    std::unique_ptr<QMessageBox> several(ARXAlerts::makeDeleteConfirmation(&window, 3, "a.txt"));
    EXPECT_EQ(several->text(),
              QStringLiteral("Are you sure you want to delete the 3 selected items?"));
    EXPECT_EQ(several->informativeText(),
              QStringLiteral("3 items will be deleted immediately. You can’t undo this action."));
}

TEST_F(ARXAlertsTest, DeleteComesBeforeCancelAndOnlyDeleteProceeds) {
    std::optional<bool> heard;
    ARXAlerts::confirmDelete(&window, 2, QString(), [&](bool proceed) { heard = proceed; });
    QMessageBox* box = shownBox();
    ASSERT_NE(box, nullptr);
    ASSERT_EQ(box->buttons().size(), 2);
    QPushButton* remove = buttonNamed(box, QStringLiteral("Delete"));
    QPushButton* cancel = buttonNamed(box, QStringLiteral("Cancel"));
    ASSERT_TRUE(remove && cancel);
    EXPECT_LT(remove->mapTo(box, QPoint()).x(), cancel->mapTo(box, QPoint()).x());
    EXPECT_TRUE(cancel->isDefault());

    // Return cancels.
    QTest::keyClick(box, Qt::Key_Return);
    ASSERT_TRUE(waitUntil([&] { return heard.has_value(); }));
    EXPECT_FALSE(*heard);

    heard.reset();
    ARXAlerts::confirmDelete(&window, 2, QString(), [&](bool proceed) { heard = proceed; });
    box = shownBox();
    ASSERT_NE(box, nullptr);
    QTest::keyClick(box, Qt::Key_Escape);
    ASSERT_TRUE(waitUntil([&] { return heard.has_value(); }));
    EXPECT_FALSE(*heard);

    heard.reset();
    ARXAlerts::confirmDelete(&window, 1, QStringLiteral("x"),
                             [&](bool proceed) { heard = proceed; });
    box = shownBox();
    ASSERT_NE(box, nullptr);
    QTest::mouseClick(buttonNamed(box, QStringLiteral("Delete")), Qt::LeftButton);
    ASSERT_TRUE(waitUntil([&] { return heard.has_value(); }));
    EXPECT_TRUE(*heard);
}

TEST_F(ARXAlertsTest, AnItemNoTrashCanTakeIsDeletedOnlyByAnExplicitChoice) {
    const QString reason = QStringLiteral("“/media/stick/a.txt”: Cannot trash on this volume");
    std::optional<bool> heard;
    auto ask = [&] {
        heard.reset();
        ARXAlerts::askDeleteImmediately(&window, QStringLiteral("a.txt"), reason,
                                        [&](bool deleteNow) { heard = deleteNow; });
        return shownBox();
    };
    QMessageBox* box = ask();
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(box->text(), QStringLiteral("“a.txt” can’t be moved to the Trash."));
    EXPECT_TRUE(box->informativeText().startsWith(reason));
    QPushButton* remove = buttonNamed(box, QStringLiteral("Delete Immediately"));
    QPushButton* cancel = buttonNamed(box, QStringLiteral("Cancel"));
    ASSERT_TRUE(remove && cancel);
    EXPECT_TRUE(cancel->isDefault());
    QTest::keyClick(box, Qt::Key_Return);
    ASSERT_TRUE(waitUntil([&] { return heard.has_value(); }));
    EXPECT_FALSE(*heard);

    box = ask();
    ASSERT_NE(box, nullptr);
    QTest::mouseClick(buttonNamed(box, QStringLiteral("Delete Immediately")), Qt::LeftButton);
    ASSERT_TRUE(waitUntil([&] { return heard.has_value(); }));
    EXPECT_TRUE(*heard);

    // A question that goes with its window still answers, and keeps the item.
    box = ask();
    ASSERT_NE(box, nullptr);
    delete box;
    ASSERT_TRUE(heard.has_value());
    EXPECT_FALSE(*heard);
}

TEST_F(ARXAlertsTest, TheWaitingFormAnswersToo) {
    // Return while the alert waits in its own loop: Cancel for a deletion, Empty Trash for the
    // Trash.
    QTimer::singleShot(0, [] { QTest::keyClick(shownBox(), Qt::Key_Return); });
    EXPECT_FALSE(ARXAlerts::execConfirmDelete(&window, 1, QStringLiteral("x")));
    QTimer::singleShot(0, [] { QTest::keyClick(shownBox(), Qt::Key_Return); });
    EXPECT_TRUE(ARXAlerts::execConfirmEmptyTrash(&window));
    QTimer::singleShot(0, [] { QTest::keyClick(shownBox(), Qt::Key_Escape); });
    EXPECT_FALSE(ARXAlerts::execConfirmEmptyTrash(&window));
}

TEST_F(ARXAlertsTest, EmptyTrashTextsAndButtons) {
    std::unique_ptr<QMessageBox> box(ARXAlerts::makeEmptyTrashConfirmation(&window));
    QPushButton* empty = buttonNamed(box.get(), QStringLiteral("Empty Trash"));
    QPushButton* cancel = buttonNamed(box.get(), QStringLiteral("Cancel"));
    ASSERT_TRUE(empty && cancel);
    EXPECT_TRUE(empty->isDefault());
    EXPECT_EQ(box->escapeButton(), cancel);
}

TEST_F(ARXAlertsTest, InformativeAlertsHaveOneOkAndShowNamesAsTheyAre) {
    bool closed = false;
    QPointer<QMessageBox> box = ARXAlerts::informError(
        &window, QStringLiteral("/tmp/<b>x</b>: Permission denied"), [&] { closed = true; });
    ASSERT_TRUE(waitUntil([&] { return box && box->isVisible(); }));
    EXPECT_EQ(box->icon(), QMessageBox::Information);
    ASSERT_EQ(box->buttons().size(), 1);
    EXPECT_EQ(box->buttons()[0]->text(), QStringLiteral("OK"));
    // A name that looks like markup is shown as typed.
    auto* informative = box->findChild<QLabel*>(QStringLiteral("qt_msgbox_informativelabel"));
    ASSERT_NE(informative, nullptr);
    EXPECT_EQ(informative->textFormat(), Qt::PlainText);
    QTest::keyClick(box, Qt::Key_Return);
    EXPECT_TRUE(waitUntil([&] { return closed && box.isNull(); }));

    box = ARXAlerts::informNameTaken(&window, "b<i>.txt");
    ASSERT_TRUE(waitUntil([&] { return box && box->isVisible(); }));
    EXPECT_EQ(box->text(),
              QStringLiteral("“b<i>.txt” already exists. Please choose a different name."));
    EXPECT_EQ(box->icon(), QMessageBox::Critical);
    EXPECT_EQ(box->textFormat(), Qt::PlainText);
    QTest::keyClick(box, Qt::Key_Escape);
    EXPECT_TRUE(waitUntil([&] { return box.isNull(); }));
}

} // namespace
