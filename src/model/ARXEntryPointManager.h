#pragma once

#include "platform/ARXPath.h"

#include <QString>

#include <functional>
#include <optional>
#include <vector>

// A place a path can start from: a home folder or a mounted volume.
struct ARXEntryPoint {
    QString name; // shown to the user
    Path root;
    bool operator==(const ARXEntryPoint&) const = default;
};

// Keeps the short lists of places from which paths start: the home folders and the mounted
// volumes a user thinks of as disks. The path bar shortens paths with them and offers them as
// roots. Main thread only.
class ARXEntryPointManager {
public:
    static ARXEntryPointManager& shared();

    // Desktop, Downloads, Documents, Videos, Music, Pictures (the XDG user folders) and the home
    // folder itself; then the volume points.
    void refreshHomePoints();

    // Cheap when called again within five seconds: the path bar asks often.
    void refreshVolumePoints();

    const std::vector<ARXEntryPoint>& homePoints() const { return _homePoints; }
    const std::vector<ARXEntryPoint>& volumePoints() const { return _volumePoints; }

    // Whether a volume root is one of the places where removable and external disks appear.
    static bool isVolumesRoot(const Path& root);

    // Seconds on a monotonic clock; tests move time by hand.
    static void setClockForTesting(std::function<double()> clock);

private:
    std::vector<ARXEntryPoint> _homePoints;
    std::vector<ARXEntryPoint> _volumePoints;
    std::optional<double> lastRefreshDate;
};
