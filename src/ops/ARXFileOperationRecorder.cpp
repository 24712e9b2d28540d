#include "ops/ARXFileOperationRecorder.h"

#include "app/ARXConf.h"
#include "app/ARXFavorites.h"
#include "ops/ARXFileLayer.h"
#include "ops/ARXFileOperationController.h"
#include "ops/ARXFileRename.h"
#include "ops/ARXOperationPresenter.h"
#include "platform/ARXFileError.h"
#include "platform/ARXFileStatus.h"

#include <QCoreApplication>

namespace {

// The item itself, not what a link leads to: a link whose target went away is still there to be
// moved back, and must not be overwritten either.
bool exists(const Path& path) {
    return ARXFileStatus::lstat(path).exists;
}

QString doesNotExistText(const Path& path) {
    return QCoreApplication::translate("Atrium", "“%1” doesn’t exists.")
        .arg(ARXPath::display(ARXPath::lastComponent(path)));
}

QString changedText(const Path& path) {
    return QCoreApplication::translate("Atrium", "“%1” has changed since it was copied.")
        .arg(ARXPath::display(ARXPath::lastComponent(path)));
}

QString alreadyExistsText(const Path& path) {
    return QCoreApplication::translate("Atrium", "“%1” already exists.")
        .arg(ARXPath::display(ARXPath::lastComponent(path)));
}

ARXFileOperationItemRef makeItem(ARXFileOperationType type, const Path& from,
                                 std::optional<Path> to) {
    return std::make_shared<ARXFileOperationItem>(type, from, std::move(to));
}

void startOnEngine(ARXUndoBatch batch) {
    auto controller = std::make_shared<ARXFileOperationController>(
        std::move(batch.items), batch.sound, batch.recordable, batch.presenter);
    controller->start();
}

} // namespace

ARXFileOperationRecorder& ARXFileOperationRecorder::shared() {
    static ARXFileOperationRecorder recorder;
    return recorder;
}

ARXFileOperationRecorder::ARXFileOperationRecorder() : _starter(startOnEngine) {}

void ARXFileOperationRecorder::setBatchStarter(BatchStarter starter) {
    _starter = starter ? std::move(starter) : BatchStarter(startOnEngine);
}

// ----- history

void ARXFileOperationRecorder::add(GroupRef group) {
    if (!_records.empty() && size_t(_recordIndex + 1) < _records.size()) {
        forget(_records.begin() + (_recordIndex + 1), _records.end());
    }
    _records.push_back(std::move(group));
    if (_records.size() > kLimit) {
        forget(_records.begin(), _records.end() - kLimit);
    }
    _recordIndex = int(_records.size()) - 1;
}

void ARXFileOperationRecorder::forget(std::vector<GroupRef>::iterator first,
                                      std::vector<GroupRef>::iterator last) {
    for (auto it = first; it != last; ++it) {
        _redone.erase(it->get());
    }
    _records.erase(first, last);
}

bool ARXFileOperationRecorder::canUndo() const {
    return !_records.empty() && _recordIndex >= 0;
}

bool ARXFileOperationRecorder::canRedo() const {
    return !_records.empty() && _recordIndex + 1 < int(_records.size());
}

ARXFileOperationRecorder::GroupRef ARXFileOperationRecorder::redoGroup() const {
    return canRedo() ? _records[size_t(_recordIndex + 1)] : nullptr;
}

void ARXFileOperationRecorder::undo() {
    if (!canUndo()) {
        return;
    }
    // Held here: a rename's alert runs the event loop, and the history may change under it.
    const GroupRef group = _records[size_t(_recordIndex)];
    takeRedoneTargets(*group);
    if (perform(*group, Direction::undo)) {
        --_recordIndex;
    } else {
        dropHistory();
    }
}

void ARXFileOperationRecorder::redo() {
    const GroupRef group = redoGroup();
    if (!group) {
        return;
    }
    if (perform(*group, Direction::redo)) {
        ++_recordIndex;
    } else {
        dropHistory();
    }
}

void ARXFileOperationRecorder::dropHistory() {
    _records.clear();
    _redone.clear();
    _recordIndex = -1;
}

// A redo need not end where the first run did: a duplicate takes the next free name, a conflict
// answered with "Keep Both" puts the copy beside the item in the way, and a skipped or stopped
// item ends nowhere. The undo that follows must act on what the redo made, or it would delete
// whatever now bears the first name.
void ARXFileOperationRecorder::takeRedoneTargets(ARXFileOperationRecordGroup& group) {
    const auto redone = _redone.find(&group);
    if (redone == _redone.end()) {
        return;
    }
    const Items& items = redone->second;
    for (size_t i = 0; i < group.records.size() && i < items.size(); ++i) {
        group.records[i].target = items[i]->target();
        group.records[i].made = items[i]->made();
    }
    _redone.erase(redone);
}

bool ARXFileOperationRecorder::perform(ARXFileOperationRecordGroup& group, Direction direction) {
    const bool undo = direction == Direction::undo;
    // The items of a redo stay known to the group, to learn where they really went.
    ARXFileOperationRecordGroup* const redone = undo ? nullptr : &group;
    switch (group.action) {
    case ARXFileOperationType::move:
        return start(undo ? undoMoveItems(group) : redoMoveItems(group), ARXSoundEffect::file_added,
                     redone);
    case ARXFileOperationType::trash:
        // Redoing a trash moves the item back to where the trash keeps it, rather than trashing
        // it anew, so that a following undo finds it at the recorded place.
        return start(undo ? undoMoveItems(group) : redoMoveItems(group),
                     undo ? ARXSoundEffect::file_added : ARXSoundEffect::file_removed, redone);
    case ARXFileOperationType::duplicate:
    case ARXFileOperationType::copy:
        // Undoing a copy puts it in the trash, never deletes it: nobody is asked, and it may hold
        // work done since that the checks cannot see (deep inside a copied folder).
        return start(undo ? undoCopyItems(group) : redoCopyItems(group), ARXSoundEffect::file_added,
                     redone);
    case ARXFileOperationType::rename:
        return renameAll(group, direction);
    case ARXFileOperationType::remove:
        break;
    }
    return false; // what was deleted for good cannot come back
}

// ----- the checks of each kind, before anything is done

std::optional<ARXFileOperationRecorder::Items>
ARXFileOperationRecorder::undoMoveItems(const ARXFileOperationRecordGroup& group) {
    Items items;
    for (const ARXFileOperationRecord& record : group.records) {
        if (!record.target) {
            return std::nullopt;
        }
        if (!exists(*record.target)) {
            toast(doesNotExistText(*record.target));
            return std::nullopt;
        }
        if (exists(record.source)) {
            toast(alreadyExistsText(record.source));
            return std::nullopt;
        }
        items.push_back(makeItem(ARXFileOperationType::move, *record.target, record.source));
    }
    return items;
}

std::optional<ARXFileOperationRecorder::Items>
ARXFileOperationRecorder::redoMoveItems(const ARXFileOperationRecordGroup& group) {
    // The trash changes behind Atrium's back (emptied, restored from elsewhere); a redo that no
    // longer fits it is given up without a word.
    const bool quiet = group.action == ARXFileOperationType::trash;
    Items items;
    for (const ARXFileOperationRecord& record : group.records) {
        if (!record.target) {
            return std::nullopt;
        }
        if (!exists(record.source)) {
            if (!quiet) {
                toast(doesNotExistText(record.source));
            }
            return std::nullopt;
        }
        if (exists(*record.target)) {
            if (!quiet) {
                toast(alreadyExistsText(*record.target));
            }
            return std::nullopt;
        }
        items.push_back(makeItem(ARXFileOperationType::move, record.source, *record.target));
    }
    return items;
}

std::optional<ARXFileOperationRecorder::Items>
ARXFileOperationRecorder::undoCopyItems(const ARXFileOperationRecordGroup& group) {
    Items items;
    for (const ARXFileOperationRecord& record : group.records) {
        // Without its original the "copy" may be the only one left: never delete it then.
        if (!record.target || !exists(record.source)) {
            return std::nullopt;
        }
        if (!exists(*record.target)) {
            toast(doesNotExistText(*record.target));
            return std::nullopt;
        }
        // Only what the copy made goes: a file edited or put in its place since is the user's.
        if (!record.made || ARXMadeItem::at(*record.target) != record.made) {
            toast(changedText(*record.target));
            return std::nullopt;
        }
        items.push_back(makeItem(ARXFileOperationType::trash, *record.target, std::nullopt));
    }
    return items;
}

std::optional<ARXFileOperationRecorder::Items>
ARXFileOperationRecorder::redoCopyItems(const ARXFileOperationRecordGroup& group) {
    const bool duplicate = group.action == ARXFileOperationType::duplicate;
    Items items;
    for (const ARXFileOperationRecord& record : group.records) {
        if (!exists(record.source)) {
            toast(doesNotExistText(record.source));
            return std::nullopt;
        }
        // A duplicate picks the next free name again, which need not be the one it had.
        items.push_back(
            makeItem(group.action, record.source, duplicate ? std::nullopt : record.target));
    }
    return items;
}

bool ARXFileOperationRecorder::start(std::optional<Items> items, ARXSoundEffect sound,
                                     ARXFileOperationRecordGroup* redone) {
    if (!items) {
        return false;
    }
    if (items->empty()) {
        return true;
    }
    if (redone) {
        _redone[redone] = *items;
    }
    _starter({std::move(*items), sound, false, ARXOperationPresenter::main()});
    return true;
}

// ----- rename, at once and without the engine

bool ARXFileOperationRecorder::renameAll(const ARXFileOperationRecordGroup& group,
                                         Direction direction) {
    for (const ARXFileOperationRecord& record : group.records) {
        if (!record.target) {
            return false;
        }
        const bool undo = direction == Direction::undo;
        if (!renameOne(undo ? *record.target : record.source,
                       undo ? record.source : *record.target)) {
            return false;
        }
    }
    return true;
}

bool ARXFileOperationRecorder::renameOne(const Path& from, const Path& to) {
    if (!exists(from)) {
        toast(doesNotExistText(from));
        return false;
    }
    if (exists(to)) {
        toast(alreadyExistsText(to));
        return false;
    }
    try {
        ARXFileLayer::moveFile(from, to);
    } catch (const ARXFileError& error) {
        if (ARXOperationPresenter* presenter = ARXOperationPresenter::main()) {
            presenter->showAlert(ARXAlertStyle::critical,
                                 error.code == ARXFileError::kAlreadyExists
                                     ? ARXFileRename::alreadyExistsText(ARXPath::lastComponent(to))
                                     : error.text(),
                                 QString());
        }
        return false;
    }
    if (ARXFileStatus::stat(to).isDirectory()) {
        ARXFavorites::replaceFavorite(ARXPath::fileURLString(from), ARXPath::fileURLString(to));
    }
    return true;
}

// ----- telling the user

void ARXFileOperationRecorder::toast(const QString& text) const {
    if (!ARXConf::settings_show_file_undo_redo_message().value()) {
        return;
    }
    if (ARXOperationPresenter* presenter = ARXOperationPresenter::main()) {
        presenter->showToast(text);
    }
}
