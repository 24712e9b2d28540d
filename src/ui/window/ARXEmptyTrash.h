#pragma once

#include "platform/ARXPath.h"

#include <QObject>
#include <QPointer>

#include <optional>
#include <set>
#include <vector>

class ARXOperationPresenter;
class QFileDialog;
class QWidget;

// Emptying the Trash (Shift+Ctrl+Backspace in a workspace window): every trash folder of the
// user is made sure of, its items listed, the user asked once, and the items removed for good as
// one batch with its sheet.
//
// The trash folders are the desktop's: the home trash and those of the mounted volumes, shared
// with every other program, plus the ".Trash" folders of the cloud folders, where Atrium puts
// the cloud's items. A folder Atrium may not read stops the flow with a chooser that asks the
// user to authorise it, and choosing it goes on from the start; a folder the system still
// refuses after that only adds nothing, so the flow cannot ask in a circle.
//
// One use: start() once; the object deletes itself when the flow ends (the removal, once begun,
// runs on its own).
class ARXEmptyTrash : public QObject {
    Q_OBJECT

public:
    struct TrashFolder {
        Path path;
        // A freedesktop trash ("files/", "info/", ...); otherwise the folder holds the items.
        bool freedesktop = true;

        bool operator==(const TrashFolder&) const = default;
    };

    // The alerts and the chooser are window-modal over `window`; `presenter` shows the removal.
    ARXEmptyTrash(QWidget* window, ARXOperationPresenter* presenter);
    ~ARXEmptyTrash() override;

    // The mount points whose trashes count; the mounted volumes unless set.
    void setVolumeRoots(std::vector<Path> roots) { _volumeRoots = std::move(roots); }

    void start();

    // The authorising chooser while it is open.
    QFileDialog* chooser() const { return _chooser; }

    // The user's trash folders that exist, in order: the home trash, the volumes' trashes, the
    // cloud folders' ".Trash".
    static std::vector<TrashFolder> trashFolders(const std::vector<Path>& volumeRoots);
    // Everything to remove to empty them. A trash gives all of its entries or, when a part of it
    // cannot be read, none: an item never loses its info file while it stays, nor the reverse.
    static std::vector<Path> trashContents(const std::vector<TrashFolder>& folders);

Q_SIGNALS:
    // The flow is over; `emptying` when the removal has begun.
    void ended(bool emptying);

private:
    void run();
    void askForGrant(const Path& folder);
    void granted(const Path& asked, const Path& chosen);
    void confirm(std::vector<Path> items);
    void remove(const std::vector<Path>& items);
    void end(bool emptying);

    QPointer<QWidget> _window;
    ARXOperationPresenter* _presenter = nullptr;
    std::optional<std::vector<Path>> _volumeRoots;
    // Folders the user has authorised in this flow.
    std::set<Path> _asked;
    QPointer<QFileDialog> _chooser;
    bool _started = false;
};
