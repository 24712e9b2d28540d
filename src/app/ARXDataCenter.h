#pragma once

#include "app/ARXAtriumData.h"
#include "platform/ARXVolume.h"

#include <QObject>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <set>

// Knows where Atrium's data lives, reads and writes workspace records, and keeps the sorted list
// of mounted volumes that path comparison relies on. Created at first use, on the main thread.
//
// A workspace file is "<name percent-encoded>.atx" in the spaces folder; the name is never stored
// inside, so listing recovers it from the file name and a file copied in by hand is a workspace.
class ARXDataCenter : public QObject {
    Q_OBJECT
public:
    static ARXDataCenter& shared();

    explicit ARXDataCenter(const Path& dataRoot);

    const Path spacePath;           // <data root>/guest/spaces
    const Path newfileTemplatePath; // <data root>/newfile.templates

    // Stored workspace names, sorted the way people expect ("My Workspace 2" before "... 10").
    QStringList workspaceNames() const;

    // Writes a workspace atomically. Errors go to the console and leave the previous file.
    // Answers whether the file was written. A file that load() could not use is set aside first
    // as "NAME.atx.broken" (and the console says so); if it cannot be, nothing is written.
    bool save(const QString& name, const ARXAtriumData& data) const;

    // Reads one workspace file; nullopt (and the reason on the console) when it is missing or
    // cannot be read or decoded. The caller then opens the workspace with defaults; a file that
    // exists is kept, set aside at its next save.
    std::optional<ARXAtriumData> load(const Path& file) const;

    // Saves a new, empty workspace under the first free "My Workspace N" and answers its name.
    QString createWorkspace() const;

    Path path(const QString& name) const;

    // The new, empty record: no frame, the default sidebar width and layout, no panes.
    static ARXAtriumData emptyWorkspace();

    // Mounted volumes, the most specific (longest root) first.
    // Main thread only: the list is replaced there, so a reference lives until the next reload.
    const ARXVolumeList& fileVolumes() const { return *_volumes; }

    // The volume a path lies on: the first whose root is the path or a folder above it. Safe on
    // any thread (workers compare paths too); everything else here is main-thread only.
    ARXVolumeRef volumeFor(const Path& path) const;

    // Whether all paths lie on one volume; fewer than two paths always do.
    bool onSameVolume(const std::vector<Path>& paths) const;

    // Reads the volumes again, stores them and posts "rv_mounted_volumes_changed".
    void notifyVolumesChanged();

    // Rebuilds the volume list without a notification (the entry points' refresh).
    void reloadVolumes();

    // Tests replace the system's mount table with their own volumes.
    static void setVolumeReaderForTesting(std::function<ARXVolumeList()> reader);

    // The file-name form of a workspace name, and back.
    static QString encodeName(const QString& name);
    static std::optional<QString> decodeFileName(const std::string& fileName);

private:
    void setVolumes(ARXVolumeList volumes);

    // Never changed in place: a reload swaps in a new list under the mutex, so readers on other
    // threads keep a whole list while they search it.
    mutable std::mutex _volumesMutex;
    std::shared_ptr<const ARXVolumeList> _volumes = std::make_shared<const ARXVolumeList>();

    // Workspace files that exist but could not be used: set aside before they are written over.
    mutable std::set<Path> _unusable;
};
