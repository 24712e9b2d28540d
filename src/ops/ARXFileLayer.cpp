#include "ops/ARXFileLayer.h"

#include "app/ARXNotificationNames.h"
#include "ops/ARXCloudTrash.h"
#include "platform/ARXFileOperations.h"
#include "platform/ARXMainQueue.h"
#include "platform/ARXNotificationCenter.h"
#include "platform/ARXTrash.h"

namespace ARXFileLayer {

namespace {

// Through the main queue also from the main thread: a caller such as a rename updates its own
// entry once the call has returned, and observers must hear of the change after that.
void postLater(const QString& name, const QVariantMap& userInfo) {
    ARXMainQueue::async([name, userInfo] { ARXNotificationCenter::shared().post(name, userInfo); });
}

void postChanged(const Path& path) {
    postLater(ARXNotificationName::rv_file_changed,
              {{ARXNotificationKey::path, ARXPath::toStoredText(path)}});
}

void postMoved(const Path& source, const Path& target) {
    postLater(ARXNotificationName::rv_file_moved,
              {{ARXNotificationKey::source, ARXPath::toStoredText(source)},
               {ARXNotificationKey::target, ARXPath::toStoredText(target)}});
}

} // namespace

void copyFile(const Path& from, const Path& to, const ARXFileOperations::Building& building) {
    ARXFileOperations::copyItem(from, to, building);
    postChanged(to);
}

void moveFile(const Path& from, const Path& to, const ARXFileOperations::Building& building) {
    // Through the trash's own move: an item taken out of the trash, or put back, keeps the
    // trash's info files right for every other program.
    ARXTrash::moveItem(from, to, building);
    postMoved(from, to);
}

void removeFile(const Path& path) {
    ARXFileOperations::removeItem(path);
    postChanged(path);
}

bool removeFolderIfEmpty(const Path& path) {
    const bool removed = ARXFileOperations::removeFolderIfEmpty(path);
    if (removed) {
        postChanged(path);
    }
    return removed;
}

std::optional<Path> replaceFile(const Path& existing, const Path& with) {
    std::optional<Path> trashed = ARXFileOperations::replaceItemSafely(existing, with);
    postMoved(with, existing);
    return trashed;
}

std::optional<Path> trashFile(const Path& path) {
    const std::optional<Path> trashed = ARXCloudTrash::isUbiquitous(path)
                                            ? ARXCloudTrash::trashItem(path)
                                            : ARXFileOperations::trashItem(path);
    if (trashed) {
        postChanged(path);
    }
    return trashed;
}

} // namespace ARXFileLayer
