#include "platform/ARXFolderWatcher.h"

#include "platform/ARXConsole.h"
#include "platform/ARXFileIO.h"

#include <QPointer>
#include <QSocketNotifier>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <sys/inotify.h>
#include <unistd.h>

namespace {

// Notices are gathered this long before they go out: long enough that a program writing a file
// in many small pieces gives one notice, short enough that the view follows at once.
constexpr int kCoalesceMs = 75;
// The two halves of a rename are queued by one system call, yet a read may end between them.
// A first half waits this long for its second before it counts as a move out of sight.
constexpr int kMoveGraceMs = 20;
// A file being written is followed, but a busy writer is looked at no more often than this: each
// notice costs the views a status read and a row update.
constexpr int kWriteIntervalMs = 300;

// IN_MODIFY as well as IN_CLOSE_WRITE: `touch -m` and programs that keep a file open change it
// without closing it; the coalescing above makes a burst of writes one notice.
constexpr uint32_t kWatchMask = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_MODIFY |
                                IN_CLOSE_WRITE | IN_ATTRIB | IN_DELETE_SELF | IN_MOVE_SELF |
                                IN_ONLYDIR | IN_EXCL_UNLINK;

// A cookie whose rename was turned into two changes when its first half arrived.
constexpr uint64_t kSplitMove = UINT64_MAX;

int64_t nowMs() {
    using namespace std::chrono;
    return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

QString watchFailure(const Path& folder, int error) {
    const QString reason = error == ENOSPC
                               ? QStringLiteral("the system's limit of folder watches is reached "
                                                "(fs.inotify.max_user_watches)")
                               : QString::fromStdString(ARXFileIO::errorText(error));
    return QStringLiteral("Atrium: cannot watch \"%1\" for changes: %2")
        .arg(ARXPath::display(folder), reason);
}

} // namespace

ARXFolderWatcher::ARXFolderWatcher(QObject* parent) : QObject(parent) {
    qRegisterMetaType<Path>("Path");
    _flushTimer.setSingleShot(true);
    connect(&_flushTimer, &QTimer::timeout, this, &ARXFolderWatcher::flush);

    _fd = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    if (_fd < 0) {
        // EMFILE: the per-user limit of inotify instances. The panes still work; they only miss
        // changes made by other programs.
        const QString reason = QString::fromStdString(ARXFileIO::errorText(errno));
        ARXConsole::line(
            QStringLiteral("Atrium: cannot watch folders for changes: %1").arg(reason));
        return;
    }
    _notifier = new QSocketNotifier(_fd, QSocketNotifier::Read, this);
    connect(_notifier, &QSocketNotifier::activated, this, &ARXFolderWatcher::readEvents);
}

ARXFolderWatcher::~ARXFolderWatcher() {
    if (_fd >= 0) {
        delete _notifier;
        ::close(_fd);
    }
}

bool ARXFolderWatcher::watch(const Path& folder) {
    const Path path = ARXPath::normalized(folder);
    if (_fd < 0) {
        return false;
    }
    if (_watchByPath.count(path)) {
        return true;
    }
    const int wd = ::inotify_add_watch(_fd, path.c_str(), kWatchMask);
    if (wd < 0) {
        ARXConsole::line(watchFailure(path, errno));
        return false;
    }
    // A second path to an inode already watched (a link to the folder) gets the same watch.
    _pathsByWatch[wd].push_back(path);
    _watchByPath[path] = wd;
    return true;
}

void ARXFolderWatcher::unwatch(const Path& folder) {
    const Path path = ARXPath::normalized(folder);
    // What the folder reported but was not yet delivered goes with it.
    for (Notice& notice : _notices) {
        notice.dead =
            notice.dead || std::all_of(notice.origins.begin(), notice.origins.end(),
                                       [&](const Path& origin) { return origin == path; });
    }
    const auto it = _watchByPath.find(path);
    if (it == _watchByPath.end()) {
        return;
    }
    const int wd = it->second;
    _watchByPath.erase(it);
    std::vector<Path>& paths = _pathsByWatch[wd];
    paths.erase(std::remove(paths.begin(), paths.end(), path), paths.end());
    if (paths.empty()) {
        _pathsByWatch.erase(wd);
        ::inotify_rm_watch(_fd, wd);
    }
}

void ARXFolderWatcher::unwatchAll() {
    for (const auto& [wd, paths] : _pathsByWatch) {
        ::inotify_rm_watch(_fd, wd);
    }
    _pathsByWatch.clear();
    _watchByPath.clear();
    _firstId += _notices.size();
    _notices.clear();
    _lastTouch.clear();
    _movesByCookie.clear();
    _flushTimer.stop();
}

std::vector<Path> ARXFolderWatcher::watchedFolders() const {
    std::vector<Path> folders;
    folders.reserve(_watchByPath.size());
    for (const auto& [path, wd] : _watchByPath) {
        folders.push_back(path);
    }
    return folders;
}

bool ARXFolderWatcher::isWatching(const Path& folder) const {
    return _watchByPath.count(ARXPath::normalized(folder)) != 0;
}

// ---- reading ---------------------------------------------------------------------------------

void ARXFolderWatcher::readEvents() {
    alignas(struct inotify_event) char buffer[64 * 1024];
    for (;;) {
        const ssize_t length = ::read(_fd, buffer, sizeof buffer);
        if (length < 0 && errno == EINTR) {
            continue;
        }
        if (length <= 0) {
            if (length < 0 && errno != EAGAIN) {
                ARXConsole::line(QStringLiteral("Atrium: reading folder changes failed: %1")
                                     .arg(QString::fromStdString(ARXFileIO::errorText(errno))));
            }
            break;
        }
        for (ssize_t offset = 0; offset < length;) {
            const auto* event = reinterpret_cast<const struct inotify_event*>(buffer + offset);
            // The name is padded with NULs to an aligned length; its bytes are anything else.
            const std::string_view name(event->name,
                                        event->len ? ::strnlen(event->name, event->len) : 0);
            handleEvent(event->wd, event->mask, event->cookie, name);
            offset += ssize_t(sizeof(struct inotify_event) + event->len);
        }
    }
}

void ARXFolderWatcher::handleEvent(int wd, uint32_t mask, uint32_t cookie, std::string_view name) {
    if (mask & IN_Q_OVERFLOW) {
        // Events were lost: nothing is known any more about what changed where.
        for (const auto& [folder, folderWd] : _watchByPath) {
            addChange(folder, folder);
        }
        return;
    }
    const auto it = _pathsByWatch.find(wd);
    if (it == _pathsByWatch.end()) {
        // Queued before the folder was unwatched, or the kernel's farewell (IN_IGNORED) of it.
        return;
    }
    const std::vector<Path> folders = it->second;
    if (mask & IN_IGNORED) {
        forgetWatch(wd);
        return;
    }
    if (mask & (IN_DELETE_SELF | IN_MOVE_SELF | IN_UNMOUNT)) {
        // The watch would follow a moved folder to a path nobody told us; the owner watches the
        // new path if it still shows it.
        for (const Path& folder : folders) {
            // When the parent is watched too, its own notice of the rename already says it.
            const Notice* last = lastTouching(folder);
            if (!(last && last->kind != Kind::change && last->path == folder)) {
                addChange(folder, folder);
            }
        }
        if (mask & IN_MOVE_SELF) {
            ::inotify_rm_watch(_fd, wd);
        }
        forgetWatch(wd);
        return;
    }
    if (name.empty()) {
        // The folder's own attributes (IN_ATTRIB without a name).
        for (const Path& folder : folders) {
            addChange(folder, folder);
        }
        return;
    }
    // A write that goes on (not its close, nor anything else) may wait for the writer's pace.
    const bool write = (mask & (IN_MODIFY | IN_CLOSE_WRITE | IN_CREATE | IN_DELETE | IN_ATTRIB |
                                IN_MOVED_FROM | IN_MOVED_TO)) == IN_MODIFY;
    for (size_t i = 0; i < folders.size(); ++i) {
        const Path& folder = folders[i];
        const Path path = ARXPath::join(folder, name);
        // Only the first path of a watch pairs renames; under its other paths a rename shows as
        // the two changes it amounts to.
        if ((mask & IN_MOVED_FROM) && i == 0) {
            movedFrom(path, folder, cookie);
        } else if ((mask & IN_MOVED_TO) && i == 0) {
            movedTo(path, folder, cookie);
        } else {
            addChange(path, folder, write);
        }
    }
}

void ARXFolderWatcher::forgetWatch(int wd) {
    const auto it = _pathsByWatch.find(wd);
    if (it == _pathsByWatch.end()) {
        return;
    }
    for (const Path& path : it->second) {
        _watchByPath.erase(path);
    }
    _pathsByWatch.erase(it);
}

// ---- coalescing ------------------------------------------------------------------------------
//
// Notices wait in arrival order. A path has at most one change waiting after the last move that
// touched it: a further change of it is dropped, since the view looks at the disk and sees the
// latest state anyway. A rename of something that already has a notice waiting is delivered as a
// change of each end instead of a move: the view may not know the old name yet (a file written
// and renamed at once), and moving an entry it does not have would lose the new one.

ARXFolderWatcher::NoticeId ARXFolderWatcher::append(Notice notice) {
    _notices.push_back(std::move(notice));
    if (!_flushTimer.isActive()) {
        _flushTimer.start(kCoalesceMs);
    }
    return _firstId + _notices.size() - 1;
}

ARXFolderWatcher::Notice* ARXFolderWatcher::pending(NoticeId id) {
    if (id < _firstId || id - _firstId >= _notices.size()) {
        return nullptr;
    }
    Notice& notice = _notices[id - _firstId];
    return notice.dead ? nullptr : &notice;
}

ARXFolderWatcher::Notice* ARXFolderWatcher::lastTouching(const Path& path, NoticeId* id) {
    const auto it = _lastTouch.find(path);
    if (it == _lastTouch.end()) {
        return nullptr;
    }
    if (id) {
        *id = it->second;
    }
    return pending(it->second);
}

void ARXFolderWatcher::touch(const Path& path, NoticeId id) {
    NoticeId& last = _lastTouch[path];
    last = std::max(last, id);
}

void ARXFolderWatcher::addChange(const Path& path, const Path& origin, bool write) {
    if (Notice* last = lastTouching(path); last && last->kind == Kind::change) {
        if (std::find(last->origins.begin(), last->origins.end(), origin) == last->origins.end()) {
            last->origins.push_back(origin);
        }
        if (!write && last->dueMs != 0) {
            // The file was closed, deleted or otherwise changed: that is told without waiting.
            last->dueMs = 0;
            if (_flushTimer.remainingTime() > kCoalesceMs) {
                _flushTimer.start(kCoalesceMs);
            }
        }
        return;
    }
    Notice notice{Kind::change, path, {}, {origin}};
    if (write) {
        if (const auto told = _lastToldMs.find(path); told != _lastToldMs.end()) {
            notice.dueMs = told->second + kWriteIntervalMs;
        }
    }
    touch(path, append(std::move(notice)));
}

void ARXFolderWatcher::movedFrom(const Path& path, const Path& origin, uint32_t cookie) {
    if (lastTouching(path)) {
        addChange(path, origin);
        _movesByCookie[cookie] = kSplitMove;
        return;
    }
    const NoticeId id = append({Kind::pendingMove, path, {}, {origin}, nowMs()});
    touch(path, id);
    _movesByCookie[cookie] = id;
}

void ARXFolderWatcher::movedTo(const Path& path, const Path& origin, uint32_t cookie) {
    const auto it = _movesByCookie.find(cookie);
    Notice* first = it == _movesByCookie.end() ? nullptr : pending(it->second);
    const NoticeId id = first ? it->second : 0;
    if (it != _movesByCookie.end()) {
        _movesByCookie.erase(it);
    }
    if (!first || first->kind != Kind::pendingMove) {
        // Moved in from outside the watched folders, or a rename already split in two.
        addChange(path, origin);
        return;
    }
    if (lastTouching(path)) {
        // Something else happened at the new name first (say it was deleted and then replaced):
        // the old name goes and the new one is looked at afresh.
        first->kind = Kind::change;
        addChange(path, origin);
        return;
    }
    first->kind = Kind::move;
    first->to = path;
    if (first->origins.front() != origin) {
        first->origins.push_back(origin);
    }
    touch(path, id);
}

void ARXFolderWatcher::flush() {
    QPointer<ARXFolderWatcher> self(this);
    // Notices put back behind the others (writes not yet due) are not looked at again in this
    // pass; they start at this id.
    const NoticeId putBack = _firstId + _notices.size();
    int64_t nextDue = 0;
    while (!_notices.empty() && _firstId < putBack) {
        Notice& front = _notices.front();
        if (!front.dead && front.kind == Kind::pendingMove) {
            const int64_t wait = kMoveGraceMs - (nowMs() - front.arrivedMs);
            if (wait > 0) {
                _flushTimer.start(int(wait));
                return;
            }
            // The second half never came: the item left the watched folders.
            front.kind = Kind::change;
        }
        Notice notice = std::move(front);
        _notices.pop_front();
        ++_firstId;
        if (notice.dead) {
            continue;
        }
        if (notice.kind == Kind::change && notice.dueMs > nowMs()) {
            // A writer's next notice waits for its turn behind what else happened. It stays the
            // path's pending notice, so that what comes meanwhile joins it or, for a rename,
            // splits as for any waiting notice.
            nextDue = nextDue == 0 ? notice.dueMs : std::min(nextDue, notice.dueMs);
            const Path path = notice.path;
            touch(path, append(std::move(notice)));
            continue;
        }
        // Receivers may unwatch, watch or even run a nested event loop; the next notice is taken
        // from the queue afresh each time.
        if (notice.kind == Kind::move) {
            Q_EMIT subitemMoved(notice.path, notice.to);
        } else {
            _lastToldMs[notice.path] = nowMs();
            Q_EMIT subitemChanged(notice.path);
        }
        if (!self) {
            return;
        }
    }
    if (!_notices.empty()) {
        _flushTimer.start(int(std::max<int64_t>(nextDue - nowMs(), 0)));
        return;
    }
    // Nothing waits any more: a second half arriving later is a change of its own.
    _lastTouch.clear();
    _movesByCookie.clear();
    const int64_t now = nowMs();
    std::erase_if(_lastToldMs,
                  [now](const auto& told) { return now - told.second >= kWriteIntervalMs; });
}
