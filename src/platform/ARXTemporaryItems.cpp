#include "platform/ARXTemporaryItems.h"

#include "platform/ARXConsole.h"
#include "platform/ARXDirectoryReader.h"
#include "platform/ARXFileDescriptor.h"
#include "platform/ARXFileTree.h"
#include "platform/ARXMainQueue.h"
#include "platform/ARXTrash.h"

#include <QRandomGenerator>
#include <QThreadPool>

#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <mutex>
#include <optional>
#include <set>
#include <sys/stat.h>
#include <unistd.h>

namespace ARXTemporaryItems {

namespace {

constexpr std::string_view kCopyPrefix = ".atrium-copy-";
constexpr std::string_view kAsideMarker = ".atrium-temp-";

struct Leftover {
    bool aside = false;
    pid_t pid = 0;
    std::string original; // for an item set aside: the name it stands in for
};

bool allOf(std::string_view text, bool (*accept)(char)) {
    if (text.empty()) {
        return false;
    }
    for (const char c : text) {
        if (!accept(c)) {
            return false;
        }
    }
    return true;
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

bool isHexDigit(char c) {
    return isDigit(c) || (c >= 'a' && c <= 'f');
}

std::optional<pid_t> parsePid(std::string_view digits) {
    pid_t pid = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), pid);
    if (!allOf(digits, isDigit) || error != std::errc() || end != digits.data() + digits.size() ||
        pid <= 0) {
        return std::nullopt;
    }
    return pid;
}

// Only names of exactly the forms this program makes count: a name a user chose that merely
// looks alike, or one of an older Atrium without a process id, is never touched.
std::optional<Leftover> parse(std::string_view name) {
    if (name.starts_with(kCopyPrefix)) {
        const std::string_view rest = name.substr(kCopyPrefix.size());
        const size_t dash = rest.find('-');
        if (dash == std::string_view::npos || !allOf(rest.substr(dash + 1), isHexDigit)) {
            return std::nullopt;
        }
        if (const std::optional<pid_t> pid = parsePid(rest.substr(0, dash))) {
            return Leftover{false, *pid, {}};
        }
        return std::nullopt;
    }
    const size_t marker = name.rfind(kAsideMarker);
    if (marker == std::string_view::npos || marker == 0) {
        return std::nullopt;
    }
    if (const std::optional<pid_t> pid = parsePid(name.substr(marker + kAsideMarker.size()))) {
        return Leftover{true, *pid, std::string(name.substr(0, marker))};
    }
    return std::nullopt;
}

bool isRunning(pid_t pid) {
    return ::kill(pid, 0) == 0 || errno == EPERM;
}

std::string randomSuffix() {
    char hex[17];
    std::snprintf(hex, sizeof hex, "%016llx",
                  static_cast<unsigned long long>(QRandomGenerator::global()->generate64()));
    return hex;
}

// Deals with one leftover of a process that is gone.
void clear(int folderFd, const std::string& name, const Leftover& leftover, const Path& folder) {
    const Path path = ARXPath::join(folder, name);
    if (leftover.aside) {
        struct stat st {};
        if (::fstatat(folderFd, leftover.original.c_str(), &st, AT_SYMLINK_NOFOLLOW) != 0 &&
            errno == ENOENT) {
            // Killed while the replacement moved in: the original goes back to its name.
            if (const int err = ARXFileTree::renameNoReplace(folderFd, name.c_str(), folderFd,
                                                             leftover.original.c_str())) {
                throw ARXFileTree::renameError(err, path, ARXPath::join(folder, leftover.original));
            }
            return;
        }
        // The replacement is in place: this is the item it replaced, which only waited to go.
        ARXFileTree::removeAt(folderFd, name, path);
        return;
    }
    // A copy of something that still exists elsewhere, never finished or already displaced.
    // Atrium made it, read-only folders included, so it may make them writable to empty them.
    ARXFileTree::removeAt(folderFd, name, path, true);
}

} // namespace

std::string copyName() {
    return std::string(kCopyPrefix) + std::to_string(::getpid()) + "-" + randomSuffix();
}

Path copyBeside(const Path& path) {
    const Path folder = ARXPath::parentPath(path);
    for (;;) {
        const Path candidate = ARXPath::join(folder, copyName());
        struct stat st {};
        if (::lstat(candidate.c_str(), &st) != 0) {
            return candidate;
        }
    }
}

Path asideOf(const Path& existing) {
    return existing + std::string(kAsideMarker) + std::to_string(::getpid());
}

bool isTemporaryName(std::string_view name) {
    return name.starts_with(kCopyPrefix) || name.find(kAsideMarker) != std::string_view::npos;
}

int sweep(const Path& folder) {
    // Whatever lies in a trash stays as it was trashed.
    if (ARXTrash::isInTrash(ARXPath::join(folder, "item"))) {
        return 0;
    }
    const ARXDirectoryListing listing = ARXDirectoryReader::list(folder);
    ARXFileDescriptor folderFd(::open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    if (!listing.ok() || !folderFd.isValid()) {
        return 0;
    }
    int cleared = 0;
    for (const ARXDirectoryItem& item : listing.items) {
        const std::optional<Leftover> leftover = parse(item.name);
        if (!leftover || isRunning(leftover->pid)) {
            continue;
        }
        try {
            clear(folderFd.get(), item.name, *leftover, folder);
            ++cleared;
        } catch (const ARXFileError& error) {
            ARXConsole::line("Atrium: could not clear the leftover " +
                             ARXPath::join(folder, item.name) + " of an operation that ended " +
                             "half way: " + error.what());
        }
    }
    return cleared;
}

void sweepLater(const Path& folder) {
    static std::mutex mutex;
    static std::set<Path> running;
    {
        std::lock_guard lock(mutex);
        if (!running.insert(folder).second) {
            return;
        }
    }
    // From the main queue, so that a pane that is listing the folder has its watcher in place
    // before anything changes: it then sees the leftovers go like any other change.
    ARXMainQueue::async([folder] {
        QThreadPool::globalInstance()->start([folder] {
            sweep(folder);
            std::lock_guard lock(mutex);
            running.erase(folder);
        });
    });
}

} // namespace ARXTemporaryItems
