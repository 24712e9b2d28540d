#pragma once

#include "ops/ARXOperationPresenter.h"

#include <QString>
#include <QStringList>

#include <vector>

// A presenter that remembers what it was asked to show. Sheets are counted; a conflict, which no
// undo test expects, is answered with stop.
class ARXUndoTestPresenter : public ARXOperationPresenter {
public:
    struct Alert {
        ARXAlertStyle style;
        QString message;
        QString informativeText;
    };

    void presentSheet() override { ++sheets; }
    void updateSheet(const ARXSheetUpdate&) override {}
    void dismissSheet() override { ++dismissed; }
    void askConflict(const ARXConflictQuestion&,
                     std::function<void(ARXFileOperationConflictAction, bool)> answer) override {
        ++conflicts;
        answer(ARXFileOperationConflictAction::stop, false);
    }
    void showAlert(ARXAlertStyle style, const QString& message,
                   const QString& informativeText) override {
        alerts.push_back({style, message, informativeText});
    }
    void showToast(const QString& text) override { toasts.append(text); }

    int sheets = 0;
    int dismissed = 0;
    int conflicts = 0;
    std::vector<Alert> alerts;
    QStringList toasts;
};

// Makes a presenter the main window's for the life of a test.
class ARXMainPresenterScope {
public:
    explicit ARXMainPresenterScope(ARXOperationPresenter* presenter) {
        ARXOperationPresenter::setMain(presenter);
    }
    ~ARXMainPresenterScope() { ARXOperationPresenter::setMain(nullptr); }
    ARXMainPresenterScope(const ARXMainPresenterScope&) = delete;
    ARXMainPresenterScope& operator=(const ARXMainPresenterScope&) = delete;
};
