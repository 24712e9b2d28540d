// The tree side of an entry: listing a folder, the hidden filter, finding, adding and removing
// children, and the placeholders of running operations.

#include "app/ARXDataCenter.h"
#include "app/ARXPathRules.h"
#include "model/ARXFileEntry.h"
#include "model/ARXUniquePath.h"
#include "platform/ARXConsole.h"
#include "platform/ARXDirectoryReader.h"
#include "platform/ARXHiddenList.h"
#include "platform/ARXResourceValues.h"
#include "platform/ARXTemporaryItems.h"

#include <algorithm>
#include <cerrno>
#include <unordered_set>

std::recursive_mutex& ARXFileEntry::treeMutex() {
    // One lock for all trees rather than one per entry: the two operations it guards are rare and
    // short, a per-entry mutex would cost 40 bytes on each of 100,000 listed entries, and with a
    // single lock no two threads can ever take locks in opposite orders.
    static std::recursive_mutex mutex;
    return mutex;
}

ARXFileEntryRef ARXFileEntry::makeListedChild(const Path& folder, std::string_view name,
                                              const ARXFileStatus& status,
                                              const ARXHiddenList& hiddenList) {
    auto child =
        std::make_shared<ARXFileEntry>(Token{}, ARXPath::join(folder, name), _hiddenVisible);
    child->adoptParent(shared_from_this());
    child->tags = ARXResourceValues::readTags(child->_path);
    child->readAttributes(status, &hiddenList);
    return child;
}

int ARXFileEntry::listFolder(const Path& folder, const ARXHiddenList& hiddenList,
                             const std::function<bool(std::string_view)>& skip,
                             ARXFileEntryList& children) {
    // Each child is made as its name is read: nothing holds the whole listing twice.
    return ARXDirectoryReader::forEachWithStatus(
        folder, skip, [&](std::string_view name, const ARXFileStatus& status) {
            children.push_back(makeListedChild(folder, name, status, hiddenList));
        });
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
        // Without a sandbox, no access means the system refuses to let the folder be read: the
        // same error as a listing that fails for want of permission, with its own text.
        if (!prepareError) {
            prepareError =
                std::make_unique<ARXFileError>(ARXFileError::fromErrno(EACCES, folderEntry._path));
        }
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
    ARXFileEntryList children;
    bool temporaries = false; // what a file operation cut short may have left
    const int error = listFolder(
        folder, hiddenList,
        [&](std::string_view name) {
            temporaries = temporaries || ARXTemporaryItems::isTemporaryName(name);
            return skipHidden && hiddenList.isHidden(name);
        },
        children);
    if (temporaries) {
        ARXTemporaryItems::sweepLater(folder);
    }
    if (error != 0) {
        prepareError = std::make_unique<ARXFileError>(ARXFileError::fromErrno(error, folder));
        return false;
    }
    children.shrink_to_fit();
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
    ARXFileEntryList added;
    const int error = listFolder(
        folder, hiddenList,
        [&](std::string_view name) { return present.contains(ARXPath::join(folder, name)); },
        added);
    if (error != 0) {
        ARXConsole::line(QStringLiteral("Atrium: cannot list hidden items: %1")
                             .arg(ARXFileError::fromErrno(error, folder).text()));
        return;
    }
    if (added.empty()) {
        return;
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

size_t ARXFileEntry::removeChildren(const ARXFileEntryList& entries) {
    std::lock_guard lock(treeMutex());
    const size_t before = _children.size();
    std::erase_if(_children, [&](const ARXFileEntryRef& child) {
        return std::find(entries.begin(), entries.end(), child) != entries.end();
    });
    _preparedFolderChildren = false;
    return before - _children.size();
}

size_t ARXFileEntry::removePathsLocked(const std::vector<Path>& sortedPaths) {
    std::lock_guard lock(treeMutex());
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
    std::lock_guard lock(treeMutex());
    const Path parentPath = ARXPath::parentPath(path);
    ARXFileEntryRef folder = find(parentPath);
    if (!folder) {
        // Children of a link to a folder carry the target's path: the link's entry lists them.
        folder = findBelow(parentPath, true, true);
    }
    if (!folder || !folder->expanded) {
        return nullptr;
    }
    ARXFileEntryRef entry = create(path, folder, false, _hiddenVisible, true);
    // An item gone again before it could be read (a temporary renamed at once) is nothing to
    // show: nothing is known of it, not even whether it is hidden.
    if (!entry->isExists || (entry->isHidden && !_hiddenVisible)) {
        return nullptr;
    }
    folder->appendChildren({entry});
    folder->sort(folder->sortColumn, folder->sortAscend, folder->sortFoldersOnTop);
    return entry;
}

namespace {

// `path` lies below `folder`, comparing bytes.
bool isBelow(const Path& folder, const Path& path) {
    if (folder == "/") {
        return path.size() > 1;
    }
    return path.size() > folder.size() && path[folder.size()] == '/' && path.starts_with(folder);
}

} // namespace

ARXFileEntryRef ARXFileEntry::find(const Path& path) {
    if (isSamePath(path)) {
        return shared_from_this();
    }
    // Every path met on the way is compared with this one: the volume's case rule is asked once
    // for the whole walk rather than once per child, which counts when thousands of rows each
    // look up their path as a large batch ends.
    const ARXVolumeRef volume = ARXDataCenter::shared().volumeFor(path);
    return findBelow(path, false, volume && !volume->caseSensitive);
}

ARXFileEntryRef ARXFileEntry::findBelow(const Path& path, bool byLinkTarget, bool anyCase) {
    // A placeholder may share its path with the item it is about to replace; that item is the
    // one a change on disk concerns.
    ARXFileEntryRef placeholder;
    for (const ARXFileEntryRef& child : _children) {
        // A link is the entry of its own path. Matched by its target's path it would stand in
        // for the target: renamed, removed or replaced by the target's row when the target is.
        if (byLinkTarget ? (child->_link && child->_link->isSamePath(path))
                         : (child->_path == path ||
                            (anyCase && ARXPathRules::isSamePath(child->_path, path)))) {
            if (!child->operation) {
                return child;
            }
            if (!placeholder) {
                placeholder = child;
            }
            continue;
        }
        if (!child->target()._isFolder) {
            continue;
        }
        const bool holds = anyCase ? child->contains(path, true)
                                   : isBelow(child->_path, path) ||
                                         (child->_link && isBelow(child->_link->_path, path));
        if (holds) {
            if (ARXFileEntryRef found = child->findBelow(path, byLinkTarget, anyCase)) {
                return found;
            }
        }
    }
    return placeholder;
}

ARXFileEntryList ARXFileEntry::linksTo(const Path& path) {
    ARXFileEntryList links;
    std::vector<ARXFileEntry*> open{this};
    while (!open.empty()) {
        ARXFileEntry* entry = open.back();
        open.pop_back();
        for (const ARXFileEntryRef& child : entry->_children) {
            if (child->_link && child->_link->isSamePath(path)) {
                links.push_back(child);
            }
            if (!child->_children.empty()) {
                open.push_back(child.get());
            }
        }
    }
    return links;
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
