#include "platform/ARXMountTable.h"

#include "platform/ARXBlockDevice.h"
#include "platform/ARXConsole.h"
#include "platform/ARXMainQueue.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QTimer>

#include <gio/gio.h>
#include <gio/gunixmounts.h>

#include <initializer_list>
#include <map>
#include <sys/stat.h>
#include <sys/statvfs.h>

namespace {

// How long mount notices are gathered before one mountsChanged goes out.
constexpr int kCoalesceMs = 100;
// How often GLib's context is run by hand when Qt's event loop is not GLib's.
constexpr int kPumpMs = 1000;

bool isOneOf(std::string_view value, std::initializer_list<std::string_view> list) {
    for (std::string_view item : list) {
        if (value == item) {
            return true;
        }
    }
    return false;
}

bool isUnder(std::string_view path, std::string_view folder) {
    return path == folder ||
           (path.size() > folder.size() && path.substr(0, folder.size()) == folder &&
            path[folder.size()] == '/');
}

// The value of "key=value" in a comma-separated option list; "" for a bare "key"; nullopt when
// the option is absent.
std::optional<std::string_view> optionValue(std::string_view options, std::string_view key) {
    while (!options.empty()) {
        const size_t comma = options.find(',');
        const std::string_view option = options.substr(0, comma);
        options = comma == std::string_view::npos ? std::string_view() : options.substr(comma + 1);
        const size_t equals = option.find('=');
        if (option.substr(0, equals) == key) {
            return equals == std::string_view::npos ? std::string_view()
                                                    : option.substr(equals + 1);
        }
    }
    return std::nullopt;
}

// "fuse.sshfs" -> "sshfs", "fuseblk.ntfs-3g" -> "ntfs-3g"; other types stand as they are.
std::string_view fuseSubtype(std::string_view fsType) {
    for (std::string_view prefix : {std::string_view("fuseblk."), std::string_view("fuse.")}) {
        if (fsType.substr(0, prefix.size()) == prefix) {
            return fsType.substr(prefix.size());
        }
    }
    return fsType;
}

// What GIO's volume monitor knows of a mount: the desktop's name for it and its drive.
struct DesktopMount {
    QString name;
    bool hasDrive = false;
    bool removable = false;
    bool ejectable = false;
};

std::map<Path, DesktopMount> desktopMounts(GVolumeMonitor* monitor) {
    std::map<Path, DesktopMount> result;
    if (!monitor) {
        return result;
    }
    GList* mounts = g_volume_monitor_get_mounts(monitor);
    for (GList* item = mounts; item; item = item->next) {
        GMount* mount = G_MOUNT(item->data);
        GFile* rootFile = g_mount_get_root(mount);
        char* rootPath = g_file_get_path(rootFile);
        if (rootPath) {
            DesktopMount facts;
            char* name = g_mount_get_name(mount);
            facts.name = ARXPath::display(name ? name : "");
            g_free(name);
            facts.ejectable = g_mount_can_eject(mount);
            if (GDrive* drive = g_mount_get_drive(mount)) {
                facts.hasDrive = true;
                facts.removable = g_drive_is_removable(drive) || g_drive_is_media_removable(drive);
                facts.ejectable = facts.ejectable || g_drive_can_eject(drive);
                g_object_unref(drive);
            }
            result[ARXPath::normalized(rootPath)] = facts;
            g_free(rootPath);
        }
        g_object_unref(rootFile);
    }
    g_list_free_full(mounts, g_object_unref);
    return result;
}

// The facts that follow from the file-system type alone.
void applyTypeFacts(ARXVolume& volume, std::string_view type, std::string_view options,
                    const ARXBlockDevice::Facts& device) {
    const std::string_view base = fuseSubtype(type);
    volume.supportsCompression =
        isOneOf(base, {"btrfs", "zfs", "bcachefs", "f2fs", "ntfs", "ntfs3", "squashfs", "erofs"});
    volume.caseSensitive = !ARXMountTable::isCaseInsensitiveType(type, options);
    // FAT, exFAT and classic HFS know neither kind of link; a Joliet disc and WebDAV have no
    // symbolic links either, while Rock Ridge discs do.
    const bool noLinks = isOneOf(base, {"vfat", "msdos", "exfat", "hfs", "davfs"});
    volume.supportsHardLinks = !noLinks && base != "iso9660";
    volume.supportsSymbolicLinks = !noLinks && !(base == "iso9660" && !volume.caseSensitive);
    volume.supportsJournaling = isOneOf(base, {"ext3", "ext4", "xfs", "jfs", "reiserfs", "ntfs",
                                               "ntfs3", "hfsplus", "gfs2", "ocfs2"});
    if (isOneOf(base, {"ext3", "ext4"})) {
        // ext4 may be made without a journal; the kernel lists the journals it runs.
        volume.isJournaling = ARXBlockDevice::hasJournal(device.kernelName);
    } else {
        // Linux neither replays nor writes an HFS+ journal, so that one stays off.
        volume.isJournaling = volume.supportsJournaling && base != "hfsplus";
    }
    volume.isEncrypted =
        device.encrypted || isOneOf(base, {"ecryptfs", "gocryptfs", "encfs", "cryfs", "securefs"});
}

QString volumeName(GUnixMountEntry* entry, const Path& root, const std::string& label,
                   const DesktopMount* desktop) {
    if (!label.empty()) {
        return ARXPath::display(label);
    }
    if (desktop && !desktop->name.isEmpty()) {
        return desktop->name;
    }
    // GIO's guess: the last component of the mount path, and a readable name for the root.
    char* guess = g_unix_mount_guess_name(entry);
    QString name = ARXPath::display(guess ? guess : "");
    g_free(guess);
    return name.isEmpty() ? ARXPath::display(ARXPath::lastComponent(root)) : name;
}

struct DiskNames {
    std::map<dev_t, std::string> uuids = ARXBlockDevice::diskLinks("/dev/disk/by-uuid");
    std::map<dev_t, std::string> labels = ARXBlockDevice::diskLinks("/dev/disk/by-label");
};

ARXVolumeRef makeVolume(GUnixMountEntry* entry, const Path& root, const DiskNames& names,
                        const std::map<Path, DesktopMount>& desktop) {
    auto volume = std::make_shared<ARXVolume>();
    volume->root = root;
    const char* type = g_unix_mount_get_fs_type(entry);
    const char* device = g_unix_mount_get_device_path(entry);
    const char* options = g_unix_mount_get_options(entry);
    volume->device = device ? device : "";
    const std::string_view optionText = options ? options : "";

    ARXBlockDevice::Facts deviceFacts;
    std::string label;
    if (const auto number = ARXBlockDevice::deviceNumber(volume->device)) {
        deviceFacts = ARXBlockDevice::factsFor(*number);
        if (const auto it = names.uuids.find(*number); it != names.uuids.end()) {
            volume->uuid = QString::fromStdString(it->second);
        }
        if (const auto it = names.labels.find(*number); it != names.labels.end()) {
            label = it->second;
        }
    }
    // ntfs-3g and exfat-fuse mount as plain "fuseblk"; what is on the device decides the rules.
    volume->fileSystemType = type ? type : "";
    if (fuseSubtype(volume->fileSystemType) == "fuseblk" && !deviceFacts.probedType.empty()) {
        volume->fileSystemType = deviceFacts.probedType;
    }
    applyTypeFacts(*volume, volume->fileSystemType, optionText, deviceFacts);

    const auto found = desktop.find(root);
    const DesktopMount* desktopMount = found == desktop.end() ? nullptr : &found->second;
    volume->name = volumeName(entry, root, label, desktopMount);
    volume->isRootFileSystem = root == "/";
    volume->isLocal = !ARXMountTable::isNetworkMount(type ? type : "", volume->device);
    volume->isReadOnly = g_unix_mount_is_readonly(entry);
    if (desktopMount && desktopMount->hasDrive) {
        volume->isRemovable = desktopMount->removable;
        volume->isEjectable = desktopMount->ejectable;
    } else {
        volume->isRemovable = deviceFacts.removable;
        volume->isEjectable =
            deviceFacts.removable || deviceFacts.loop || (desktopMount && desktopMount->ejectable);
    }
    volume->isInternal = volume->isLocal && !volume->isRemovable && !volume->isEjectable;
    volume->isBrowsable = volume->isRootFileSystem || g_unix_mount_guess_should_display(entry);

    // statvfs on a share whose server is gone blocks until it answers, for ever on a hard NFS
    // mount, and the table is read on the main thread. The free space of a share is asked for
    // where it is shown; here it stays unknown.
    struct statvfs sizes;
    if (volume->isLocal && ::statvfs(root.c_str(), &sizes) == 0) {
        volume->totalSize = int64_t(sizes.f_blocks) * int64_t(sizes.f_frsize);
        volume->availableSize = int64_t(sizes.f_bavail) * int64_t(sizes.f_frsize);
    }
    return volume;
}

bool isFolder(const Path& path) {
    struct stat st;
    return ::stat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

} // namespace

bool ARXMountTable::isCaseInsensitiveType(std::string_view fsType, std::string_view mountOptions) {
    // cifs and ntfs3 take "nocase" to fold names.
    if (optionValue(mountOptions, "nocase")) {
        return true;
    }
    if (fsType == "iso9660") {
        // The kernel folds case on Joliet discs and shows that as "check=r"; a Rock Ridge disc
        // has POSIX names and shows "check=s".
        const auto check = optionValue(mountOptions, "check");
        return check && (*check == "r" || *check == "relaxed");
    }
    // A bare "fuseblk" is a FUSE driver on a block device: in practice ntfs-3g or exfat-fuse.
    const std::string_view base = fuseSubtype(fsType);
    return isOneOf(base, {"vfat", "msdos", "exfat", "exfat-fuse", "ntfs", "ntfs3", "ntfs-3g",
                          "lowntfs-3g", "fuseblk", "hfsplus", "hfs"});
}

bool ARXMountTable::isPseudoMount(std::string_view fsType, std::string_view mountPath) {
    // The root is what the user browses even when a container makes it an overlay or rootfs.
    if (mountPath == "/") {
        return false;
    }
    // Kernel interfaces and devices, and the runtime state under /run (sockets, locks, the
    // per-user runtime folders with their FUSE portals); only removable media live in /run, under
    // /run/media/USER. Snap packages are each a read-only image mounted under /snap.
    const std::string_view media = "/run/media/";
    if (mountPath.substr(0, media.size()) != media || mountPath.size() == media.size()) {
        for (std::string_view folder :
             {"/proc", "/sys", "/dev", "/run", "/snap", "/var/lib/snapd"}) {
            if (isUnder(mountPath, folder)) {
                return true;
            }
        }
    }
    // tmpfs and ramfs are not listed here on purpose: /tmp and RAM disks a user makes hold real
    // files, and they must be volumes of their own, because rename(2) cannot cross a mount (a drop
    // onto them copies) and their free space is not the root's. The runtime ones all sit under
    // /run and /dev and went above. An overlay away from "/" is a container's root or layer.
    return isOneOf(fsType, {"proc",        "sysfs",      "cgroup",       "cgroup2",
                            "devpts",      "devtmpfs",   "mqueue",       "debugfs",
                            "tracefs",     "securityfs", "fusectl",      "configfs",
                            "bpf",         "pstore",     "autofs",       "binfmt_misc",
                            "hugetlbfs",   "efivarfs",   "selinuxfs",    "nsfs",
                            "rpc_pipefs",  "nfsd",       "binder",       "xenfs",
                            "overlay",     "aufs",       "rootfs",       "fuse.gvfsd-fuse",
                            "fuse.portal", "fuse.lxcfs", "fuse.snapfuse"});
}

bool ARXMountTable::isNetworkMount(std::string_view fsType, std::string_view device) {
    const std::string_view base = fuseSubtype(fsType);
    if (isOneOf(base, {"nfs",      "nfs4",    "cifs",   "smb3",      "smbfs",  "ncpfs",
                       "9p",       "afs",     "ceph",   "glusterfs", "lustre", "coda",
                       "virtiofs", "davfs",   "sshfs",  "rclone",    "s3fs",   "curlftpfs",
                       "smbnetfs", "gcsfuse", "beegfs", "orangefs",  "gpfs"})) {
        return true;
    }
    // Whatever the driver, a source such as "host:/path", "user@host:/path" or "//server/share"
    // names another machine; local sources are device paths.
    if (device.substr(0, 2) == "//") {
        return true;
    }
    return !device.empty() && device.front() != '/' && device.find(":/") != std::string_view::npos;
}

// ---- reading ---------------------------------------------------------------------------------

struct ARXMountTable::Monitor {
    GUnixMountMonitor* unixMonitor = nullptr;
    GVolumeMonitor* volumeMonitor = nullptr;
    std::vector<std::pair<gpointer, gulong>> handlers;
    QTimer coalesce;
    QTimer pump;
};

ARXVolumeList ARXMountTable::readVolumes() const {
    Q_ASSERT(ARXMainQueue::isMainThread());
    const DiskNames names;
    const std::map<Path, DesktopMount> desktop =
        desktopMounts(_monitor ? _monitor->volumeMonitor : nullptr);

    ARXVolumeList volumes;
    std::map<Path, size_t> positions;
    GList* entries = g_unix_mounts_get(nullptr);
    for (GList* item = entries; item; item = item->next) {
        auto* entry = static_cast<GUnixMountEntry*>(item->data);
        const char* mountPath = g_unix_mount_get_mount_path(entry);
        const char* type = g_unix_mount_get_fs_type(entry);
        if (!mountPath || !type) {
            continue;
        }
        const Path root = ARXPath::normalized(mountPath);
        if (isPseudoMount(type, root)) {
            continue;
        }
        // Containers bind single files (/etc/hosts) as mounts; only folders hold files. Shares
        // are not asked, for the same reason their sizes are not.
        const char* device = g_unix_mount_get_device_path(entry);
        const bool network = isNetworkMount(type, device ? device : "");
        if (!network && !isFolder(root)) {
            continue;
        }
        ARXVolumeRef volume = makeVolume(entry, root, names, desktop);
        if (const auto it = positions.find(root); it != positions.end()) {
            // Mounted over: the later mount is the one in sight.
            volumes[it->second] = std::move(volume);
        } else {
            positions.emplace(root, volumes.size());
            volumes.push_back(std::move(volume));
        }
    }
    g_list_free_full(entries, reinterpret_cast<GDestroyNotify>(g_unix_mount_free));
    return volumes;
}

// ---- monitoring ------------------------------------------------------------------------------

namespace {

// Both land on the coalescing timer, which is not restarted: a steady stream of notices still
// gives a signal every interval.
void startCoalescing(gpointer timer) {
    auto* coalesce = static_cast<QTimer*>(timer);
    if (!coalesce->isActive()) {
        coalesce->start();
    }
}

void onUnixMountsChanged(GUnixMountMonitor*, gpointer timer) {
    startCoalescing(timer);
}

void onDesktopMountChanged(GVolumeMonitor*, GMount*, gpointer timer) {
    startCoalescing(timer);
}

bool runsGlibContext(QObject* object) {
    const QAbstractEventDispatcher* dispatcher =
        QAbstractEventDispatcher::instance(object->thread());
    return dispatcher && dispatcher->inherits("QEventDispatcherGlib");
}

} // namespace

ARXMountTable& ARXMountTable::shared() {
    // Lives as long as the process, like the GIO monitors it holds: destroyed among the statics,
    // after QCoreApplication, its timers would be stopped without an event loop.
    static ARXMountTable* table = new ARXMountTable();
    return *table;
}

ARXMountTable::ARXMountTable() : _monitor(new Monitor) {
    Q_ASSERT(ARXMainQueue::isMainThread());
    _monitor->coalesce.setSingleShot(true);
    _monitor->coalesce.setInterval(kCoalesceMs);
    connect(&_monitor->coalesce, &QTimer::timeout, this, &ARXMountTable::mountsChanged);

    // Both monitors deliver on the thread-default main context of this (the main) thread: the
    // kernel's table for mounts and unmounts, the desktop's volume monitor for renames and for
    // mounts it makes itself.
    _monitor->unixMonitor = g_unix_mount_monitor_get();
    _monitor->handlers.emplace_back(_monitor->unixMonitor,
                                    g_signal_connect(_monitor->unixMonitor, "mounts-changed",
                                                     G_CALLBACK(onUnixMountsChanged),
                                                     &_monitor->coalesce));
    _monitor->volumeMonitor = g_volume_monitor_get();
    for (const char* signal : {"mount-added", "mount-removed", "mount-changed"}) {
        _monitor->handlers.emplace_back(_monitor->volumeMonitor,
                                        g_signal_connect(_monitor->volumeMonitor, signal,
                                                         G_CALLBACK(onDesktopMountChanged),
                                                         &_monitor->coalesce));
    }

    // Under Qt's GLib dispatcher (the default on Linux) the main thread's loop is GLib's default
    // context and the signals above simply arrive. Qt built without GLib, or run with QT_NO_GLIB,
    // never runs that context, so it is run here by hand, now and then.
    if (!runsGlibContext(this)) {
        ARXConsole::line(std::string_view("Atrium: the event loop is not GLib's; mount changes "
                                          "are checked every second."));
        _monitor->pump.setInterval(kPumpMs);
        connect(&_monitor->pump, &QTimer::timeout, this, [] {
            for (int i = 0; i < 100 && g_main_context_iteration(nullptr, FALSE); ++i) {
            }
        });
        _monitor->pump.start();
    }
}

ARXMountTable::~ARXMountTable() {
    for (const auto& [object, id] : _monitor->handlers) {
        g_signal_handler_disconnect(object, id);
    }
    g_object_unref(_monitor->volumeMonitor);
    g_object_unref(_monitor->unixMonitor);
    delete _monitor;
}
