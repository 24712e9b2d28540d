#pragma once

#include "model/ARXSpaceViewTypes.h"
#include "platform/ARXFileStatus.h"
#include "platform/ARXPath.h"

#include <QObject>
#include <QPointer>

#include <atomic>
#include <memory>
#include <mutex>
#include <optional>

class ARXFileEntry;

// What an operation left at a path, to know it again later: the same item (device and inode),
// not written to since (size and modification time). A file edited, replaced or removed since is
// no longer what the operation made.
struct ARXMadeItem {
    uint64_t device = 0;
    uint64_t inode = 0;
    uint64_t size = 0;
    ARXFileTime modified;

    bool operator==(const ARXMadeItem&) const = default;

    // The item at the path itself (a symbolic link as a link); none when nothing is there.
    static std::optional<ARXMadeItem> at(const Path& path) {
        const ARXFileStatus status = ARXFileStatus::lstat(path);
        if (!status.exists) {
            return std::nullopt;
        }
        return ARXMadeItem{status.device, status.inode, status.size, status.modified};
    }
};

// One unit of work of a file operation batch: copy this, move that, trash the other. Items are
// shared (std::shared_ptr) between the batch, the worker, the polling tick and the placeholder
// entry that shows the item in a pane while it runs.
//
// The worker thread writes the outcome while the main thread and the polling tick read it, so the
// numbers and flags are atomic and `target` is read and written under a lock. `type`, `from` and
// `to` never change after construction.
class ARXFileOperationItem {
public:
    ARXFileOperationItem(ARXFileOperationType type, Path from, std::optional<Path> to,
                         std::weak_ptr<ARXFileEntry> userData = {})
        : type(type), from(std::move(from)), to(std::move(to)), userData(std::move(userData)) {}

    ARXFileOperationItem(const ARXFileOperationItem&) = delete;
    ARXFileOperationItem& operator=(const ARXFileOperationItem&) = delete;

    const ARXFileOperationType type;
    // Absolute source path.
    const Path from;
    // Requested destination; none for duplicate, trash and remove.
    const std::optional<Path> to;

    // Where the item really ended up, set by the worker; none until then (and for a trash that
    // gave no resulting path).
    std::optional<Path> target() const {
        std::lock_guard lock(_targetMutex);
        return _target;
    }
    void setTarget(std::optional<Path> target) {
        std::lock_guard lock(_targetMutex);
        _target = std::move(target);
    }

    // What stood at the target when the item was done; taken by the worker right after it.
    std::optional<ARXMadeItem> made() const {
        std::lock_guard lock(_targetMutex);
        return _made;
    }
    void noteMade() {
        const std::optional<Path> where = target();
        std::optional<ARXMadeItem> made = where ? ARXMadeItem::at(*where) : std::nullopt;
        std::lock_guard lock(_targetMutex);
        _made = std::move(made);
    }

    // Bytes measured in the preparation pass, and bytes done as the polling tick finds them.
    std::atomic<double> totalSize{0.0};
    std::atomic<double> workedSize{0.0};
    // The item has been dealt with.
    std::atomic<bool> finished{false};
    // No new row stands for this item: skipped, stopped, moved onto itself, or it replaced an
    // existing item (whose row already exists). Errors don't set it.
    std::atomic<bool> failed{false};

    // The placeholder entry that shows this item in a pane, if any. Weak: the pane's tree owns
    // the entry, and the item must not keep a discarded tree alive.
    std::weak_ptr<ARXFileEntry> userData;
    // Another owner to hand back to the delegate when there is no placeholder (a drop target view
    // of the path bar or the sidebar). Cleared by Qt when that object goes.
    QPointer<QObject> userObject;

private:
    mutable std::mutex _targetMutex;
    std::optional<Path> _target;
    std::optional<ARXMadeItem> _made;
};

using ARXFileOperationItemRef = std::shared_ptr<ARXFileOperationItem>;
