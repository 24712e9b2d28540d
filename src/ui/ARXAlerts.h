#pragma once

#include "ops/ARXOperationPresenter.h"

#include <QString>

#include <functional>
#include <string_view>

class QMessageBox;
class QWidget;

// The program's alerts, with their texts and the order of their buttons. Each one is window-modal
// over `parent`'s window when there is one (application-modal otherwise).
//
// The plain calls return at once: the alert shows from the event loop and `done` hears the answer
// when it closes, so no caller sits in a nested event loop. The exec... calls wait for the answer,
// for callers that cannot go on without it. An alert whose window closes under it goes with the
// window and calls nothing.
namespace ARXAlerts {

// An alert with one button "OK": a message and an informative text (which may be empty).
QMessageBox* inform(QWidget* parent, ARXAlertStyle style, const QString& message,
                    const QString& informativeText, std::function<void()> done = {});
void execInform(QWidget* parent, ARXAlertStyle style, const QString& message,
                const QString& informativeText);

// "Error occurred!" with the failure's text (its path and reason) as informative text.
QMessageBox* informError(QWidget* parent, const QString& errorText,
                         std::function<void()> done = {});

// "“NAME” already exists. Please choose a different name.", critical.
QMessageBox* informNameTaken(QWidget* parent, std::string_view name,
                             std::function<void()> done = {});

// Before deleting immediately. `count` is the number of selected items as the user chose them,
// `name` the name of the one item when the count is 1. Buttons "Delete" then "Cancel"; Return and
// Escape answer Cancel, and only Delete answers true.
QMessageBox* makeDeleteConfirmation(QWidget* parent, int count, const QString& name);
void confirmDelete(QWidget* parent, int count, const QString& name,
                   std::function<void(bool proceed)> answer);
bool execConfirmDelete(QWidget* parent, int count, const QString& name);

// An item that cannot go to the trash, since its volume has none: "“NAME” can’t be moved to the
// Trash." with the failure (path and reason). Buttons "Delete Immediately" then "Cancel"; Return
// and Escape answer Cancel, and only Delete Immediately answers true.
QMessageBox* makeDeleteImmediatelyQuestion(QWidget* parent, const QString& name,
                                           const QString& reason);
void askDeleteImmediately(QWidget* parent, const QString& name, const QString& reason,
                          std::function<void(bool deleteNow)> answer);

// Before emptying the Trash. Buttons "Empty Trash" (Return) then "Cancel" (Escape).
QMessageBox* makeEmptyTrashConfirmation(QWidget* parent);
void confirmEmptyTrash(QWidget* parent, std::function<void(bool proceed)> answer);
bool execConfirmEmptyTrash(QWidget* parent);

} // namespace ARXAlerts
