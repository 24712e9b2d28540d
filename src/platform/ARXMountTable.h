#pragma once

#include "platform/ARXVolume.h"

#include <QObject>

#include <string_view>

// The system's mount table: every mounted volume that holds files a user works with, and a signal
// when mounts come or go. Pseudo file systems (proc, sysfs, cgroup, ...) are left out.
class ARXMountTable : public QObject {
    Q_OBJECT
public:
    static ARXMountTable& shared();

    // Reads the table now (GIO's unix mounts plus statvfs and the drive facts), in mount order.
    ARXVolumeList readVolumes() const;

    // Whether names on this file-system type compare without regard to case.
    static bool isCaseInsensitiveType(std::string_view fsType, std::string_view mountOptions = {});

    // Whether a mount is a kernel or container pseudo file system that is no place for files.
    static bool isPseudoMount(std::string_view fsType, std::string_view mountPath);

Q_SIGNALS:
    // Emitted on the main thread after a volume was mounted, unmounted or renamed.
    void mountsChanged();

private:
    ARXMountTable();
    ~ARXMountTable() override;
    struct Monitor;
    Monitor* _monitor = nullptr;
};
