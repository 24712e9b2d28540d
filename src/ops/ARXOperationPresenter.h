#pragma once

#include "platform/ARXPath.h"

#include <QString>

#include <functional>

// The answer to "the target already exists" for one item or, with applyToAll, for every later
// conflict of the batch. Raw values are stable.
enum class ARXFileOperationConflictAction : uint8_t {
    notselected = 0,
    replace = 1,
    skip = 2,
    keepBoth = 3,
    stop = 4,
    merge = 5, // a folder onto a folder: copy into the existing one, asking per file
};

// What the conflict dialog shows for one item.
struct ARXConflictQuestion {
    Path from;            // the item whose icon the dialog shows
    QString name;         // last path component of `from`
    QString note;         // "The target already exists!" or its refined form
    bool single = false;  // the last item of the batch: no "Apply to All"
    bool folders = false; // a folder onto a folder: "Merge" is offered
};

// The progress sheet's state after a tick.
struct ARXSheetUpdate {
    Path from;     // the current item, for its icon
    QString title; // "Copying “name”..."
    double value = 0;
    double maximum = 0;
};

enum class ARXAlertStyle : uint8_t { informational, warning, critical };

// How the operation engine, the undo recorder and renames speak to the user. The widgets (sheet,
// conflict dialog, alerts, toasts) implement it; tests implement it in code and answer at once.
// Every call comes on the main thread. The engine never waits inside a call: answers come back
// through the callbacks, which the presenter calls on the main thread, once.
class ARXOperationPresenter {
public:
    virtual ~ARXOperationPresenter() = default;

    // The sheet of a batch appears (before the first update) and goes (dismiss).
    virtual void presentSheet() = 0;
    virtual void updateSheet(const ARXSheetUpdate& update) = 0;
    virtual void dismissSheet() = 0;

    // The modal conflict dialog; it must be answered.
    virtual void
    askConflict(const ARXConflictQuestion& question,
                std::function<void(ARXFileOperationConflictAction, bool applyToAll)> answer) = 0;

    // The item cannot go to the trash (`reason`: its path and why): the alert says so and offers
    // "Delete Immediately" and "Cancel"; `answer` hears true for an explicit Delete Immediately
    // only. A presenter that does not ask shows the failure as an error and answers false.
    virtual void askDeleteImmediately(const Path& path, const QString& reason,
                                      std::function<void(bool deleteNow)> answer);

    // A blocking alert with one button "OK".
    virtual void showAlert(ARXAlertStyle style, const QString& message,
                           const QString& informativeText) = 0;

    // A short transient message in the main window.
    virtual void showToast(const QString& text) = 0;

    // The presenter in effect for batches started without one of their own (undo and redo
    // batches use the main window's). Null until the application sets one; with none, nothing is
    // shown and batches still run.
    static ARXOperationPresenter* main();
    static void setMain(ARXOperationPresenter* presenter);
};
