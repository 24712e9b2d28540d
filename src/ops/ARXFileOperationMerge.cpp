// The Merge answer of ARXFileOperationController: a folder copied or moved onto a folder of the
// same name goes into it instead of replacing it. Its items become parts of the batch's current
// item, one by one, each with the conflict rules of any item: what exists only in the
// destination stays, and each name both hold is asked about (a folder again with Merge among
// the answers). Runs on the worker, except recordItem, which runs at the end.

#include "ops/ARXFileLayer.h"
#include "ops/ARXFileOperationController.h"
#include "platform/ARXConsole.h"
#include "platform/ARXFileIO.h"

#include <algorithm>

ARXFileOperationItemRef ARXFileOperationController::currentUnit() const {
    return _merging.empty() ? _items[_index.load()] : _merging.back().pending.back();
}

// No "Apply to All" when nothing can come after the unit asked about.
bool ARXFileOperationController::isLastQuestion() const {
    return _index.load() + 1 == _items.size() &&
           std::all_of(_merging.begin(), _merging.end(),
                       [](const MergeLevel& level) { return level.pending.size() <= 1; });
}

void ARXFileOperationController::beginMerge(const ARXFileOperationItemRef& folder) {
    int error = 0;
    std::optional<std::vector<std::string>> names = ARXFileIO::listNames(folder->from, &error);
    if (!names) {
        throw ARXFileError::fromErrno(error, folder->from);
    }
    // In name order, the first last, since the list is worked from its end.
    std::sort(names->begin(), names->end(), std::greater<>());
    MergeLevel level{folder, {}};
    level.pending.reserve(names->size());
    for (const std::string& name : *names) {
        level.pending.push_back(std::make_shared<ARXFileOperationItem>(
            folder->type, ARXPath::join(folder->from, name), ARXPath::join(*folder->to, name)));
    }
    // The destination's row stands already: no new row for this item.
    folder->failed = true;
    if (!_merging.empty()) {
        _merging.back().pending.pop_back(); // a part that is now a level of its own
    } else {
        _mergedParts[_index.load()].emplace();
    }
    _merging.push_back(std::move(level));
    // The answer was for the folder; its parts are asked about afresh.
    if (!_conflictActionApplyAll.load()) {
        _conflictAction = ARXFileOperationConflictAction::notselected;
    }
}

// Every part of the innermost merged folder is dealt with. A move leaves no emptied source folder
// behind; one that still holds skipped items stays. Answers false when the batch has ended.
bool ARXFileOperationController::finishMerge() {
    const ARXFileOperationItemRef folder = std::move(_merging.back().folder);
    _merging.pop_back();
    folder->setTarget(*folder->to);
    if (folder->type == ARXFileOperationType::move) {
        try {
            ARXFileLayer::removeFolderIfEmpty(folder->from);
        } catch (const ARXFileError& error) {
            ARXConsole::line(
                QStringLiteral("Atrium: could not remove the emptied folder %1").arg(error.text()));
        }
    }
    return !_merging.empty() || leave(folder, Outcome::done);
}

// A merged item is recorded as the parts that were carried out, each with its own source and
// target: undoing it must touch only what the merge brought, never what the folder held before.
void ARXFileOperationController::recordItem(size_t index, const QDateTime& time) {
    const ARXFileOperationItemRef& item = _items[index];
    if (!_mergedParts[index]) {
        _record->records.push_back({item->from, item->target(), time, item->made()});
        return;
    }
    for (const ARXFileOperationItemRef& part : *_mergedParts[index]) {
        _record->records.push_back({part->from, part->target(), time, part->made()});
    }
}
