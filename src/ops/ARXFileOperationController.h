#pragma once

#include "model/ARXFileOperationItem.h"
#include "ops/ARXFileOperationRecord.h"
#include "ops/ARXOperationPresenter.h"
#include "platform/ARXFileError.h"
#include "platform/ARXSoundPlayer.h"

#include <QDateTime>
#include <QObject>
#include <QPointer>
#include <QString>

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <thread>
#include <vector>

class ARXFileOperationController;

// Who hears how a batch goes: usually the pane whose placeholders stand for the items. Every call
// comes on the main thread.
class ARXFileOperationDelegate {
public:
    virtual ~ARXFileOperationDelegate() = default;

    // After each progress tick with the current item, and once more when an item is done
    // (`finished`), skipped, or was a move onto itself.
    virtual void fileOperationProgress(ARXFileOperationController& controller,
                                       const ARXFileOperationItemRef& item) = 0;
    // Each time the worker starts: at the beginning and again after each conflict answer.
    virtual void fileOperationStarted(ARXFileOperationController& controller) = 0;
    // The batch ended. A batch that ran to its end calls this twice, the second time right
    // before its sound and its undo group; a batch that ended by Stop, or by a skip or a move onto
    // itself on the last item, calls it once. An error calls it never.
    virtual void fileOperationFinished(ARXFileOperationController& controller) = 0;
};

// Carries out one batch of file operations: copy, move, duplicate, trash, remove. It measures the
// items, runs them one after another on a worker thread, reads the progress off the disk ten
// times a second, stops at a conflict to ask, and at the end plays its sound and gives the batch
// to the undo history. It talks to the user through an ARXOperationPresenter (the sheet, the
// conflict dialog, alerts); with none it shows nothing, runs all the same, and answers a conflict
// with Stop, since nobody can be asked whether to overwrite.
//
// Lives on the main thread and must be owned by a std::shared_ptr. Once started it keeps itself
// alive until the batch has ended, so a caller may let go of it at once.
//
// Threads: the preparation pass, the item loop and each tick's measuring run on threads of their
// own and never touch the model; they come back to the main thread for everything else. What
// they share with the main thread is the items (whose fields are atomic or locked), `index` and
// the conflict answer, all atomic. The answer is written by the main thread only while no worker
// runs.
class ARXFileOperationController : public QObject,
                                   public std::enable_shared_from_this<ARXFileOperationController> {
    Q_OBJECT
public:
    // With `recordable` and at least one item whose first item is no `remove`, the batch becomes
    // an undo group with the first item's type as its action.
    ARXFileOperationController(std::vector<ARXFileOperationItemRef> items, ARXSoundEffect sound,
                               bool recordable, ARXOperationPresenter* presenter = nullptr);
    ~ARXFileOperationController() override;

    // Weak: a delegate or presenter that is a QObject is dropped when it is destroyed; any other
    // must outlive the batch.
    void setDelegate(ARXFileOperationDelegate* delegate);

    // Shows the sheet and begins: the preparation pass, then the items. Once.
    void start();

    const std::vector<ARXFileOperationItemRef>& items() const { return _items; }
    ARXSoundEffect sound() const { return _sound; }
    size_t index() const { return _index.load(); }
    // The batch ended by its normal or its plain end; never after an error.
    bool finished() const { return _finished; }
    // The batch ended in any way, an error included.
    bool hasEnded() const { return _finished || _failed; }
    double totalSize() const { return _totalSize; }
    ARXFileOperationConflictAction conflictAction() const { return _conflictAction.load(); }
    bool conflictActionApplyAll() const { return _conflictActionApplyAll.load(); }
    // The undo group being built; null for a batch that is not recorded.
    const ARXFileOperationRecordGroupRef& record() const { return _record; }

    // The sheet's title format of an item type, with "%1" for the item's name: "Copying “%1”...",
    // "Moving “%1”...", "Deleting “%1”...", and "%1" for a rename.
    static QString titleFormat(ARXFileOperationType type);

    // Where a trashed cloud placeholder (".NAME.icloud") really is: the trash keeps the hidden
    // placeholder form when it exists beside the plain name it answered. `trashed` otherwise.
    static Path cloudPlaceholderTarget(const Path& from, const Path& trashed);

Q_SIGNALS:
    // The batch is over, whichever way it ended (its end, Stop, an error): emitted once, after
    // everything its end does (the delegate's calls, the sound, the undo group, the alert).
    void ended();

private:
    // A delegate or presenter held weakly: a QObject is watched, anything else trusted.
    template <typename T>
    struct Weak {
        T* object = nullptr;
        QPointer<QObject> guard;
        bool guarded = false;

        void set(T* o) {
            object = o;
            guard = dynamic_cast<QObject*>(o);
            guarded = !guard.isNull();
        }
        T* get() const { return guarded && guard.isNull() ? nullptr : object; }
    };

    // Runs fn on the main thread later, if the controller still exists then.
    void onMain(std::function<void(ARXFileOperationController&)> fn) const;
    static void joinThread(std::thread& thread);

    // Main thread.
    void prepared(double totalSize);
    void startWorker();
    void tick();
    void tickMeasured();
    void askConflict(const ARXFileOperationItemRef& item, bool single, bool folders);
    void answerConflict(ARXFileOperationConflictAction action, bool applyToAll);
    void endPlain();
    void endNormally();
    void fail(const ARXFileError& error);
    bool offerDeletion(const ARXFileError& error);
    void answerDeletion(const ARXFileOperationItemRef& item, bool deleteNow);
    void endFailed();
    void release();
    void updateSheet(const Path& from, const QString& format, double value);
    void progress(const ARXFileOperationItemRef& item);

    // Worker threads (ARXFileOperationWorker.cpp).
    enum class Outcome : uint8_t { done, skipped };
    void prepare();
    void runItems();
    void perform(ARXFileOperationItem& item, bool exists, bool ontoItself);
    void replaceByCopy(ARXFileOperationItem& item);
    bool leave(const ARXFileOperationItemRef& item, Outcome outcome);
    bool advance();
    bool passOver(const ARXFileOperationItemRef& item);
    void postEnd(bool normal);
    void measureWorked();
    // Merging a folder into the folder of the same name (ARXFileOperationMerge.cpp).
    ARXFileOperationItemRef currentUnit() const;
    bool isLastQuestion() const;
    void beginMerge(const ARXFileOperationItemRef& folder);
    bool finishMerge();
    void recordItem(size_t index, const QDateTime& time);

    const std::vector<ARXFileOperationItemRef> _items;
    const ARXSoundEffect _sound;
    ARXFileOperationRecordGroupRef _record;
    Weak<ARXOperationPresenter> _presenter;
    Weak<ARXFileOperationDelegate> _delegate;

    std::atomic<size_t> _index{0};
    std::atomic<ARXFileOperationConflictAction> _conflictAction{
        ARXFileOperationConflictAction::notselected};
    std::atomic<bool> _conflictActionApplyAll{false};
    // The trash item the user chose to delete immediately, since no trash could take it.
    std::atomic<const ARXFileOperationItem*> _deleteInstead{nullptr};

    // Per item: its destination is its source by the path rules (letter case on a volume that
    // ignores it). Decided on the main thread before the work starts, since path comparison reads
    // the table of mounted volumes, which belongs to the main thread. The worker adds the test of
    // identity on disk.
    std::vector<char> _ontoItself;

    // Worker only, while no other thread runs it. The folders being merged, innermost last, each
    // with the parts still to do (the next one last).
    struct MergeLevel {
        ARXFileOperationItemRef folder;
        std::vector<ARXFileOperationItemRef> pending;
    };
    std::vector<MergeLevel> _merging;
    // Per item of the batch that was merged: the parts that were carried out, which the undo
    // group records in the merged folder's place. Written by the worker, read at the normal end.
    std::vector<std::optional<std::vector<ARXFileOperationItemRef>>> _mergedParts;

    // Main thread only.
    double _totalSize = 0;
    bool _started = false;
    bool _finished = false;
    bool _failed = false;
    bool _sheetShown = false;
    bool _waitingForAnswer = false;

    std::shared_ptr<ARXFileOperationController> _self;
    std::weak_ptr<ARXFileOperationController> _weakSelf;

    // Joined before being replaced and when the controller goes; none of them ever waits for the
    // main thread, so a join only waits for the last few calls of a thread that is ending.
    std::thread _preparation;
    std::thread _worker;
    std::thread _measuring;
};
