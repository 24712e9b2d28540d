#include "ui/ARXWidgetOperationPresenter.h"

#include "ui/ARXAlerts.h"
#include "ui/ARXConflictDialog.h"
#include "ui/ARXOperationSheet.h"
#include "ui/ARXToast.h"

#include <QWidget>

ARXWidgetOperationPresenter::ARXWidgetOperationPresenter(QWidget* window)
    : QObject(window), _window(window ? window->window() : nullptr) {}

ARXWidgetOperationPresenter::~ARXWidgetOperationPresenter() {
    if (ARXOperationPresenter::main() == this) {
        ARXOperationPresenter::setMain(nullptr);
    }
}

void ARXWidgetOperationPresenter::presentSheet() {
    if (!_window) {
        return;
    }
    if (!_sheet) {
        _sheet = new ARXOperationSheet(_window);
    }
    _sheet->present();
}

void ARXWidgetOperationPresenter::updateSheet(const ARXSheetUpdate& update) {
    // Updates between the sheet's dismissal and the last tick of its batch find no sheet.
    if (!_sheet || !_sheet->isVisible()) {
        return;
    }
    _sheet->setItemPath(update.from);
    _sheet->setTitle(update.title);
    _sheet->setProgress(update.value, update.maximum);
}

void ARXWidgetOperationPresenter::dismissSheet() {
    if (!_sheet) {
        return;
    }
    _sheet->dismiss();
    _sheet->deleteLater();
    _sheet = nullptr;
}

void ARXWidgetOperationPresenter::askConflict(
    const ARXConflictQuestion& question,
    std::function<void(ARXFileOperationConflictAction, bool applyToAll)> answer) {
    // Over the sheet, while there is one, so that the question stands in front of its batch.
    QWidget* over = _sheet && _sheet->isVisible() ? static_cast<QWidget*>(_sheet) : _window.data();
    ARXConflictDialog::ask(question, std::move(answer), over);
}

void ARXWidgetOperationPresenter::askDeleteImmediately(const Path& path, const QString& reason,
                                                       std::function<void(bool)> answer) {
    // Over the sheet, as a conflict is: the batch waits for the answer.
    QWidget* over = _sheet && _sheet->isVisible() ? static_cast<QWidget*>(_sheet) : _window.data();
    ARXAlerts::askDeleteImmediately(over, ARXPath::display(ARXPath::lastComponent(path)), reason,
                                    std::move(answer));
}

void ARXWidgetOperationPresenter::showAlert(ARXAlertStyle style, const QString& message,
                                            const QString& informativeText) {
    // Over the window, not the sheet: an engine alerts and then dismisses its sheet at once.
    ARXAlerts::inform(_window, style, message, informativeText);
}

void ARXWidgetOperationPresenter::showToast(const QString& text) {
    ARXToast::present(_window, text);
}
