#include "platform/ARXProgramLookup.h"

#include <gio/gdesktopappinfo.h>
#include <glib.h>

#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace ARXProgramLookup {

bool isExecutableFile(const Path& path) {
    struct stat st {};
    return ::stat(path.c_str(), &st) == 0 && S_ISREG(st.st_mode) &&
           ::access(path.c_str(), X_OK) == 0;
}

Path findInPath(std::string_view name) {
    if (name.empty()) {
        return {};
    }
    const std::string program(name);
    if (program.find('/') != std::string::npos) {
        return isExecutableFile(program) ? program : Path();
    }
    gchar* found = g_find_program_in_path(program.c_str());
    Path result = found ? Path(found) : Path();
    g_free(found);
    // GLib also answers executable folders; only files can be run.
    return !result.empty() && isExecutableFile(result) ? result : Path();
}

bool hasDesktopEntry(std::string_view desktopId) {
    const std::string id(desktopId);
    // GIO applies the XDG rules for us: the data directories in order, the "-" to subfolder
    // mapping of ids, Hidden= and TryExec=.
    GDesktopAppInfo* info = g_desktop_app_info_new(id.c_str());
    if (!info) {
        return false;
    }
    g_object_unref(info);
    return true;
}

} // namespace ARXProgramLookup
