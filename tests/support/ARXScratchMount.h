#pragma once

#include "platform/ARXPath.h"

#include <cerrno>
#include <cstring>
#include <string>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

// A small tmpfs mounted for one test: a full disk (a size of "1m"), or a second file system to
// move across. Mounting needs CAP_SYS_ADMIN, which tests have when they run as root outside a
// restricted container; where the system refuses, mounted() is false and the test skips with
// error(). Unmounted (lazily, so an open descriptor cannot keep it) when it goes.
class ARXScratchMount {
public:
    ARXScratchMount(const Path& path, const std::string& size) : _path(path) {
        if (::mkdir(path.c_str(), 0755) != 0 && errno != EEXIST) {
            _error = std::strerror(errno);
            return;
        }
        const std::string options = "size=" + size + ",mode=0755";
        if (::mount("tmpfs", path.c_str(), "tmpfs", 0, options.c_str()) != 0) {
            _error = std::string("mount -t tmpfs: ") + std::strerror(errno);
            return;
        }
        _mounted = true;
    }
    ~ARXScratchMount() {
        if (_mounted) {
            ::umount2(_path.c_str(), MNT_DETACH);
        }
        ::rmdir(_path.c_str());
    }
    ARXScratchMount(const ARXScratchMount&) = delete;
    ARXScratchMount& operator=(const ARXScratchMount&) = delete;

    bool mounted() const { return _mounted; }
    const Path& path() const { return _path; }
    const std::string& error() const { return _error; }

private:
    Path _path;
    bool _mounted = false;
    std::string _error;
};
