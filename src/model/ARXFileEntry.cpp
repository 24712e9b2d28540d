#include "model/ARXFileEntry.h"

#include "app/ARXConf.h"
#include "app/ARXPathRules.h"
#include "model/ARXFileEntryMedia.h"
#include "model/ARXSecurityScopedCache.h"
#include "model/ARXUniquePath.h"
#include "platform/ARXHiddenList.h"
#include "platform/ARXResourceValues.h"
#include "platform/ARXSymbolicLink.h"
#include "platform/ARXSystemPaths.h"

#include <QCoreApplication>
#include <QDateTime>

namespace {

// Where the desktop shows folders under names of their own.
constexpr std::string_view kApplicationsFolder = "/Applications";

// The name the desktop gives a folder directly in the home folder or in /Applications. The XDG
// user folders are created under the names of the user's language, so their file names already
// are their display names; an application bundle drops its extension.
QString localizedFolderName(const Path& folder, std::string_view name) {
    if (folder == kApplicationsFolder) {
        const std::string extension = ARXPath::extension(name);
        if (ARXConf::isPackageExtension(extension)) {
            return ARXPath::display(name.substr(0, name.size() - extension.size() - 1));
        }
    }
    return ARXPath::display(name);
}

} // namespace

// ----- creation

ARXFileEntry::ARXFileEntry(Token, Path path, bool hiddenVisible)
    : _path(std::move(path)), _hiddenVisible(hiddenVisible) {}

ARXFileEntry::~ARXFileEntry() = default;

ARXFileEntryRef ARXFileEntry::create(Path path, const ARXFileEntryRef& parent, bool prepare,
                                     bool hiddenVisible, bool load) {
    auto entry = std::make_shared<ARXFileEntry>(Token{}, std::move(path), hiddenVisible);
    if (parent) {
        // A tree sorts as one: the parent's order wins over the defaults, which therefore need
        // not be read for the thousands of children of a listing.
        entry->adoptParent(parent);
    } else {
        entry->sortColumn =
            ARXSpaceViewColumn::parse(ARXConf::settings_default_sort_column().value())
                .value_or(ARXSpaceViewColumnId::modified);
        entry->sortAscend = ARXConf::settings_default_sort_ascend().value();
        entry->sortFoldersOnTop = ARXConf::settings_default_sort_folders_ontop().value();
    }
    if (prepare || load) {
        entry->refresh(false);
    }
    if (prepare && entry->target()._isFolder) {
        entry->prepare(false);
    }
    return entry;
}

void ARXFileEntry::adoptParent(const ARXFileEntryRef& parent) {
    _parent = parent;
    sortColumn = parent->sortColumn;
    sortAscend = parent->sortAscend;
    sortFoldersOnTop = parent->sortFoldersOnTop;
}

ARXFileEntryRef ARXFileEntry::makeChild(const Path& path) {
    return create(path, shared_from_this(), false, _hiddenVisible, true);
}

// ----- identity

std::string_view ARXFileEntry::name() const {
    if (_path == "/") {
        return _path;
    }
    const size_t slash = _path.rfind('/');
    return slash == Path::npos ? std::string_view(_path)
                               : std::string_view(_path).substr(slash + 1);
}

void ARXFileEntry::setPath(Path path) {
    const std::string oldName(name());
    _path = std::move(path);
    if (name() != oldName) {
        _sortKey.clear();
    }
}

void ARXFileEntry::setLocalName(std::optional<QString> localName) {
    if (localName != _localName) {
        _localName = std::move(localName);
        _sortKey.clear();
    }
}

// ----- attributes

bool ARXFileEntry::refresh(bool force) {
    // Tags change without touching the modification time, so they are read before the test.
    tags = ARXResourceValues::readTags(_path);

    // Fresh when the path (links followed) still has the time of the last read. The stored time
    // is the item's own (links not followed), so a link whose target differs is read every time,
    // which keeps its target entry current. Cloud items change state without a new time.
    if (!force && _loaded_modified_time) {
        const ARXFileStatus status = ARXFileStatus::stat(_path);
        if (status.exists && status.modified == *_loaded_modified_time && !isUbiquitous) {
            return true;
        }
    }
    return readAttributes(ARXFileStatus::lstat(_path), nullptr);
}

bool ARXFileEntry::readAttributes(const ARXFileStatus& linkStatus,
                                  const ARXHiddenList* hiddenList) {
    if (!linkStatus.exists) {
        // The old values stay visible; the view decides what a vanished item means.
        isExists = false;
        _loaded_modified_time.reset();
        return false;
    }
    isExists = true;
    if (linkStatus.isDirectory()) {
        _isFolder = true;
    }
    creationDate = linkStatus.changed.secondsSince1970();
    _accessDate = linkStatus.accessed.secondsSince1970();
    _modifiedDate = linkStatus.modified.secondsSince1970();
    size = linkStatus.size;
    _loaded_modified_time = linkStatus.modified;

    const std::optional<ARXResourceValues> values =
        ARXResourceValues::read(_path, linkStatus, hiddenList);
    if (!values) {
        return true;
    }
    if (values->totalFileSize) {
        size = *values->totalFileSize;
    }
    if (values->isSymbolicLink) {
        // A dangling link or a loop keeps whatever target entry there was.
        const ARXLinkResolution resolution = ARXResourceValues::resolveLink(_path);
        if (resolution.target) {
            _link = create(*resolution.target, nullptr, false, _hiddenVisible, true);
        }
    }
    if (!_link && _isFolder) {
        const Path folder = ARXPath::parentPath(_path);
        if (folder == kApplicationsFolder || folder == ARXSystemPaths::homeDirectory()) {
            setLocalName(localizedFolderName(folder, name()));
        }
    }

    const ARXCloudValues& cloud = values->cloud;
    isUbiquitous = cloud.isUbiquitous.value_or(false);
    const bool placeholder = ARXPath::isCloudPlaceholderName(name());
    if (isUbiquitous) {
        const bool current = cloud.downloadingStatus == ARXDownloadingStatus::current;
        if (cloud.hasUnresolvedConflicts.value_or(false)) {
            ubiquitousState = ARXFileUbiquitousState::conflict;
        } else if (target()._isFolder || placeholder) {
            ubiquitousState = cloud.isDownloading.value_or(false)
                                  ? ARXFileUbiquitousState::downloading
                                  : (current ? ARXFileUbiquitousState::synced
                                             : ARXFileUbiquitousState::need_download);
        } else {
            ubiquitousState = cloud.isUploading.value_or(false)
                                  ? ARXFileUbiquitousState::uploading
                                  : (current ? ARXFileUbiquitousState::synced
                                             : ARXFileUbiquitousState::need_upload);
        }
    }
    _addedDate.reset();
    if (values->addedDate) {
        _addedDate = values->addedDate->secondsSince1970();
    }
    // A placeholder of a cloud item stays visible: it is how the user sees the item at all.
    isHidden = isUbiquitous && placeholder ? false : values->isHidden;
    return true;
}

void ARXFileEntry::copyAttributes(ARXFileEntry& other) const {
    other._accessDate = _accessDate;
    other._modifiedDate = _modifiedDate;
    // The facts describe the source's content until the copy exists.
    other._media = std::make_unique<Media>(_media ? *_media : Media{});
    if (other._media->source.empty()) {
        other._media->source = target()._path;
    }
    other._isFolder = _isFolder;
    other.creationDate = creationDate;
    other.isHidden = isHidden;
    other.immutable = immutable;
    other.type = type;
    other.size = size;
    other.isUbiquitous = isUbiquitous;
    if (tags) {
        other.tags = tags;
    }
    other._addedDate = double(QDateTime::currentMSecsSinceEpoch()) / 1000.0;
}

QString ARXFileEntry::fileURLString() const {
    return ARXPath::fileURLString(_path);
}

// ----- paths

bool ARXFileEntry::isSamePath(const Path& other) const {
    return ARXPathRules::isSamePath(_path, other) || (_link && _link->isSamePath(other));
}

bool ARXFileEntry::contains(const Path& other, bool anyDepth) const {
    return ARXPathRules::isInside(_path, other, anyDepth) ||
           (_link && _link->contains(other, anyDepth));
}

bool ARXFileEntry::isInside(const Path& folder, bool anyDepth) const {
    return ARXPathRules::isInside(folder, _path, anyDepth) ||
           (_link && _link->isInside(folder, anyDepth));
}

bool ARXFileEntry::checkAccess() const {
    if (prepareError && prepareError->code == ARXFileError::kNoReadPermission) {
        return false;
    }
    return ARXSecurityScopedCache::shared().isAccessible(target()._path);
}

void ARXFileEntry::rewritePaths() {
    for (const ARXFileEntryRef& child : _children) {
        child->setPath(ARXPath::join(_path, child->name()));
        if (!child->_link) {
            child->rewritePaths();
        }
    }
}

ARXFileEntryResult ARXFileEntry::makeAlias() {
    // Without access there is nothing to tell: the pane already shows the item as denied.
    if (!ARXSecurityScopedCache::shared().isAccessible(_path)) {
        return {};
    }
    const Path& targetPath = target()._path;
    // "%1 alias" around the target's bytes, so that a name that is not UTF-8 survives.
    const QString format = QCoreApplication::translate("Atrium", "%1 alias");
    const qsizetype marker = format.indexOf(QLatin1String("%1"));
    const Path aliasPath = ARXPath::fromText(format.left(marker)) + targetPath +
                           ARXPath::fromText(format.mid(marker + 2));
    const Path path = uniquePath(aliasPath);
    if (const int error = ARXSymbolicLink::create(targetPath, path); error != 0) {
        return {nullptr, ARXFileError::fromErrno(error, path, ARXFileError::Access::writing)};
    }
    const ARXFileEntryRef folder = parent();
    if (!folder) {
        return {create(path, nullptr, false, _hiddenVisible, true), std::nullopt};
    }
    ARXFileEntryRef alias = folder->makeChild(path);
    folder->appendChildren({alias});
    folder->sort(folder->sortColumn, folder->sortAscend, folder->sortFoldersOnTop);
    return {alias, std::nullopt};
}
