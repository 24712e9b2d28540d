#pragma once

#include "platform/ARXVolume.h"

#include <QObject>

#include <string_view>

// The system's mount table: every mounted volume that holds files a user works with, and a signal
// when mounts come or go. Pseudo file systems (proc, sysfs, cgroup, ...) are left out.
//
// Main thread only: the GIO monitors behind it deliver on the main context of the thread that
// first asked for the table, which is the main thread's GLib context under Qt's GLib dispatcher.
class ARXMountTable : public QObject {
    Q_OBJECT
public:
    static ARXMountTable& shared();

    // Reads the table now (GIO's unix mounts plus statvfs and the drive facts), in mount order.
    // A path mounted over twice appears once, with the facts of the mount on top.
    ARXVolumeList readVolumes() const;

    // Whether names on this file-system type compare without regard to case. mountOptions is the
    // comma-separated list of the mount table ("check=r" on iso9660, "nocase" on cifs).
    static bool isCaseInsensitiveType(std::string_view fsType, std::string_view mountOptions = {});

    // Whether a mount is a kernel or container pseudo file system that is no place for files.
    static bool isPseudoMount(std::string_view fsType, std::string_view mountPath);

    // Whether the files of a mount live on another machine; device is the mount's source
    // ("server:/export", "//server/share", "/dev/sda1").
    static bool isNetworkMount(std::string_view fsType, std::string_view device);

Q_SIGNALS:
    // Emitted on the main thread after a volume was mounted, unmounted or renamed. A burst of
    // changes (one mount is seen by the kernel's table and by the desktop's volume monitor) comes
    // as one signal.
    void mountsChanged();

private:
    ARXMountTable();
    ~ARXMountTable() override;

    struct Monitor;
    Monitor* _monitor = nullptr;
};
