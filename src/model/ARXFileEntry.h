#pragma once

#include "model/ARXFileOperationItem.h"
#include "model/ARXOptionalSeconds.h"
#include "model/ARXSpaceViewTypes.h"
#include "model/ARXTagColorSource.h"
#include "platform/ARXFileError.h"
#include "platform/ARXFileStatus.h"
#include "platform/ARXMediaFacts.h"
#include "platform/ARXPath.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

class ARXHiddenList;
class ARXFileEntry;
struct ARXDirectoryItem;

using ARXFileEntryRef = std::shared_ptr<ARXFileEntry>;
using ARXFileEntryList = std::vector<ARXFileEntryRef>;

// An entry, or the error that kept one from being found or made. The views show the error (with
// its path and reason) in an alert; the model never shows anything.
struct ARXFileEntryResult {
    ARXFileEntryRef entry;
    std::optional<ARXFileError> error;
};

// The placeholders of a duplicate batch and the paths chosen for them, in the same order.
struct ARXFileEntryDuplicates {
    ARXFileEntryList entries;
    std::vector<Path> paths;
};

// One item of the file tree as one pane sees it. It caches what the file system said about its
// path at the last read, knows whether it is a folder, package, link or cloud item, lists its
// children on demand and keeps them in the pane's order. Each pane owns its own tree: two panes on
// one folder hold two entries, and identity is the object, never the path.
//
// Entries live in std::shared_ptr: a folder owns its children, a link entry owns the entry of its
// target (`link()`), and the link to the parent is weak, so a tree is freed when its pane, history
// and selection let go of it. Created with `create` only.
//
// Questions about "the item behind a link" (is it a folder, what type, its listing, its media
// facts) go to the link's target when there is one (`target()`); the link entry holds the
// children. Main thread only, except that `removePaths` and `addChild` take the tree lock.
class ARXFileEntry : public std::enable_shared_from_this<ARXFileEntry> {
    struct Token {
        explicit Token() = default;
    };

public:
    // A new entry for `path` (kept as given). Its sort settings come from the parent, or for a
    // root from the default sort settings. With `load` (or `prepare`) the attributes are read at
    // once; with `prepare` a folder also lists its children. Callers mostly use prepare false and
    // load true.
    static ARXFileEntryRef create(Path path, const ARXFileEntryRef& parent = nullptr,
                                  bool prepare = false, bool hiddenVisible = false,
                                  bool load = true);

    ARXFileEntry(Token, Path path, bool hiddenVisible);
    ~ARXFileEntry();
    ARXFileEntry(const ARXFileEntry&) = delete;
    ARXFileEntry& operator=(const ARXFileEntry&) = delete;

    // ----- identity

    const Path& path() const { return _path; }
    // The text after the last "/" of the path ("/" for the root); always follows the path.
    std::string_view name() const;
    // A new path for the same item (rename, move, `rewritePaths`). The name follows.
    void setPath(Path path);

    ARXFileEntryRef parent() const { return _parent.lock(); }

    // The name the desktop shows for some folders in place of the file name; none for most items.
    const std::optional<QString>& localName() const { return _localName; }
    void setLocalName(std::optional<QString> localName);

    // The item itself (not following a link) is a folder. Only ever turned on.
    bool isFolder() const { return _isFolder; }

    // The entry of the item a symbolic link finally leads to; null for anything else and for a
    // link that could not be resolved.
    const ARXFileEntryRef& link() const { return _link; }
    const ARXFileEntry& target() const { return _link ? *_link : *this; }
    ARXFileEntry& target() { return _link ? *_link : *this; }

    // ----- attributes, as the last read found them

    bool isExists = false; // the last status read (not following links) succeeded
    bool isHidden = false; // a dot name or listed in the folder's `.hidden`
    bool immutable = false;
    ARXFileType type = ARXFileType::regular;
    uint64_t size = 0;
    // The last status change (ctime), in seconds since 1970: what "Date Created" shows and sorts.
    ARXOptionalSeconds creationDate;
    // While this entry stands for an item of a running operation (a placeholder).
    ARXFileOperationItemRef operation;
    // Tag names; none when none could be read.
    std::optional<QStringList> tags;
    bool isUbiquitous = false;
    ARXFileUbiquitousState ubiquitousState = ARXFileUbiquitousState::synced;

    // Seconds since 1970.
    std::optional<double> modifiedDate() const { return _modifiedDate; }
    std::optional<double> accessDate() const { return _accessDate; }
    // When the item came into its folder (the birth time where the file system records one).
    std::optional<double> addedDate() const { return _addedDate; }
    // The modification time at the last full read; none before it and once the item is gone.
    const std::optional<ARXFileTime>& loadedModifiedTime() const { return _loaded_modified_time; }

    // Re-reads the attributes. Tags are always read again. Unless `force`, an entry whose path
    // still has the modification time of the last read (links followed) is fresh and nothing else
    // is read; cloud items are never fresh. True while the item exists (changed or not), false
    // once it is gone, leaving the last values in place.
    bool refresh(bool force = false);

    // Gives a placeholder the look of this entry: dates, folder flag, hidden flag, size, cloud
    // flag, media facts, tags (only if this entry has some). Its added date becomes now.
    void copyAttributes(ARXFileEntry& other) const;

    // ----- what the item is

    // The MIME type of the entry's own path, read afresh on every call.
    QString typeIdentifier() const;
    // A folder that is one document (a package extension), judged on the target.
    bool isPackage() const;
    // Shows and behaves as a folder: a folder that is no package, judged on the target.
    bool isFolderItem() const;
    bool hasPackageExtension() const;
    // The type's description with each word capitalised ("Plain Text Document"), or "File".
    QString kind() const;
    // The short second line: size of an archive, item count of a folder, pixel size of an image,
    // duration of audio and video; none for anything else.
    std::optional<QString> briefInfo();
    // "file://" + percent-encoded path, always ending in "/".
    QString fileURLString() const;
    // The name as sorted: the local name, else the name with carriage returns and line feeds
    // shown as "?".
    QString displayName() const;
    // The colours of the tags, each once, the first tag's colour last (drawn on top).
    std::vector<ARXTagColor> tagColors() const;

    // Media facts, each read at most once per entry (never again, even if the file changes) and
    // only for the types that have them: pixel size of images and videos, duration of audio and
    // video.
    std::optional<ARXPixelSize> dimensions();
    std::optional<double> duration();
    std::optional<QString> infoDimensions(); // "640×480"
    std::optional<QString> infoDuration();   // "01:02:05"

    // ----- paths, with the volume's case rule; each tries the link's target when the entry's own
    // path does not match

    bool isSamePath(const Path& other) const;
    bool contains(const Path& other, bool anyDepth) const;
    bool isInside(const Path& folder, bool anyDepth) const;

    // May the target be listed? False at once, without asking again, after a listing failed for
    // want of permission.
    bool checkAccess() const;

    // After this folder's path changed: gives every loaded descendant the path of its parent plus
    // its name. Children of a link live under the target's path and are left alone.
    void rewritePaths();

    // Makes a symbolic link to the target, named after the target's path + " alias" (numbered when
    // taken), adds it to the parent's children and answers its entry. Nothing, and no error, when
    // the item may not be read; the error with its path when the link cannot be made.
    ARXFileEntryResult makeAlias();

    // ----- children and order

    ARXSpaceViewColumnId sortColumn = ARXSpaceViewColumnId::modified;
    bool sortAscend = false;
    bool sortFoldersOnTop = false;
    // A listing was attempted past the access test.
    bool expanded = false;
    // The last listing failure; never cleared, so a denied folder is not asked again.
    std::unique_ptr<ARXFileError> prepareError;

    const ARXFileEntryList& children() const { return _children; }
    bool hiddenVisible() const { return _hiddenVisible; }
    bool preparedFolderChildren() const { return _preparedFolderChildren; }

    // Lists the target's folder once (again with `force`), reading each child's attributes, and
    // sorts. False when access is denied or the listing failed (see prepareError).
    bool prepare(bool force = false);
    // Drops hidden children through the loaded subtree, keeping the order.
    void hideHidden();
    // Lists hidden children through the loaded subtree and adds them; existing children stay the
    // same objects.
    void revealHidden();
    // The children that are folder items, in order; rebuilt only after the children changed.
    const ARXFileEntryList& folderChildren();
    // Stores the order and sorts the children and every loaded descendant by it.
    void sort(ARXSpaceViewColumnId column, bool ascend, bool foldersOnTop);

    // Drops every loaded entry whose path is one of `paths` (exact bytes); answers how many.
    size_t removePaths(const std::vector<Path>& paths);
    // Drops these objects from this entry's own children, keeping the order; answers how many.
    // By identity, not path: a placeholder of a failed operation may share its path with the
    // real item it did not replace.
    size_t removeChildren(const ARXFileEntryList& entries);
    // Adds an entry for `path` under its loaded, listed parent folder; null when that folder is
    // not loaded, or the item is hidden and hidden items are not shown.
    ARXFileEntryRef addChild(const Path& path);
    // The loaded entry for `path`: this one or a descendant; null when not loaded. A symbolic
    // link below this entry is found by its own path only, never by the path of its target.
    ARXFileEntryRef find(const Path& path);
    // The loaded symbolic links below this entry that lead to `path`: what they show of their
    // target changes with it.
    ARXFileEntryList linksTo(const Path& path);
    // The same, listing folders on the way; the error of a listing that failed.
    ARXFileEntryResult findPreparing(const Path& path);

    // Placeholders for items about to be copied or moved here: one child per source, named after
    // it, each holding its new operation item. Sorted in once.
    ARXFileEntryList addPlaceholders(const std::vector<Path>& paths, ARXFileOperationType type);
    // Placeholders for duplicates of `entries` beside them in this folder, with unique names and
    // their sources' look. Sorted in once.
    ARXFileEntryDuplicates addDuplicates(const ARXFileEntryList& entries);

private:
    struct Media;

    // Takes the parent link and the parent's order.
    void adoptParent(const ARXFileEntryRef& parent);
    // Everything a read learns from one status of the item itself (links not followed).
    bool readAttributes(const ARXFileStatus& linkStatus, const ARXHiddenList* hiddenList);
    // A child from a listing whose status was already read, reading the rest of its attributes.
    ARXFileEntryRef makeListedChild(const Path& folder, std::string_view name,
                                    const ARXFileStatus& status, const ARXHiddenList& hiddenList);
    // Makes a child for every item of `folder` that `skip` lets through, in listing order.
    // Returns 0 or the errno that stopped the listing (the children are then incomplete).
    int listFolder(const Path& folder, const ARXHiddenList& hiddenList,
                   const std::function<bool(std::string_view)>& skip, ARXFileEntryList& children);
    // A child for a path, read from the file system.
    ARXFileEntryRef makeChild(const Path& path);
    // The descendant whose own path is `path`, or with `byLinkTarget` the link that leads there.
    // `anyCase`: the path lies on a volume that ignores case.
    ARXFileEntryRef findBelow(const Path& path, bool byLinkTarget, bool anyCase);
    void replaceChildren(ARXFileEntryList children);
    void appendChildren(ARXFileEntryList children);
    size_t removePathsLocked(const std::vector<Path>& sortedPaths);
    Media& media();
    // The natural-order key of displayName(), computed once and kept until the name changes.
    const std::string& sortKey();
    // The lock of removePaths and addChild, recursive since both walk down the tree.
    static std::recursive_mutex& treeMutex();
    // Makes the missing keys of a large group ahead of a sort, on two threads.
    static void prepareSortKeys(ARXFileEntryList& entries);

    Path _path;
    std::weak_ptr<ARXFileEntry> _parent;
    std::optional<QString> _localName;
    ARXFileEntryRef _link;
    ARXOptionalSeconds _modifiedDate;
    ARXOptionalSeconds _accessDate;
    ARXOptionalSeconds _addedDate;
    std::optional<ARXFileTime> _loaded_modified_time;
    std::unique_ptr<Media> _media;
    ARXFileEntryList _children;
    ARXFileEntryList _folderChildren;
    std::string _sortKey; // empty until computed
    bool _isFolder = false;
    bool _preparedFolderChildren = false;
    bool _hiddenVisible = false;
};
