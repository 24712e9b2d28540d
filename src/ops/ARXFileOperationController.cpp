#include "ops/ARXFileOperationController.h"

#include "app/ARXConf.h"
#include "app/ARXPathRules.h"
#include "ops/ARXFileOperationConflict.h"
#include "ops/ARXFileOperationRecorder.h"
#include "platform/ARXMainQueue.h"

#include <QCoreApplication>
#include <QDateTime>

#include <algorithm>

namespace {

QString localized(const char* text) {
    return QCoreApplication::translate("Atrium", text);
}

// The user can turn the sounds of file operations off; the sound itself is the platform's.
void playSound(ARXSoundEffect sound) {
    if (sound != ARXSoundEffect::silence && ARXConf::settings_sound_effect_on().value()) {
        ARXSoundPlayer::play(sound);
    }
}

constexpr double kTickInterval = 0.1;

} // namespace

ARXFileOperationController::ARXFileOperationController(std::vector<ARXFileOperationItemRef> items,
                                                       ARXSoundEffect sound, bool recordable,
                                                       ARXOperationPresenter* presenter)
    : _items(std::move(items)), _sound(sound) {
    _presenter.set(presenter);
    if (recordable && !_items.empty() && _items.front()->type != ARXFileOperationType::remove) {
        _record = std::make_shared<ARXFileOperationRecordGroup>();
        _record->action = _items.front()->type;
    }
}

ARXFileOperationController::~ARXFileOperationController() {
    joinThread(_preparation);
    joinThread(_worker);
    joinThread(_measuring);
}

void ARXFileOperationController::setDelegate(ARXFileOperationDelegate* delegate) {
    _delegate.set(delegate);
}

QString ARXFileOperationController::titleFormat(ARXFileOperationType type) {
    switch (type) {
    case ARXFileOperationType::duplicate:
    case ARXFileOperationType::copy:
        return localized("Copying “%1”...");
    case ARXFileOperationType::move:
        return localized("Moving “%1”...");
    case ARXFileOperationType::trash:
    case ARXFileOperationType::remove:
        return localized("Deleting “%1”...");
    case ARXFileOperationType::rename:
        break;
    }
    return QStringLiteral("%1");
}

void ARXFileOperationController::onMain(std::function<void(ARXFileOperationController&)> fn) const {
    ARXMainQueue::async([weak = _weakSelf, fn = std::move(fn)] {
        if (const std::shared_ptr<ARXFileOperationController> self = weak.lock()) {
            fn(*self);
        }
    });
}

void ARXFileOperationController::joinThread(std::thread& thread) {
    if (thread.joinable()) {
        thread.join();
    }
}

// ----- start and preparation

void ARXFileOperationController::start() {
    Q_ASSERT(ARXMainQueue::isMainThread());
    if (_started) {
        return;
    }
    _self = weak_from_this().lock();
    if (!_self) {
        qFatal("ARXFileOperationController must be owned by a std::shared_ptr");
    }
    _weakSelf = _self;
    _started = true;
    _totalSize = 0;
    _mergedParts.resize(_items.size());
    _ontoItself.reserve(_items.size());
    for (const ARXFileOperationItemRef& item : _items) {
        _ontoItself.push_back(item->to && ARXPathRules::isSamePath(item->from, *item->to));
    }
    if (ARXOperationPresenter* presenter = _presenter.get()) {
        presenter->presentSheet();
        _sheetShown = true;
    }
    _preparation = std::thread([this] { prepare(); });
}

void ARXFileOperationController::prepared(double totalSize) {
    _totalSize = totalSize;
    if (_items.empty()) {
        // Nothing to do is done at once; callers do not make such batches, but a sheet must
        // never stay up waiting for an item that does not exist.
        endPlain();
        release();
        return;
    }
    startWorker();
    tick();
}

void ARXFileOperationController::startWorker() {
    if (ARXFileOperationDelegate* delegate = _delegate.get()) {
        delegate->fileOperationStarted(*this);
    }
    // A worker that stopped at a conflict has returned by the time its question was answered.
    joinThread(_worker);
    _worker = std::thread([this] { runItems(); });
}

// ----- progress

// Ticks never overlap: the next one is scheduled only once the last one has updated the sheet, so
// a slow measure of a large tree makes the ticks rarer instead of piling them up.
void ARXFileOperationController::tick() {
    // The tick ends with the batch. A batch that failed is not `finished`, and a tick that only
    // looked at `finished` would rearm itself every 0.1 seconds for as long as the program runs,
    // measuring for a sheet nobody sees; an ended batch of any kind stops it. (The sheet is
    // dismissed only at an end, so "no sheet" needs no test of its own; without a presenter there
    // is no sheet at all, and the delegate still hears the progress.)
    if (hasEnded()) {
        return;
    }
    joinThread(_measuring);
    _measuring = std::thread([this] {
        measureWorked();
        onMain([](ARXFileOperationController& self) { self.tickMeasured(); });
    });
}

void ARXFileOperationController::tickMeasured() {
    if (hasEnded()) {
        return;
    }
    const size_t current = std::min(_index.load(), _items.size() - 1);
    double value = 0;
    for (size_t i = 0; i < current; ++i) {
        value += _items[i]->totalSize;
    }
    const ARXFileOperationItemRef& item = _items[current];
    value += item->workedSize;
    updateSheet(item->from, titleFormat(item->type), value);
    progress(item);
    ARXMainQueue::after(kTickInterval, [weak = _weakSelf] {
        if (const std::shared_ptr<ARXFileOperationController> self = weak.lock()) {
            self->tick();
        }
    });
}

void ARXFileOperationController::updateSheet(const Path& from, const QString& format,
                                             double value) {
    ARXOperationPresenter* presenter = _presenter.get();
    if (!presenter || !_sheetShown) {
        return;
    }
    presenter->updateSheet(
        {from, format.arg(ARXPath::display(ARXPath::lastComponent(from))), value, _totalSize});
}

void ARXFileOperationController::progress(const ARXFileOperationItemRef& item) {
    if (ARXFileOperationDelegate* delegate = _delegate.get()) {
        delegate->fileOperationProgress(*this, item);
    }
}

// ----- conflicts

void ARXFileOperationController::askConflict(const ARXFileOperationItemRef& item, bool single,
                                             bool folders) {
    const ARXConflictQuestion question = ARXFileOperationConflict::question(*item, single, folders);
    _waitingForAnswer = true;
    ARXOperationPresenter* presenter = _presenter.get();
    if (!presenter) {
        // Nobody to ask whether to overwrite: nothing is, and the batch stops here.
        answerConflict(ARXFileOperationConflictAction::stop, false);
        return;
    }
    presenter->askConflict(
        question, [weak = _weakSelf](ARXFileOperationConflictAction action, bool applyToAll) {
            if (const std::shared_ptr<ARXFileOperationController> self = weak.lock()) {
                self->answerConflict(action, applyToAll);
            }
        });
}

void ARXFileOperationController::answerConflict(ARXFileOperationConflictAction action,
                                                bool applyToAll) {
    // One answer per question; "not selected" is no answer and would only ask again.
    if (!_waitingForAnswer || action == ARXFileOperationConflictAction::notselected) {
        return;
    }
    _waitingForAnswer = false;
    _conflictAction = action;
    _conflictActionApplyAll = applyToAll;
    startWorker();
}

// ----- the end

// The plain end: the batch is over, the sheet goes. This alone ends a batch that stopped, or whose
// last item was skipped or was a move onto itself: no sound and no undo group.
void ARXFileOperationController::endPlain() {
    if (ARXFileOperationDelegate* delegate = _delegate.get()) {
        delegate->fileOperationFinished(*this);
    }
    _finished = true;
    if (ARXOperationPresenter* presenter = _presenter.get(); presenter && _sheetShown) {
        presenter->dismissSheet();
    }
    _sheetShown = false;
}

// What a batch that ran to its end adds after the plain end: the delegate hears of the end a
// second time, the sound plays and every item, also those marked failed, goes into the undo group.
void ARXFileOperationController::endNormally() {
    if (ARXFileOperationDelegate* delegate = _delegate.get()) {
        delegate->fileOperationFinished(*this);
    }
    _finished = true;
    playSound(_sound);
    if (_record) {
        const QDateTime now = QDateTime::currentDateTime();
        for (size_t i = 0; i < _items.size(); ++i) {
            recordItem(i, now);
        }
        ARXFileOperationRecorder::shared().add(_record);
    }
}

// An error ends the batch where it stands: what was done stays done, nothing is rolled back, and
// the delegate hears no end (its placeholders are set right by the change notifications).
void ARXFileOperationController::fail(const ARXFileError& error) {
    if (offerDeletion(error)) {
        return;
    }
    if (ARXOperationPresenter* presenter = _presenter.get()) {
        presenter->showAlert(ARXAlertStyle::informational, localized("Error occurred!"),
                             error.text());
    }
    endFailed();
}

// An item that no trash on its volume can take may be deleted instead, but only when the user
// says so: the question stands in place of the error's alert, and the batch waits for it.
bool ARXFileOperationController::offerDeletion(const ARXFileError& error) {
    ARXOperationPresenter* presenter = _presenter.get();
    const size_t index = _index.load();
    if (!presenter || error.code != ARXFileError::kNoTrash || index >= _items.size() ||
        _items[index]->type != ARXFileOperationType::trash) {
        return false;
    }
    const ARXFileOperationItemRef item = _items[index];
    presenter->askDeleteImmediately(
        item->from, error.text(), [weak = _weakSelf, item](bool deleteNow) {
            if (const std::shared_ptr<ARXFileOperationController> self = weak.lock()) {
                self->answerDeletion(item, deleteNow);
            }
        });
    return true;
}

// Delete Immediately goes on with that item deleted; Cancel keeps it and ends the batch there,
// as its error would have.
void ARXFileOperationController::answerDeletion(const ARXFileOperationItemRef& item,
                                                bool deleteNow) {
    if (hasEnded()) {
        return;
    }
    if (deleteNow) {
        _deleteInstead = item.get();
        startWorker();
        return;
    }
    endFailed();
}

void ARXFileOperationController::endFailed() {
    _failed = true;
    if (ARXOperationPresenter* presenter = _presenter.get(); presenter && _sheetShown) {
        presenter->dismissSheet();
    }
    _sheetShown = false;
    release();
}

// Every way a batch ends comes here last. Lets go of the controller's hold on itself, later: the
// caller is still inside a member function, and the last owner may be this very hold.
void ARXFileOperationController::release() {
    Q_EMIT ended();
    ARXMainQueue::async([self = std::move(_self)] {});
}
