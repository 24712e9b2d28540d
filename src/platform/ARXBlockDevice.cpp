#include "platform/ARXBlockDevice.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

namespace ARXBlockDevice {

namespace {

// sysfs and udev files are a few bytes; their reported size is a page whatever they hold, so
// they are read until the end rather than by size.
std::string readSmallFile(const Path& path) {
    std::string text;
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) {
        return text;
    }
    char buffer[4096];
    for (;;) {
        const ssize_t n = ::read(fd, buffer, sizeof buffer);
        if (n < 0 && errno == EINTR) {
            continue;
        }
        if (n <= 0 || text.size() > (1u << 16)) {
            break;
        }
        text.append(buffer, size_t(n));
    }
    ::close(fd);
    while (!text.empty() && (text.back() == '\n' || text.back() == ' ')) {
        text.pop_back();
    }
    return text;
}

bool exists(const Path& path) {
    struct stat st;
    return ::stat(path.c_str(), &st) == 0;
}

Path realPath(const Path& path) {
    char resolved[PATH_MAX];
    return ::realpath(path.c_str(), resolved) ? Path(resolved) : Path();
}

std::string numberText(dev_t device) {
    return std::to_string(major(device)) + ":" + std::to_string(minor(device));
}

std::string udevProperty(dev_t device, std::string_view key) {
    const std::string data = readSmallFile("/run/udev/data/b" + numberText(device));
    const std::string prefix = "E:" + std::string(key) + "=";
    size_t start = 0;
    while (start < data.size()) {
        size_t end = data.find('\n', start);
        if (end == std::string::npos) {
            end = data.size();
        }
        const std::string_view line(data.data() + start, end - start);
        if (line.substr(0, prefix.size()) == prefix) {
            return decodeUdevEscapes(line.substr(prefix.size()));
        }
        start = end + 1;
    }
    return {};
}

bool isRemovableDisk(const Path& sysDevice) {
    // The medium facts belong to the whole disk; a partition's folder sits inside its disk's.
    const Path disk = exists(sysDevice + "/partition") ? ARXPath::parentPath(sysDevice) : sysDevice;
    if (readSmallFile(disk + "/removable") == "1") {
        return true;
    }
    // USB disks mostly answer 0 above, yet they are unplugged like any stick.
    if (disk.find("/usb") != Path::npos) {
        return true;
    }
    return disk.find("/mmc") != Path::npos && readSmallFile(disk + "/device/type") == "SD";
}

void collect(const Path& sysDevice, Facts& facts, int depth) {
    if (depth > 8 || sysDevice.empty()) {
        return;
    }
    if (readSmallFile(sysDevice + "/dm/uuid").rfind("CRYPT-", 0) == 0) {
        facts.encrypted = true;
    }
    if (sysDevice.find("/virtual/block/loop") != Path::npos) {
        facts.loop = true;
    }
    const Path slavesFolder = sysDevice + "/slaves";
    DIR* dir = ::opendir(slavesFolder.c_str());
    if (!dir) {
        facts.removable = facts.removable || isRemovableDisk(sysDevice);
        return;
    }
    // A device-mapper device (LUKS, LVM) is built on others: its facts are theirs.
    while (const dirent* entry = ::readdir(dir)) {
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..") {
            collect(realPath(ARXPath::join(slavesFolder, name)), facts, depth + 1);
        }
    }
    ::closedir(dir);
}

int hexValue(char c) {
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    if (c >= 'a' && c <= 'f') {
        return c - 'a' + 10;
    }
    if (c >= 'A' && c <= 'F') {
        return c - 'A' + 10;
    }
    return -1;
}

} // namespace

std::optional<dev_t> deviceNumber(const Path& devicePath) {
    struct stat st;
    if (devicePath.empty() || devicePath.front() != '/' || ::stat(devicePath.c_str(), &st) != 0 ||
        !S_ISBLK(st.st_mode)) {
        return std::nullopt;
    }
    return st.st_rdev;
}

Facts factsFor(dev_t device) {
    Facts facts;
    const Path sysDevice = realPath("/sys/dev/block/" + numberText(device));
    if (!sysDevice.empty()) {
        facts.kernelName = ARXPath::lastComponent(sysDevice);
        collect(sysDevice, facts, 0);
    }
    facts.probedType = udevProperty(device, "ID_FS_TYPE");
    return facts;
}

std::map<dev_t, std::string> diskLinks(const char* folder) {
    std::map<dev_t, std::string> links;
    DIR* dir = ::opendir(folder);
    if (!dir) {
        return links;
    }
    while (const dirent* entry = ::readdir(dir)) {
        const std::string_view name = entry->d_name;
        if (name == "." || name == "..") {
            continue;
        }
        if (const auto device = deviceNumber(ARXPath::join(folder, name))) {
            links.emplace(*device, decodeUdevEscapes(name));
        }
    }
    ::closedir(dir);
    return links;
}

std::string decodeUdevEscapes(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\\' && i + 3 < text.size() && text[i + 1] == 'x') {
            const int high = hexValue(text[i + 2]);
            const int low = hexValue(text[i + 3]);
            if (high >= 0 && low >= 0) {
                result.push_back(char(high * 16 + low));
                i += 3;
                continue;
            }
        }
        result.push_back(text[i]);
    }
    return result;
}

bool hasJournal(const std::string& kernelName) {
    if (kernelName.empty()) {
        return false;
    }
    // One folder per journal, named after the device and the journal's inode: "sda1-8".
    DIR* dir = ::opendir("/proc/fs/jbd2");
    if (!dir) {
        return false;
    }
    bool found = false;
    const std::string prefix = kernelName + "-";
    while (const dirent* entry = ::readdir(dir)) {
        if (std::string_view(entry->d_name).substr(0, prefix.size()) == prefix) {
            found = true;
            break;
        }
    }
    ::closedir(dir);
    return found;
}

} // namespace ARXBlockDevice
