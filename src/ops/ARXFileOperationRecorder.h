#pragma once

#include "model/ARXFileOperationItem.h"
#include "ops/ARXFileOperationRecord.h"
#include "platform/ARXSoundPlayer.h"

#include <QString>

#include <functional>
#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

class ARXOperationPresenter;

// A batch that an undo or a redo hands to the operation engine. Never recorded itself, with no
// delegate and no owner on its items; shown by the main window's presenter (none: not shown, but
// run all the same).
struct ARXUndoBatch {
    std::vector<ARXFileOperationItemRef> items;
    ARXSoundEffect sound = ARXSoundEffect::silence;
    bool recordable = false;
    ARXOperationPresenter* presenter = nullptr;
};

// The application's one undo history: the last ten file operations the user made, in any pane.
// It keeps what was done, source and target paths, rather than commands to reverse it; an undo or
// a redo checks the disk against the records and only then starts a new batch on the operation
// engine. If the disk no longer matches, the whole history is dropped: an older group cannot be
// trusted once a newer one could not be reversed. What goes wrong is told by a toast in the main
// window, when settings_show_file_undo_redo_message holds, or by an alert for a failed rename.
//
// Main thread only. The history lives in memory and ends with the process.
class ARXFileOperationRecorder {
public:
    using GroupRef = ARXFileOperationRecordGroupRef;
    // Starts an engine batch. The default runs ARXFileOperationController.
    using BatchStarter = std::function<void(ARXUndoBatch)>;

    static constexpr size_t kLimit = 10;

    static ARXFileOperationRecorder& shared();

    // The groups, oldest first.
    const std::vector<GroupRef>& records() const { return _records; }
    // The group the next undo takes; -1 when nothing is left to undo.
    int recordIndex() const { return _recordIndex; }

    // A finished operation: cuts the groups that could still be redone, appends the group, keeps
    // the newest ten, and makes the group the next to undo.
    void add(GroupRef group);

    bool canUndo() const;
    bool canRedo() const;
    // The group the next redo takes, or null.
    GroupRef redoGroup() const;

    // Reverse the group at recordIndex, or make the one after it again. A rename happens at once;
    // anything else starts a batch, and the step counts as done as soon as it started.
    void undo();
    void redo();

    // Replaces how batches are started (tests watch them here); an empty one restores the engine.
    void setBatchStarter(BatchStarter starter);

private:
    ARXFileOperationRecorder();

    enum class Direction { undo, redo };
    using Items = std::vector<ARXFileOperationItemRef>;

    bool perform(ARXFileOperationRecordGroup& group, Direction direction);
    // Each walks the records in order and answers the batch's items, or nothing as soon as one
    // record fails its checks (having said why, where the user is told).
    std::optional<Items> undoMoveItems(const ARXFileOperationRecordGroup& group);
    std::optional<Items> redoMoveItems(const ARXFileOperationRecordGroup& group);
    std::optional<Items> undoCopyItems(const ARXFileOperationRecordGroup& group);
    std::optional<Items> redoCopyItems(const ARXFileOperationRecordGroup& group);
    bool renameAll(const ARXFileOperationRecordGroup& group, Direction direction);
    bool renameOne(const Path& from, const Path& to);
    // Starts the batch of a walk that passed; for a redo, remembers its items for `redone`.
    bool start(std::optional<Items> items, ARXSoundEffect sound,
               ARXFileOperationRecordGroup* redone);
    void takeRedoneTargets(ARXFileOperationRecordGroup& group);
    void forget(std::vector<GroupRef>::iterator first, std::vector<GroupRef>::iterator last);
    void toast(const QString& text) const;
    void dropHistory();

    std::vector<GroupRef> _records;
    int _recordIndex = -1;
    // The items of the last redo of each group still in the history.
    std::unordered_map<const ARXFileOperationRecordGroup*, Items> _redone;
    BatchStarter _starter;
};
