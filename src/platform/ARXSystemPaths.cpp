#include "platform/ARXSystemPaths.h"

#include "platform/ARXFileIO.h"

#include <cstdlib>
#include <cstring>
#include <mutex>
#include <pwd.h>
#include <unistd.h>

namespace ARXSystemPaths {

namespace {

std::mutex gHomeMutex;
Path gHome;

Path homeFromPasswordDatabase() {
    std::string buffer(16384, '\0');
    passwd record{};
    passwd* found = nullptr;
    if (getpwuid_r(getuid(), &record, buffer.data(), buffer.size(), &found) == 0 && found &&
        found->pw_dir && found->pw_dir[0] == '/') {
        return ARXPath::normalized(found->pw_dir);
    }
    // A user without a password entry (some containers) still needs a place; "/" is what
    // the kernel would give a process without a home.
    return "/";
}

Path fromEnvironment(const char* name, const char* fallbackBelowHome) {
    const char* value = std::getenv(name);
    if (value && value[0] == '/') {
        return ARXPath::normalized(value);
    }
    return ARXPath::join(homeDirectory(), fallbackBelowHome);
}

// Parses one line of user-dirs.dirs: XDG_DESKTOP_DIR="$HOME/Desktop".
bool parseUserDirLine(std::string_view line, std::string_view key, Path& out) {
    while (!line.empty() && (line.front() == ' ' || line.front() == '\t')) {
        line.remove_prefix(1);
    }
    if (line.substr(0, key.size()) != key) {
        return false;
    }
    line.remove_prefix(key.size());
    if (line.size() < 2 || line.front() != '"') {
        return false;
    }
    line.remove_prefix(1);
    const auto end = line.find('"');
    if (end == std::string_view::npos) {
        return false;
    }
    std::string_view value = line.substr(0, end);
    std::string result;
    if (value.substr(0, 5) == "$HOME") {
        result = homeDirectory();
        value.remove_prefix(5);
    } else if (value.empty() || value.front() != '/') {
        return false;
    }
    for (size_t i = 0; i < value.size(); ++i) {
        if (value[i] == '\\' && i + 1 < value.size()) {
            ++i;
        }
        result.push_back(value[i]);
    }
    out = ARXPath::normalized(result);
    return true;
}

} // namespace

Path homeDirectory() {
    std::lock_guard lock(gHomeMutex);
    if (gHome.empty()) {
        gHome = homeFromPasswordDatabase();
    }
    return gHome;
}

void overrideHomeForTesting(const Path& home) {
    std::lock_guard lock(gHomeMutex);
    gHome = ARXPath::normalized(home);
}

Path configHome() {
    return fromEnvironment("XDG_CONFIG_HOME", ".config");
}
Path dataHome() {
    return fromEnvironment("XDG_DATA_HOME", ".local/share");
}
Path cacheHome() {
    return fromEnvironment("XDG_CACHE_HOME", ".cache");
}

Path userDirectory(const char* kind) {
    const std::string key = std::string("XDG_") + kind + "_DIR=";
    Path found;
    if (auto text = ARXFileIO::readFile(ARXPath::join(configHome(), "user-dirs.dirs"), 1 << 16)) {
        std::string_view rest(*text);
        while (!rest.empty()) {
            const auto eol = rest.find('\n');
            const auto line = rest.substr(0, eol);
            Path value;
            if (parseUserDirLine(line, key, value)) {
                found = value;
            }
            if (eol == std::string_view::npos) {
                break;
            }
            rest.remove_prefix(eol + 1);
        }
    }
    // A value equal to the home folder means "disabled" in the XDG convention; fall back then too.
    if (!found.empty() && found != homeDirectory()) {
        return found;
    }
    static const struct {
        const char* kind;
        const char* folder;
    } kDefaults[] = {{"DESKTOP", "Desktop"},     {"DOWNLOAD", "Downloads"},
                     {"DOCUMENTS", "Documents"}, {"VIDEOS", "Videos"},
                     {"MUSIC", "Music"},         {"PICTURES", "Pictures"},
                     {"TEMPLATES", "Templates"}, {"PUBLICSHARE", "Public"}};
    for (const auto& entry : kDefaults) {
        if (std::strcmp(entry.kind, kind) == 0) {
            return ARXPath::join(homeDirectory(), entry.folder);
        }
    }
    return homeDirectory();
}

Path temporaryDirectory() {
    const char* value = std::getenv("TMPDIR");
    if (value && value[0] == '/') {
        return ARXPath::normalized(value);
    }
    return "/tmp";
}

} // namespace ARXSystemPaths
