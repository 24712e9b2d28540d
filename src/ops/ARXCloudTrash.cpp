#include "ops/ARXCloudTrash.h"

#include "app/ARXConf.h"
#include "app/ARXPathRules.h"
#include "model/ARXUniquePath.h"
#include "platform/ARXFileError.h"
#include "platform/ARXFileIO.h"
#include "platform/ARXFileOperations.h"
#include "platform/ARXFileStatus.h"
#include "platform/ARXHiddenList.h"
#include "platform/ARXResourceValues.h"

namespace ARXCloudTrash {

bool isUbiquitous(const Path& path) {
    // Only the cloud values are asked: an empty hidden list spares reading the folder's .hidden.
    const ARXHiddenList noHiddenNames = ARXHiddenList::parse(ARXPath::parentPath(path), {});
    const std::optional<ARXResourceValues> values =
        ARXResourceValues::read(path, ARXFileStatus::lstat(path), &noHiddenNames);
    return values && values->cloud.isUbiquitous.value_or(false);
}

Path trashFolderFor(const Path& path) {
    const Path libraries = ARXConf::cloudLibrariesPath();
    const Path drive = ARXConf::cloudDrivePath();
    const bool inDrive =
        ARXPathRules::isSamePath(drive, path) || ARXPathRules::isInside(drive, path, true);
    if (!inDrive && ARXPathRules::isInside(libraries, path, true)) {
        // An app's container: the first folder below the libraries.
        const std::string rest = path.substr(libraries.size() + 1);
        const std::string container = rest.substr(0, rest.find('/'));
        return ARXPath::join(ARXPath::join(libraries, container), "Documents/.Trash");
    }
    return ARXConf::cloudTrashPath();
}

std::optional<Path> trashItem(const Path& path) {
    const Path folder = trashFolderFor(path);
    const ARXFileStatus status = ARXFileStatus::stat(folder);
    if (!status.exists) {
        if (ARXFileStatus::lstat(folder).exists) {
            return std::nullopt; // a link to nothing holds the name
        }
        if (const int err = ARXFileIO::makeDirectories(folder)) {
            throw ARXFileError::fromErrno(err, folder, ARXFileError::Access::writing);
        }
    } else if (!status.isDirectory()) {
        return std::nullopt;
    }
    const Path target = uniquePath(ARXPath::join(folder, ARXPath::lastComponent(path)));
    ARXFileOperations::moveItem(path, target);
    return target;
}

} // namespace ARXCloudTrash
