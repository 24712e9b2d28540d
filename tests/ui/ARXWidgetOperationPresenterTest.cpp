#include "ui/ARXWidgetOperationPresenter.h"

#include "support/ARXTestEnvironment.h"
#include "ui/ARXConflictDialog.h"
#include "ui/ARXElidedLabel.h"
#include "ui/ARXOperationSheet.h"
#include "ui/ARXToast.h"

#include <QApplication>
#include <QMessageBox>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>

#include <optional>

namespace {

class ARXWidgetOperationPresenterTest : public ARXTestEnvironment {
protected:
    void SetUp() override {
        ARXTestEnvironment::SetUp();
        window = new QWidget;
        window->resize(600, 400);
        window->show();
        presenter = new ARXWidgetOperationPresenter(window);
    }
    void TearDown() override {
        delete window;
        ARXTestEnvironment::TearDown();
    }

    template <class T>
    static T* shown() {
        T* found = nullptr;
        waitUntil([&] {
            for (QWidget* widget : QApplication::topLevelWidgets()) {
                if (auto* typed = qobject_cast<T*>(widget); typed && typed->isVisible()) {
                    found = typed;
                }
            }
            return found != nullptr;
        });
        return found;
    }

    QWidget* window = nullptr;
    ARXWidgetOperationPresenter* presenter = nullptr;
};

TEST_F(ARXWidgetOperationPresenterTest, TheSheetOfABatchAndItsConflict) {
    writeFile(root() + "/a.txt", "a");
    presenter->presentSheet();
    QPointer<ARXOperationSheet> sheet = presenter->sheet();
    ASSERT_TRUE(waitUntil([&] { return sheet && sheet->isVisible(); }));
    EXPECT_EQ(sheet->parentWidget(), window);

    presenter->updateSheet({root() + "/a.txt", QStringLiteral("Copying “a.txt”..."), 1, 2});
    EXPECT_EQ(sheet->titleLabel()->fullText(), QStringLiteral("Copying “a.txt”..."));
    EXPECT_EQ(sheet->progressIndicator()->value(), ARXOperationSheet::kProgressSteps / 2);

    std::optional<ARXFileOperationConflictAction> heard;
    presenter->askConflict({root() + "/a.txt", QStringLiteral("a.txt"), QStringLiteral("note")},
                           [&](ARXFileOperationConflictAction action, bool) { heard = action; });
    ARXConflictDialog* dialog = shown<ARXConflictDialog>();
    ASSERT_NE(dialog, nullptr);
    // The question stands in front of the sheet of its batch.
    EXPECT_EQ(dialog->parentWidget(), sheet.data());
    dialog->button(ARXFileOperationConflictAction::replace)->click();
    EXPECT_EQ(heard, ARXFileOperationConflictAction::replace);

    presenter->dismissSheet();
    EXPECT_EQ(presenter->sheet(), nullptr);
    EXPECT_TRUE(sheet->isHidden());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(sheet.isNull());
    // A late tick after the dismissal finds nothing to update.
    presenter->updateSheet({root() + "/a.txt", QStringLiteral("late"), 2, 2});
}

TEST_F(ARXWidgetOperationPresenterTest, AlertsAndToastsGoToTheWindow) {
    presenter->showAlert(ARXAlertStyle::informational, QStringLiteral("Error occurred!"),
                         QStringLiteral("/x: No such file or directory"));
    QMessageBox* box = shown<QMessageBox>();
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(box->parentWidget(), window);
    EXPECT_EQ(box->informativeText(), QStringLiteral("/x: No such file or directory"));
    box->buttons()[0]->click();

    presenter->showToast(QStringLiteral("“a” already exists."));
    ARXToast* toast = window->findChild<ARXToast*>();
    ASSERT_NE(toast, nullptr);
    EXPECT_EQ(toast->text(), QStringLiteral("“a” already exists."));
}

TEST_F(ARXWidgetOperationPresenterTest, LeavesTheMainRoleWithItsWindow) {
    ARXOperationPresenter::setMain(presenter);
    delete window;
    window = nullptr;
    EXPECT_EQ(ARXOperationPresenter::main(), nullptr);
}

} // namespace
