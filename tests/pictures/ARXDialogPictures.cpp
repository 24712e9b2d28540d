#include "ops/ARXFileOperationConflict.h"
#include "pictures/ARXPictureEnvironment.h"
#include "support/ARXTestEnvironment.h"
#include "ui/ARXAlerts.h"
#include "ui/ARXConflictDialog.h"
#include "ui/ARXOperationSheet.h"
#include "ui/ARXToast.h"

#include <QLabel>
#include <QMessageBox>
#include <QVBoxLayout>

#include <memory>

// Pictures of the operation dialogs, for looking at them without running a whole batch.
namespace {

class ARXDialogPictures : public ARXPictureEnvironment {
protected:
    void SetUp() override {
        ARXPictureEnvironment::SetUp();
        if (IsSkipped()) {
            return;
        }
        window.resize(720, 440);
        auto* layout = new QVBoxLayout(&window);
        layout->addWidget(new QLabel(QStringLiteral("Pane content"), &window), 0, Qt::AlignCenter);
        window.show();
        writeFile(root() + "/Holiday photos from the summer of 2023 in the mountains.jpg", "");
        makeFolder(root() + "/Projects");
    }

    void save(QWidget* widget, const char* name) {
        spin(400); // layouts settle and fades end
        const QString file = pictureDir() + QLatin1Char('/') + QLatin1String(name) + ".png";
        EXPECT_TRUE(widget->grab().save(file)) << file.toStdString();
    }

    void saveAlert(QMessageBox* box, const char* name) {
        std::unique_ptr<QMessageBox> owned(box);
        box->show();
        save(box, name);
    }

    QWidget window;

private:
};

TEST_F(ARXDialogPictures, Pictures) {
    ARXOperationSheet sheet(&window);
    sheet.present();
    sheet.setItemPath(root() + "/Holiday photos from the summer of 2023 in the mountains.jpg");
    sheet.setTitle(
        QStringLiteral("Copying “Holiday photos from the summer of 2023 in the mountains.jpg”..."));
    sheet.setProgress(4.2e6, 1e7);
    save(&sheet, "sheet");
    sheet.setItemPath(root() + "/Projects");
    sheet.setTitle(QStringLiteral("Moving “Projects”..."));
    sheet.setCancelVisible(true);
    save(&sheet, "sheet-cancel");
    sheet.dismiss();

    for (const bool single : {false, true}) {
        ARXConflictDialog dialog(
            {root() + "/Projects", QStringLiteral("Projects"),
             QStringLiteral("The target already exists: Newer, Bigger."), single},
            [](ARXFileOperationConflictAction, bool) {}, &window);
        dialog.show();
        save(&dialog, single ? "conflict-last" : "conflict");
    }
    // A folder onto a folder, as the engine asks it.
    const ARXFileOperationItem copy(ARXFileOperationType::copy, root() + "/Projects",
                                    root() + "/Elsewhere/Projects");
    const ARXConflictQuestion folders = ARXFileOperationConflict::question(copy, false, true);
    ARXConflictDialog merge(
        folders, [](ARXFileOperationConflictAction, bool) {}, &window);
    merge.show();
    save(&merge, "conflict-folders");
    ARXConflictDialog longName(
        {root() + "/Holiday photos from the summer of 2023 in the mountains.jpg",
         QStringLiteral("Holiday photos from the summer of 2023 in the mountains.jpg"),
         QStringLiteral("The target already exists!"), false},
        [](ARXFileOperationConflictAction, bool) {}, &window);
    longName.show();
    save(&longName, "conflict-long-name");

    saveAlert(ARXAlerts::makeDeleteConfirmation(&window, 1, QStringLiteral("report.txt")),
              "delete-one");
    saveAlert(ARXAlerts::makeDeleteConfirmation(&window, 12, QString()), "delete-several");
    saveAlert(ARXAlerts::makeEmptyTrashConfirmation(&window), "empty-trash");
    QMessageBox* error = ARXAlerts::informError(
        &window, QStringLiteral("Cannot copy “/home/me/report.txt”: Permission denied"));
    save(error, "error");
    error->close();
    QMessageBox* taken = ARXAlerts::informNameTaken(&window, "report.txt");
    save(taken, "name-taken");
    taken->close();

    ARXToast::present(&window, QStringLiteral("“report.txt” doesn’t exists."));
    save(&window, "toast");
}

} // namespace
