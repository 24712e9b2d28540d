#pragma once

#include "platform/ARXPath.h"

#include <QString>

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

// What the system says about one mounted volume. The mount table fills these; the data centre
// keeps the sorted list, and identity is the object (two paths lie on one volume when they find
// the same ARXVolume). Values the system cannot answer stay 0 or false; case sensitivity defaults
// to true, so that an unknown volume compares paths exactly.
struct ARXVolume {
    std::optional<QString> uuid;
    QString name;
    Path root;
    int64_t totalSize = 0;
    int64_t availableSize = 0;
    bool supportsCompression = false;
    bool supportsHardLinks = false;
    bool supportsSymbolicLinks = false;
    bool supportsJournaling = false;
    bool caseSensitive = true;
    bool isEncrypted = false;
    bool isJournaling = false;
    bool isRootFileSystem = false;
    bool isLocal = false;
    bool isReadOnly = false;
    bool isInternal = false;
    bool isEjectable = false;
    bool isRemovable = false;

    // Linux facts kept for the views: the file-system type ("ext4", "vfat"; for a FUSE block
    // mount the type found on the device, "ntfs") and the device.
    std::string fileSystemType;
    std::string device;
    // Whether the desktop would show this mount to the user (GIO's judgement: removable media,
    // mounts under /media, /run/media/USER and the home folder; always the root). System mounts
    // such as /boot/efi or a tmpfs /tmp are volumes for the path rules but are false here, so a
    // list of places can leave them out.
    bool isBrowsable = true;
};

using ARXVolumeRef = std::shared_ptr<const ARXVolume>;
using ARXVolumeList = std::vector<ARXVolumeRef>;
