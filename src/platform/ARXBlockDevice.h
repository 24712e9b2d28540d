#pragma once

#include "platform/ARXPath.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <sys/types.h>

// What the kernel and udev say about the block device under a mount, read from /sys, /dev/disk
// and the udev database. Every fact is optional: containers and minimal systems have no udev, and
// then the answers stay empty or false.
namespace ARXBlockDevice {

struct Facts {
    // The kernel's name of the device ("sda1", "dm-0"), as /proc/fs/jbd2 spells it.
    std::string kernelName;
    // The file-system type udev probed on the device ("ntfs" under a fuseblk mount), or empty.
    std::string probedType;
    // A dm-crypt mapping lies on the way from the mount down to the disk.
    bool encrypted = false;
    // The disk says its medium is removable, or it hangs off USB or an SD card slot.
    bool removable = false;
    // A loop device: a disk image attached as a disk.
    bool loop = false;
};

// The device number of a block device node, or nullopt when the path is no block device (tmpfs,
// overlay, network shares name something else there).
std::optional<dev_t> deviceNumber(const Path& devicePath);

// Facts of the device and, for device-mapper devices, of the devices it is built on.
Facts factsFor(dev_t device);

// The links of /dev/disk/by-uuid or /dev/disk/by-label, by the device number they point to, with
// their names decoded.
std::map<dev_t, std::string> diskLinks(const char* folder);

// udev writes unsafe bytes of labels as "\xNN"; this gives the original bytes back.
std::string decodeUdevEscapes(std::string_view text);

// Whether ext3/ext4 has an active journal on the device: jbd2 lists one folder per journal.
bool hasJournal(const std::string& kernelName);

} // namespace ARXBlockDevice
