#include "ui/ARXConflictDialog.h"

#include "support/ARXTestEnvironment.h"
#include "ui/ARXElidedLabel.h"

#include <QCheckBox>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QTest>

#include <optional>
#include <vector>

using Action = ARXFileOperationConflictAction;

namespace {

struct Answered {
    Action action;
    bool applyToAll;
};

class ARXConflictDialogTest : public ARXTestEnvironment {
protected:
    void SetUp() override {
        ARXTestEnvironment::SetUp();
        _window.resize(600, 400);
        _window.show();
        writeFile(root() + "/report.txt", "text");
    }

    ARXConflictQuestion question(bool single, bool folders) const {
        return {root() + "/report.txt", QStringLiteral("report.txt"),
                QStringLiteral("The target already exists!"), single, folders};
    }

    // Asks over the test window; every answer lands in `answers`.
    QPointer<ARXConflictDialog> ask(bool single, bool folders = false) {
        QPointer<ARXConflictDialog> dialog = ARXConflictDialog::ask(
            question(single, folders),
            [this](Action action, bool all) {
                answers.push_back({action, all});
            },
            &_window);
        EXPECT_TRUE(waitUntil([&] { return dialog && dialog->isVisible(); }));
        return dialog;
    }

    std::vector<Answered> answers;

private:
    QWidget _window;
};

TEST_F(ARXConflictDialogTest, ShowsTheItemAndEachButtonAnswersItsAction) {
    for (const Action action : {Action::replace, Action::skip, Action::keepBoth, Action::stop}) {
        for (const bool all : {false, true}) {
            answers.clear();
            QPointer<ARXConflictDialog> dialog = ask(false);
            EXPECT_EQ(dialog->nameLabel()->fullText(), QStringLiteral("report.txt"));
            EXPECT_EQ(dialog->noteLabel()->text(), QStringLiteral("The target already exists!"));
            EXPECT_FALSE(dialog->iconImageView()->pixmap().isNull());
            ASSERT_TRUE(dialog->applyToAllButton()->isVisible());
            dialog->applyToAllButton()->setChecked(all);
            QTest::mouseClick(dialog->button(action), Qt::LeftButton);
            ASSERT_EQ(answers.size(), 1u);
            EXPECT_EQ(answers[0].action, action);
            EXPECT_EQ(answers[0].applyToAll, all);
            // Answered dialogs go away by themselves.
            EXPECT_TRUE(waitUntil([&] { return dialog.isNull(); }));
        }
    }
}

// Merge is offered for a folder onto a folder only.
TEST_F(ARXConflictDialogTest, AFolderOntoAFolderCanBeMerged) {
    QPointer<ARXConflictDialog> dialog = ask(false);
    EXPECT_EQ(dialog->button(Action::merge), nullptr);
    QTest::mouseClick(dialog->button(Action::skip), Qt::LeftButton);

    dialog = ask(false, true);
    ASSERT_NE(dialog->button(Action::merge), nullptr);
    EXPECT_TRUE(dialog->button(Action::merge)->isVisible());
    QTest::mouseClick(dialog->button(Action::merge), Qt::LeftButton);
    ASSERT_EQ(answers.size(), 2u);
    EXPECT_EQ(answers[1].action, Action::merge);
}

TEST_F(ARXConflictDialogTest, TheLastItemOffersNoApplyToAll) {
    QPointer<ARXConflictDialog> dialog = ask(true);
    EXPECT_FALSE(dialog->applyToAllButton()->isVisible());
    // Even a check box ticked behind the user's back does not extend the answer.
    dialog->applyToAllButton()->setChecked(true);
    QTest::mouseClick(dialog->button(Action::skip), Qt::LeftButton);
    ASSERT_EQ(answers.size(), 1u);
    EXPECT_FALSE(answers[0].applyToAll);
}

TEST_F(ARXConflictDialogTest, AnswersExactlyOnce) {
    QPointer<ARXConflictDialog> dialog = ask(false);
    QPushButton* skip = dialog->button(Action::skip);
    dialog->button(Action::replace)->click();
    skip->click();
    QTest::keyClick(dialog, Qt::Key_Escape);
    ASSERT_EQ(answers.size(), 1u);
    EXPECT_EQ(answers[0].action, Action::replace);
    EXPECT_TRUE(waitUntil([&] { return dialog.isNull(); }));
    flushEvents();
    EXPECT_EQ(answers.size(), 1u);
}

TEST_F(ARXConflictDialogTest, MustBeAnsweredReturnKeepsBothAndEscapeStops) {
    QPointer<ARXConflictDialog> dialog = ask(false);
    EXPECT_FALSE(dialog->windowFlags() & Qt::WindowCloseButtonHint);
    EXPECT_EQ(dialog->minimumSize(), dialog->maximumSize());
    // A close request from the window manager is refused.
    EXPECT_FALSE(dialog->close());
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_TRUE(answers.empty());

    QTest::keyClick(dialog, Qt::Key_Return);
    ASSERT_EQ(answers.size(), 1u);
    EXPECT_EQ(answers[0].action, Action::keepBoth);

    answers.clear();
    dialog = ask(false);
    QTest::keyClick(dialog, Qt::Key_Escape);
    ASSERT_EQ(answers.size(), 1u);
    EXPECT_EQ(answers[0].action, Action::stop);
    EXPECT_FALSE(answers[0].applyToAll);
}

TEST_F(ARXConflictDialogTest, ADialogDestroyedUnansweredStopsTheBatch) {
    delete ask(false).data();
    // The answer comes from the event loop, not from the destructor.
    EXPECT_TRUE(answers.empty());
    ASSERT_TRUE(waitUntil([&] { return !answers.empty(); }));
    EXPECT_EQ(answers[0].action, Action::stop);
    flushEvents();
    EXPECT_EQ(answers.size(), 1u);
}

} // namespace
