#include "model/ARXEntryPointManager.h"

#include "app/ARXDataCenter.h"
#include "platform/ARXSystemPaths.h"

#include <QElapsedTimer>

namespace {

std::function<double()>& testClock() {
    static std::function<double()> fn;
    return fn;
}

double now() {
    if (testClock()) {
        return testClock()();
    }
    static QElapsedTimer timer = [] {
        QElapsedTimer t;
        t.start();
        return t;
    }();
    return double(timer.nsecsElapsed()) / 1e9;
}

constexpr double kVolumeRefreshInterval = 5.0;

} // namespace

ARXEntryPointManager& ARXEntryPointManager::shared() {
    static ARXEntryPointManager manager;
    return manager;
}

void ARXEntryPointManager::setClockForTesting(std::function<double()> fn) {
    testClock() = std::move(fn);
}

void ARXEntryPointManager::refreshHomePoints() {
    std::vector<ARXEntryPoint> points;
    for (const char* kind : {"DESKTOP", "DOWNLOAD", "DOCUMENTS", "VIDEOS", "MUSIC", "PICTURES"}) {
        const Path root = ARXSystemPaths::userDirectory(kind);
        points.push_back({ARXPath::display(ARXPath::lastComponent(root)), root});
    }
    const Path home = ARXSystemPaths::homeDirectory();
    points.push_back({ARXPath::display(ARXPath::lastComponent(home)), home});
    _homePoints = std::move(points);
    refreshVolumePoints();
}

bool ARXEntryPointManager::isVolumesRoot(const Path& root) {
    return root.starts_with("/Volumes/") || root.starts_with("/media/") ||
           root.starts_with("/run/media/");
}

void ARXEntryPointManager::refreshVolumePoints() {
    const double t = now();
    if (lastRefreshDate && !_volumePoints.empty() &&
        t - *lastRefreshDate < kVolumeRefreshInterval) {
        return;
    }
    lastRefreshDate = t;
    ARXDataCenter& center = ARXDataCenter::shared();
    center.reloadVolumes();
    std::vector<ARXEntryPoint> points;
    for (const ARXVolumeRef& volume : center.fileVolumes()) {
        if (volume->isInternal && volume->root == "/Volumes/Recovery") {
            continue;
        }
        if (volume->root == "/" || isVolumesRoot(volume->root)) {
            points.push_back({volume->name, volume->root});
        }
    }
    _volumePoints = std::move(points);
}
