#include "support/ARXTestEnvironment.h"

#include "platform/ARXFileIO.h"
#include "platform/ARXSystemPaths.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>

#include <cstdlib>
#include <ftw.h>
#include <linux/capability.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>

namespace {
int removeEntry(const char* path, const struct stat*, int, struct FTW*) {
    // Fixtures may have taken permissions away; give them back so the tree can go.
    ::chmod(path, 0700);
    return ::remove(path);
}
int restorePermission(const char* path, const struct stat* st, int type, struct FTW*) {
    if (type == FTW_D || type == FTW_DNR) {
        ::chmod(path, (st->st_mode & 07777) | 0700);
    }
    return 0;
}
} // namespace

void ARXRemoveTree(const Path& path) {
    ::nftw(path.c_str(), restorePermission, 32, FTW_PHYS);
    ::nftw(path.c_str(), removeEntry, 32, FTW_DEPTH | FTW_PHYS);
}

void ARXTestEnvironment::SetUp() {
    std::string pattern = ARXPath::join(ARXSystemPaths::temporaryDirectory(), "atrium-test-XXXXXX");
    ASSERT_NE(::mkdtemp(pattern.data()), nullptr);
    _root = pattern;
    _home = ARXPath::join(_root, "home");
    makeFolder(_home);
    ARXSystemPaths::overrideHomeForTesting(_home);
    ::setenv("XDG_CONFIG_HOME", configHome().c_str(), 1);
    ::setenv("XDG_DATA_HOME", dataHome().c_str(), 1);
    ::setenv("XDG_CACHE_HOME", ARXPath::join(_home, ".cache").c_str(), 1);
}

void ARXTestEnvironment::TearDown() {
    if (!_root.empty()) {
        ARXRemoveTree(_root);
    }
}

Path ARXTestEnvironment::configHome() const {
    return ARXPath::join(_home, ".config");
}
Path ARXTestEnvironment::dataHome() const {
    return ARXPath::join(_home, ".local/share");
}

void ARXTestEnvironment::writeFile(const Path& path, std::string_view content) {
    ASSERT_EQ(ARXFileIO::makeDirectories(ARXPath::parentPath(path)), 0);
    ASSERT_EQ(ARXFileIO::writeAtomically(path, content), 0) << path;
}

std::string ARXTestEnvironment::readFile(const Path& path) {
    return ARXFileIO::readFile(path).value_or(std::string());
}

void ARXTestEnvironment::makeFolder(const Path& path) {
    ASSERT_EQ(ARXFileIO::makeDirectories(path), 0) << path;
}

bool ARXTestEnvironment::waitUntil(const std::function<bool()>& pred, int timeoutMs) {
    QElapsedTimer timer;
    timer.start();
    while (!pred()) {
        if (timer.elapsed() > timeoutMs) {
            return pred();
        }
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        // processEvents leaves deleteLater() calls made outside an event loop pending.
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QThread::msleep(1);
    }
    return true;
}

void ARXTestEnvironment::flushEvents() {
    // A delivered event may post more (a layout request posts the children's); a few rounds reach
    // the end of any chain a test builds.
    for (int round = 0; round < 4; ++round) {
        QCoreApplication::sendPostedEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCoreApplication::processEvents(QEventLoop::AllEvents);
    }
}

bool ARXTestEnvironment::stopOverridingPermissions() {
    __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct data[2]{};
    if (::syscall(SYS_capget, &header, data) != 0) {
        return false;
    }
    data[0].effective &= ~((1u << CAP_DAC_OVERRIDE) | (1u << CAP_DAC_READ_SEARCH));
    return ::syscall(SYS_capset, &header, data) == 0;
}

bool ARXTestEnvironment::runWithoutOverridingPermissions(const std::function<void()>& check) {
    bool dropped = false;
    std::thread worker([&] {
        if (!stopOverridingPermissions()) {
            return;
        }
        dropped = true;
        check();
    });
    worker.join();
    return dropped;
}
