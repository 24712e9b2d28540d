#pragma once

#include "platform/ARXPath.h"

#include <QObject>
#include <QTimer>

#include <cstdint>
#include <deque>
#include <map>
#include <unordered_map>
#include <vector>

class QSocketNotifier;

// Changes made on disk inside a set of folders, by anyone: one inotify instance read on the main
// thread. A pane watches the folder it shows and each folder it has expanded.
//
// Notices are gathered for a short while and then delivered in the order they happened, one per
// path: a burst of writes to one file is one subitemChanged. A file kept open and written to is
// followed at a few notices a second; its close is told at once. A rename whose two ends are both
// watched is one subitemMoved; a rename out of the watched folders is a change of the old path
// (it is gone), one into them a change of the new path (it appeared). When the folder itself is
// deleted or moved, its own path changes and it is no longer watched. When the kernel's queue
// overflowed, every watched folder changes, so that each is looked at again.
class ARXFolderWatcher : public QObject {
    Q_OBJECT
public:
    explicit ARXFolderWatcher(QObject* parent = nullptr);
    ~ARXFolderWatcher() override;

    // Starts watching the folder's direct children. Answers whether it is watched; a failure
    // (no such folder, no permission, the system's limit of watches) goes to the console.
    bool watch(const Path& folder);
    void unwatch(const Path& folder);
    void unwatchAll();
    std::vector<Path> watchedFolders() const;
    bool isWatching(const Path& folder) const;

Q_SIGNALS:
    // Something was created, deleted, written, or changed its attributes at path.
    void subitemChanged(Path path);
    void subitemMoved(Path from, Path to);

private:
    enum class Kind { change, move, pendingMove };
    struct Notice {
        Kind kind;
        Path path;
        Path to;
        // The watched folders the notice came from; it dies when they are all unwatched.
        std::vector<Path> origins;
        int64_t arrivedMs = 0;
        // A write of a file told a moment ago is told no earlier than this (0: at once).
        int64_t dueMs = 0;
        bool dead = false;
    };
    using NoticeId = uint64_t;

    void readEvents();
    void handleEvent(int wd, uint32_t mask, uint32_t cookie, std::string_view name);
    // `write`: the file's content changed and it is still open for writing.
    void addChange(const Path& path, const Path& origin, bool write = false);
    void movedFrom(const Path& path, const Path& origin, uint32_t cookie);
    void movedTo(const Path& path, const Path& origin, uint32_t cookie);
    NoticeId append(Notice notice);
    Notice* pending(NoticeId id);
    // The last notice still pending that touches the path, if any.
    Notice* lastTouching(const Path& path, NoticeId* id = nullptr);
    void touch(const Path& path, NoticeId id);
    void flush();
    // Drops a watch the kernel ended (folder deleted, moved or unmounted).
    void forgetWatch(int wd);

    int _fd = -1;
    QSocketNotifier* _notifier = nullptr;
    QTimer _flushTimer;
    // One inotify watch may stand for several paths: a folder and a link to it are one inode.
    std::unordered_map<int, std::vector<Path>> _pathsByWatch;
    std::map<Path, int> _watchByPath;
    // Pending notices in order; the id of _notices.front() is _firstId.
    std::deque<Notice> _notices;
    NoticeId _firstId = 0;
    std::unordered_map<Path, NoticeId> _lastTouch;
    // Moves seen from their first half, by the kernel's cookie.
    std::unordered_map<uint32_t, NoticeId> _movesByCookie;
    // When each path's last change went out, for the pace of writers.
    std::unordered_map<Path, int64_t> _lastToldMs;
};
