#pragma once

#include "ops/ARXOperationPresenter.h"
#include "ui/ARXOperationSheet.h"

#include <QObject>
#include <QPointer>
class QWidget;

// How operations speak to the user in a window: the progress sheet, the conflict dialog and the
// alerts are window-modal over `window`, toasts appear over its content. Owned by its window (a
// QObject child), so it goes away with it; once the window is gone, sheets and toasts are no
// longer shown, while a conflict is still asked, application-modal, since a batch waits for it.
class ARXWidgetOperationPresenter : public QObject, public ARXOperationPresenter {
    Q_OBJECT
public:
    explicit ARXWidgetOperationPresenter(QWidget* window);
    ~ARXWidgetOperationPresenter() override;

    void presentSheet() override;
    void updateSheet(const ARXSheetUpdate& update) override;
    void dismissSheet() override;
    void askConflict(
        const ARXConflictQuestion& question,
        std::function<void(ARXFileOperationConflictAction, bool applyToAll)> answer) override;
    void askDeleteImmediately(const Path& path, const QString& reason,
                              std::function<void(bool deleteNow)> answer) override;
    void showAlert(ARXAlertStyle style, const QString& message,
                   const QString& informativeText) override;
    void showToast(const QString& text) override;

    // The sheet on screen, if any.
    ARXOperationSheet* sheet() const { return _sheet; }

private:
    QPointer<QWidget> _window;
    QPointer<ARXOperationSheet> _sheet;
};
