// The tree side of an entry: listing a folder, the hidden filter, finding, adding and removing
// children, and the placeholders of running operations.

#include "app/ARXPathRules.h"
#include "model/ARXFileEntry.h"
#include "model/ARXUniquePath.h"
#include "platform/ARXConsole.h"
#include "platform/ARXDirectoryReader.h"
#include "platform/ARXHiddenList.h"
#include "platform/ARXResourceValues.h"

#include <algorithm>
#include <unordered_set>

namespace {

// Reads the names of `folder` and the status of each (links not followed), leaving out the names
// `skip` refuses. Returns 0 or the errno that stopped the listing. A name that vanished between
// the listing and its status read stays, marked as gone.
template <typename Skip>
int readFolder(const Path& folder, std::vector<ARXDirectoryItem>& items, Skip skip) {
    ARXDirectoryListing listing = ARXDirectoryReader::list(folder);
    if (!listing.ok()) {
        return listing.error;
    }
    std::erase_if(listing.items, skip);
    if (const int error = ARXDirectoryReader::statItems(folder, listing.items); error != 0) {
        return error;
    }
    items = std::move(listing.items);
    return 0;
}

} // namespace

ARXFileEntryRef ARXFileEntry::makeListedChild(const Path& folder, ARXDirectoryItem& item,
                                              const ARXHiddenList& hiddenList) {
    auto child =
        std::make_shared<ARXFileEntry>(Token{}, ARXPath::join(folder, item.name), _hiddenVisible);
    child->adoptParent(shared_from_this());
    child->tags = ARXResourceValues::readTags(child->_path);
    child->readAttributes(item.status ? *item.status : ARXFileStatus::lstat(child->_path),
                          &hiddenList);
    return child;
}

void ARXFileEntry::replaceChildren(ARXFileEntryList children) {
    _children = std::move(children);
    _preparedFolderChildren = false;
}

void ARXFileEntry::appendChildren(ARXFileEntryList children) {
    _children.insert(_children.end(), std::make_move_iterator(children.begin()),
                     std::make_move_iterator(children.end()));
    _preparedFolderChildren = false;
}

// ----- listing

bool ARXFileEntry::prepare(bool force) {
    const ARXFileEntry& folderEntry = target();
    if (!folderEntry._isFolder || (expanded && !force)) {
        return true;
    }
    if (!checkAccess()) {
        return false;
    }
    // Set before the listing: a failed listing leaves a listed folder without children.
    expanded = true;

    // Children of a link live under the target's path: that is the folder that is read.
    const Path folder = folderEntry._path;
    // One `.hidden` read for the whole listing, both to skip names and to mark the children.
    const ARXHiddenList hiddenList = ARXHiddenList::load(folder);
    // A cloud folder lists its hidden placeholders so that the filter below can keep them.
    const bool skipHidden = !isUbiquitous && !_hiddenVisible;
    std::vector<ARXDirectoryItem> items;
    const int error = readFolder(folder, items, [&](const ARXDirectoryItem& item) {
        return skipHidden && hiddenList.isHidden(item.name);
    });
    if (error != 0) {
        prepareError = std::make_unique<ARXFileError>(ARXFileError::fromErrno(error, folder));
        return false;
    }

    ARXFileEntryList children;
    children.reserve(items.size());
    for (ARXDirectoryItem& item : items) {
        children.push_back(makeListedChild(folder, item, hiddenList));
    }
    replaceChildren(std::move(children));

    if (isUbiquitous && !_hiddenVisible) {
        hideHidden();
    }
    sort(sortColumn, sortAscend, sortFoldersOnTop);
    return true;
}

// ----- the hidden filter

void ARXFileEntry::hideHidden() {
    _hiddenVisible = false;
    ARXFileEntryList kept;
    kept.reserve(_children.size());
    for (const ARXFileEntryRef& child : _children) {
        if (child->isHidden) {
            continue;
        }
        child->hideHidden();
        kept.push_back(child);
    }
    replaceChildren(std::move(kept));
}

void ARXFileEntry::revealHidden() {
    _hiddenVisible = true;
    if (!target()._isFolder || !expanded) {
        return;
    }
    std::unordered_set<Path> present;
    present.reserve(_children.size());
    for (const ARXFileEntryRef& child : _children) {
        present.insert(child->_path);
    }
    for (const ARXFileEntryRef& child : _children) {
        child->revealHidden();
    }

    const Path folder = target()._path;
    const ARXHiddenList hiddenList = ARXHiddenList::load(folder);
    std::vector<ARXDirectoryItem> items;
    const int error = readFolder(folder, items, [&](const ARXDirectoryItem& item) {
        return present.contains(ARXPath::join(folder, item.name));
    });
    if (error != 0) {
        ARXConsole::line(QStringLiteral("Atrium: cannot list hidden items: %1")
                             .arg(ARXFileError::fromErrno(error, folder).text()));
        return;
    }
    if (items.empty()) {
        return;
    }
    ARXFileEntryList added;
    added.reserve(items.size());
    for (ARXDirectoryItem& item : items) {
        added.push_back(makeListedChild(folder, item, hiddenList));
    }
    appendChildren(std::move(added));
    sort(sortColumn, sortAscend, sortFoldersOnTop);
}

const ARXFileEntryList& ARXFileEntry::folderChildren() {
    if (!_preparedFolderChildren) {
        _preparedFolderChildren = true;
        _folderChildren.clear();
        for (const ARXFileEntryRef& child : _children) {
            if (child->isFolderItem()) {
                _folderChildren.push_back(child);
            }
        }
    }
    return _folderChildren;
}

// ----- removing, adding, finding

size_t ARXFileEntry::removePaths(const std::vector<Path>& paths) {
    std::vector<Path> sorted = paths;
    std::sort(sorted.begin(), sorted.end());
    sorted.erase(std::unique(sorted.begin(), sorted.end()), sorted.end());
    return removePathsLocked(sorted);
}

size_t ARXFileEntry::removePathsLocked(const std::vector<Path>& sortedPaths) {
    std::lock_guard lock(_mutex);
    size_t count = 0;
    ARXFileEntryList kept;
    kept.reserve(_children.size());
    for (const ARXFileEntryRef& child : _children) {
        if (std::binary_search(sortedPaths.begin(), sortedPaths.end(), child->_path)) {
            ++count;
        } else {
            kept.push_back(child);
        }
    }
    replaceChildren(std::move(kept));
    for (const ARXFileEntryRef& child : _children) {
        count += child->removePathsLocked(sortedPaths);
    }
    return count;
}

ARXFileEntryRef ARXFileEntry::addChild(const Path& path) {
    std::lock_guard lock(_mutex);
    const ARXFileEntryRef folder = find(ARXPath::parentPath(path));
    if (!folder || !folder->expanded) {
        return nullptr;
    }
    ARXFileEntryRef entry = create(path, folder, false, _hiddenVisible, true);
    if (entry->isHidden && !_hiddenVisible) {
        return nullptr;
    }
    folder->appendChildren({entry});
    folder->sort(folder->sortColumn, folder->sortAscend, folder->sortFoldersOnTop);
    return entry;
}

ARXFileEntryRef ARXFileEntry::find(const Path& path) {
    if (isSamePath(path)) {
        return shared_from_this();
    }
    for (const ARXFileEntryRef& child : _children) {
        if (child->isSamePath(path)) {
            return child;
        }
        if (child->target()._isFolder && child->contains(path, true)) {
            if (ARXFileEntryRef found = child->find(path)) {
                return found;
            }
        }
    }
    return nullptr;
}

ARXFileEntryResult ARXFileEntry::findPreparing(const Path& path) {
    if (isSamePath(path)) {
        return {shared_from_this(), std::nullopt};
    }
    if (!prepare(false) && prepareError) {
        return {nullptr, *prepareError};
    }
    for (const ARXFileEntryRef& child : _children) {
        if (child->isSamePath(path)) {
            return {child, std::nullopt};
        }
        if (child->target()._isFolder && child->contains(path, true)) {
            ARXFileEntryResult found = child->findPreparing(path);
            if (found.entry || found.error) {
                return found;
            }
        }
    }
    return {};
}

// ----- placeholders of running operations

ARXFileEntryList ARXFileEntry::addPlaceholders(const std::vector<Path>& paths,
                                               ARXFileOperationType type) {
    ARXFileEntryList added;
    added.reserve(paths.size());
    for (const Path& source : paths) {
        const Path path =
            ARXPathRules::joinPath(_path, ARXPath::lastComponent(ARXPath::normalized(source)));
        ARXFileEntryRef child = makeChild(path);
        child->operation = std::make_shared<ARXFileOperationItem>(type, source, path, child);
        added.push_back(std::move(child));
    }
    appendChildren(added);
    sort(sortColumn, sortAscend, sortFoldersOnTop);
    return added;
}

ARXFileEntryDuplicates ARXFileEntry::addDuplicates(const ARXFileEntryList& entries) {
    ARXFileEntryDuplicates result;
    for (const ARXFileEntryRef& source : entries) {
        // Paths chosen earlier in this batch count as taken, so no two placeholders collide.
        const Path path = uniquePath(source->_path, result.paths);
        ARXFileEntryRef child = makeChild(path);
        source->copyAttributes(*child);
        child->operation = std::make_shared<ARXFileOperationItem>(
            ARXFileOperationType::duplicate, source->_path, std::nullopt, child);
        result.entries.push_back(std::move(child));
        result.paths.push_back(path);
    }
    appendChildren(result.entries);
    sort(sortColumn, sortAscend, sortFoldersOnTop);
    return result;
}
