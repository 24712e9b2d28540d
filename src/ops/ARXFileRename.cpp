#include "ops/ARXFileRename.h"

#include "app/ARXFavorites.h"
#include "model/ARXFileEntry.h"
#include "ops/ARXFileLayer.h"
#include "ops/ARXFileOperationRecord.h"
#include "ops/ARXFileOperationRecorder.h"
#include "ops/ARXOperationPresenter.h"
#include "platform/ARXFileError.h"

#include <QCoreApplication>
#include <QDateTime>

namespace ARXFileRename {

namespace {

// A cloud item not downloaded yet is a hidden stand-in, ".NAME.icloud"; renaming the stand-in
// would cut it off from its item in the cloud.
bool isCloudPlaceholder(const ARXFileEntry& entry) {
    return entry.isUbiquitous && ARXPath::isCloudPlaceholderName(entry.name());
}

bool isSingleComponent(std::string_view name) {
    return !name.empty() && name != "." && name != ".." &&
           name.find('/') == std::string_view::npos && name.find('\0') == std::string_view::npos;
}

} // namespace

QString alreadyExistsText(std::string_view name) {
    return QCoreApplication::translate("Atrium",
                                       "“%1” already exists. Please choose a different name.")
        .arg(ARXPath::display(name));
}

bool rename(ARXFileEntry& entry, std::string_view name, ARXOperationPresenter* presenter) {
    if (!isSingleComponent(name) || isCloudPlaceholder(entry)) {
        return false;
    }
    const Path oldPath = entry.path();
    const Path newPath = ARXPath::join(ARXPath::parentPath(oldPath), name);
    if (newPath == oldPath) {
        return true;
    }
    try {
        ARXFileLayer::moveFile(oldPath, newPath);
    } catch (const ARXFileError& error) {
        if (ARXOperationPresenter* shown = presenter ? presenter : ARXOperationPresenter::main()) {
            shown->showAlert(ARXAlertStyle::critical,
                             error.code == ARXFileError::kAlreadyExists ? alreadyExistsText(name)
                                                                        : error.text(),
                             QString());
        }
        return false;
    }
    if (entry.isFolder() || entry.target().isFolder()) {
        ARXFavorites::replaceFavorite(ARXPath::fileURLString(oldPath),
                                      ARXPath::fileURLString(newPath));
    }
    entry.setPath(newPath);
    entry.setLocalName(std::nullopt);
    // The loaded children of a link lie under its target, which did not move.
    if (!entry.link()) {
        entry.rewritePaths();
    }
    return true;
}

bool rename(ARXFileEntry& entry, const QString& name, ARXOperationPresenter* presenter) {
    return rename(entry, std::string_view(ARXPath::fromText(name)), presenter);
}

void recordRename(const Path& oldPath, const Path& newPath) {
    auto group = std::make_shared<ARXFileOperationRecordGroup>();
    group->action = ARXFileOperationType::rename;
    group->records.push_back({oldPath, newPath, QDateTime::currentDateTime()});
    ARXFileOperationRecorder::shared().add(std::move(group));
}

bool renameRecorded(ARXFileEntry& entry, const QString& name, ARXOperationPresenter* presenter) {
    const Path oldPath = entry.path();
    if (!rename(entry, name, presenter)) {
        return false;
    }
    // Giving an item the name it has changes nothing, and a record of it could not be undone.
    if (entry.path() != oldPath) {
        recordRename(oldPath, entry.path());
    }
    return true;
}

} // namespace ARXFileRename
