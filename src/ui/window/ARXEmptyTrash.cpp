#include "ui/window/ARXEmptyTrash.h"

#include "app/ARXConf.h"
#include "app/ARXPathRules.h"
#include "model/ARXFileOperationItem.h"
#include "model/ARXSecurityScopedCache.h"
#include "ops/ARXFileOperationController.h"
#include "platform/ARXFileIO.h"
#include "platform/ARXFileStatus.h"
#include "platform/ARXTrash.h"
#include "ui/ARXAlerts.h"

#include <QCoreApplication>
#include <QFileDialog>

#include <algorithm>
#include <cerrno>
#include <memory>

namespace {

QString localized(const char* text) {
    return QCoreApplication::translate("ARXEmptyTrash", text);
}

// The flow under way and the removal it began, if any: a second start meanwhile (from another
// window, or while the sheet shows) would list the same items again and fail on each of them.
QPointer<ARXEmptyTrash>& running() {
    static QPointer<ARXEmptyTrash> flow;
    return flow;
}
std::weak_ptr<ARXFileOperationController>& removing() {
    static std::weak_ptr<ARXFileOperationController> batch;
    return batch;
}

// The entries of a part of a trash, sorted; an absent part is empty. nullopt when the part
// exists and cannot be read.
std::optional<std::vector<Path>> entriesOf(const Path& folder) {
    int error = 0;
    std::optional<std::vector<std::string>> names = ARXFileIO::listNames(folder, &error);
    if (!names) {
        return error == ENOENT ? std::optional(std::vector<Path>()) : std::nullopt;
    }
    std::sort(names->begin(), names->end());
    std::vector<Path> paths;
    paths.reserve(names->size());
    for (const std::string& name : *names) {
        paths.push_back(ARXPath::join(folder, name));
    }
    return paths;
}

// The items first and their info files after them, so that a removal stopped half-way leaves
// only info files whose items are gone, which every trash reader passes over; the folder sizes
// cache last, since it speaks of the items.
std::optional<std::vector<Path>> freedesktopContents(const Path& trash) {
    std::vector<Path> all;
    for (const char* part : {"files", "expunged", "info"}) {
        const std::optional<std::vector<Path>> entries = entriesOf(ARXPath::join(trash, part));
        if (!entries) {
            return std::nullopt;
        }
        all.insert(all.end(), entries->begin(), entries->end());
    }
    const Path sizes = ARXPath::join(trash, "directorysizes");
    if (ARXFileStatus::lstat(sizes).exists) {
        all.push_back(sizes);
    }
    return all;
}

} // namespace

ARXEmptyTrash::ARXEmptyTrash(QWidget* window, ARXOperationPresenter* presenter)
    : QObject(window), _window(window), _presenter(presenter) {}

ARXEmptyTrash::~ARXEmptyTrash() {
    if (_chooser) {
        _chooser->deleteLater();
    }
}

std::vector<ARXEmptyTrash::TrashFolder>
ARXEmptyTrash::trashFolders(const std::vector<Path>& volumeRoots) {
    std::vector<TrashFolder> folders;
    for (const Path& trash : ARXTrash::trashFolders(volumeRoots)) {
        folders.push_back({trash, true});
    }
    // The cloud folders keep their trashed items in a ".Trash" of their own; those that were
    // never used (or are not there on this machine) have none to empty.
    std::vector<Path> cloudTrashes;
    for (const QString& url : ARXConf::settings_pin_icloud_urls().value()) {
        const Path folder = ARXPath::fromFileURL(url);
        if (!folder.empty()) {
            cloudTrashes.push_back(ARXPath::join(folder, ".Trash"));
        }
    }
    cloudTrashes.push_back(ARXConf::cloudTrashPath());
    for (const Path& trash : cloudTrashes) {
        const bool listed = std::any_of(folders.begin(), folders.end(), [&](const TrashFolder& f) {
            return ARXPathRules::isSamePath(f.path, trash);
        });
        // A real folder only: a link could lead the removal anywhere.
        if (!listed && ARXFileStatus::lstat(trash).isDirectory()) {
            folders.push_back({trash, false});
        }
    }
    return folders;
}

std::vector<Path> ARXEmptyTrash::trashContents(const std::vector<TrashFolder>& folders) {
    std::vector<Path> items;
    for (const TrashFolder& folder : folders) {
        const std::optional<std::vector<Path>> contents =
            folder.freedesktop ? freedesktopContents(folder.path) : entriesOf(folder.path);
        if (contents) {
            items.insert(items.end(), contents->begin(), contents->end());
        }
    }
    return items;
}

void ARXEmptyTrash::start() {
    if (_started) {
        return;
    }
    _started = true;
    if ((running() && running() != this) || !removing().expired()) {
        end(false);
        return;
    }
    running() = this;
    run();
}

void ARXEmptyTrash::run() {
    const std::vector<TrashFolder> folders =
        trashFolders(_volumeRoots ? *_volumeRoots : ARXTrash::mountedVolumeRoots());
    ARXSecurityScopedCache& cache = ARXSecurityScopedCache::shared();
    for (const TrashFolder& folder : folders) {
        if (!cache.isAccessible(folder.path) && !_asked.contains(folder.path)) {
            askForGrant(folder.path);
            return;
        }
    }
    std::vector<Path> items = trashContents(folders);
    if (items.empty()) {
        end(false);
        return;
    }
    confirm(std::move(items));
}

void ARXEmptyTrash::askForGrant(const Path& folder) {
    if (!_window) {
        end(false);
        return;
    }
    auto* dialog = new QFileDialog(_window->window());
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(QFileDialog::Directory);
    dialog->setOption(QFileDialog::ShowDirsOnly, true);
    dialog->setAcceptMode(QFileDialog::AcceptOpen);
    dialog->setDirectory(ARXPath::display(ARXPath::parentPath(folder)));
    dialog->setLabelText(QFileDialog::Accept, localized("Authorize"));
    dialog->setWindowTitle(
        localized("The current path is not authorized. To access, please click on \"Authorize\"."));
    dialog->setWindowModality(Qt::WindowModal);
    auto chosen = std::make_shared<Path>();
    connect(dialog, &QFileDialog::fileSelected, this, [chosen](const QString& path) {
        *chosen = ARXPath::normalized(ARXPath::fromText(path));
    });
    // Goes on once the chooser has closed, so that what follows never opens under it.
    connect(dialog, &QDialog::finished, this, [this, folder, chosen] {
        if (chosen->empty()) {
            end(false);
        } else {
            granted(folder, *chosen);
        }
    });
    _chooser = dialog;
    dialog->open();
}

void ARXEmptyTrash::granted(const Path& asked, const Path& chosen) {
    ARXSecurityScopedCache::shared().add({chosen});
    if (ARXPathRules::isSamePath(chosen, asked) || ARXPathRules::isInside(chosen, asked, true)) {
        _asked.insert(asked);
        run();
        return;
    }
    const QString name = ARXPath::display(ARXPath::lastComponent(asked));
    QPointer<ARXEmptyTrash> self(this);
    ARXAlerts::inform(_window, ARXAlertStyle::informational,
                      localized("Please select “%1” to authorize!").arg(name), QString(), [self] {
                          if (self) {
                              self->end(false);
                          }
                      });
}

void ARXEmptyTrash::confirm(std::vector<Path> items) {
    QPointer<ARXEmptyTrash> self(this);
    ARXAlerts::confirmEmptyTrash(_window, [self, items = std::move(items)](bool proceed) {
        if (!self) {
            return;
        }
        if (proceed) {
            self->remove(items);
        }
        self->end(proceed);
    });
}

void ARXEmptyTrash::remove(const std::vector<Path>& items) {
    std::vector<ARXFileOperationItemRef> batch;
    batch.reserve(items.size());
    for (const Path& path : items) {
        batch.push_back(std::make_shared<ARXFileOperationItem>(ARXFileOperationType::remove, path,
                                                               std::nullopt));
    }
    auto controller = std::make_shared<ARXFileOperationController>(
        std::move(batch), ARXSoundEffect::empty_trash, false, _presenter);
    // The batch keeps itself alive until it ends.
    removing() = controller;
    controller->start();
}

void ARXEmptyTrash::end(bool emptying) {
    if (running() == this) {
        running() = nullptr;
    }
    Q_EMIT ended(emptying);
    deleteLater();
}
