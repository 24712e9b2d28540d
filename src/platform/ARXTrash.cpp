#include "platform/ARXTrash.h"

#include "platform/ARXConsole.h"
#include "platform/ARXFileDescriptor.h"
#include "platform/ARXFileIO.h"
#include "platform/ARXFileOperations.h"
#include "platform/ARXFileTree.h"
#include "platform/ARXMountTable.h"
#include "platform/ARXSystemPaths.h"

#include <QCoreApplication>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <fstream>
#include <memory>
#include <mutex>
#include <sys/stat.h>
#include <unistd.h>

namespace ARXTrash {

namespace {

using ARXFileTree::fail;
using Access = ARXFileError::Access;

constexpr std::string_view kInfoSuffix = ".trashinfo";

// Which mount a folder belongs to. Two mounts of one file system (bind mounts) share the device
// number, yet rename(2) still cannot cross them, so the mount id decides where the kernel has one.
struct MountId {
    bool valid = false;
    bool hasId = false;
    uint64_t id = 0;
    uint64_t device = 0;

    bool operator==(const MountId& other) const {
        if (!valid || !other.valid) {
            return false;
        }
        return hasId && other.hasId ? id == other.id : device == other.device;
    }
};

MountId mountOf(int dirFd, const char* path, int flags = 0) {
    struct statx stx {};
    if (::statx(dirFd, path, flags, STATX_TYPE | STATX_MNT_ID, &stx) != 0) {
        return {};
    }
    MountId mount;
    mount.valid = true;
    mount.hasId = (stx.stx_mask & STATX_MNT_ID) != 0;
    mount.id = stx.stx_mnt_id;
    mount.device = (uint64_t(stx.stx_dev_major) << 32) | stx.stx_dev_minor;
    return mount;
}

MountId mountOf(const Path& path) {
    return mountOf(AT_FDCWD, path.c_str());
}

// A folder of the user's own: a real folder (no link), owned by this user. Made (0700) when
// missing and `create` is set. Answers 0 or why not.
int ownFolder(const Path& path, bool create) {
    struct stat st {};
    if (::lstat(path.c_str(), &st) != 0) {
        if (errno != ENOENT || !create) {
            return errno;
        }
        if (::mkdir(path.c_str(), 0700) != 0 && errno != EEXIST) {
            return errno;
        }
        if (::lstat(path.c_str(), &st) != 0) {
            return errno;
        }
    }
    if (!S_ISDIR(st.st_mode)) {
        return ENOTDIR;
    }
    return st.st_uid == ::geteuid() ? 0 : EPERM;
}

// A trash folder with its "files/" and "info/", made where missing when `create` is set.
int trashFolder(const Path& trash, bool create) {
    for (const Path& folder :
         {trash, ARXPath::join(trash, "files"), ARXPath::join(trash, "info")}) {
        if (const int err = ownFolder(folder, create)) {
            return err;
        }
    }
    return 0;
}

// "$topdir/.Trash/$uid" when the administrator's shared ".Trash" may be trusted: a real folder
// with the sticky bit, so that no user can remove or replace another's folder in it.
std::optional<Path> sharedVolumeTrash(const Path& topdir, bool create, int& err) {
    const Path shared = ARXPath::join(topdir, ".Trash");
    struct stat st {};
    if (::lstat(shared.c_str(), &st) != 0) {
        err = errno;
        return std::nullopt;
    }
    if (!S_ISDIR(st.st_mode) || (st.st_mode & S_ISVTX) == 0) {
        err = EPERM;
        return std::nullopt;
    }
    const Path trash = ARXPath::join(shared, std::to_string(::geteuid()));
    err = trashFolder(trash, create);
    return err ? std::nullopt : std::optional<Path>(trash);
}

std::optional<Path> userVolumeTrash(const Path& topdir, bool create, int& err) {
    const Path trash = ARXPath::join(topdir, ".Trash-" + std::to_string(::geteuid()));
    err = trashFolder(trash, create);
    return err ? std::nullopt : std::optional<Path>(trash);
}

// The home trash is looked at once per process and per data home, since trashing many items
// would otherwise check the same three folders for each. A trash removed meanwhile is noticed
// when its info file cannot be made, and is made again.
struct HomeTrashState {
    std::mutex mutex;
    Path trash;
    MountId mount;
};

HomeTrashState& homeState() {
    static HomeTrashState state;
    return state;
}

void forgetHomeTrash() {
    HomeTrashState& state = homeState();
    std::lock_guard lock(state.mutex);
    state.trash.clear();
}

// The home trash, ready, when items of `mount` can be renamed into it.
std::optional<Path> homeTrashFor(const MountId& mount) {
    const Path trash = homeTrash();
    HomeTrashState& state = homeState();
    std::lock_guard lock(state.mutex);
    if (state.trash != trash) {
        state.trash.clear();
        if (ARXFileIO::makeDirectories(trash) != 0 || trashFolder(trash, true) != 0) {
            return std::nullopt;
        }
        state.trash = trash;
        state.mount = mountOf(trash);
    }
    if (!(state.mount == mount)) {
        return std::nullopt;
    }
    return trash;
}

// The mount point of the mount holding `folder`: the highest folder above it on the same mount.
Path topDirectory(const Path& folder, const MountId& mount) {
    Path current = folder;
    while (current != "/") {
        const Path up = ARXPath::parentPath(current);
        if (!(mountOf(up) == mount)) {
            break;
        }
        current = up;
    }
    return current;
}

// The candidate name for attempt `n` (1 is the name itself), short enough that its info file's
// name still fits. Cut at a character boundary, so a shortened UTF-8 name stays readable.
std::string candidateName(const std::string& name, unsigned n) {
    const std::string suffix = n == 1 ? std::string() : "." + std::to_string(n);
    const size_t room = NAME_MAX - kInfoSuffix.size() - suffix.size();
    std::string base = name;
    if (base.size() > room) {
        size_t cut = room;
        while (cut > 0 && (static_cast<unsigned char>(base[cut]) & 0xC0) == 0x80) {
            --cut;
        }
        base.resize(cut);
    }
    return base + suffix;
}

int writeAll(int fd, std::string_view text) {
    while (!text.empty()) {
        const ssize_t n = ::write(fd, text.data(), text.size());
        if (n < 0) {
            if (errno == EINTR) {
                continue;
            }
            return errno;
        }
        text.remove_prefix(size_t(n));
    }
    return 0;
}

// Makes the info file with O_EXCL: the info file is the claim on its name, and whoever makes it
// first owns the name. Answers 0 or the errno (EEXIST: the name is taken); a file that could not
// be written whole is removed again.
int claimInfo(const Path& info, std::string_view text) {
    ARXFileDescriptor fd(::open(info.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    if (!fd.isValid()) {
        return errno;
    }
    int err = writeAll(fd.get(), text);
    if (!err && ::close(fd.release()) != 0) {
        err = errno;
    }
    if (err) {
        ::unlink(info.c_str());
    }
    return err;
}

// Where moving into `trash` stopped: the item's path there, or the errno (EXDEV: try another).
struct MoveResult {
    int error = 0;
    Path trashed;
};

MoveResult moveIntoTrash(const Path& trash, const Path& path,
                         const ARXFileTree::ParentFolder& parent, std::string_view pathValue) {
    const Path infoFolder = ARXPath::join(trash, "info");
    const Path filesFolder = ARXPath::join(trash, "files");
    const std::string text = infoText(pathValue, std::time(nullptr));
    for (unsigned n = 1; n < 1000000; ++n) {
        const std::string name = candidateName(parent.name, n);
        const Path info = ARXPath::join(infoFolder, name + std::string(kInfoSuffix));
        const Path trashed = ARXPath::join(filesFolder, name);
        int err = claimInfo(info, text);
        if (err == EEXIST) {
            continue;
        }
        if (err) {
            return {err, info};
        }
        err =
            ARXFileTree::renameNoReplace(parent.fd, parent.name.c_str(), AT_FDCWD, trashed.c_str());
        if (!err) {
            return {0, trashed};
        }
        ::unlink(info.c_str());
        if (err == EEXIST) {
            continue; // a stray item without info file holds the name
        }
        if (err == EXDEV) {
            return {err, {}};
        }
        throw ARXFileTree::renameError(err, path, trashed);
    }
    fail(EEXIST, path, Access::writing);
}

[[noreturn]] void refuse(int err, const Path& path) {
    const ARXFileError error = ARXFileError::fromErrno(err, path, Access::writing);
    throw ARXFileError(error.errnum, ARXFileError::kNoTrash, path,
                       QCoreApplication::translate("Atrium", "Cannot trash on this volume (%1)")
                           .arg(error.message));
}

char hexDigit(unsigned value) {
    return "0123456789ABCDEF"[value & 0xF];
}

int hexValue(char c) {
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    if (c >= 'A' && c <= 'F') {
        return c - 'A' + 10;
    }
    if (c >= 'a' && c <= 'f') {
        return c - 'a' + 10;
    }
    return -1;
}

// Undoes the octal escapes of the kernel's mount table ("\040" for a blank).
std::string unescapeMountField(std::string_view field) {
    std::string out;
    for (size_t i = 0; i < field.size(); ++i) {
        if (field[i] == '\\' && i + 3 < field.size()) {
            const std::string_view digits = field.substr(i + 1, 3);
            if (std::all_of(digits.begin(), digits.end(),
                            [](char c) { return c >= '0' && c <= '7'; })) {
                out.push_back(
                    char((digits[0] - '0') * 64 + (digits[1] - '0') * 8 + (digits[2] - '0')));
                i += 3;
                continue;
            }
        }
        out.push_back(field[i]);
    }
    return out;
}

// The disk space a tree takes, as `du -B1` counts it: the allocated blocks of every item in it,
// links not followed. What cannot be read is left out; the figure is a cache for other programs.
uint64_t diskUsage(const Path& top) {
    uint64_t total = 0;
    std::vector<Path> pending{top};
    while (!pending.empty()) {
        const Path folder = std::move(pending.back());
        pending.pop_back();
        struct stat st {};
        if (::lstat(folder.c_str(), &st) == 0) {
            total += uint64_t(st.st_blocks) * 512;
        }
        for (const std::string& name :
             ARXFileIO::listNames(folder).value_or(std::vector<std::string>{})) {
            const Path item = ARXPath::join(folder, name);
            if (::lstat(item.c_str(), &st) != 0) {
                continue;
            }
            if (S_ISDIR(st.st_mode)) {
                pending.push_back(item);
            } else {
                total += uint64_t(st.st_blocks) * 512;
            }
        }
    }
    return total;
}

// The lines of a "directorysizes" file are "SIZE MTIME NAME", NAME percent-encoded. Programs of
// this process (and, between a read and the rename, others) may rewrite the file at once; the
// lock keeps this process's own updates from losing each other.
std::mutex& directorySizesMutex() {
    static std::mutex mutex;
    return mutex;
}

// Rewrites the trash's "directorysizes" without the line of `name`, and with `line` when given.
void rewriteDirectorySizes(const Path& trash, const std::string& name,
                           const std::optional<std::string>& line) {
    const Path file = ARXPath::join(trash, "directorysizes");
    const std::string encoded = encodePath(name);
    std::lock_guard lock(directorySizesMutex());
    const std::string old = ARXFileIO::readFile(file).value_or(std::string());
    std::string text;
    bool changed = line.has_value();
    size_t start = 0;
    while (start < old.size()) {
        size_t end = old.find('\n', start);
        end = end == std::string::npos ? old.size() : end;
        const std::string_view entry(old.data() + start, end - start);
        start = end + 1;
        const size_t second = entry.find(' ', entry.find(' ') + 1);
        if (second != std::string_view::npos && entry.substr(second + 1) == encoded) {
            changed = true;
            continue;
        }
        if (!entry.empty()) {
            text.append(entry).push_back('\n');
        }
    }
    if (!changed) {
        return;
    }
    if (line) {
        text.append(*line).push_back('\n');
    }
    if (const int err = ARXFileIO::writeAtomically(file, text)) {
        ARXConsole::line(
            QStringLiteral("Atrium: cannot update %1: %2")
                .arg(ARXPath::display(file), QString::fromStdString(ARXFileIO::errorText(err))));
    }
}

// A folder that has just gone into the trash under "files/NAME".
void noteTrashedFolder(const Path& trash, const Path& trashed) {
    const std::string name = ARXPath::lastComponent(trashed);
    struct stat info {};
    const Path infoFile =
        ARXPath::join(ARXPath::join(trash, "info"), name + std::string(kInfoSuffix));
    if (::stat(infoFile.c_str(), &info) != 0) {
        return;
    }
    rewriteDirectorySizes(trash, name,
                          std::to_string(diskUsage(trashed)) + " " +
                              std::to_string(int64_t(info.st_mtim.tv_sec)) + " " +
                              encodePath(name));
}

// The trash whose "files/" holds the path directly: the home trash, a "$topdir/.Trash-$uid" or
// a "$topdir/.Trash/$uid" of this user.
std::optional<Path> trashHolding(const Path& path) {
    const Path files = ARXPath::parentPath(path);
    if (ARXPath::lastComponent(files) != "files") {
        return std::nullopt;
    }
    const Path trash = ARXPath::parentPath(files);
    const std::string uid = std::to_string(::geteuid());
    const std::string name = ARXPath::lastComponent(trash);
    if (trash == homeTrash() || name == ".Trash-" + uid ||
        (name == uid && ARXPath::lastComponent(ARXPath::parentPath(trash)) == ".Trash")) {
        return trash;
    }
    return std::nullopt;
}

// The "Path=" value for an item from `from` that goes into `trash`: the whole path for the home
// trash, the path below the top of the volume for a volume's own trash.
std::string pathValueFor(const Path& trash, const Path& from) {
    if (trash == homeTrash()) {
        return encodePath(from);
    }
    const Path top = ARXPath::lastComponent(trash).starts_with(".Trash-")
                         ? ARXPath::parentPath(trash)
                         : ARXPath::parentPath(ARXPath::parentPath(trash));
    std::unique_ptr<char, decltype(&std::free)> real(
        ::realpath(ARXPath::parentPath(from).c_str(), nullptr), &std::free);
    const Path where = real ? ARXPath::join(real.get(), ARXPath::lastComponent(from)) : from;
    const Path prefix = top == "/" ? top : top + "/";
    return encodePath(where.starts_with(prefix) ? where.substr(prefix.size()) : where);
}

void emptyFolder(const Path& folder, std::optional<ARXFileError>& firstError) {
    ARXFileDescriptor fd(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (!fd.isValid()) {
        if (errno != ENOENT && !firstError) {
            firstError = ARXFileError::fromErrno(errno, folder);
        }
        return;
    }
    const std::optional<std::vector<std::string>> names = ARXFileIO::listNames(folder);
    for (const std::string& name : names.value_or(std::vector<std::string>{})) {
        try {
            // Trashed folders that were read-only (a module cache, a copied CD) are the user's
            // own and are meant to go: they are made writable on the way.
            ARXFileTree::removeAt(fd.get(), name, ARXPath::join(folder, name), true);
        } catch (const ARXFileError& error) {
            if (!firstError) {
                firstError = error;
            }
        }
    }
}

} // namespace

Path homeTrash() {
    return ARXPath::join(ARXSystemPaths::dataHome(), "Trash");
}

bool isInTrash(const Path& path) {
    // The part of the path below a trash folder: "files/…" or "expunged/…" with something after.
    auto holdsItem = [](std::string_view rest) {
        for (std::string_view part : {std::string_view("files/"), std::string_view("expunged/")}) {
            if (rest.size() > part.size() && rest.substr(0, part.size()) == part) {
                return true;
            }
        }
        return false;
    };
    const Path home = homeTrash() + "/";
    if (path.compare(0, home.size(), home) == 0 &&
        holdsItem(std::string_view(path).substr(home.size()))) {
        return true;
    }
    const std::string uid = std::to_string(::geteuid());
    for (const std::string& folder : {"/.Trash-" + uid + "/", "/.Trash/" + uid + "/"}) {
        for (size_t at = path.find(folder); at != Path::npos; at = path.find(folder, at + 1)) {
            if (holdsItem(std::string_view(path).substr(at + folder.size()))) {
                return true;
            }
        }
    }
    return false;
}

Path trashItem(const Path& path) {
    ARXFileTree::requireKernelPath(path);
    const ARXFileTree::ParentFolder parent(path);
    struct stat st {};
    if (::fstatat(parent.fd, parent.name.c_str(), &st, AT_SYMLINK_NOFOLLOW) != 0) {
        fail(errno, path);
    }
    const MountId mount = mountOf(parent.fd, "", AT_EMPTY_PATH);

    for (int attempt = 0; attempt < 2; ++attempt) {
        if (const std::optional<Path> trash = homeTrashFor(mount)) {
            const MoveResult moved = moveIntoTrash(*trash, path, parent, encodePath(path));
            if (!moved.error) {
                if (S_ISDIR(st.st_mode)) {
                    noteTrashedFolder(*trash, moved.trashed);
                }
                return moved.trashed;
            }
            if (moved.error == ENOENT && attempt == 0) {
                forgetHomeTrash(); // the trash went away meanwhile; make it again
                continue;
            }
            if (moved.error != EXDEV) {
                fail(moved.error, moved.trashed.empty() ? *trash : moved.trashed, Access::writing);
            }
        }
        break;
    }

    // Another mount: its own trash, found from the folder's real path, since "Path=" is relative
    // to the top of the mount there.
    std::unique_ptr<char, decltype(&std::free)> real(
        ::realpath(ARXPath::parentPath(path).c_str(), nullptr), &std::free);
    if (!real) {
        fail(errno, path);
    }
    const Path folder = real.get();
    const Path topdir = topDirectory(folder, mount);
    const Path realPath = ARXPath::join(folder, parent.name);
    const std::string relative = realPath.substr(topdir == "/" ? 1 : topdir.size() + 1);

    int err = 0;
    for (auto find : {sharedVolumeTrash, userVolumeTrash}) {
        int why = 0;
        const std::optional<Path> trash = find(topdir, true, why);
        if (!trash) {
            err = why; // the user's own trash folder says best why the volume has none
            continue;
        }
        const MoveResult moved = moveIntoTrash(*trash, path, parent, encodePath(relative));
        if (!moved.error) {
            if (S_ISDIR(st.st_mode)) {
                noteTrashedFolder(*trash, moved.trashed);
            }
            return moved.trashed;
        }
        err = moved.error;
    }
    refuse(err ? err : EXDEV, path);
}

std::optional<Path> infoFileFor(const Path& trashedItem) {
    const Path files = ARXPath::parentPath(trashedItem);
    if (ARXPath::lastComponent(files) != "files") {
        return std::nullopt;
    }
    return ARXPath::join(ARXPath::join(ARXPath::parentPath(files), "info"),
                         ARXPath::lastComponent(trashedItem) + std::string(kInfoSuffix));
}

void moveItem(const Path& from, const Path& to, const ARXFileOperations::Building& building) {
    const std::optional<Path> source = trashHolding(from);
    const std::optional<Path> destination = trashHolding(to);
    std::optional<Path> claimed;
    if (destination) {
        // An item moved within a trash keeps where it first came from.
        const std::optional<Path> sourceInfo = source ? infoFileFor(from) : std::nullopt;
        std::optional<std::string> text =
            sourceInfo ? ARXFileIO::readFile(*sourceInfo, 64u << 10) : std::nullopt;
        if (!text) {
            text = infoText(pathValueFor(*destination, from), std::time(nullptr));
        }
        claimed = infoFileFor(to);
        if (const int err = claimInfo(*claimed, *text)) {
            fail(err, err == EEXIST ? to : *claimed, Access::writing);
        }
    }
    try {
        ARXFileOperations::moveItem(from, to, building);
    } catch (const ARXFileError&) {
        if (claimed) {
            ::unlink(claimed->c_str());
        }
        throw;
    }
    if (source) {
        const Path info = *infoFileFor(from);
        if (::unlink(info.c_str()) != 0 && errno != ENOENT) {
            const int err = errno;
            ARXConsole::line(QStringLiteral("Atrium: cannot remove %1: %2")
                                 .arg(ARXPath::display(info),
                                      QString::fromStdString(ARXFileIO::errorText(err))));
        }
        rewriteDirectorySizes(*source, ARXPath::lastComponent(from), std::nullopt);
    }
    if (destination && ARXFileIO::isDirectory(to)) {
        noteTrashedFolder(*destination, to);
    }
}

std::vector<Path> trashFolders(const std::vector<Path>& volumeRoots) {
    std::vector<Path> folders;
    auto add = [&folders](const std::optional<Path>& folder) {
        if (folder && std::find(folders.begin(), folders.end(), *folder) == folders.end()) {
            folders.push_back(*folder);
        }
    };
    const Path home = homeTrash();
    if (trashFolder(home, false) == 0) {
        add(home);
    }
    for (const Path& root : volumeRoots) {
        int err = 0;
        add(sharedVolumeTrash(root, false, err));
        add(userVolumeTrash(root, false, err));
    }
    return folders;
}

void emptyTrash(const std::vector<Path>& volumeRoots) {
    std::optional<ARXFileError> firstError;
    for (const Path& trash : trashFolders(volumeRoots)) {
        emptyFolder(ARXPath::join(trash, "files"), firstError);
        emptyFolder(ARXPath::join(trash, "info"), firstError);
        // Sizes of folders that are no longer there.
        ::unlink(ARXPath::join(trash, "directorysizes").c_str());
    }
    if (firstError) {
        throw *firstError;
    }
}

std::vector<Path> mountedVolumeRoots() {
    std::vector<Path> roots;
    std::ifstream table("/proc/self/mountinfo");
    std::string line;
    while (std::getline(table, line)) {
        // "36 35 98:0 /root /mount/point options [optional fields] - type source options"
        std::vector<std::string_view> fields;
        std::string_view rest = line;
        while (!rest.empty()) {
            const size_t space = rest.find(' ');
            fields.push_back(rest.substr(0, space));
            rest.remove_prefix(space == std::string_view::npos ? rest.size() : space + 1);
        }
        const auto dash = std::find(fields.begin(), fields.end(), "-");
        if (fields.size() < 5 || dash == fields.end() || dash + 1 == fields.end()) {
            continue;
        }
        const Path mountPoint = unescapeMountField(fields[4]);
        if (ARXMountTable::isPseudoMount(*(dash + 1), mountPoint)) {
            continue;
        }
        if (std::find(roots.begin(), roots.end(), mountPoint) == roots.end()) {
            roots.push_back(mountPoint);
        }
    }
    return roots;
}

std::string encodePath(std::string_view path) {
    std::string out;
    out.reserve(path.size());
    for (const char c : path) {
        const auto byte = static_cast<unsigned char>(c);
        const bool plain = (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
                           (byte >= '0' && byte <= '9') || byte == '-' || byte == '.' ||
                           byte == '_' || byte == '~' || byte == '/';
        if (plain) {
            out.push_back(c);
        } else {
            out.push_back('%');
            out.push_back(hexDigit(byte >> 4));
            out.push_back(hexDigit(byte));
        }
    }
    return out;
}

Path decodePath(std::string_view value) {
    Path out;
    for (size_t i = 0; i < value.size(); ++i) {
        if (value[i] == '%' && i + 2 < value.size()) {
            const int high = hexValue(value[i + 1]);
            const int low = hexValue(value[i + 2]);
            if (high >= 0 && low >= 0) {
                out.push_back(char(high * 16 + low));
                i += 2;
                continue;
            }
        }
        out.push_back(value[i]);
    }
    return out;
}

std::string infoText(std::string_view pathValue, std::time_t deletionTime) {
    std::tm local{};
    ::localtime_r(&deletionTime, &local);
    char date[32] = {};
    std::strftime(date, sizeof date, "%Y-%m-%dT%H:%M:%S", &local);
    std::string text = "[Trash Info]\nPath=";
    text.append(pathValue);
    text.append("\nDeletionDate=");
    text.append(date);
    text.append("\n");
    return text;
}

} // namespace ARXTrash

Path ARXFileOperations::trashItem(const Path& path) {
    return ARXTrash::trashItem(path);
}

void ARXFileOperations::emptyTrash() {
    ARXTrash::emptyTrash(ARXTrash::mountedVolumeRoots());
}
